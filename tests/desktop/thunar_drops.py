"""Drags from a real Thunar window land on a shelf that slides in by itself during the drag: a file
(its name with a space and an accent) and a folder with a file inside and an empty folder. Each
is staged in a folder of its own, byte for byte, and the original stays where it was (the shelf
copies). Thunar offers only text/uri-list, so this is the file managers' path as it really runs.

The shelf keeps its defaults: right bottom, brought up by the drag's start; on the 1280x800
screen with a 40 px panel at the bottom the drops aim at (1176, 700), inside even the one-slot
shelf. Thunar's window stands in the middle of the screen, clear of the shelf."""

import os
import time

from desktop import Cases, skip_unless_available
from desktop.filemanager import Thunar
from desktop.files import make_files, read_bytes, tree
from desktop.mosswick import Shelf, staged_path
from desktop.watch import ShelfWatch

skip_unless_available("thunar", "dbus-run-session", mosswick=True)

SHELF_POINT = (1176, 700)

cases = Cases(strut_bottom=40)


def drag_from_thunar(d, path):
    """Shows `path` selected in Thunar and drags it onto the shelf, which must come during the
    drag; returns the new item once it is saved staged."""
    watch = ShelfWatch(d)
    shelf = Shelf(d)
    thunar = Thunar(d)
    thunar.open(os.path.dirname(path), select=os.path.basename(path))
    assert not shelf.visible()
    start = thunar.selected_point()
    began = time.monotonic()
    d.drag(start, SHELF_POINT)
    watch.wait("map", began)
    [item] = shelf.wait_saved(lambda items: len(items) == 1 and "stagedURL" in items[0])
    d.screenshot("dropped")
    thunar.stop()
    shelf.stop()
    return item


def staged_alone(item, name):
    """The item's staged copy, checked to be `name` and the only thing in its folder."""
    staged = staged_path(item).rstrip(b"/")
    assert os.path.basename(staged) == name, (staged, name)
    assert os.listdir(os.path.dirname(staged)) == [name], os.listdir(os.path.dirname(staged))
    return staged


@cases.case
def file(d):
    folder = os.path.join(d.temp.encode(), b"files")
    os.makedirs(folder)
    [path] = make_files(folder, ["Café notes.txt".encode()])
    item = drag_from_thunar(d, path)
    assert item["displayName"] == "Café notes.txt", item
    assert read_bytes(staged_alone(item, "Café notes.txt".encode())) == read_bytes(path)
    assert os.path.exists(path), "the original left its folder"
    print("ok: a file dragged from Thunar lands on the shelf that slid in, copied byte for byte")


@cases.case
def folder(d):
    parent = os.path.join(d.temp.encode(), b"folders")
    folder = os.path.join(parent, b"Moss samples")
    os.makedirs(os.path.join(folder, b"empty"))
    make_files(folder, [b"sample 1.txt"])
    make_files(parent, [b"beside.txt"])
    item = drag_from_thunar(d, folder)
    assert (item["displayName"], item["contentTypeIdentifier"]) == ("Moss samples", "inode/directory"), item
    assert tree(staged_alone(item, b"Moss samples")) == tree(folder)
    print("ok: a folder dragged from Thunar lands on the shelf, its tree copied whole")


cases.run()
