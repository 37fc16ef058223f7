#!/usr/bin/env bash
# background.sh DUP_TOOL CORPUS TREE: how much a `du` of TREE and a build-like load lose beside the
# periodic check's scan of CORPUS, and beside the same scan at ordinary priority for comparison.
#
# CORPUS is one of duplicates_corpus.py. ROUNDS (5) each; needs the right to drop the caches.
set -euo pipefail

tool=$(realpath "$1") corpus=$(realpath "$2") tree=$(realpath "$3")
rounds=${ROUNDS:-5}
scans=()

load_du() { du -s "$tree" >/dev/null; }
# As many jobs as processors, as a build has, each busy with the processor and a little with the disk.
load_build() {
  local i
  for ((i = 0; i < $(nproc); ++i)); do
    xargs -0 cat <"$work/sources" | gzip -6 >/dev/null &
    jobs_of_load+=($!)
  done
  wait "${jobs_of_load[@]}"
}

# One scan after the other until the load is over.
scan_again_and_again() {
  while :; do "$tool" "$@" 1 "$corpus" >/dev/null; done
}

stop_scans() {
  local pid
  for pid in ${scans[@]+"${scans[@]}"}; do
    kill -- "-$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  scans=()
}
trap stop_scans EXIT

# time_one LOAD BESIDE: milliseconds; BESIDE is nothing, low or plain.
time_one() {
  local begin end jobs_of_load=()
  sync
  echo 3 >/proc/sys/vm/drop_caches
  case $2 in
    low) set -m; scan_again_and_again -l & scans=($!); set +m ;;
    plain) set -m; scan_again_and_again & scans=($!); set +m ;;
  esac
  begin=$EPOCHREALTIME
  "load_$1"
  end=$EPOCHREALTIME
  stop_scans
  echo $(((${end/./} - ${begin/./}) / 1000))
}

median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

work=$(mktemp -d)
trap 'stop_scans; rm -rf "$work"' EXIT
find "$tree" -type f -size -64k -print0 | sort -z | sed -nz '1,8000p' >"$work/sources"
for load in du build; do
  for ((round = 0; round < rounds; ++round)); do
    for beside in nothing low plain; do
      time_one "$load" "$beside" >>"$work/$load.$beside"
    done
  done
  alone=$(median <"$work/$load.nothing")
  for beside in low plain; do
    with=$(median <"$work/$load.$beside")
    printf '%s: %d ms alone, %d ms beside the scan (%s): %+d %%\n' "$load" "$alone" "$with" \
      "$beside" $(((with - alone) * 100 / alone))
  done
done
