#!/usr/bin/env bash
# A drop of 1,000 files: the main thread's time to make the items and put them on the shelf
# (target: at most 30 ms), and its time to take in the finished copies, which are made on other
# threads. Each without and with the shelf's view redrawing; the mean of 5 drops. And a drop of
# 100 MB of text: the main thread's longest stretch of work from the drop until the text is on
# disk (target: at most 16 ms), Qt's own reading of the drop from X not included.
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
[ -x "$build/bench/ingest_bench" ] || { echo "ingest_bench not built; skipped" >&2; exit 0; }
sandbox=$(mktemp -d /tmp/mosswick-bench-XXXXXX)
trap 'rm -rf "$sandbox" /tmp/mosswick-ingest-bench' EXIT
export XDG_DATA_HOME="$sandbox/data" XDG_CONFIG_HOME="$sandbox/config" QT_QPA_PLATFORM=offscreen
"$build/bench/ingest_bench" --benchmark_format=csv 2>/dev/null | awk -F, '
  NR == 1 { for (i = 1; i <= NF; i++) if ($i == "longest_ms") longest = i }
  /^"BM_/ { gsub(/"/, "", $1); print $1, (longest && $longest != "" ? $longest : $3) }' |
while read -r name ms; do
  seconds=$(echo "$ms / 1000" | bc -l)
  case $name in
    BM_Drop1000Files/0/*) row "drop 1,000 files: main thread" "$seconds" "-" "-" "<= 0.030 s" ;;
    BM_Drop1000Files/1/*) row "drop 1,000 files: main thread, shelf shown" "$seconds" "-" "-" "<= 0.030 s" ;;
    BM_TakeIn1000Copies/0/*) row "take in their 1,000 copies: main thread" "$seconds" "-" "-" "absolute" ;;
    BM_TakeIn1000Copies/1/*) row "take in their 1,000 copies: main thread, shown" "$seconds" "-" "-" "absolute" ;;
    BM_Drop100MBText*) row "drop 100 MB of text: longest main-thread work" "$seconds" "-" "-" "<= 0.016 s (Qt's X read not counted)" ;;
  esac
done
