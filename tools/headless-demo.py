"""Mosswick on a machine with no display: a private Xvfb desktop, Mosswick, and the test peer
dragging a file onto the shelf, with a screenshot of each step. Ends by itself.

    python3 tools/headless-demo.py BUILD_DIR
"""

import os
import shutil
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
build = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "..", "build"))
output = os.path.join(build, "demo")
shutil.rmtree(output, ignore_errors=True)
os.makedirs(output)
os.environ.update(MOSSWICK_BUILD_DIR=build, MOSSWICK_TEST_OUTPUT=output)
sys.path.insert(0, os.path.join(HERE, "desktop"))

from desktop import REQUIRED_PROGRAMS, Desktop, DesktopError, mosswick_binary, peer_binary  # noqa: E402
from desktop import Drag  # noqa: E402
from desktop.files import make_png  # noqa: E402
from desktop.mosswick import saved_items  # noqa: E402
from desktop.watch import ShelfWatch  # noqa: E402

missing = [p for p in REQUIRED_PROGRAMS if not shutil.which(p)]
missing += [p for p in (mosswick_binary(), peer_binary()) if not os.access(p, os.X_OK)]
if missing:
    sys.exit("The headless demo needs " + ", ".join(missing) + " (make deps; make build).")

SOURCE = (140, 300, 240, 160)
steps = []


def step(d, name, what):
    steps.append((d.screenshot(f"{len(steps) + 1}-{name}"), what))
    print(f"  {len(steps)}. {what}", flush=True)


print("Mosswick headless demo: no display here, so a private one under Xvfb.", flush=True)
try:
    with Desktop(name="headless-demo", timeout=60) as d:
        watch = ShelfWatch(d)
        app = d.start_mosswick()
        step(d, "started", "Mosswick is running; the shelf waits out of sight")

        picture = os.path.join(d.temp, "Holiday photo.png")
        make_png(picture, 320, 200)
        x, y, w, h = SOURCE
        source = d.start_peer("drag", "--file", picture, "--stay", "--label", "Another program: drag me",
                              "--geometry", f"{x},{y},{w},{h}")
        d.wait_mapped(source)
        step(d, "another-program", "another program shows a file to drag")

        # Held still for a moment over the shelf before letting go, for the picture.
        drag = Drag(d, (x + w // 2, y + h // 2), (1176, 722))
        watch.wait("map", drag.started)
        time.sleep(0.4)  # the slide in
        step(d, "shelf-comes", "the drag has begun: the shelf slides in at the screen's edge")
        drag.finish()
        try:
            d.wait_for(lambda: saved_items(d), 10, "the shelf to hold the dropped file")
            time.sleep(0.5)  # its picture drawn
            step(d, "dropped", "dropped on the shelf: it holds the file and stays")
        except DesktopError:
            step(d, "not-dropped", "the drop did not reach the shelf (see mosswick-1.log)")
            raise

        d.move(640, 400)  # a pointer resting on the shelf keeps it up
        since = time.monotonic()
        d.key("F5")
        watch.wait("unmap", since)
        step(d, "put-away", "F5 puts the shelf away until the next drag")
        app.stop()
except Exception as problem:
    print(f"The demo stopped: {problem}", file=sys.stderr)
    print(f"Screenshots and logs so far: {output}", file=sys.stderr)
    sys.exit(1)

print(f"Screenshots of each step and every program's log: {output}")
