"""A Mosswick started on a shelf of files made for the test, at its default place (right bottom,
growing with its tiles): on a 1280x800 screen with a 40 px panel at the bottom, n tiles stand at
x 1078, from y = 760 - 6 - h, h = n x 88 + 56; tile i (from the top) has its centre at
(1176, y + 84 + 88 i)."""

import os
import time
import urllib.parse

from .mosswick import Shelf, save_file, saved_items, shelve, staged_path

# Long enough for a removal to be saved (0.4 s after it) had there been one.
SETTLE = 1.5


def frame_for(tiles):
    h = min(tiles, 7) * 88 + 56
    return (1078, 760 - 6 - h, 196, h)


def tile_point(tiles, index):
    _, y, _, _ = frame_for(tiles)
    return (1176, y + 84 + 88 * index)


def uri(path):
    return b"file://" + urllib.parse.quote_from_bytes(path, safe="/").encode()


class ShelfWithFiles:
    """A Mosswick started on a shelf holding files made in the case's own folder, top first."""

    def __init__(self, d, names, settings=None, batch=None, links=None, folder=b"originals"):
        self.d = d
        self.folder = os.path.join(os.fsencode(d.output), folder)
        os.makedirs(self.folder, exist_ok=True)
        self.paths = []
        for name in names:
            path = os.path.join(self.folder, os.fsencode(name))
            with open(path, "wb") as f:
                f.write(b"contents of " + os.fsencode(name))
            self.paths.append(path)
        self.items = shelve(d, self.paths, batch=batch,
                            links={self.paths[names.index(n)]: v for n, v in (links or {}).items()})
        self.tiles = 1 if batch else len(names)
        self.shelf = Shelf(d, settings, summon=True)
        self.shelf.wait_frame(frame_for(self.tiles))

    def tile(self, index=0):
        return tile_point(self.tiles, index)

    def staged(self, index):
        return staged_path(self.items[index])

    def saved_names(self, until):
        """The names in the save file once `until(items)` holds for it."""
        def ready():
            items = saved_items(self.d)
            return ([item["displayName"] for item in items],) if until(items) else None
        return self.d.wait_for(ready, 10, "the shelf's save file")[0]

    def kept(self):
        """The shelf still shows all its tiles and saved no change, a while after the drag."""
        before = os.stat(save_file(self.d)).st_mtime_ns
        time.sleep(SETTLE)
        assert os.stat(save_file(self.d)).st_mtime_ns == before, saved_items(self.d)
        self.shelf.wait_frame(frame_for(self.tiles))


