# shellcheck shell=bash
# Times programs side by side, each round running all of them in turn. Sourced.
#
# The caller sets `work`, a folder for what is noted, and defines run_NAME for every program.
# ROUNDS (7) and COLD_ROUNDS (3) say how often, 0 is never; cold rounds need the right to drop the
# caches. Each run waits up to 20 seconds for a quiet machine.
export LC_ALL=C
work=${work:?}
rounds=${ROUNDS:-7}
cold_rounds=${COLD_ROUNDS:-3}

drop_caches() {
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

# time_one NAME: appends the tenths of milliseconds that one run takes; to another file the percent
# of one processor that everything else had meanwhile.
time_one() {
  local before begin end cpu TIMEFORMAT='%U %S'
  before=$(busy)
  begin=$EPOCHREALTIME
  if ! cpu=$({ time "run_$1" >"$work/output" 2>"$work/errors"; } 2>&1); then
    printf 'run_%s failed: %s\n' "$1" "$(head -n 1 "$work/errors")" >&2
    return 1
  fi
  end=$EPOCHREALTIME
  echo $(((${end/./} - ${begin/./}) / 100)) >>"$work/t.$1"
  awk -v all="$(($(busy) - before))" -v own="$cpu" -v us="$((${end/./} - ${begin/./}))" \
    'BEGIN { split(own, c); o = all / 100 - c[1] - c[2]; printf "%d\n", (o > 0 ? o : 0) * 1e8 / us }' \
    >>"$work/others.$1"
}

median() { sort -n "$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

# compare TITLE warm|cold OURS PEER...
compare() {
  local title=$1 state=$2 count=$rounds name round
  shift 2
  if [[ $state == cold ]]; then count=$cold_rounds; fi
  rm -f "$work"/t.* "$work"/others.*
  if [[ $state == warm ]]; then "run_$1" >/dev/null; fi
  for ((round = 0; round < count; ++round)); do
    for name; do
      # What the one before left to be written is not this one's to wait for.
      sync
      if [[ $state == cold ]]; then drop_caches; fi
      wait_for_quiet
      time_one "$name"
    done
  done
  printf '%s, %s (in brackets: times as long as the first)\n' "$title" "$state"
  for name; do
    awk -v n="$name" -v t="$(median "$work/t.$name")" -v o="$(median "$work/t.$1")" \
      -v m="$(sort -n "$work/t.$name" | head -1)" -v f="$(sort -n "$work/t.$1" | head -1)" \
      -v b="$(median "$work/others.$name")" \
      'BEGIN { printf "  %-10s median %8.1f ms (%5.2fx)   fastest %8.1f ms (%5.2fx)   others %d %%\n",
                      n, t / 10, t / o, m / 10, m / f, b }'
  done
}

# compare_all TITLE OURS PEER...: warm, and cold where the caches can be dropped.
compare_all() {
  local title=$1
  shift
  if ((rounds > 0)); then compare "$title" warm "$@"; fi
  if ((cold_rounds > 0)) && [[ -w /proc/sys/vm/drop_caches ]]; then
    compare "$title" cold "$@"
  fi
}
