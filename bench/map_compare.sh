#!/usr/bin/env bash
# map_compare.sh PROGRAM [FOLDER]: times `PROGRAM map` to its complete answer against the system's
# disk usage programs on a tree like a real home, each round running all of them in turn; then the
# first answer for a folder of 200,000 entries and the answer for a level below a measured folder.
#
# FOLDER holds the tree (made there when missing, about 3 GB; default in the temporary folder).
# ROUNDS (7) and COLD_ROUNDS (3) say how often; cold rounds need the right to drop the caches.
set -euo pipefail

program=$1
corpus=${2:-${TMPDIR:-/tmp}/pellak-bench-corpus}
rounds=${ROUNDS:-7}
cold_rounds=${COLD_ROUNDS:-3}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if [[ ! -d $corpus ]]; then
  printf 'making %s\n' "$corpus"
  "$(dirname "$0")/make_corpus.py" "$corpus"
fi
home=$corpus/home

run_ours() { HOME=$work "$program" map --json "$home"; }
run_ncdu() { ncdu -0 -o /dev/null "$home"; }
run_gdu()  { gdu --non-interactive --no-progress "$home"; }

# --- The same answer: du counts the blocks of folders and links too -----------------------------
same_bytes() {
  local du own ours
  du=$(du -sl --block-size=1 "$home" | cut -f1)
  own=$(find "$home" \( -type d -o \( -type l -mindepth 2 \) \) -printf '%b\n' 2>/dev/null |
    awk '{ b += $1 } END { print b * 512 }')
  ours=$(run_ours | python3 -c 'import json, sys; print(json.load(sys.stdin)["tot"])')
  printf 'du -sl %d - folders and links %d = %d; ours %d\n' "$du" "$own" "$((du - own))" "$ours"
  [[ $((du - own)) -eq $ours ]] || { echo 'DIFFERENT' >&2; exit 1; }
}

# --- Times --------------------------------------------------------------------------------------
drop_caches() {
  sync
  echo 3 >/proc/sys/vm/drop_caches
}

# time_one NAME: appends the tenths of milliseconds that one run takes.
time_one() {
  local begin=$EPOCHREALTIME end
  "run_$1" >"$work/output" 2>/dev/null
  end=$EPOCHREALTIME
  echo $(((${end/./} - ${begin/./}) / 100)) >>"$work/t.$1"
}

median() { sort -n "$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

compare() {
  local state=$1 count=$2 round name
  local names=(ours)
  for name in ncdu gdu; do
    command -v "$name" >/dev/null && names+=("$name")
  done
  rm -f "$work"/t.*
  if [[ $state == warm ]]; then run_ours >/dev/null; fi
  for ((round = 0; round < count; ++round)); do
    for name in "${names[@]}"; do
      if [[ $state == cold ]]; then drop_caches; fi
      time_one "$name"
    done
  done
  printf 'map of a home, %s:' "$state"
  for name in "${names[@]}"; do
    awk -v n="$name" -v t="$(median "$work/t.$name")" -v o="$(median "$work/t.ours")" \
      'BEGIN { printf "  %s %.1f ms (%.2fx)", n, t / 10, t / o }'
  done
  printf '\n'
}

same_bytes
printf 'medians; in brackets: times as long as ours\n'
compare warm "$rounds"
if [[ -w /proc/sys/vm/drop_caches ]]; then compare cold "$cold_rounds"; fi
HOME=$work python3 "$(dirname "$0")/map_answers.py" "$program" "$corpus"
