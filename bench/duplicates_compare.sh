#!/usr/bin/env bash
# duplicates_compare.sh DUP_TOOL [FOLDER]: times pellak-dup-bench against the system's programs on
# a tree with many duplicates, and checks first that all find the same sets.
#
# FOLDER holds the tree (made there when missing, about 4 GB; default in the temporary folder). A
# program that is not installed is left out. See timing.sh for ROUNDS and COLD_ROUNDS.
set -euo pipefail

tool=$(realpath "$1")
corpus=$(realpath -m "${2:-${TMPDIR:-/tmp}/pellak-dup-corpus}")
bench=$(dirname "$(realpath "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=bench/timing.sh
source "$bench/timing.sh"

if [[ ! -d $corpus ]]; then
  printf 'making %s\n' "$corpus"
  "$bench/duplicates_corpus.py" "$corpus"
fi
# Some programs leave files where they run.
cd "$work"

# rmlint with the quickest of its algorithms; rdfind has to give the answer that we give.
run_ours()      { "$tool" 1 "$corpus"; }
run_jdupes_rQ() { jdupes -q -rQ "$corpus"; }
run_jdupes_r()  { jdupes -q -r "$corpus"; }
run_rdfind()    { rdfind -checksum sha256 -minsize 1048576 -dryrun true "$corpus" && cat results.txt; }
run_rmlint()    { rmlint -T df --hidden --no-hardlinked --size 1M -a "${RMLINT_HASH:-xxhash}" \
                    -o fdupes:stdout "$corpus"; }

peers=()
for name in jdupes_rQ jdupes_r rdfind rmlint; do
  if command -v "${name%%_*}" >/dev/null; then peers+=("$name"); fi
done

# sets NAME: the sets that it finds, as numbers of files on disk, one sorted line each.
sets() {
  "run_$1" 2>/dev/null | python3 "$bench/duplicate_sets.py" >"$work/sets.$1"
}

sets ours
if [[ ! -s $work/sets.ours ]]; then
  echo 'nothing found' >&2
  exit 1
fi
for name in ${peers[@]+"${peers[@]}"}; do
  sets "$name"
  if ! cmp -s "$work/sets.ours" "$work/sets.$name"; then
    printf 'DIFFERENT: sets of %s and ours\n' "$name" >&2
    diff "$work/sets.ours" "$work/sets.$name" | head >&2
    exit 1
  fi
  printf 'same %d sets as %s\n' "$(wc -l <"$work/sets.ours")" "$name"
done

compare_all 'duplicates' ours ${peers[@]+"${peers[@]}"}

# The search again, nothing having changed: from what the last one remembered, and from nothing.
run_again() { "$tool" -m "$work/memory" 1 "$corpus"; }
sleep 3  # what is younger than two seconds is not remembered
run_again >/dev/null
run_again | python3 "$bench/duplicate_sets.py" | cmp - "$work/sets.ours"
compare_all 'duplicates, second search' again ours ${peers[@]+"${peers[@]}"}
