#!/usr/bin/python3
"""A Wayland-native GTK 3 program for the Wayland desktop tests: the other side of a drag.

    kwin-gtk-peer.py src --file PATH [--file PATH...] [--text-only] [--max]
    kwin-gtk-peer.py dst --report PATH [--max]

src: a window that starts a drag of the files (text/uri-list and their URIs as text; with
--text-only the text alone) when pressed and moved. dst: a drop target taking URI lists and text;
each drop is appended to the JSON report {"drops": [{"uris": [...], "text": ...}]}, written whole
(temporary file, then rename). Run it with GDK_BACKEND=wayland and no DISPLAY, so it is a Wayland
client even where XWayland runs. Prints one line per event, CLOCK_MONOTONIC seconds first:
"configure" once its window is placed, "focus-in", "focus-out" (the keyboard focus), "drag-begin",
"drag-data-get", "drag-end", "drag-failed", "drop"."""

import argparse
import json
import os
import sys
import time

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402


def log(*words):
    print(f"{time.monotonic():.6f}", *words, flush=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("role", choices=["src", "dst"])
    parser.add_argument("--file", action="append", default=[], type=os.fsencode)
    parser.add_argument("--text-only", action="store_true")
    parser.add_argument("--report")
    parser.add_argument("--max", action="store_true", help="maximized: the only geometry Wayland lets us know")
    a = parser.parse_args()

    window = Gtk.Window(title=f"gtk-wayland-{a.role}")
    window.set_default_size(400, 300)
    box = Gtk.EventBox()
    box.add(Gtk.Label(label=a.role))
    window.add(box)

    if a.role == "src":
        uris = [GLib.filename_to_uri(os.fsdecode(path), None) for path in a.file]
        targets = Gtk.TargetList.new([])
        if not a.text_only:
            targets.add_uri_targets(0)
        targets.add_text_targets(1)
        box.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY | Gdk.DragAction.MOVE)
        box.drag_source_set_target_list(targets)
        box.connect("drag-begin", lambda w, c: log("drag-begin"))

        def data_get(widget, context, selection, info, when):
            log("drag-data-get", selection.get_target().name())
            if info == 0:
                selection.set_uris(uris)
            else:
                selection.set_text("\n".join(uris), -1)
        box.connect("drag-data-get", data_get)
        box.connect("drag-end", lambda w, c: log("drag-end"))
        box.connect("drag-failed", lambda w, c, result: log("drag-failed", result.value_nick) or False)
    else:
        box.drag_dest_set(Gtk.DestDefaults.ALL, [], Gdk.DragAction.COPY | Gdk.DragAction.MOVE)
        targets = Gtk.TargetList.new([])
        targets.add_uri_targets(0)
        targets.add_text_targets(1)
        box.drag_dest_set_target_list(targets)
        drops = []

        def received(widget, context, x, y, selection, info, when):
            drops.append({"uris": list(selection.get_uris() or []), "text": selection.get_text()})
            log("drop", json.dumps(drops[-1]))
            with open(a.report + ".new", "w", encoding="utf-8") as f:
                json.dump({"drops": drops}, f)
            os.replace(a.report + ".new", a.report)
        box.connect("drag-data-received", received)

    window.connect("focus-in-event", lambda w, e: log("focus-in") or False)
    window.connect("focus-out-event", lambda w, e: log("focus-out") or False)
    window.connect("destroy", Gtk.main_quit)
    window.connect("configure-event", lambda w, e: log("configure", f"{e.width}x{e.height}") or False)
    if a.max:
        window.maximize()
    window.show_all()
    Gtk.main()


if __name__ == "__main__":
    sys.exit(main())
