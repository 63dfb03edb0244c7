"""The desktop itself: two screens Qt sees where they are, a panel's strut taken off the work
area, the compositor, a private session bus and tray, a sandboxed home; the peer's application
id and clipboard; and nothing left running once the desktop closes, even when a test fails."""

import base64
import os
import stat
import subprocess

from desktop import Desktop, DesktopError, peer_binary, skip_unless_available
from desktop.files import file_uri, make_png

skip_unless_available("xcompmgr", "dbus-daemon", "dbus-send", "trayer")


def dump(d, name):
    d.run([peer_binary(), "clipboard-dump", "--report", d.out(name)])
    report = d.wait_json(d.out(name))
    return report, {k: base64.b64decode(v) for k, v in report.get("data", {}).items()}


def own_clipboard(d, *payload):
    owner = d.start_peer("clipboard", *payload)
    d.wait_output(owner, "ready")
    return owner


with Desktop(screens=[(1280, 800), (1024, 768)], strut_bottom=40, session_bus=True, compositor=True,
             tray=True) as d:
    seen = d.screens_seen_by_qt()
    assert [s["geometry"] for s in seen["screens"]] == [[0, 0, 1280, 800], [1280, 0, 1024, 768]], seen
    assert seen["compositor"], seen
    assert d.workarea() == (0, 0, 2304, 760), d.workarea()
    print("ok: two screens side by side, a 40 px panel off the work area, a compositor")

    assert d.env["DBUS_SESSION_BUS_ADDRESS"] != os.environ.get("DBUS_SESSION_BUS_ADDRESS")
    names = d.run(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                   "org.freedesktop.DBus.ListNames"])
    assert "org.freedesktop.DBus" in names
    for key in ("HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"):
        assert d.env[key].startswith(d.temp + os.sep), (key, d.env[key])
    assert stat.S_IMODE(os.stat(d.env["XDG_RUNTIME_DIR"]).st_mode) == 0o700
    print("ok: a private session bus and sandboxed user folders")

    peer = d.start_peer("receive", "--app-id", "org.example.Peer", "--geometry", "1400,100,300,200")
    window = d.wait_mapped(peer)
    assert d.window_class(window) == ("org.example.Peer", "org.example.Peer"), d.window_class(window)
    assert window in d.client_list()
    assert d.window_geometry(window) == (1400, 100, 300, 200), d.window_geometry(window)
    print("ok: the application id becomes WM_CLASS; the window sits on the second screen")

    name = os.path.join(os.fsencode(d.temp), b"caf\xe9.txt")
    open(name, "wb").close()
    owner = own_clipboard(d, "--file", name)
    report, got = dump(d, "clipboard-files.json")
    assert got["x-special/gnome-copied-files"] == b"copy\n" + file_uri(name).encode(), got
    assert got["text/uri-list"] == file_uri(name).encode() + b"\r\n"
    owner.stop()
    owner = own_clipboard(d, "--html", "<i>rich</i>", "--rtf", r"{\rtf1 rich}")
    report, got = dump(d, "clipboard-rich.json")
    assert got["text/html"] == b"<i>rich</i>" and got["text/rtf"] == rb"{\rtf1 rich}", got
    assert not {"text/plain", "UTF8_STRING", "STRING"} & set(report["targets"]), report["targets"]
    owner.stop()
    png = make_png(os.path.join(d.temp, "clip.png"), 8, 8)
    owner = own_clipboard(d, "--image", os.path.join(d.temp, "clip.png"))
    report, got = dump(d, "clipboard-image.json")
    assert got["image/png"] == png and "application/x-qt-image" in report["targets"], report["targets"]
    owner.stop()
    report, _ = dump(d, "clipboard-empty.json")
    assert report == {"owner": False}, report
    print("ok: the clipboard holds files, rich text alone, an image; and nothing once its owner quits")
    d.screenshot("desktop")
    started = d.programs

assert all(not p.running() for p in started) and not os.path.exists(d.temp)
print("ok: everything the desktop started is stopped")

# A failing test still stops its desktop.
try:
    with Desktop(name="setup-failing") as failing:
        failing.start_peer("receive")
        started = failing.programs
        failing.wait_for(lambda: False, 0.2, "what never comes")
except DesktopError:
    pass
assert all(not p.running() for p in started), started
assert os.path.exists(os.path.join(failing.output, "failure.png"))
print("ok: a desktop whose test fails stops too, and leaves a screenshot")

usage = subprocess.run([peer_binary(), "drag", "--geometry", "1,2,3"], capture_output=True, text=True)
assert usage.returncode == 2 and "--geometry wants X,Y,WIDTH,HEIGHT" in usage.stderr and "usage:" in usage.stderr
print("ok: the peer explains a bad command line")
