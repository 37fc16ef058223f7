#!/usr/bin/env bash
# map_compare.sh PROGRAM [FOLDER]: times `PROGRAM map` to its complete answer against the system's
# disk usage programs on a tree like a real home; then the first answer for a folder of 200,000
# entries and the answers for levels below a measured folder.
#
# FOLDER holds the tree (made there when missing, about 3 GB; default in the temporary folder). A
# program that is not installed is left out. See timing.sh for ROUNDS and COLD_ROUNDS.
set -euo pipefail

program=$(realpath "$1")
corpus=$(realpath -m "${2:-${TMPDIR:-/tmp}/pellak-bench-corpus}")
bench=$(dirname "$(realpath "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=bench/timing.sh
source "$bench/timing.sh"

if [[ ! -d $corpus ]]; then
  printf 'making %s\n' "$corpus"
  "$bench/make_corpus.py" "$corpus"
fi
home=$corpus/home

run_ours() { HOME=$work "$program" map --json "$home"; }
run_ncdu() { ncdu -0 -o /dev/null "$home"; }
run_gdu()  { gdu --non-interactive --no-progress "$home"; }

# The same answer as du, which also counts the blocks of folders and of links; the map counts
# links only among the folder's own children.
same_bytes() {
  local du own ours
  du=$(du -sl --block-size=1 "$home" | cut -f1)
  own=$({
    find "$home" -type d -printf '%b\n'
    find "$home" -mindepth 2 -type l -printf '%b\n'
  } | awk '{ b += $1 } END { print b * 512 }')
  ours=$(run_ours | python3 -c 'import json, sys; print(json.load(sys.stdin)["tot"])')
  printf 'du -sl %d - folders and links %d = %d; ours %d\n' "$du" "$own" "$((du - own))" "$ours"
  if ((du - own != ours)); then
    echo 'DIFFERENT' >&2
    exit 1
  fi
}

peers=()
for name in ncdu gdu; do
  if command -v "$name" >/dev/null; then peers+=("$name"); fi
done

same_bytes
compare_all 'map of a home' ours ${peers[@]+"${peers[@]}"}
HOME=$work python3 "$bench/map_answers.py" "$program" "$corpus"
