"""The global shortcut (F5) on a real X server: a tap toggles the shelf once the double-press
window has passed, holding it brings back the files cleared last and summons the shelf, a double
press adds the clipboard's files (and nothing from an empty clipboard); and a key another program
already holds is reported in the log, and Mosswick keeps running without it."""

import json
import os
import re
import time
import uuid

from desktop import Desktop, mosswick_binary, skip_unless_available
from desktop.files import file_uri, make_files
from desktop.mosswick import save_file, saved_items
from desktop.watch import ShelfWatch

skip_unless_available(mosswick=True)

LONG_PRESS = 0.45
DOUBLE_PRESS_WINDOW = 0.3


def prepare_shelf(d, paths):
    """A saved shelf holding these files, as Mosswick writes it."""
    items = [{"id": str(uuid.uuid4()), "displayName": os.path.basename(p).decode(), "originURL": file_uri(p),
              "contentTypeIdentifier": "text/plain", "byteSize": os.path.getsize(p), "addedAt": 700000000.0,
              "isPromised": False} for p in paths]
    os.makedirs(os.path.dirname(save_file(d)), exist_ok=True)
    with open(save_file(d), "w", encoding="utf-8") as f:
        json.dump(items, f)


def saved_names(d):
    return sorted(item["displayName"] for item in saved_items(d))


def tap(d, watch, kind):
    """Taps F5 and waits for the shelf to `kind` ("map" or "unmap"); returns the seconds from the
    release (taken as xdotool's exit, a little after the key went up) to it."""
    since = time.monotonic()
    d.key("F5")
    released = time.monotonic()
    return watch.wait(kind, since) - released


def clear_button(d, app):
    """The centre of the toolbar's clear button (the right end of the row above the tiles)."""
    x, y, width, _ = d.window_geometry(d.wait_mapped(app))
    return x + width - 21, y + 24


with Desktop() as d:
    watch = ShelfWatch(d)
    kept = make_files(d.temp, [b"kept one.txt", b"kept two.txt"])
    prepare_shelf(d, kept)
    app = d.start_mosswick()
    # A restored shelf waits, hidden, until it is asked for.
    time.sleep(0.3)
    assert watch.shelf() == [], watch.shelf()

    after = tap(d, watch, "map")
    assert DOUBLE_PRESS_WINDOW - 0.05 <= after < 1.0, f"a tap showed the shelf {after:.3f} s after the release"
    after = tap(d, watch, "unmap")
    assert DOUBLE_PRESS_WINDOW - 0.05 <= after < 1.0, f"a tap hid the shelf {after:.3f} s after the release"
    print("ok: a tap of F5 brings the shelf up, the next takes it away, each once the double press is out")

    # Clear it through its toolbar, then hold the key: the files come back and the shelf with them.
    tap(d, watch, "map")
    time.sleep(0.3)  # the slide in
    d.click(*clear_button(d, app))
    d.move(400, 300)  # a pointer resting on the shelf keeps it up
    d.wait_for(lambda: saved_items(d) == [], 5, "the cleared shelf to be saved")
    tap(d, watch, "unmap")  # summoned, it stays up empty until sent away
    pressed = time.monotonic()
    d.key_down("F5")
    try:
        shown = watch.wait("map", pressed)  # while the key is still down
    finally:
        d.key_up("F5")
    assert LONG_PRESS <= shown - pressed < LONG_PRESS + 0.5, f"the shelf came {shown - pressed:.3f} s after the press"
    d.wait_for(lambda: saved_names(d) == ["kept one.txt", "kept two.txt"], 5, "the cleared files to come back")
    time.sleep(DOUBLE_PRESS_WINDOW + 0.2)  # the release of a hold is no tap: nothing may follow
    assert [e["event"] for e in watch.shelf(pressed)] == ["map"], watch.shelf(pressed)
    d.screenshot("brought-back")
    print(f"ok: holding F5 brings the cleared files back and the shelf up {shown - pressed:.2f} s into the hold")
    tap(d, watch, "unmap")

    # Two quick taps with files on the clipboard: they join the shelf, which comes to show them.
    copied = make_files(d.temp, [b"copied.txt", "naïve café.txt".encode()])
    owner = d.start_peer("clipboard", "--files", *copied)
    d.wait_output(owner, "ready")
    since = time.monotonic()
    d.key("F5", "F5")
    shown = watch.wait("map", since)
    d.wait_for(lambda: len(saved_items(d)) == 4, 5, "the clipboard's files to be saved on the shelf")
    assert saved_names(d) == sorted(["kept one.txt", "kept two.txt", "copied.txt", "naïve café.txt"]), \
        saved_names(d)
    time.sleep(DOUBLE_PRESS_WINDOW + 0.2)
    assert [e["event"] for e in watch.shelf(since)] == ["map"], watch.shelf(since)
    d.screenshot("clipboard-added")
    print("ok: a double press adds the clipboard's files and shows the shelf")
    tap(d, watch, "unmap")

    # Nothing on the clipboard: nothing added, nothing shown.
    owner.stop()
    before = saved_items(d)
    since = time.monotonic()
    d.key("F5", "F5")
    time.sleep(1.0)
    assert watch.shelf(since) == [] and saved_items(d) == before, (watch.shelf(since), saved_names(d))
    print("ok: a double press with an empty clipboard adds nothing and shows nothing")

    # Another program holds F5: said so in the log, and everything else still works.
    app.stop()
    holder = d.start_peer("grab-key", "--key", "F5")
    d.wait_output(holder, "ready")
    app = d.start_mosswick()
    refusal = re.search(r"Mosswick: could not register shortcut F5 \(OSStatus \d+\)", app.output())
    assert refusal, app.output()
    assert "or press F5" not in app.output(), app.output()
    d.key("F5")
    since = time.monotonic()
    d.run([mosswick_binary(), "--summon"])
    watch.wait("map", since)
    assert app.running()
    print(f"ok: a key held by another program is logged ({refusal.group(0)}) and Mosswick runs on")
