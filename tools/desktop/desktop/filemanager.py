"""Thunar, a real GTK file manager, showing one folder in a window of known place and size, as a
place to drop files on. With a private session bus of the desktop's (Desktop(session_bus=True))
each Thunar is an instance of its own."""

import shutil

from .programs import skip

# Where the window stands: x, y, width, height.
WINDOW = (40, 60, 600, 480)


class Thunar:
    """`thunar FOLDER` on `desktop`, its window moved to WINDOW; stops with the case."""

    def __init__(self, desktop, folder):
        binary = shutil.which("thunar")
        if not binary:
            skip("Thunar is not installed (thunar, from tools/install-deps.sh)")
        self.desktop = desktop
        self.folder = folder
        self.program = desktop.start([binary, folder], name="thunar")
        self.window = desktop.wait_mapped(self.program, timeout=30)
        x, y, width, height = WINDOW
        desktop.xdotool("windowsize", self.window, width, height, "windowmove", self.window, x, y)
        desktop.wait_for(lambda: self._placed(), 10, "Thunar's window in place")

    def _placed(self):
        x, y, width, height = self.desktop.window_geometry(self.window)
        return abs(width - WINDOW[2]) <= 2 and abs(height - WINDOW[3]) <= 2

    def drop_point(self):
        """An empty spot of the folder's view (below its few files, right of the side pane)."""
        x, y, width, height = self.desktop.window_geometry(self.window)
        return (x + width * 2 // 3, y + height - 80)
