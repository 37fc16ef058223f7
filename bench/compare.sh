#!/usr/bin/env bash
# compare.sh WALK_TOOL [FOLDER]: times pellak-walk-bench against the system's programs on a tree
# like a real home, each round running all of them in turn, and checks that all find the same.
#
# FOLDER holds the tree (made there when missing, about 3 GB; default in the temporary folder).
# ROUNDS (7) and COLD_ROUNDS (5) say how often, 0 is never; cold rounds need the right to drop the
# caches. Each run waits up to 20 seconds for a quiet machine.
set -euo pipefail
export LC_ALL=C

tool=$1
corpus=${2:-${TMPDIR:-/tmp}/pellak-bench-corpus}
rounds=${ROUNDS:-7}
cold_rounds=${COLD_ROUNDS:-5}
threshold=5242881
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if [[ ! -d $corpus ]]; then
  printf 'making %s\n' "$corpus"
  "$(dirname "$0")/make_corpus.py" "$corpus"
fi
home=$corpus/home
huge=$corpus/huge
deep=$corpus/deep

# The programs, by name; each prints what it found. Sizes above a limit are at least limit + 1.
run_find_list()  { find "$1" -type f -size "+$((threshold - 1))c" -print0; }
run_fd_list()    { fdfind -0 -HI -t f -S "+${threshold}b" . "$1"; }
run_ours_list()  { "$tool" list "$threshold" "$1"; }
run_du_home()    { du -sl --block-size=1 "$1"; }
run_gdu_home()   { gdu --non-interactive --no-progress --summarize "$1"; }
run_ours_home()  { "$tool" home "$1"; }
run_ours_size()  { "$tool" size "$1"; }

available() {
  case $1 in
    fd_*) command -v fdfind >/dev/null ;;
    gdu_*) command -v gdu >/dev/null ;;
  esac
}

fail() {
  printf 'DIFFERENT: %s\n' "$1" >&2
  exit 1
}

# --- The same answers ---------------------------------------------------------------------------
# same_files FOLDER [BYTES]
same_files() {
  local threshold=${2:-$threshold}
  run_find_list "$1" | sort -z >"$work/find"
  run_ours_list "$1" | sort -z >"$work/ours"
  cmp -s "$work/find" "$work/ours" || fail "files listed by find and by us in $1"
  printf 'same %d files as find: %s\n' "$(tr -cd '\0' <"$work/ours" | wc -c)" "$1"
}

same_as_fd() {
  available fd_list || return 0
  run_fd_list "$1" | sort -z >"$work/fd"
  cmp -s "$work/fd" "$work/ours" || fail "files listed by fd and by us in $1"
  printf 'same files as fd: %s\n' "$1"
}

# du also counts the blocks of folders and of symbolic links.
same_bytes() {
  local du own ours alone
  du=$(run_du_home "$1" | cut -f1)
  own=$(find "$1" \( -type d -o -type l \) -printf '%b\n' | awk '{ b += $1 } END { print b * 512 }')
  ours=$(run_ours_home "$1")
  alone=$(run_ours_size "$1")
  printf 'du -sl %d - folders and links %d = %d; together %d, alone %d: %s\n' \
    "$du" "$own" "$((du - own))" "$ours" "$alone" "$1"
  [[ $((du - own)) -eq $ours && $ours -eq $alone ]] || fail "bytes in $1"
}

# --- Times --------------------------------------------------------------------------------------
drop_caches() {
  sync
  echo 3 >/proc/sys/vm/drop_caches
}

# Hundredths of a second that all processors have been busy, and taken away by the host.
busy() { awk '/^cpu / { print $2 + $3 + $4 + $7 + $8 + $9; exit }' /proc/stat; }

# Waits, but not for ever, until hardly anything else runs.
wait_for_quiet() {
  local before i
  for ((i = 0; i < 100; ++i)); do
    before=$(busy)
    sleep 0.2
    if (($(busy) - before <= 4)); then return; fi
  done
}

# time_one NAME FOLDER FILE: appends the tenths of milliseconds that one run takes; to FILE.others
# the percent of one processor that everything else had meanwhile.
time_one() {
  local before begin end cpu TIMEFORMAT='%U %S'
  wait_for_quiet
  before=$(busy)
  begin=$EPOCHREALTIME
  cpu=$({ time "run_$1" "$2" >"$work/output" 2>/dev/null; } 2>&1)
  end=$EPOCHREALTIME
  echo $(((${end/./} - ${begin/./}) / 100)) >>"$3"
  awk -v all="$(($(busy) - before))" -v own="$cpu" -v us="$((${end/./} - ${begin/./}))" \
    'BEGIN { split(own, c); o = all / 100 - c[1] - c[2]; printf "%d\n", (o > 0 ? o : 0) * 1e8 / us }' \
    >>"$3.others"
}

median() { sort -n "$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

# compare TITLE warm|cold FOLDER OURS PEER...
compare() {
  local title=$1 state=$2 folder=$3 count=$rounds name round
  shift 3
  local names=()
  for name; do available "$name" && names+=("$name"); done
  [[ $state == cold ]] && count=$cold_rounds
  rm -f "$work"/t.*
  if [[ $state == warm ]]; then "run_$1" "$folder" >/dev/null; fi
  for ((round = 0; round < count; ++round)); do
    for name in "${names[@]}"; do
      if [[ $state == cold ]]; then drop_caches; fi
      time_one "$name" "$folder" "$work/t.$name"
    done
  done
  local ours fastest
  ours=$(median "$work/t.$1")
  fastest=$(sort -n "$work/t.$1" | head -1)
  printf '%s, %s\n' "$title" "$state"
  for name in "${names[@]}"; do
    awk -v n="$name" -v t="$(median "$work/t.$name")" -v o="$ours" -v f="$fastest" \
      -v m="$(sort -n "$work/t.$name" | head -1)" -v b="$(median "$work/t.$name.others")" \
      'BEGIN { printf "  %-10s median %7.1f ms (%.2fx)   fastest %7.1f ms (%.2fx)   others %d %%\n",
                      n, t / 10, t / o, m / 10, m / f, b }'
  done
}

same_files "$home"
same_as_fd "$home"
same_files "$huge"
same_as_fd "$huge"
same_files "$deep" 2
same_bytes "$home"
same_bytes "$huge"
same_bytes "$deep"

states=()
if ((rounds > 0)); then states+=(warm); fi
if ((cold_rounds > 0)) && [[ -w /proc/sys/vm/drop_caches ]]; then states+=(cold); fi
printf 'in brackets: times as long as the first; others: processor time of everything else\n'
for state in "${states[@]}"; do
  compare 'large files in a home' "$state" "$home" ours_list find_list fd_list
  compare 'large files in one folder' "$state" "$huge" ours_list find_list fd_list
  compare 'bytes of a home' "$state" "$home" ours_home du_home gdu_home
  compare 'bytes of a home, one thread' "$state" "$home" ours_size du_home
  compare 'bytes of 2,000 levels' "$state" "$deep" ours_size du_home
done
