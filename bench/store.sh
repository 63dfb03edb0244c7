#!/usr/bin/env bash
# Saving and restoring a shelf of 500 items (absolute times; no reference tool does this), and a
# restore of 20,000 records whose originals moved, so that every bookmark must be searched: the
# main thread's longest stretch of work while they are looked into (target: at most 16 ms), the
# longest gap between its 1 ms ticks on the wall clock (which other threads and programs
# competing for this machine's cores stretch), the one read of the records at start (off the main
# thread: until the records are on the shelf), the main thread's longest stretch from the start
# until then, and how long the background takes to look into all of them.
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
# Two tables' rows, each piped into a subshell: one header for both.
[ -n "$bench_header_printed" ] || { bench_header; export bench_header_printed=1; }
sandbox=$(mktemp -d /tmp/mosswick-bench-XXXXXX)
trap 'rm -rf "$sandbox"' EXIT
export XDG_DATA_HOME="$sandbox/data" XDG_CONFIG_HOME="$sandbox/config" QT_QPA_PLATFORM=offscreen
"$build/bench/store_bench" --benchmark_format=csv 2>/dev/null | awk -F, '/^"BM_/ { gsub(/"/, "", $1); print $1, $3 }' |
while read -r name ms; do
  seconds=$(echo "$ms / 1000" | bc -l)
  case $name in
    BM_Save500Items) row "save 500 items (encode + atomic write)" "$seconds" "-" "-" "absolute" ;;
    BM_Restore500Items) row "restore 500 items (read, decode, check files)" "$seconds" "-" "-" "absolute" ;;
  esac
done
"$build/bench/store_bench" --stalls 2>/dev/null |
while read -r name seconds; do
  case $name in
    moved20000_all_shown_restore) row "20,000 moved: read the records (once, at start)" "$seconds" "-" "-" "absolute (in the background)" ;;
    moved20000_all_shown_start_longest_stall) row "20,000 moved: start to restored, longest stretch" "$seconds" "-" "-" "<= 0.016 s (wall clock, busy 2 cores)" ;;
    moved20000_all_shown_start_longest_work) row "20,000 moved: start to restored, longest work" "$seconds" "-" "-" "<= 0.016 s" ;;
    moved20000_all_shown_longest_work) row "20,000 moved: longest main-thread work" "$seconds" "-" "-" "<= 0.016 s" ;;
    moved20000_all_shown_longest_stall) row "20,000 moved: longest gap between 1 ms ticks" "$seconds" "-" "-" "<= 0.016 s (wall clock, busy 2 cores)" ;;
    moved20000_all_shown_all_looked_into) row "20,000 moved: all looked into (background)" "$seconds" "-" "-" "absolute" ;;
    moved20000_default_limit_longest_work) row "20,000 moved, 100 shown: longest main work" "$seconds" "-" "-" "<= 0.016 s" ;;
    moved20000_default_limit_longest_stall) row "20,000 moved, 100 shown: longest tick gap" "$seconds" "-" "-" "<= 0.016 s (wall clock, busy 2 cores)" ;;
    *_error) echo "store_bench: $name: the findings were not all saved" >&2 ;;
  esac
done
