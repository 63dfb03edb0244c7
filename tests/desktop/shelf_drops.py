"""What another application drops on the shelf lands on it and on disk: files (one, whose name is
not UTF-8; several at once, one batch and one stack), a folder, a link with its title, an image,
text, and files promised over X Direct Save by the peer and by xarchiver. Each is checked in
shelf.json (saved 0.4 s after a change) and byte for byte in its staged copy. A compositor runs,
so the screenshots show the shelf's rounded, see-through corners.

The shelf keeps its defaults: right bottom, growing with its tiles (adaptive, smallest). On a
1280x800 screen with a 40 px panel at the bottom (7 slots fit), n tiles stand at x 1078, from
y = 760 - 6 - h, h = n x 88 + 56; the drops aim at (1176, 700), inside even the one-slot shelf."""

import os
import re

from desktop import Desktop, skip_unless_available
from desktop.files import file_uri, make_files, make_png, png_pixels, read_bytes
from desktop.mosswick import Shelf, staged_path
from desktop.peers import SOURCE_GEOMETRY, SOURCE_POINT

skip_unless_available("xcompmgr", "xarchiver", "zip", "unzip", mosswick=True)

SHELF_POINT = (1176, 700)


def frame_for(tiles):
    h = min(tiles, 7) * 88 + 56
    return (1078, 760 - 6 - h, 196, h)


class Drops:
    def __init__(self, d, shelf):
        self.d, self.shelf, self.count, self.drags = d, shelf, 0, 0

    def drag(self, *payload):
        """Drags the payload from a new peer onto the shelf; returns what the source heard."""
        self.drags += 1
        report = self.d.out(f"drag-{self.drags}.json")
        source = self.d.start_peer("drag", "--geometry", SOURCE_GEOMETRY, "--report", report, *payload)
        self.d.wait_mapped(source)
        self.d.drag(SOURCE_POINT, SHELF_POINT)
        heard = self.d.wait_json(report)["drags"][0]
        assert source.wait() == 0
        assert heard["target_window"] in self.d.windows(self.shelf.app), (heard, self.d.windows(self.shelf.app))
        assert (heard["accepted"], heard["action"]) == (True, "copy"), heard
        return heard

    def landed(self, added):
        """The `added` newest items once all of them are saved complete (staged, nothing still
        promised)."""
        self.count += added

        def complete(items):
            return len(items) == self.count and all("stagedURL" in i and not i["isPromised"] for i in items)
        return self.shelf.wait_saved(complete)[:added]


def tree(folder):
    """{relative path: bytes or None for folders} of everything under a folder (paths as bytes)."""
    found = {}
    for root, folders, files in os.walk(folder):
        for name in folders + files:
            path = os.path.join(root, name)
            found[os.path.relpath(path, folder)] = None if name in folders else read_bytes(path)
    return found


with Desktop(strut_bottom=40, compositor=True) as d:
    shelf = Shelf(d)
    drops = Drops(d, shelf)
    staging = os.path.join(os.fsencode(shelf.data_folder), b"Staged")
    folder = os.path.join(os.fsencode(d.temp), b"files")
    os.makedirs(folder)

    def staged_in_own_folder(item, name):
        path = staged_path(item)
        expected = os.path.join(staging, item["id"].upper().encode(), name)
        assert path.rstrip(b"/") == expected, (path, expected)
        return expected

    # One file, its name not UTF-8: the drag brings the shelf up, and the drop lands.
    [latin1] = make_files(folder, [b"caf\xe9.txt"])
    drops.drag("--file", latin1)
    [item] = drops.landed(1)
    assert item["originURL"] == file_uri(latin1) and "batchID" not in item, item
    assert read_bytes(staged_in_own_folder(item, b"caf\xe9.txt")) == read_bytes(latin1)
    assert item["displayName"] == "caf\ufffd.txt", item["displayName"]
    shelf.wait_frame(frame_for(1))
    print("ok: a file whose name is not UTF-8, brought up by the drag itself")

    several = make_files(folder, [b"first.txt", b"second.txt", "Ünïcode ✓.txt".encode()])
    drops.drag("--files", *several)
    items = drops.landed(3)
    assert [i["originURL"] for i in items] == [file_uri(p) for p in several], items
    assert len({i.get("batchID") for i in items} - {None}) == 1 and all("batchID" in i for i in items), items
    for item, path in zip(items, several):
        assert read_bytes(staged_in_own_folder(item, os.path.basename(path))) == read_bytes(path)
    shelf.wait_frame(frame_for(2))
    d.screenshot("stack-and-single")
    print("ok: several files at once: one batch, one stack")

    inner = os.path.join(folder, b"a folder")
    os.makedirs(os.path.join(inner, b"sub"))
    make_files(inner, [b"top.txt"])
    make_files(os.path.join(inner, b"sub"), [b"deep.bin"], content=lambda name: bytes(range(256)) * 40)
    drops.drag("--folder", inner)
    [item] = drops.landed(1)
    assert item["contentTypeIdentifier"] == "inode/directory", item
    assert tree(staged_in_own_folder(item, b"a folder")) == tree(inner)
    assert item["byteSize"] >= 256 * 40, item
    print("ok: a folder, with everything in it")

    url, title = "https://example.org/a page?q=1", "Notes: a/b — ✓"
    drops.drag("--link", url, "--title", title)
    [item] = drops.landed(1)
    link = read_bytes(staged_in_own_folder(item, "Notes- a-b — ✓.desktop".encode())).decode()
    assert (item["displayName"], item["webURL"]) == (title, "https://example.org/a%20page?q=1"), item
    assert link.startswith("[Desktop Entry]\n") and "\nType=Link\n" in link, link
    assert f"\nName={title}\n" in link and "\nURL=https://example.org/a%20page?q=1\n" in link, link
    print("ok: a link with its title, as a desktop link file named by the title")

    png = make_png(os.path.join(d.temp, "picture.png"), 40, 30)
    drops.drag("--image", os.path.join(d.temp, "picture.png"))
    [item] = drops.landed(1)
    assert re.fullmatch(r"Image \d{4}-\d\d-\d\d at \d\d\.\d\d\.\d\d\.png", item["displayName"]), item
    kept = read_bytes(staged_in_own_folder(item, item["displayName"].encode()))
    assert png_pixels(kept) == png_pixels(png), "the image's pixels changed on the way"
    assert item["contentTypeIdentifier"] == "image/png", item
    print(f"ok: an image, kept as {item['displayName']!r} with the same pixels")

    text = "Shopping: milk/eggs\nä ö ü — ✓ 😀\n"
    drops.drag("--text", text)
    [item] = drops.landed(1)
    assert item["displayName"] == "Shopping- milk-eggs.txt", item
    assert read_bytes(staged_in_own_folder(item, b"Shopping- milk-eggs.txt")) == text.encode()
    print("ok: text, kept whole as a .txt named from its first line")

    body = "Name,Wert\nä,1\n"
    drops.drag("--promise", "report.csv", "--promise-type", "text/csv", "--promise-data", body)
    [item] = drops.landed(1)
    assert item["displayName"] == "report.csv" and "originURL" not in item, item
    assert read_bytes(staged_in_own_folder(item, b"report.csv")) == body.encode()
    print("ok: a file promised over X Direct Save arrives in the item's own folder")

    archive = d.start_xarchiver({"inside.txt": b"from the archive\n"})
    d.drag_from_xarchiver(archive, SHELF_POINT)
    [item] = drops.landed(1)
    assert item["displayName"] == "inside.txt", item
    assert read_bytes(staged_in_own_folder(item, b"inside.txt")) == b"from the archive\n"
    archive.stop()
    print("ok: a file dragged out of an archive in xarchiver")

    # Eight tiles, more than fit: the shelf stops growing at seven slots.
    shelf.wait_frame(frame_for(8))
    d.screenshot("full-shelf")
    shelf.stop()
    assert len(os.listdir(staging)) == 10, os.listdir(staging)
    print("ok: the shelf grew with its tiles up to the seven that fit")

    # Restarted with reduced motion: the shelf keeps its items, stays away until a drag, then
    # appears in place without sliding, and still takes the drop.
    shelf = drops.shelf = Shelf(d, {"reduceMotion": True})
    assert not shelf.visible()
    [last] = make_files(folder, [b"last.txt"])
    drops.drag("--file", last)
    [item] = drops.landed(1)
    assert read_bytes(staged_in_own_folder(item, b"last.txt")) == b"contents of last.txt"
    shelf.wait_frame(frame_for(9))
    shelf.stop()
    print("ok: after a restart, with reduced motion, the shelf still has its items and takes a drop")
