#!/usr/bin/env bash
# From the moment another program's drag takes the drag selection to the moment the shelf comes on
# screen, on a headless desktop: median and worst of 20 drags (after one not counted) from each of
# three sources: the test peer dragging a file, Thunar dragging a file, Chromium dragging a link.
# Each drag ends over an empty spot, so nothing is dropped and the shelf goes away again.
# Both moments are stamped by one watcher (the test peer's "watch") as it reads them from its own
# connection to the server, so the watcher's delay is in both and drops out of the difference;
# what stays is Mosswick's (seeing the change, asking the source for its types, moving the waiting
# panel on screen) and the window manager's. A source that is not installed is left out.
set -euo pipefail
build=$(cd "${1:-build}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
for program in mosswick mosswick-testpeer; do
  [ -x "$build/$program" ] || { echo "$program not built; drag latency benchmark skipped" >&2; exit 0; }
done
for program in Xvfb openbox xdotool; do
  command -v "$program" >/dev/null || { echo "$program missing; drag latency benchmark skipped" >&2; exit 0; }
done

MOSSWICK_BUILD_DIR="$build" PYTHONPATH="$here/../tools/desktop" python3 - <<'PY' |
import os, shutil, statistics, sys, time
from desktop import Desktop
from desktop.files import make_files
from desktop.watch import ShelfWatch

DRAGS = 20
AWAY = (640, 720)  # the bare root window: no drop target there


def paced(start, points):
    """Press at `start`, then through `points` in paced moves, release: a drag followed by every
    source (Chromium only follows motion events that come apart)."""
    x, y = start
    steps = ["mousemove", x, y, "sleep", 0.3, "mousedown", 1, "sleep", 0.1]
    for px, py in points:
        dx, dy = px - x, py - y
        count = max(1, max(abs(dx), abs(dy)) // 120)
        for i in range(1, count + 1):
            nx, ny = x + dx * i // count, y + dy * i // count
            steps += ["mousemove", nx, ny, "sleep", 0.1]
        x, y = px, py
    return steps + ["sleep", 0.1, "mouseup", 1]


def measure(d, watch, start):
    """Seconds from drag start to shelf on screen for one warm-up and DRAGS counted drags."""
    sx, sy = start
    steps = paced(start, [(sx + 5, sy + 2), (sx + 15, sy + 5), (sx + 40, sy + 20), AWAY])
    times = []
    for n in range(DRAGS + 1):
        since = time.monotonic()
        d.xdotool(*steps)
        shown = watch.wait("map", since)
        [began] = watch.drag_starts(since, shown)
        watch.wait("unmap", since)
        if n:
            times.append(shown - began)
    return times


with Desktop(name="bench-drag-to-shelf") as d:
    watch = ShelfWatch(d)
    app = d.start_mosswick()
    folder = os.path.join(d.temp, "dragged")
    os.makedirs(folder)
    [path] = make_files(folder, [b"dragged.txt"])
    results = {}

    source = d.start_peer("drag", "--file", path, "--stay", "--geometry", "100,100,200,150")
    d.wait_mapped(source)
    results["test peer"] = measure(d, watch, (200, 175))
    source.stop()

    if shutil.which("thunar"):
        from desktop.filemanager import Thunar
        thunar = Thunar(d)
        thunar.open(folder, select="dragged.txt")
        results["Thunar"] = measure(d, watch, thunar.selected_point())
        thunar.stop()
    else:
        print("Thunar missing: left out", file=sys.stderr)

    from desktop.browser import LINK, Browser, chromium_binary
    if chromium_binary():
        browser = Browser(d)
        results["Chromium"] = measure(d, watch, browser.point(LINK))
        browser.close()
    else:
        print("Chromium missing: left out", file=sys.stderr)

    for name, times in results.items():
        print(name.replace(" ", "_"), statistics.median(times), max(times))
PY
while read -r name median worst; do
  name=${name//_/ }
  row "drag start to shelf, $name (median of 20)" "$median" "-" "-" \
      "$([ "$(echo "$median <= 0.010" | bc -l)" = 1 ] && echo "met (<= 0.010s)" || echo "MISSED (<= 0.010s)")"
  row "drag start to shelf, $name (worst of 20)" "$worst" "-" "-" "absolute"
done
