#!/usr/bin/env bash
# GNOME on Wayland: from a Wayland-native GTK program's drag-begin (and from XWayland's drag
# selection changing hands, as an X watcher sees it) to the shelf's window mapping, under a
# headless mutter: median and worst of 10 drags, each dropped on the shelf, which is then cleared
# and put away. Runs the measuring case of tests/desktop/gnome_wayland.py; skipped where mutter
# cannot start.
set -euo pipefail
build=$(cd "${1:-build}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
peer=$(find "$build" -name mosswick-testpeer -type f | head -1)
[ -x "$build/mosswick" ] && [ -n "$peer" ] || { echo "mosswick or its test peer not built; GNOME drag benchmark skipped" >&2; exit 0; }
drags=10
output=$(MOSSWICK_BUILD_DIR="$build" MOSSWICK_BINARY="$build/mosswick" MOSSWICK_TESTPEER="$peer" \
         MOSSWICK_TEST_NAME=bench-gnome-drag-to-shelf MOSSWICK_TEST_TIMEOUT=240 MOSSWICK_MEASURE_DRAGS=$drags \
         PYTHONPATH="$here/../tools/desktop" python3 "$here/../tests/desktop/gnome_wayland.py" measure_drag_to_shelf) \
  || { status=$?; [ $status = 77 ] && { echo "$output" | grep SKIP >&2; exit 0; }; echo "$output" >&2; exit $status; }
echo "$output" | grep '^MEASURED' | while read -r _ from median worst; do
  row "GNOME Wayland: $from to shelf (median of $drags)" "$median" "-" "-" "absolute"
  row "GNOME Wayland: $from to shelf (worst of $drags)" "$worst" "-" "-" "absolute"
done
