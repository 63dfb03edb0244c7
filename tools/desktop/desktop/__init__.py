"""A headless X desktop for Mosswick's desktop tests: Xvfb, openbox and, on request, a private
session bus, a compositor, a tray, a second screen and a panel that reserves screen space; with
the test peer and Mosswick on it, driven with xdotool and looked at from outside.

    from desktop import Desktop, skip_unless_available

    skip_unless_available()
    with Desktop() as d:
        rx = d.start_peer("receive", "--geometry", "600,100,300,200", "--report", d.out("rx.json"))
        d.wait_mapped(rx)
        src = d.start_peer("drag", "--file", path, "--geometry", "100,100,200,150")
        d.wait_mapped(src)
        d.drag((200, 175), (750, 200))
        report = d.wait_json(d.out("rx.json"))

Everything the desktop starts runs in a process group of its own and is stopped by process id
when the `with` block ends, when the test fails, times out or is killed. Standard library only.

The modules, by subject: core (Desktop: lifetime, output, starting, waiting), session (the X
session and sandboxed user folders), input (pointer, keys, drags), windows (windows, screenshots,
pixels), programs (the binaries under test, skipping), xarchiver, browser (Chromium), filemanager
(Thunar), process (Program), files (test files, PNGs), peers (drags between two peers), mosswick
(its files and the Shelf), signing (Ed25519 keys and the update test's settings), watch (the
watcher's record of the shelf), cases (named, independent cases on one desktop).
"""

from .cases import Cases
from .core import Desktop
from .input import Drag
from .process import DesktopError, Program
from .programs import (REQUIRED_PROGRAMS, SKIP_CODE, Skipped, build_dir, mosswick_binary, peer_binary, skip,
                       skip_unless_available)

__all__ = ["Cases", "Desktop", "DesktopError", "Drag", "Program", "REQUIRED_PROGRAMS", "SKIP_CODE", "Skipped",
           "build_dir", "mosswick_binary", "peer_binary", "skip", "skip_unless_available"]
