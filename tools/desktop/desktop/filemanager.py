"""Thunar, a real file manager, on a test desktop: a window on a folder, in the details view (one
row per item, no side pane), with the item asked for selected, and the screen point of that row
to start a drag from, or of the empty part of the list to drop onto.

Each Thunar runs with a session bus of its own (dbus-run-session): its settings service starts
there with the desktop's sandboxed configuration folder, and no other Thunar on the machine takes
its windows over."""

import os
import shutil

from .process import children
from .programs import skip

# Read by Thunar's settings service when it starts.
_SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="thunar" version="1.0">
  <property name="last-view" type="string" value="ThunarDetailsView"/>
  <property name="last-window-width" type="int" value="{width}"/>
  <property name="last-window-height" type="int" value="{height}"/>
  <property name="last-side-pane" type="string" value=""/>
  <property name="last-statusbar-visible" type="bool" value="false"/>
  <property name="last-show-hidden" type="bool" value="false"/>
  <property name="misc-single-click" type="bool" value="false"/>
  <property name="misc-thumbnail-mode" type="string" value="THUNAR_THUMBNAIL_MODE_NEVER"/>
</channel>
"""

# The list's name column, this far right of the window's left edge: past every icon and short
# name, so the selection's colour is all there is in it on a selected row.
_NAME_COLUMN_X = 200
# Left of the name: on the row's icon, where a press starts a drag rather than a rubber band.
_ICON_X = 25


def _is_selection_colour(pixel):
    r, g, b = pixel
    return b > 170 and r < 110 and b - g > 50


class Thunar:
    """Thunar on one desktop, showing one folder at a time; stops with the desktop."""

    def __init__(self, desktop, size=(640, 400)):
        if not shutil.which("thunar"):
            skip("Thunar is not installed (thunar, from tools/install-deps.sh)")
        self.desktop = desktop
        self.size = size
        self.program = None
        self.window = None
        folder = os.path.join(desktop.env["XDG_CONFIG_HOME"], "xfce4", "xfconf", "xfce-perchannel-xml")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "thunar.xml"), "w", encoding="utf-8") as f:
            f.write(_SETTINGS.format(width=size[0], height=size[1]))

    def open(self, folder, select=None, timeout=30):
        """Shows a folder, with the item named `select` (a name in it) selected; returns the
        window. A Thunar already open here is closed first."""
        self.stop()
        self.program = self.desktop.start(["dbus-run-session", "--", "thunar", os.fsdecode(folder)],
                                          name="thunar")
        pid = self.desktop.wait_for(self._thunar_pid, timeout, "Thunar to start")
        self.window = self.desktop.wait_mapped(pid, timeout=timeout)
        if select is not None:
            # The list's search: typing a name selects its row; Escape closes the search box.
            self.desktop.wait_for(lambda: self.desktop.active_window() == self.window, timeout,
                                  "Thunar to take the focus")
            self.desktop.xdotool("type", "--delay", "30", os.fsdecode(select))
            self.desktop.wait_for(self._selected_row, timeout, f"Thunar to select {os.fsdecode(select)}")
            self.desktop.key("Escape")
        return self.window

    def _thunar_pid(self):
        if not self.program.running():
            raise AssertionError("Thunar exited:\n" + self.program.output()[-2000:])
        for pid in children(self.program.pid):
            try:
                with open(f"/proc/{pid}/comm", encoding="utf-8") as f:
                    if f.read().strip() == "thunar":
                        return pid
            except OSError:
                pass
        return None

    def _client(self):
        return self.desktop.window_geometry(self.window)

    def _selected_row(self):
        """(top, bottom) of the selected row on the screen, or None."""
        x, y, _, height = self._client()
        column = [row[0] for row in self.desktop.pixels((x + _NAME_COLUMN_X, y, 1, height))]
        rows = [i for i, pixel in enumerate(column) if _is_selection_colour(pixel)]
        return (y + rows[0], y + rows[-1]) if rows else None

    def selected_point(self):
        """A point on the selected item's row to press for a drag of it."""
        top, bottom = self._selected_row()
        return (self._client()[0] + _ICON_X, (top + bottom) // 2)

    def empty_point(self):
        """A point in the list below the rows (for a few items), to drop into the folder shown."""
        x, y, width, height = self._client()
        return (x + width // 2, y + height - 40)

    def stop(self):
        if self.program:
            self.program.stop()
            self.program = self.window = None
