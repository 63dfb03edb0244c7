"""What another application drops on the shelf lands on it and on disk: files (one, whose name is
not UTF-8; several at once, one batch and one stack), a folder, a link with its title, an image,
text, and files promised over X Direct Save by the peer (one written slowly after the answer, as
browsers do) and by xarchiver. Each is checked in shelf.json (saved 0.4 s after a change) and
byte for byte in its staged copy, in a folder of its own. A compositor runs, so the screenshots
show the shelf's rounded, see-through corners.

Each case starts a Mosswick of its own with an empty shelf and data folder, on one shared
desktop; `shelf_drops.py CASE…` runs the named cases alone.

The shelf keeps its defaults: right bottom, growing with its tiles (adaptive, smallest). On a
1280x800 screen with a 40 px panel at the bottom (7 slots fit), n tiles stand at x 1078, from
y = 760 - 6 - h, h = n x 88 + 56; the drops aim at (1176, 700), inside even the one-slot shelf."""

import json
import os
import re
import subprocess
import uuid

from desktop import Cases, skip, skip_unless_available
from desktop.files import file_uri, make_files, make_png, png_pixels, read_bytes, tree
from desktop.mosswick import Shelf, data_folder, save_file, saved_items, staged_path
from desktop.peers import SOURCE_GEOMETRY, SOURCE_POINT

skip_unless_available("xcompmgr", "xarchiver", "zip", "unzip", mosswick=True)

SHELF_POINT = (1176, 700)


def frame_for(tiles):
    h = min(tiles, 7) * 88 + 56
    return (1078, 760 - 6 - h, 196, h)


cases = Cases(strut_bottom=40, compositor=True)


class Drops:
    """A fresh Mosswick with the default settings, and drags onto its shelf from new peers. A drag
    of anything but files does not bring the shelf up: for those it is summoned first."""

    def __init__(self, d, settings=None, summon=False):
        self.d, self.count, self.drags = d, len(saved_items(d)), 0
        self.shelf = Shelf(d, settings, summon=summon)
        if summon:
            self.shelf.wait_frame(frame_for(max(self.count, 1)))
        self.folder = os.path.join(os.fsencode(d.temp), os.fsencode(os.path.basename(d.output)))
        os.makedirs(self.folder, exist_ok=True)

    @property
    def staging(self):
        return os.path.join(os.fsencode(self.shelf.data_folder), b"Staged")

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

    def staged_in_own_folder(self, item, name):
        """The item's staged copy, checked to be `name` in a folder named by the item's id, the
        only thing in that folder."""
        path = staged_path(item)
        folder = os.path.join(self.staging, item["id"].upper().encode())
        expected = os.path.join(folder, name)
        assert path.rstrip(b"/") == expected, (path, expected)
        assert os.listdir(folder) == [name], os.listdir(folder)
        return expected

    def stop(self):
        """Stops Mosswick, which must leave one staged folder per item and nothing else."""
        self.shelf.stop()
        assert len(os.listdir(self.staging)) == self.count, (os.listdir(self.staging), self.count)


def saved_shelf(d, names):
    """A saved shelf holding staged text files of these names, as Mosswick writes it: quicker
    than dropping them, for cases about what comes after."""
    items = []
    for name in names:
        item_id = str(uuid.uuid4())
        folder = os.path.join(data_folder(d), "Staged", item_id.upper())
        os.makedirs(folder)
        [path] = make_files(folder, [name.encode()])
        items.append({"id": item_id, "displayName": name, "stagedURL": file_uri(path),
                      "contentTypeIdentifier": "text/plain", "byteSize": os.path.getsize(path),
                      "addedAt": 700000000.0, "isPromised": False})
    with open(save_file(d), "w", encoding="utf-8") as f:
        json.dump(items, f)


@cases.case
def file_named_not_utf8(d):
    # The drag itself brings the shelf up, and the drop lands.
    drops = Drops(d)
    [latin1] = make_files(drops.folder, [b"caf\xe9.txt"])
    drops.drag("--file", latin1)
    [item] = drops.landed(1)
    assert item["originURL"] == file_uri(latin1) and "batchID" not in item, item
    assert read_bytes(drops.staged_in_own_folder(item, b"caf\xe9.txt")) == read_bytes(latin1)
    assert item["displayName"] == "caf\ufffd.txt", item["displayName"]
    drops.shelf.wait_frame(frame_for(1))
    drops.stop()
    print("ok: a file whose name is not UTF-8, brought up by the drag itself")


@cases.case
def several_files_one_stack(d):
    saved_shelf(d, ["single.txt"])
    drops = Drops(d)
    several = make_files(drops.folder, [b"first.txt", b"second.txt", "Ünïcode ✓.txt".encode()])
    drops.drag("--files", *several)
    items = drops.landed(3)
    assert [i["originURL"] for i in items] == [file_uri(p) for p in several], items
    assert len({i.get("batchID") for i in items} - {None}) == 1 and all("batchID" in i for i in items), items
    for item, path in zip(items, several):
        assert read_bytes(drops.staged_in_own_folder(item, os.path.basename(path))) == read_bytes(path)
    drops.shelf.wait_frame(frame_for(2))
    d.screenshot("stack-and-single")
    drops.stop()
    print("ok: several files at once: one batch, one stack")


@cases.case
def folder(d):
    drops = Drops(d)
    inner = os.path.join(drops.folder, b"a folder")
    os.makedirs(os.path.join(inner, b"sub"))
    make_files(inner, [b"top.txt"])
    make_files(os.path.join(inner, b"sub"), [b"deep.bin"], content=lambda name: bytes(range(256)) * 40)
    drops.drag("--folder", inner)
    [item] = drops.landed(1)
    assert item["contentTypeIdentifier"] == "inode/directory", item
    assert tree(drops.staged_in_own_folder(item, b"a folder")) == tree(inner)
    assert item["byteSize"] >= 256 * 40, item
    drops.stop()
    print("ok: a folder, with everything in it")


@cases.case
def link_with_title(d):
    drops = Drops(d, summon=True)
    url, title = "https://example.org/a page?q=1", "Notes: a/b — ✓"
    drops.drag("--link", url, "--title", title)
    [item] = drops.landed(1)
    link = read_bytes(drops.staged_in_own_folder(item, "Notes- a-b — ✓.desktop".encode())).decode()
    assert (item["displayName"], item["webURL"]) == (title, "https://example.org/a%20page?q=1"), item
    assert link.startswith("[Desktop Entry]\n") and "\nType=Link\n" in link, link
    assert f"\nName={title}\n" in link and "\nURL=https://example.org/a%20page?q=1\n" in link, link
    drops.stop()
    print("ok: a link with its title, as a desktop link file named by the title")


@cases.case
def image(d):
    drops = Drops(d, summon=True)
    picture = os.path.join(drops.folder, b"picture.png")
    png = make_png(picture, 40, 30)
    drops.drag("--image", picture)
    [item] = drops.landed(1)
    assert re.fullmatch(r"Image \d{4}-\d\d-\d\d at \d\d\.\d\d\.\d\d\.png", item["displayName"]), item
    kept = read_bytes(drops.staged_in_own_folder(item, item["displayName"].encode()))
    assert png_pixels(kept) == png_pixels(png), "the image's pixels changed on the way"
    assert item["contentTypeIdentifier"] == "image/png", item
    drops.stop()
    print(f"ok: an image, kept as {item['displayName']!r} with the same pixels")


@cases.case
def text(d):
    drops = Drops(d, summon=True)
    words = "Shopping: milk/eggs\nä ö ü — ✓ 😀\n"
    drops.drag("--text", words)
    [item] = drops.landed(1)
    assert item["displayName"] == "Shopping- milk-eggs.txt", item
    assert read_bytes(drops.staged_in_own_folder(item, b"Shopping- milk-eggs.txt")) == words.encode()
    drops.stop()
    print("ok: text, kept whole as a .txt named from its first line")


@cases.case
def promised_file(d):
    drops = Drops(d, summon=True)
    body = "Name,Wert\nä,1\n"
    drops.drag("--promise", "report.csv", "--promise-type", "text/csv", "--promise-data", body)
    [item] = drops.landed(1)
    assert item["displayName"] == "report.csv" and "originURL" not in item, item
    assert read_bytes(drops.staged_in_own_folder(item, b"report.csv")) == body.encode()
    drops.stop()
    print("ok: a file promised over X Direct Save arrives in the item's own folder")


@cases.case
def promised_file_written_slowly(d):
    # The source answers as it creates the file, then writes it in pieces for about a second, as
    # a browser does with an image: the item is measured once the file is complete. Its name
    # tells no type, so the type read from an empty file would differ too.
    drops = Drops(d, summon=True)
    body = "".join(f"line {n}\n" for n in range(600)).encode()
    drops.drag("--promise", "notes", "--promise-data", body, "--write-in-pieces", "6", "--piece-delay-ms", "200")
    [item] = drops.landed(1)
    assert read_bytes(drops.staged_in_own_folder(item, b"notes")) == body
    assert (item["byteSize"], item["contentTypeIdentifier"]) == (len(body), "text/plain"), item
    d.screenshot("written-slowly")  # the tile tells the size from the same item
    drops.stop()
    print("ok: a promised file written slowly is measured once complete")


@cases.case
def file_from_xarchiver(d):
    drops = Drops(d)
    archive = d.start_xarchiver({"inside.txt": b"from the archive\n"})
    d.drag_from_xarchiver(archive, SHELF_POINT)
    [item] = drops.landed(1)
    assert item["displayName"] == "inside.txt", item
    assert read_bytes(drops.staged_in_own_folder(item, b"inside.txt")) == b"from the archive\n"
    archive.stop()
    drops.stop()
    print("ok: a file dragged out of an archive in xarchiver")


@cases.case
def grows_up_to_seven_tiles(d):
    # Seven saved tiles and one dropped: the shelf stops growing at the seven slots that fit.
    saved_shelf(d, [f"saved {n}.txt" for n in range(7)])
    drops = Drops(d)
    [eighth] = make_files(drops.folder, [b"eighth.txt"])
    drops.drag("--file", eighth)
    [item] = drops.landed(1)
    assert read_bytes(drops.staged_in_own_folder(item, b"eighth.txt")) == b"contents of eighth.txt"
    drops.shelf.wait_frame(frame_for(8))
    d.screenshot("full-shelf")
    drops.stop()
    print("ok: the shelf grew with its tiles up to the seven that fit")


@cases.case
def restart_with_reduced_motion(d):
    # The shelf keeps its items, stays away until a drag, then appears in place without sliding,
    # still takes the drop and grows by its tile.
    drops = Drops(d)
    [first, last] = make_files(drops.folder, [b"first.txt", b"last.txt"])
    drops.drag("--file", first)
    drops.landed(1)
    drops.shelf.wait_frame(frame_for(1))
    drops.shelf.stop()
    drops.shelf = Shelf(d, {"reduceMotion": True})
    assert not drops.shelf.visible()
    drops.drag("--file", last)
    [item] = drops.landed(1)
    kept = saved_items(d)[1]
    assert read_bytes(drops.staged_in_own_folder(item, b"last.txt")) == b"contents of last.txt"
    assert read_bytes(drops.staged_in_own_folder(kept, b"first.txt")) == b"contents of first.txt"
    drops.shelf.wait_frame(frame_for(2))
    drops.stop()
    print("ok: after a restart, with reduced motion, the shelf still has its items and takes a drop")


@cases.case
def full_disk(d):
    # The data folder on a file system of its own that the test fills: a drop while it is full
    # keeps its original, nothing saved before is lost, and saving resumes once there is room.
    if os.geteuid() != 0:
        skip("mounting a small file system for the data folder needs root")
    folder = data_folder(d)
    os.makedirs(folder, mode=0o700, exist_ok=True)
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=512k,mode=0700", "tmpfs", folder]).returncode != 0:
        skip("this machine does not allow mounting a tmpfs")
    drops = None
    try:
        drops = Drops(d)
        [before, during] = make_files(drops.folder, [b"before.txt", b"during.bin"],
                                      content=lambda name: name * 2000)
        drops.drag("--file", before)
        [kept] = drops.landed(1)
        filler = os.path.join(folder, "filler")
        fd = os.open(filler, os.O_WRONLY | os.O_CREAT, 0o600)
        try:
            while os.write(fd, b"\0" * 4096):
                pass
        except OSError:
            pass
        finally:
            os.close(fd)

        drops.drag("--file", during)
        d.wait_for(lambda: "Could not save the shelf" in drops.shelf.app.output(), 5, "the save to fail")
        assert [i["displayName"] for i in saved_items(d)] == ["before.txt"], saved_items(d)
        assert read_bytes(staged_path(kept)) == read_bytes(before), "nothing saved before is lost"
        d.screenshot("cannot-save")

        os.remove(filler)
        items = drops.shelf.wait_saved(lambda items: len(items) == 2, timeout=15)
        assert [i["displayName"] for i in items] == ["during.bin", "before.txt"], items
        assert items[0]["originURL"] == file_uri(during), items[0]
        assert read_bytes(staged_path(kept)) == read_bytes(before)
        drops.shelf.stop()
        print("ok: a drop on a full disk keeps its original, and saving resumes once there is room")
    finally:
        if drops:
            drops.shelf.app.stop()
        subprocess.run(["umount", "-l", folder])


cases.run()
