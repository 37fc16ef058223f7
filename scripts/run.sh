#!/usr/bin/env bash
# Installs what is missing, builds the program and starts it.
#
#   scripts/run.sh                  the window where there can be one, otherwise a scan of the home
#   scripts/run.sh ARGUMENT...      the program with these arguments, e.g. scripts/run.sh show
set -euo pipefail
start=$PWD
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_packages run

# The tests stay as an existing build folder has them; a new one does without their libraries.
configure=(cmake --preset release)
[[ -f build/release/CMakeCache.txt ]] || configure+=(-DPELLAK_TESTS=OFF)
quietly configure "${configure[@]}"
say "compilo (building)…"
quietly build cmake --build --preset release --target pellak-cleaner -- --quiet

program=$PELLAK_ROOT/build/release/pellak-cleaner
# In a bundle the file itself: started through the link beside it, the system takes the program for
# one without a bundle.
bundled="$PELLAK_ROOT/build/release/Pellak Cleaner.app/Contents/MacOS/Pellak Cleaner"
[[ ! -x $bundled ]] || program=$bundled
cd "$start"
if (($# > 0)); then
  exec "$program" "$@"
fi

# The program itself knows whether it can open a window here; status 1 says that it can't.
status=0
"$program" || status=$?
if ((status != 1)); then
  exit "$status"
fi
exec "$program" scan
