#!/usr/bin/env bash
# Mosswick left alone on a desktop: CPU time it uses over 60 idle seconds and its resident memory.
# With no button down it has no timer running, so the CPU time should be close to nothing.
set -euo pipefail
build=${1:-build}
idle_seconds=${MOSSWICK_IDLE_SECONDS:-60}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
. "$here/headless.sh"
[ -x "$build/mosswick" ] || { echo "mosswick not built; idle benchmark skipped" >&2; exit 0; }
command -v Xvfb >/dev/null || { echo "Xvfb missing; idle benchmark skipped" >&2; exit 0; }
headless_start
"$build/mosswick" >/dev/null 2>&1 &
app=$!
headless_pids=("$app" "${headless_pids[@]}")
sleep 3  # start-up done, first save and prune finished

cpu_ticks() { awk '{ print $14 + $15 }' "/proc/$app/stat"; }
# Every thread's sleeps and wakings: finer than CPU ticks of 10 ms, a timer left running shows here.
wakeups() { { cat /proc/"$app"/task/*/status 2>/dev/null || true; } | awk '/^voluntary_ctxt_switches/ { n += $2 } END { print n }'; }
hz=$(getconf CLK_TCK)
before=$(cpu_ticks)
woke_before=$(wakeups)
sleep "$idle_seconds"
after=$(cpu_ticks)
woke_after=$(wakeups)
rss_kib=$(awk '/^VmRSS:/ { print $2 }' "/proc/$app/status")
row "CPU time over ${idle_seconds} idle seconds" "$(echo "($after - $before) / $hz" | bc -l)" "-" "-" "absolute"
printf '%-48s %10d\n' "wakeups over ${idle_seconds} idle seconds" "$((woke_after - woke_before))"
printf '%-48s %10d KiB\n' "idle resident memory" "$rss_kib"
