#!/usr/bin/env bash
# How long the window takes from the start of the process to the page's "ready", and what the
# program costs while nobody touches it, on a hidden screen with a message bus of its own.
#
#   bench/window.sh PROGRAM [RUNS]
set -euo pipefail

program=$(realpath "$1")
runs=${2:-9}
idle_seconds=20

if [[ -z ${PELLAK_BENCH_SCREEN:-} ]]; then
  exec env PELLAK_BENCH_SCREEN=1 xvfb-run -a -s "-screen 0 1280x900x24" \
    dbus-run-session -- "${BASH_SOURCE[0]}" "$program" "$runs" 2>/dev/null
fi

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home NO_AT_BRIDGE=1 LIBGL_ALWAYS_SOFTWARE=1

uptime_ns() { python3 -c 'import time; print(time.monotonic_ns())'; }

for ((i = 0; i < runs; i++)); do
  PELLAK_TIME_START=$(uptime_ns) "$program" | sed -n 's/.* in \([0-9]*\) ms/\1/p'
done | sort -n | awk '{ms[NR] = $1} END {
  printf "start to ready: median %d ms, best %d, worst %d, of %d\n", ms[int((NR + 1) / 2)], ms[1],
    ms[NR], NR}'

processes() {
  local child
  printf '%s\n' "$1"
  for child in $(pgrep -P "$1"); do processes "$child"; done
}
ticks() {
  local process total=0
  for process in $(processes "$1"); do
    total=$((total + $(awk '{print $14 + $15}' "/proc/$process/stat" 2>/dev/null || echo 0)))
  done
  printf '%s' "$total"
}

# idle WORDS SCRIPT: the processor's share over some seconds after a script ran in the page.
idle() {
  local pid before
  PELLAK_JS="$2" "$program" >/dev/null &
  pid=$!
  sleep 7
  before=$(ticks "$pid")
  sleep "$idle_seconds"
  awk -v t=$(($(ticks "$pid") - before)) -v s="$idle_seconds" -v hz="$(getconf CLK_TCK)" \
    -v w="$1" 'BEGIN {printf "idle, %s: %.2f %% of one core\n", w, 100 * t / hz / s}'
  kill "$pid"
  wait "$pid" || true
}
idle "window shown" "return 0"
idle "window hidden" "__pellakVisible(false); return 0"
