"""Tiles show previews made the way the desktop makes them: a PNG and a JPEG read by Qt, a PDF
by evince-thumbnailer, a video by ffmpegthumbnailer. Each file is one flat colour of its own, so
a tile shows its preview when the shelf's pixels hold enough of that colour; with previews
switched off the same shelf, its cache already full, shows icons and none of the colours.

The shelf is a saved one (its files staged in Mosswick's data folder, as Mosswick keeps them),
summoned at start: right bottom, 4 tiles on a 1280x800 screen with a 40 px panel."""

import json
import os
import struct
import subprocess
import time
import uuid

from desktop import Cases, skip_unless_available
from desktop.files import file_uri
from desktop.mosswick import Shelf, data_folder, save_file

skip_unless_available("evince-thumbnailer", "ffmpegthumbnailer", "convert", peer=False, mosswick=True)

TILES = 4
FRAME_HEIGHT = TILES * 88 + 56
FRAME = (1078, 760 - 6 - FRAME_HEIGHT, 196, FRAME_HEIGHT)
# Enough of a colour to be a picture in a 52-point square, not a stray antialiased edge.
ENOUGH = 500

cases = Cases(strut_bottom=40)


def pdf_page(rgb):
    """A one-page PDF whose page is filled with one colour."""
    r, g, b = (c / 255 for c in rgb)
    content = f"{r:.3f} {g:.3f} {b:.3f} rg 0 0 300 400 re f\n".encode()
    objects = [b"<< /Type /Catalog /Pages 2 0 R >>", b"<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
               b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 400] /Contents 4 0 R /Resources << >> >>",
               b"<< /Length %d >>\nstream\n" % len(content) + content + b"endstream"]
    out, offsets = b"%PDF-1.4\n", []
    for number, body in enumerate(objects, 1):
        offsets.append(len(out))
        out += b"%d 0 obj\n" % number + body + b"\nendobj\n"
    xref = len(out)
    out += b"xref\n0 %d\n0000000000 65535 f \n" % (len(objects) + 1)
    out += b"".join(b"%010d 00000 n \n" % offset for offset in offsets)
    out += b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (len(objects) + 1, xref)
    return out


def chunk(kind, body):
    return kind + struct.pack("<I", len(body)) + body + (b"\0" if len(body) % 2 else b"")


def riff_list(kind, body):
    return chunk(b"LIST", kind + body)


def mjpeg_avi(jpeg, width, height, frames=10):
    """A motion-JPEG AVI of the same JPEG frame over and over, at 10 frames a second."""
    avih = struct.pack("<14I", 100000, len(jpeg) * 10, 0, 0x10, frames, 0, 1, len(jpeg), width, height, 0, 0, 0, 0)
    strh = b"vidsMJPG" + struct.pack("<IHHIIIIIIIIhhhh", 0, 0, 0, 0, 1, 10, 0, frames, len(jpeg), 0xFFFFFFFF, 0,
                                     0, 0, width, height)
    strf = struct.pack("<IiiHH4sIiiII", 40, width, height, 1, 24, b"MJPG", width * height * 3, 0, 0, 0, 0)
    header = riff_list(b"hdrl", chunk(b"avih", avih) + riff_list(b"strl", chunk(b"strh", strh) + chunk(b"strf", strf)))
    movi, index, offset = b"", b"", 4
    for _ in range(frames):
        frame = chunk(b"00dc", jpeg)
        index += b"00dc" + struct.pack("<III", 0x10, offset, len(jpeg))
        movi += frame
        offset += len(frame)
    body = b"AVI " + header + riff_list(b"movi", movi) + chunk(b"idx1", index)
    return b"RIFF" + struct.pack("<I", len(body)) + body


def flat_image(d, rgb, width, height, kind):
    """A picture of one colour in ImageMagick's `kind` (png, jpg)."""
    path = os.path.join(d.output, f"flat-{rgb[0]}-{rgb[1]}-{rgb[2]}.{kind}")
    subprocess.run(["convert", "-size", f"{width}x{height}", "xc:#%02x%02x%02x" % rgb, path], check=True,
                   timeout=30)
    with open(path, "rb") as f:
        return f.read()


def saved_shelf(d, files):
    """A saved shelf of staged files: (name, content type, bytes), the first newest."""
    items = []
    for name, content_type, data in files:
        item_id = str(uuid.uuid4())
        folder = os.path.join(data_folder(d), "Staged", item_id.upper())
        os.makedirs(folder)
        path = os.path.join(folder, name)
        with open(path, "wb") as f:
            f.write(data)
        items.append({"id": item_id, "displayName": name, "stagedURL": file_uri(path.encode()),
                      "contentTypeIdentifier": content_type, "byteSize": len(data),
                      "addedAt": 700000000.0 - len(items), "isPromised": False})
    with open(save_file(d), "w", encoding="utf-8") as f:
        json.dump(items, f)


def colour_counts(d, colours, tolerance=48):
    """How many of the shelf's pixels are near each colour."""
    counts = {name: 0 for name in colours}
    for row in d.pixels(FRAME):
        for pixel in row:
            for name, rgb in colours.items():
                if all(abs(a - b) <= tolerance for a, b in zip(pixel, rgb)):
                    counts[name] += 1
    return counts


COLOURS = {"png": (230, 0, 230), "jpeg": (0, 220, 220), "pdf": (0, 0, 255), "video": (0, 200, 0)}


@cases.case
def previews_then_icons(d):
    saved_shelf(d, [
        ("magenta picture.png", "image/png", flat_image(d, COLOURS["png"], 400, 300, "png")),
        ("cyan photo.JPG", "image/jpeg", flat_image(d, COLOURS["jpeg"], 1600, 1200, "jpg")),
        ("blue document.pdf", "application/pdf", pdf_page(COLOURS["pdf"])),
        ("green clip.avi", "video/x-msvideo", mjpeg_avi(flat_image(d, COLOURS["video"], 320, 240, "jpg"), 320, 240)),
    ])
    shelf = Shelf(d, {}, summon=True)
    shelf.wait_frame(FRAME)
    deadline, counts = time.monotonic() + 30, {}
    while time.monotonic() < deadline:
        counts = colour_counts(d, COLOURS)
        if all(count >= ENOUGH for count in counts.values()):
            break
        time.sleep(0.5)
    d.screenshot("previews")
    assert all(count >= ENOUGH for count in counts.values()), counts
    cache = os.path.join(d.env["XDG_CACHE_HOME"], "thumbnails", "normal")
    assert len(os.listdir(cache)) == 4, os.listdir(cache)
    shelf.stop()

    # Off: icons, though every preview is in the cache.
    shelf = Shelf(d, {"showQuickLookPreviews": False}, summon=True)
    shelf.wait_frame(FRAME)
    time.sleep(1.5)
    counts = colour_counts(d, COLOURS)
    d.screenshot("icons")
    assert all(count < 50 for count in counts.values()), counts
    shelf.stop()


cases.run()
