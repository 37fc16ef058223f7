#!/usr/bin/env bash
# Installs what is missing, builds and runs every check. Stops at the first stage that fails; the
# test runner's own summary closes the output.
#
#   scripts/test.sh             every stage
#   scripts/test.sh STAGE...    only these, in this order
#
# Stages:
#   format    clang-format over the sources
#   shell     shellcheck over the scripts
#   tidy      clang-tidy over the program's sources
#   asan      the tests under AddressSanitizer and UndefinedBehaviorSanitizer
#   tsan      the tests under ThreadSanitizer
#   fuzz      every fuzz target for a few seconds over its kept corpus
#   debug     the tests in a debug build (only when named)
#   release   the tests in the build people run, and the measuring programs built
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

all_stages=(format shell tidy asan tsan fuzz release)

usage() { sed -n '2,/^set /{s/^# \{0,1\}//;/^set /d;p;}' "${BASH_SOURCE[0]}"; }

sources() {
  find . \( -path ./build -o -path './.?*' -o -name node_modules \) -prune -o -type f \
    \( -name '*.h' -o -name '*.h.in' -o -name '*.cpp' -o -name '*.mm' \) -print
}

stage_format() {
  sources | xargs clang-format --dry-run -Werror
}

stage_shell() {
  if ! command -v shellcheck >/dev/null 2>&1; then
    say "shell: shellcheck is not installed, skipped"
    return
  fi
  shellcheck -x .ci/run scripts/*.sh bench/*.sh
}

stage_tidy() {
  local log
  log=$(log_of tidy)
  quietly tidy-configure cmake --preset tidy
  quietly tidy-generate cmake --build --preset tidy --target pellak_generated
  if ! run-clang-tidy -p build/tidy -quiet -j "$(jobs_here)" "^$PELLAK_ROOT/PellakCleaner/" \
    >"$log" 2>&1 </dev/null; then
    # A header's complaint comes once for each source that includes it.
    grep -E '(error|warning):' "$log" | sort -u >&2
    say "clang-tidy complains; all of it in $log"
    return 1
  fi
}

# tested PRESET [OPTION...]: builds the preset and runs its tests. The last stage shows them all, an
# earlier one only its summary.
tested() {
  local preset=$1
  shift
  quietly "$preset-configure" cmake --preset "$preset" "$@"
  quietly "$preset-build" on_plain_addresses "$preset" cmake --build --preset "$preset" -- --quiet
  local run=(on_plain_addresses "$preset" ctest --preset "$preset" --no-tests=error)
  if [[ $preset == "$last_stage" ]]; then
    "${run[@]}" </dev/null
  else
    quietly "$preset-ctest" "${run[@]}"
    grep 'tests passed' "$(log_of "$preset-ctest")"
  fi
}

stage_asan() { tested asan; }
stage_tsan() { tested tsan; }
stage_fuzz() { tested fuzz; }
stage_debug() { tested debug -DPELLAK_TESTS=ON; }
stage_release() { tested release -DPELLAK_TESTS=ON -DPELLAK_BENCH=ON; }

# on_plain_addresses PRESET COMMAND...: the sanitizers of older compilers can't start where the
# kernel spreads addresses widely, so theirs are not spread where that can be asked for.
on_plain_addresses() {
  local preset=$1 machine
  shift
  machine=$(uname -m)
  case $preset in
    asan | tsan | fuzz)
      if setarch "$machine" -R true 2>/dev/null; then
        set -- setarch "$machine" -R "$@"
      fi
      ;;
  esac
  "$@"
}

jobs_here() { getconf _NPROCESSORS_ONLN; }

stages=("$@")
((${#stages[@]} > 0)) || stages=("${all_stages[@]}")
for stage in "${stages[@]}"; do
  if [[ $stage == -h || $stage == --help ]]; then
    usage
    exit 0
  fi
  if ! declare -F "stage_$stage" >/dev/null; then
    say "unknown stage: $stage (there are: ${all_stages[*]} debug)"
    exit 2
  fi
done
last_stage=${stages[${#stages[@]} - 1]}

install_packages test
for stage in "${stages[@]}"; do
  say "== $stage"
  begun=$SECONDS
  "stage_$stage"
  [[ $stage == "$last_stage" ]] || say "   $((SECONDS - begun)) s"
done
