#!/usr/bin/python3
"""The pointer of a headless mutter, driven through its RemoteDesktop D-Bus API (no screen cast,
no PipeWire needed). Runs under Debian's python3 (GObject introspection). Reads one command a line
on standard input and answers each with "done <command> <CLOCK_MONOTONIC seconds>" once mutter
took it:

    rel DX DY    move the pointer by DX, DY pixels
    home         to the bottom-left corner (an absolute move needs a screen cast stream; the
                 top-left corner is gnome-shell's hot corner)
    down | up [BUTTON]
                 press or release a button (an evdev code: the left one, 0x110, unless given)
    key KEYSYM   press and release a key (an X keysym, such as 0xffc2 for F5)

The session lives as long as this program's bus connection."""

import sys
import time

from gi.repository import Gio, GLib

SERVICE = "org.gnome.Mutter.RemoteDesktop"
SESSION = "org.gnome.Mutter.RemoteDesktop.Session"
BTN_LEFT = 0x110

bus = Gio.bus_get_sync(Gio.BusType.SESSION)


def call(path, interface, method, args=None):
    return bus.call_sync(SERVICE, path, interface, method, args, None, Gio.DBusCallFlags.NONE, 5000, None)


session = call("/org/gnome/Mutter/RemoteDesktop", SERVICE, "CreateSession").unpack()[0]
call(session, SESSION, "Start")
print("ready", flush=True)


def rel(dx, dy):
    call(session, SESSION, "NotifyPointerMotionRelative", GLib.Variant("(dd)", (dx, dy)))


for line in sys.stdin:
    words = line.split()
    if not words:
        continue
    try:
        if words[0] == "rel":
            rel(float(words[1]), float(words[2]))
        elif words[0] == "home":
            rel(-10000, 10000)
        elif words[0] in ("down", "up"):
            button = int(words[1], 0) if len(words) > 1 else BTN_LEFT
            call(session, SESSION, "NotifyPointerButton", GLib.Variant("(ib)", (button, words[0] == "down")))
        elif words[0] == "key":
            for pressed in (True, False):
                call(session, SESSION, "NotifyKeyboardKeysym", GLib.Variant("(ub)", (int(words[1], 0), pressed)))
        else:
            raise ValueError("unknown command")
        print("done", line.strip(), time.clock_gettime(time.CLOCK_MONOTONIC), flush=True)
    except (GLib.Error, ValueError, IndexError) as problem:
        print("error", line.strip(), problem, flush=True)
