#!/usr/bin/env bash
# trash_compare.sh PROGRAM [FOLDER]: times PROGRAM against the system's programs at moving many
# small files to the Trash and back, each round running all of them in turn on homes of their own,
# and checks that all bring back the same.
#
# FOLDER holds the homes (default: a new one in the temporary folder). FILES (10000) says how many
# files each has, ROUNDS (5) how often. No file is deleted before the last round:
# file systems are slow to give out again what was freed a moment before.
set -euo pipefail

program=$(realpath "$1")
homes=$(mktemp -d "${2:-${TMPDIR:-/tmp}}/pellak-trash-XXXXXX")
work=$homes/.work
mkdir "$work"
trap 'rm -rf "$homes"' EXIT
: "${ROUNDS:=5}"
# shellcheck source=bench/timing.sh
source "$(dirname "$0")/timing.sh"
files=${FILES:-10000}

# The next home of a program, one for each of its runs.
next() {
  local count=0
  if [[ -f $work/count.$1 ]]; then read -r count <"$work/count.$1"; fi
  echo $((count + 1)) >"$work/count.$1"
  echo "$homes/${1/back/ours}.$count"
}

within() {
  local home=$1
  shift
  env -u XDG_DATA_HOME HOME="$home" PELLAK_RULES="$home/rules.json" "$@"
}

run_ours() { within "$(next ours)" "$program" api /api/trash '{"id":"x"}'; }
run_gio() { all_with gio gio trash; }
run_trash_put() { all_with trash_put trash-put; }
all_with() {
  local home
  home=$(next "$1")
  shift
  find "$home/files" -type f -print0 | within "$home" xargs -0 "$@"
}

run_back() {
  local home
  home=$(next back)
  within "$home" "$program" api /api/restore "{\"op\":\"$(<"$home/op")\"}"
}

fail() {
  printf 'DIFFERENT: %s\n' "$1" >&2
  exit 1
}

make_home() {
  mkdir -p "$1/files"
  seq "$files" | split -l 1 -a 5 -d - "$1/files/report-"
  printf '{"categories":[{"id":"x","name":"X","section":"sviluppo","mode":"delete",%s}]}' \
    '"children_of":"~/files"' >"$1/rules.json"
  within "$1" "$program" scan sviluppo >/dev/null
}

count() { find "$1" -type f 2>/dev/null | wc -l; }
summary() { (cd "$1" && find . -type f -print0 | sort -z | xargs -0 sha256sum | sha256sum); }

check_trashed() {
  local trash=$1/.local/share/Trash
  [[ $(count "$1/files") -eq 0 ]] || fail "files left in $1"
  [[ $(count "$trash/info") -eq $files ]] || fail "records in $trash"
  [[ $(summary "$trash/files") == "$before" ]] || fail "items in $trash"
}

names=(ours)
if command -v gio >/dev/null; then names+=(gio); fi
if command -v trash-put >/dev/null; then names+=(trash_put); fi
for ((round = 0; round <= rounds; ++round)); do
  for name in "${names[@]}"; do make_home "$homes/$name.$round"; done
done
before=$(summary "$homes/ours.0/files")
sync

compare "$files files to the Trash" warm "${names[@]}"
for home in "$homes"/*.[0-9]*; do
  # The warm-up before the first round is ours alone.
  if [[ $home == *.$rounds && $home != */ours.* ]]; then continue; fi
  check_trashed "$home"
done
printf 'same items in the Trash\n'

for home in "$homes"/ours.*; do
  within "$home" "$program" api /api/log | sed 's/.*"ops":\[{"id":"\([^"]*\)".*/\1/' >"$home/op"
done
sync
compare "$files files back" warm back
for home in "$homes"/ours.*; do
  [[ $(summary "$home/files") == "$before" ]] || fail "files back in $home"
  [[ $(count "$home/.local/share/Trash/info") -eq 0 ]] || fail "records left in $home"
done
printf 'same files back\n'
