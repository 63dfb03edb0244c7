"""What the Wayland sessions' tests (mutter, KWin) share about X clients under XWayland: a
window's own pixels (the root window shows nothing there), a flat-coloured image on the shelf to
look for in them, and a stand-in file manager on the test's session bus.

    class SomeDesktop(XWaylandWindows, Desktop): ...

    manager = FileManagerStandIn(d)
    ...
    assert manager.calls() == [{"method": "ShowItems", "uris": [...]}]"""

import json
import os
import subprocess

from .mosswick import save_file, shelve

SYSTEM_PYTHON = "/usr/bin/python3"  # Debian's, with GObject: not a virtualenv's
_FILE_MANAGER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "stand-ins", "file-manager.py")


def _ppm(data):
    """Rows of (r, g, b) from a binary PPM ("P6 W H 255", then the samples)."""
    header, offset = [], 0
    while len(header) < 4:
        while data[offset:offset + 1].isspace():
            offset += 1
        end = offset
        while not data[end:end + 1].isspace():
            end += 1
        header.append(data[offset:end])
        offset = end
    width, height = int(header[1]), int(header[2])
    body = data[offset + 1:]
    return [[tuple(body[(r * width + c) * 3:(r * width + c) * 3 + 3]) for c in range(width)] for r in range(height)]


class XWaylandWindows:
    """For a Desktop whose X server is XWayland: `pixels` and `screenshot` read the root window,
    which is empty there, so a window is read from its own backing pixmap instead."""

    def window_pixels(self, window):
        """A window's own pixels as rows of (r, g, b)."""
        data = subprocess.run(["import", "-window", str(window), "-depth", "8", "ppm:-"], env=self.env,
                              capture_output=True, timeout=30, check=True).stdout
        return _ppm(data)


def shelve_flat_image(d, colour, name=b"flat.png"):
    """Writes a 120x90 PNG of one colour into the case's folder and a save file holding it as an
    image, for a Mosswick not yet started to restore. Returns its path."""
    path = os.path.join(os.fsencode(d.output), name)
    subprocess.run(["convert", "-size", "120x90", "xc:#%02x%02x%02x" % colour, path], check=True, timeout=30)
    items = shelve(d, [path])
    items[0]["contentTypeIdentifier"] = "image/png"
    with open(save_file(d), "w", encoding="utf-8") as f:
        json.dump(items, f)
    return path


def colour_count(pixels, colour, tolerance=48):
    """How many pixels are within `tolerance` of `colour` in each channel."""
    return sum(all(abs(a - b) <= tolerance for a, b in zip(pixel, colour)) for row in pixels for pixel in row)


class FileManagerStandIn:
    """org.freedesktop.FileManager1 on the desktop's session bus, recording each call."""

    def __init__(self, d):
        self.report = d.out("file-manager.jsonl")
        self.program = d.start([SYSTEM_PYTHON, _FILE_MANAGER, self.report], name="file-manager")
        d.wait_output(self.program, "ready")

    def calls(self):
        """The calls so far, as {"method", "uris"}."""
        try:
            with open(self.report, encoding="utf-8") as f:
                return [json.loads(line) for line in f]
        except FileNotFoundError:
            return []
