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
#   tidy      every portable source read with clang's own C++ library, as macOS has it; clang-tidy
#             with all its checks over what changed since main, or, where nothing tells what
#             changed, or nothing did, with the quick ones over the program's sources
#   libcxx    only the first half of tidy (only when named)
#   tidy-all  all checks over all the program's sources (only when named)
#   asan      the tests under AddressSanitizer and UndefinedBehaviorSanitizer
#   tsan      the tests under ThreadSanitizer
#   fuzz      every fuzz target for a few seconds over its kept corpus
#   debug     the tests in a debug build (only when named)
#   release   the tests in the build people run, and the measuring programs built
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

#
# With PELLAK_COMPLETE=1 a test that is skipped fails its stage.
all_stages=(format shell tidy asan tsan fuzz release)
# Of the many checks those that find mistakes at little cost; all are in .clang-tidy.
quick_checks='-*,bugprone-use-after-move,bugprone-dangling-handle,bugprone-unused-return-value'
quick_checks+=',modernize-use-override,performance-for-range-copy'
quick_checks+=',performance-unnecessary-value-param,readability-function-size'
# What no machine can be asked for: a processor with SHA instructions, a volume that tells extents.
may_skip='^(Sha256\.TheInstructions|SharedExtents\.AFileOfManyPieces)'

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

# described: makes the list of how each source is compiled, and what the build generates of them.
described() {
  quietly tidy-configure cmake --preset tidy
  quietly tidy-generate cmake --build --preset tidy --target pellak_generated
}

stage_libcxx() {
  described
  quietly libcxx python3 scripts/libcxx.py build/tidy "$@"
}

# base_of_changes: the commit of main that this one grew from; nothing where it is one of main's own
# or main is not known.
base_of_changes() {
  local main base
  for main in origin/main main; do
    if base=$(git merge-base HEAD "$main" 2>/dev/null); then
      [[ $base == "$(git rev-parse HEAD)" ]] || printf '%s' "$base"
      return
    fi
  done
}

# changed_sources BASE: the program's sources that changed since then or include by name a header
# that did; one a line.
changed_sources() {
  local changed headers
  changed=$(git diff --name-only --diff-filter=d "$1" -- PellakCleaner)
  printf '%s\n' "$changed" | grep '\.cpp$' || true
  headers=$(printf '%s\n' "$changed" | sed -n 's|^PellakCleaner/\(.*\.h\)$|#include "\1"|p')
  [[ -z $headers ]] || git grep -lF -e "$headers" -- 'PellakCleaner/*.cpp' || true
}

stage_tidy() {
  local base only
  base=$(base_of_changes)
  if [[ -z $base ]]; then
    stage_libcxx "$quick_checks"
    return
  fi
  stage_libcxx
  only=$(changed_sources "$base" | sort -u | sed 's/[.+]/\\&/g' | paste -sd'|')
  [[ -z $only ]] || tidied "^$PELLAK_ROOT/($only)\$"
}

stage_tidy-all() { tidied "^$PELLAK_ROOT/PellakCleaner/"; }

# tidied SOURCES [OPTION...]: clang-tidy over those whose path matches.
tidied() {
  local log sources=$1
  shift
  log=$(log_of tidy)
  described
  if ! run-clang-tidy -p build/tidy -quiet -j "$(jobs_here)" "$@" "$sources" \
    >"$log" 2>&1 </dev/null; then
    # A header's complaint comes once for each source that includes it.
    grep -E '(error|warning):' "$log" | sort -u >&2
    say "clang-tidy complains; all of it in $log"
    return 1
  fi
}

# tested PRESET TARGET [OPTION...]: builds the preset's target and runs its tests. The last stage shows them all, an
# earlier one only its summary.
tested() {
  local preset=$1 target=$2
  shift 2
  quietly "$preset-configure" cmake --preset "$preset" "$@"
  quietly "$preset-build" on_plain_addresses "$preset" cmake --build --preset "$preset" \
    --target "$target" -- --quiet
  local log run=(on_plain_addresses "$preset" ctest --preset "$preset" --no-tests=error)
  log=$(log_of "$preset-ctest")
  if [[ $preset == "$last_stage" ]]; then
    "${run[@]}" </dev/null | tee "$log"
  else
    quietly "$preset-ctest" "${run[@]}"
    grep 'tests passed' "$log"
  fi
  skipped_in "$log"
}

# skipped_in LOG: names the tests that a run skipped; a failure where the run has to be complete.
skipped_in() {
  local skipped
  skipped=$(sed -n 's/^[[:space:]]*[0-9]* - \(.*\) (Skipped)$/\1/p' "$1" | grep -Ev "$may_skip" || true)
  [[ -n $skipped ]] || return 0
  say "skipped: ${skipped//$'\n'/, }"
  [[ ${PELLAK_COMPLETE:-} != 1 ]] || { say "not complete: see $1"; return 1; }
}

# A fresh machine has no compiler's cache to lose.
ready=()
[[ ${PELLAK_COMPLETE:-} != 1 ]] || ready=(-DPELLAK_READY_HEADERS=ON)
stage_asan() { tested asan all ${ready[@]+"${ready[@]}"}; }
stage_tsan() { tested tsan all ${ready[@]+"${ready[@]}"}; }
stage_fuzz() { tested fuzz pellak_fuzzers; }
stage_debug() { tested debug all -DPELLAK_TESTS=ON; }
stage_release() { tested release all -DPELLAK_TESTS=ON -DPELLAK_BENCH=ON; }

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
    say "unknown stage: $stage (there are: ${all_stages[*]} libcxx tidy-all debug)"
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
