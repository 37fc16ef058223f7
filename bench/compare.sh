#!/usr/bin/env bash
# compare.sh WALK_TOOL [FOLDER]: times pellak-walk-bench against the system's programs on a tree
# like a real home, each round running all of them in turn, and checks that all find the same.
#
# FOLDER holds the tree (made there when missing, about 3 GB; default in the temporary folder). See
# timing.sh for ROUNDS and COLD_ROUNDS.
set -euo pipefail

tool=$1
corpus=${2:-${TMPDIR:-/tmp}/pellak-bench-corpus}
threshold=5242881
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=bench/timing.sh
source "$(dirname "${BASH_SOURCE[0]}")/timing.sh"

if [[ ! -d $corpus ]]; then
  printf 'making %s\n' "$corpus"
  "$(dirname "$0")/make_corpus.py" "$corpus"
fi
home=$corpus/home
huge=$corpus/huge
deep=$corpus/deep
folder=$home  # what is measured now

# The programs, by name; each prints what it found. Sizes above a limit are at least limit + 1.
run_find_list()  { find "${1:-$folder}" -type f -size "+$((threshold - 1))c" -print0; }
run_fd_list()    { fdfind -0 -HI -t f -S "+${threshold}b" . "${1:-$folder}"; }
run_ours_list()  { "$tool" list "$threshold" "${1:-$folder}"; }
run_du_home()    { du -sl --block-size=1 "${1:-$folder}"; }
run_gdu_home()   { gdu --non-interactive --no-progress --summarize "${1:-$folder}"; }
run_ours_home()  { "$tool" home "${1:-$folder}"; }
run_ours_size()  { "$tool" size "${1:-$folder}"; }

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
# measure TITLE FOLDER OURS PEER...: what is not installed is left out.
measure() {
  local title=$1 name names=()
  folder=$2
  shift 2
  for name; do available "$name" && names+=("$name"); done
  compare_all "$title" "${names[@]}"
}

same_files "$home"
same_as_fd "$home"
same_files "$huge"
same_as_fd "$huge"
same_files "$deep" 2
same_bytes "$home"
same_bytes "$huge"
same_bytes "$deep"

printf 'others: processor time of everything else\n'
measure 'large files in a home' "$home" ours_list find_list fd_list
measure 'large files in one folder' "$huge" ours_list find_list fd_list
measure 'bytes of a home' "$home" ours_home du_home gdu_home
measure 'bytes of a home, one thread' "$home" ours_size du_home
measure 'bytes of 2,000 levels' "$deep" ours_size du_home
