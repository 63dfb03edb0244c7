#!/usr/bin/env bash
# The shelf window on a headless X desktop: from the request to show until the panel is mapped and
# has painted its first frame, the main-thread time to lay out a shelf of 500 items, and a start-up
# that restores 500 items whose originals moved and lays them out (target: at most 100 ms).
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
    restore_show_500) row "restore 500 items (originals moved) and lay out" "$seconds" "-" "-" "<= 0.100 s, median of 20" ;;
    layout_500) row "lay out a shelf of 500 items (main thread)" "$seconds" "-" "-" "absolute, median of 20" ;;
  esac
done
