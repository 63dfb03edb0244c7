"""Mosswick under GNOME Shell 43 on Wayland (headless, with XWayland, no extensions): the Shell
has no tray of either kind, neither an XEmbed tray manager on XWayland's screen nor a
StatusNotifierItem watcher on the bus, and Mosswick says so instead of failing; its shelf still
comes when summoned."""

import sys

from desktop import Cases
from desktop.mutter import GnomeShellDesktop

cases = Cases(desktop=GnomeShellDesktop)

# Prints the owner of the first screen's XEmbed tray selection (0: none).
TRAY_OWNER = """
import ctypes, ctypes.util
x = ctypes.CDLL(ctypes.util.find_library("X11"))
x.XOpenDisplay.restype = ctypes.c_void_p
x.XInternAtom.restype = x.XGetSelectionOwner.restype = ctypes.c_ulong
display = ctypes.c_void_p(x.XOpenDisplay(None))
print(x.XGetSelectionOwner(display, ctypes.c_ulong(x.XInternAtom(display, b"_NET_SYSTEM_TRAY_S0", 0))))
"""


@cases.case
def no_tray_said(d):
    app = d.start_mosswick("--summon")
    d.wait_mapped(app)
    d.wait_output(app, "no system tray on this desktop")
    assert "GNOME on Wayland (XWayland)" in app.output(), app.output()
    names = d.run(["gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path",
                   "/org/freedesktop/DBus", "--method", "org.freedesktop.DBus.ListNames"])
    assert "org.gnome.Shell" in names and "StatusNotifierWatcher" not in names, names
    assert d.run([sys.executable, "-c", TRAY_OWNER]).strip() == "0", "an XEmbed tray manager is there"


cases.run()
