#!/usr/bin/python3
"""A Wayland-native GTK 3 program for the tests on Wayland compositors: a drag source or a drop
target filling the screen (maximized: a Wayland client cannot place its window). Runs under
Debian's python3 (GObject introspection) with GDK_BACKEND=wayland.

    gtk-wayland-peer.py source FILE...     drags these files (text/uri-list, and the URIs as text)
    gtk-wayland-peer.py source --text T    drags text alone
    gtk-wayland-peer.py source --move-only FILE...  offers to move the files, never to copy
    gtk-wayland-peer.py target REPORT      writes what is dropped on it to REPORT (JSON, whole)

Prints "ready", then one line a drag event with its CLOCK_MONOTONIC time in seconds:
"drag-begin T", "drag-end T ACTION", "drag-failed T REASON", "drag-data-delete T", "received T"."""

import json
import os
import sys
import time

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402


def say(*words):
    print(*words, flush=True)


def now():
    return time.clock_gettime(time.CLOCK_MONOTONIC)


role, args = sys.argv[1], sys.argv[2:]
window = Gtk.Window(title=f"gtk-wayland-{role}")
area = Gtk.EventBox()
area.add(Gtk.Label(label=role))
window.add(area)
actions = Gdk.DragAction.COPY | Gdk.DragAction.MOVE

if role == "source":
    if args[:1] == ["--move-only"]:  # as a file manager moving files does
        actions, args = Gdk.DragAction.MOVE, args[1:]
    text = args[1] if args[:1] == ["--text"] else None
    uris = [] if text is not None else [GLib.filename_to_uri(os.path.abspath(path), None) for path in args]
    targets = Gtk.TargetList.new([])
    if uris:
        targets.add_uri_targets(0)
    targets.add_text_targets(1)
    area.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], actions)
    area.drag_source_set_target_list(targets)

    def data_get(widget, context, selection, info, stamp):
        if info == 0:
            selection.set_uris(uris)
        else:
            selection.set_text(text if text is not None else "\n".join(uris), -1)
    area.connect("drag-data-get", data_get)
    area.connect("drag-begin", lambda w, c: say("drag-begin", now()))
    area.connect("drag-end", lambda w, c: say("drag-end", now(), c.get_selected_action().value_nicks[0]
                                              if c.get_selected_action() else "none"))
    # Emitted when a target took a move: a real source would delete its file now.
    area.connect("drag-data-delete", lambda w, c: say("drag-data-delete", now()))
    area.connect("drag-failed", lambda w, c, result: say("drag-failed", now(), result.value_nick) or False)
elif role == "target":
    report = args[0]
    area.drag_dest_set(Gtk.DestDefaults.ALL, [], actions)
    targets = Gtk.TargetList.new([])
    targets.add_uri_targets(0)
    area.drag_dest_set_target_list(targets)

    def received(widget, context, x, y, selection, info, stamp):
        with open(report + ".new", "w", encoding="utf-8") as f:
            json.dump({"uris": selection.get_uris(), "target": selection.get_target().name(),
                       "data": (selection.get_data() or b"").decode("utf-8", "replace")}, f)
        os.replace(report + ".new", report)
        say("received", now())
    area.connect("drag-data-received", received)
else:
    sys.exit(f"unknown role {role}")

window.connect("destroy", Gtk.main_quit)
window.maximize()
window.show_all()
window.connect("map-event", lambda w, e: say("ready") or False)
Gtk.main()
