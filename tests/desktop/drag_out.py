"""Items leave the shelf by drag into other programs and arrive byte for byte: into the test peer's
drop target (every type offered, with its bytes, under each alternate-data setting; a link with
its title; three selected items in one drag; names with spaces, accents, a newline and bytes that
are not UTF-8), into Thunar (the file lands in the folder, moved while the original is there,
copied from the shelf's copy once it is gone; the items leave the shelf or stay as the
remove-after-drop setting and Shift say) and into a page in Chromium (the file arrives as a
File). A drag cancelled with Escape, and one dropped back on the shelf, keep the items.

The shelf keeps its defaults: right bottom, growing with its tiles. On a 1280x800 screen with a
40 px panel at the bottom, n tiles stand at x 1078, from y = 760 - 6 - h, h = n x 88 + 56; tile i
(from the top) has its centre at (1176, y + 84 + 88 i)."""

import base64
import json
import os
import time
import urllib.parse

from desktop import Cases, skip_unless_available
from desktop.browser import Browser, DROP_TITLE
from desktop.filemanager import Thunar
from desktop.mosswick import Shelf, save_file, saved_items, staged_path
from desktop.shelved import ShelfWithFiles, frame_for, uri
from desktop.peers import TARGET_GEOMETRY

skip_unless_available(mosswick=True)

RX_POINT = (850, 200)
def data(drop, target):
    return base64.b64decode(drop["data"][target])


class Receiver:
    """The test peer's drop target at TARGET_GEOMETRY, recording every drop's types and bytes."""

    def __init__(self, d):
        self.d = d
        self.report = d.out("rx.json")
        self.program = d.start_peer("receive", "--geometry", TARGET_GEOMETRY, "--report", self.report)
        d.wait_mapped(self.program)
        self.drops = 0

    def next_drop(self):
        self.drops += 1
        return self.d.wait_json(self.report, until=lambda r: len(r["drops"]) >= self.drops)["drops"][-1]


cases = Cases(strut_bottom=40, session_bus=True)

NAME = "notes ä.txt"
ALTERNATE_TEXT = {
    "none": None,
    "filePath": lambda path: path,
    "fileName": lambda path: os.path.basename(path),
    "fileContents": lambda path: b"contents of " + os.fsencode(NAME),
}


def register_alternate(setting):
    def case(d):
        rx = Receiver(d)
        shelf = ShelfWithFiles(d, [NAME], {"alternateDragData": setting, "removeItemsWhenDraggedOut": False})
        d.drag(shelf.tile(), RX_POINT)
        drop = rx.next_drop()
        path = shelf.paths[0]
        assert data(drop, "text/uri-list") == uri(path) + b"\r\n", drop
        text = ALTERNATE_TEXT[setting]
        if text is None:
            assert "text/plain;charset=utf-8" not in drop["targets"], drop["targets"]
            assert "text/plain" in drop["refused"], "Qt's made-up text must not be offered"
        else:
            assert data(drop, "text/plain;charset=utf-8") == text(path), drop
            assert data(drop, "text/plain") == text(path) and data(drop, "UTF8_STRING") == text(path)
        shelf.kept()
        print(f"ok: {setting}: the file's URI" + (" and its text" if text else " and no text"))

    case.__name__ = f"alternate_{setting}"
    cases.case(case)


for setting in ALTERNATE_TEXT:
    register_alternate(setting)


@cases.case
def a_link_brings_its_address_and_title(d):
    rx = Receiver(d)
    url, title = "https://example.org/a%20page?q=1", "Moss and lichens — ✓"
    shelf = ShelfWithFiles(d, ["Moss.desktop"], links={"Moss.desktop": (url, title)})
    d.drag(shelf.tile(), RX_POINT)
    drop = rx.next_drop()
    assert data(drop, "text/x-moz-url") == f"{url}\n{title}".encode("utf-16-le"), data(drop, "text/x-moz-url")
    assert data(drop, "text/uri-list") == uri(shelf.paths[0]) + b"\r\n"
    assert shelf.saved_names(lambda items: not items) == [], "dragged out: removed by default"
    print("ok: a link as its .desktop file and as text/x-moz-url with its title")


@cases.case
def three_selected_items_in_one_drag_with_names_of_any_bytes(d):
    rx = Receiver(d)
    names = ["two words.txt", "Café\nnewline.txt", b"latin1-\xe9.txt"]
    shelf = ShelfWithFiles(d, [os.fsdecode(n) if isinstance(n, bytes) else n for n in names] + ["stays.txt"],
                           {"alternateDragData": "fileName"})
    d.click(*shelf.tile(0))
    for index in (1, 2):
        x, y = shelf.tile(index)
        d.xdotool("mousemove", x, y, "sleep", 0.2, "keydown", "ctrl", "click", 1, "keyup", "ctrl", "sleep", 0.2)
    d.drag(shelf.tile(0), RX_POINT)
    drop = rx.next_drop()
    expected = [uri(path) for path in shelf.paths[:3]]
    assert data(drop, "text/uri-list") == b"".join(u + b"\r\n" for u in expected), data(drop, "text/uri-list")
    assert data(drop, "text/plain;charset=utf-8") == b"\n".join(os.path.basename(p) for p in shelf.paths[:3])
    assert shelf.saved_names(lambda items: len(items) == 1) == ["stays.txt"]
    print("ok: three selected items, names of any bytes, in one drag; they leave the shelf")


@cases.case
def escape_cancels_and_keeps_the_items(d):
    rx = Receiver(d)
    shelf = ShelfWithFiles(d, ["a.txt"])
    (x, y), (tx, ty) = shelf.tile(), RX_POINT
    d.xdotool("mousemove", x, y, "sleep", 0.3, "mousedown", 1, "sleep", 0.1,
              "mousemove_relative", "--", -8, -3, "sleep", 0.1, "mousemove_relative", "--", -150, -100, "sleep", 0.1,
              "mousemove", tx, ty, "sleep", 0.1, "mousemove_relative", 1, 1, "sleep", 0.3,
              "key", "Escape", "sleep", 0.2, "mouseup", 1)
    shelf.kept()
    if os.path.exists(rx.report):
        with open(rx.report, encoding="utf-8") as f:
            assert not json.load(f)["drops"], "a cancelled drag dropped something"
    print("ok: Escape ends the drag with nothing dropped and nothing removed")


@cases.case
def a_tile_dropped_on_the_shelf_is_refused(d):
    shelf = ShelfWithFiles(d, ["a.txt", "b.txt"])
    d.drag(shelf.tile(0), shelf.tile(1))
    shelf.kept()
    print("ok: the shelf refuses its own tiles")


def thunar_case(d, settings, keys=(), delete_original=False):
    """Drags the one item of a new shelf into Thunar showing an empty folder; returns the shelf,
    the folder and the file's name."""
    name = "report ä.txt"
    target = os.path.join(os.fsencode(d.output), b"target")
    os.makedirs(target)
    shelf = ShelfWithFiles(d, [name], settings)
    if delete_original:
        os.remove(shelf.paths[0])
    thunar = Thunar(d)
    thunar.open(target)
    d.drag(shelf.tile(), thunar.empty_point(), keys=keys)
    landed = os.path.join(target, os.fsencode(name))
    d.wait_for(lambda: os.path.exists(landed), 10, "the file in Thunar's folder")
    with open(landed, "rb") as f:
        assert f.read() == b"contents of " + os.fsencode(name)
    return shelf, landed


@cases.case
def into_thunar_the_original_moves(d):
    shelf, _ = thunar_case(d, {"removeItemsWhenDraggedOut": False})
    d.wait_for(lambda: not os.path.exists(shelf.paths[0]), 10, "the original to leave its folder")
    assert os.path.exists(shelf.staged(0)), "the shelf's copy stays"
    shelf.kept()
    print("ok: Thunar moves the original when it is there; the item stays (remove-after-drop off)")


@cases.case
def into_thunar_the_staged_copy_when_the_original_is_gone(d):
    shelf, _ = thunar_case(d, {"removeItemsWhenDraggedOut": True}, delete_original=True)
    assert os.path.exists(shelf.staged(0)), "copied, not moved: only copy was offered"
    assert shelf.saved_names(lambda items: not items) == []
    print("ok: with the original gone Thunar copies the shelf's copy; remove-after-drop takes the item away")


@cases.case
def into_thunar_shift_keeps_the_item_when_removal_is_on(d):
    shelf, _ = thunar_case(d, {"removeItemsWhenDraggedOut": True}, keys=("shift",))
    shelf.kept()
    print("ok: Shift held at the drop keeps the item")


@cases.case
def into_thunar_shift_removes_the_item_when_removal_is_off(d):
    shelf, _ = thunar_case(d, {"removeItemsWhenDraggedOut": False}, keys=("shift",))
    assert shelf.saved_names(lambda items: not items) == []
    x, y, width, _ = frame_for(1)
    d.click(x + width - 20, y + 24)  # the bring-back button, alone in the toolbar of an empty shelf
    assert shelf.saved_names(lambda items: len(items) == 1) == ["report ä.txt"], "Bring Back returns it"
    print("ok: Shift held at the drop removes the item with remove-after-drop off, and it can be brought back")


@cases.case
def into_chromium_as_a_file(d):
    browser = Browser(d, page="drop.html", title=DROP_TITLE)
    try:
        shelf = ShelfWithFiles(d, ["moss notes.txt"])
        x, y, width, height = browser.client
        d.drag(shelf.tile(), (x + width // 2, y + height // 2))
        assert browser.dropped() == [["moss notes.txt", len(b"contents of moss notes.txt")]]
        print("ok: Chromium's page gets the file as a File with its name and size")
    finally:
        browser.close()


cases.run()
