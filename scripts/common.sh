# shellcheck shell=bash
# What the commands of this folder share. Sourced after `set -euo pipefail`.

PELLAK_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$PELLAK_ROOT" || exit

# shellcheck source=scripts/packages.sh
source "$PELLAK_ROOT/scripts/packages.sh"

say() { printf '%s\n' "$*" >&2; }

# log_of NAME: the file that keeps the output of the step NAME.
log_of() {
  mkdir -p build/logs
  printf 'build/logs/%s.log' "$1"
}

# quietly NAME COMMAND...: runs a command with its output in the log of NAME; only a failure shows
# the end of it. The status is the command's.
quietly() {
  local log status=0
  log=$(log_of "$1")
  shift
  "$@" >"$log" 2>&1 </dev/null || status=$?
  if ((status != 0)); then
    tail -n 200 "$log" >&2
    say "non riuscito (failed, status $status): $* — tutto in (all of it in) $log"
  fi
  return "$status"
}
