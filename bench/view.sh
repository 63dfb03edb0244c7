#!/usr/bin/env bash
# The shelf window on a headless X desktop: from the request to show until the panel is mapped and
# has painted its first frame, the main-thread time to lay out a shelf of 500 items, a tile menu
# on that shelf from the right click until it has painted, the longest stalls while a shelf of
# 1,000 scrolls, from a press to the picture of a drag of 100 items, and a start-up that restores
# 500 items whose originals moved and lays them out (target: at most 100 ms).
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
. "$here/headless.sh"
[ -x "$build/bench/view_bench" ] || { echo "view_bench not built; skipped" >&2; exit 0; }
command -v Xvfb >/dev/null || { echo "Xvfb missing; view benchmarks skipped" >&2; exit 0; }
headless_start
QT_LOGGING_RULES="*.debug=false" "$build/bench/view_bench" 2>/dev/null |
while read -r name seconds; do
  case $name in
    show_first) row "show: request to first frame (new panel)" "$seconds" "-" "-" "absolute, median of 20" ;;
    show_again) row "show: request to first frame (existing panel)" "$seconds" "-" "-" "absolute, median of 20" ;;
    menu_500) row "tile menu: right click to painted, 500 items" "$seconds" "-" "-" "absolute, median of 20 (<= 0.016)" ;;
    restore_show_500) row "restore 500 items (originals moved) and lay out" "$seconds" "-" "-" "<= 0.100 s, median of 20" ;;
    layout_500) row "lay out a shelf of 500 items (main thread)" "$seconds" "-" "-" "absolute, median of 20" ;;
    scroll_1000_longest) row "scroll a shelf of 1,000: longest stall" "$seconds" "-" "-" "<= 0.016 s" ;;
    scroll_1000_p99) row "scroll a shelf of 1,000: 99th percentile stall" "$seconds" "-" "-" "<= 0.016 s" ;;
    drag_start_100) row "press to drag image, 100 of 1,000 selected" "$seconds" "-" "-" "<= 0.016 s, median of 20" ;;
  esac
done
