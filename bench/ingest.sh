#!/usr/bin/env bash
# A drop of 1,000 files: the main thread's time to make the items and put them on the shelf
# (target: at most 30 ms), and its time to take in the finished copies, which are made on other
# threads. Each without and with the shelf's view redrawing; the mean of 5 drops. Taking in the
# copies is also reported as the main thread's longest single stall and its 99th percentile
# (the worst of the 5 drops): a stall is what the user sees (target: 16 ms, one frame), and the
# main thread's own processor time in its longest stretch (the wall clock of a busy machine
# stretches the stalls with other threads' and programs' work). And a
# drop of 100 MB of text: the main thread's longest stretch of work from the drop until the text
# is on disk (target: at most 16 ms), Qt's own reading of the drop from X not included.
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
[ -x "$build/bench/ingest_bench" ] || { echo "ingest_bench not built; skipped" >&2; exit 0; }
sandbox=$(mktemp -d /tmp/mosswick-bench-XXXXXX)
trap 'rm -rf "$sandbox" /tmp/mosswick-ingest-bench' EXIT
export XDG_DATA_HOME="$sandbox/data" XDG_CONFIG_HOME="$sandbox/config" QT_QPA_PLATFORM=offscreen
# name, real time (ms), and the stall counters where the benchmark reports them.
"$build/bench/ingest_bench" --benchmark_format=csv 2>/dev/null | awk -F, '
  /^name,/ { for (i = 1; i <= NF; i++) { gsub(/"/, "", $i); column[$i] = i }; next }
  /^"BM_/ { gsub(/"/, "", $1)
            longest = ("longest_ms" in column) ? $column["longest_ms"] : ""
            p99 = ("p99_ms" in column) ? $column["p99_ms"] : ""
            work = ("longest_work_ms" in column) ? $column["longest_work_ms"] : ""
            print $1, $3, (longest == "" ? "-" : longest), (p99 == "" ? "-" : p99), (work == "" ? "-" : work) }' |
while read -r name ms longest p99 work; do
  seconds=$(echo "$ms / 1000" | bc -l)
  case $name in
    BM_Drop1000Files/0/*) row "drop 1,000 files: main thread" "$seconds" "-" "-" "<= 0.030 s" ;;
    BM_Drop1000Files/1/*) row "drop 1,000 files: main thread, shelf shown" "$seconds" "-" "-" "<= 0.030 s" ;;
    BM_TakeIn1000Copies/0/*) row "take in their 1,000 copies: main thread" "$seconds" "-" "-" "absolute" ;;
    BM_TakeIn1000Copies/1/*) row "take in their 1,000 copies: main thread, shown" "$seconds" "-" "-" "absolute" ;;
    BM_Drop100MBText*) row "drop 100 MB of text: longest main-thread work" "$(echo "$longest / 1000" | bc -l)" "-" "-" "<= 0.016 s (Qt's X read not counted)" ;;
  esac
  case $name in
    BM_TakeIn1000Copies/0/*) label="take in 1,000 copies" ;;
    BM_TakeIn1000Copies/1/*) label="take in 1,000 copies, shown" ;;
    *) continue ;;
  esac
  if [ "$longest" != "-" ]; then
    row "$label: longest stall" "$(echo "$longest / 1000" | bc -l)" "-" "-" "<= 0.016 s"
    row "$label: 99th percentile stall" "$(echo "$p99 / 1000" | bc -l)" "-" "-" "<= 0.016 s"
  fi
  if [ "$work" != "-" ]; then
    row "$label: longest stall's own work" "$(echo "$work / 1000" | bc -l)" "-" "-" "<= 0.016 s (main thread's CPU)"
  fi
done
