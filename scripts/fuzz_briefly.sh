#!/usr/bin/env bash
# fuzz_briefly.sh PROGRAM CORPUS: every kept input once, then new ones for a few seconds
# (PELLAK_FUZZ_SECONDS, 10 when not set). New inputs are not kept; an input that fails is, under
# the working folder's fuzz-failures.
set -euo pipefail

program=$1
corpus=$2
seconds=${PELLAK_FUZZ_SECONDS:-10}

if [[ -z $(find "$corpus" -type f -print -quit) ]]; then
  printf 'no kept input in %s\n' "$corpus" >&2
  exit 1
fi
found=$(mktemp -d)
trap 'rm -rf "$found"' EXIT
mkdir -p fuzz-failures
limits=(-timeout=20 -rss_limit_mb=2048 "-artifact_prefix=fuzz-failures/$(basename "$program")-")

find "$corpus" -type f -print0 | xargs -0 "$program" "${limits[@]}" -runs=1
"$program" "${limits[@]}" "-max_total_time=$seconds" "$found" "$corpus"
