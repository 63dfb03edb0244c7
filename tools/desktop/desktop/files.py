"""Files for the tests to drag and to compare: names as bytes (they need not be UTF-8), their
file URIs, and PNG images written and read back with the standard library alone."""

import os
import struct
import urllib.parse
import zlib


def file_uri(path):
    """The file URI of a path given as bytes, percent-encoded as file managers write it."""
    return "file://" + urllib.parse.quote(path, safe="/!$&'()*+,;=:@~")


def make_files(folder, names, content=lambda name: b"contents of " + name):
    """Creates files (names as bytes) in `folder` and returns their paths as bytes."""
    paths = []
    for name in names:
        path = os.path.join(os.fsencode(folder), name)
        with open(path, "wb") as f:
            f.write(content(name))
        paths.append(path)
    return paths


def read_bytes(path):
    with open(path, "rb") as f:
        return f.read()


def make_png(path, width, height):
    """Writes a PNG of a colour gradient (RGB, 8 bits) and returns its bytes."""
    rows = b"".join(b"\0" + bytes(v for x in range(width) for v in (x * 255 // width, y * 255 // height, 128))
                    for y in range(height))

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) + \
        chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)
    return png


def png_pixels(data):
    """(width, height, rows of RGBA tuples) of an 8-bit, non-interlaced grey, RGB or RGBA PNG."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n", data[:8]
    offset, chunks = 8, {}
    while offset < len(data):
        length, kind = struct.unpack(">I4s", data[offset:offset + 8])
        chunks[kind] = chunks.get(kind, b"") + data[offset + 8:offset + 8 + length]
        offset += 12 + length
    width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", chunks[b"IHDR"])
    channels = {0: 1, 2: 3, 4: 2, 6: 4}[colour]
    assert depth == 8 and not interlace, (depth, interlace)
    raw, stride, rows, previous = zlib.decompress(chunks[b"IDAT"]), width * channels, [], bytes(width * channels)
    for y in range(height):
        kind, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            left = line[i - channels] if i >= channels else 0
            up, corner = previous[i], previous[i - channels] if i >= channels else 0
            if kind == 1:
                line[i] = (line[i] + left) & 255
            elif kind == 2:
                line[i] = (line[i] + up) & 255
            elif kind == 3:
                line[i] = (line[i] + (left + up) // 2) & 255
            elif kind == 4:
                p = left + up - corner
                nearest = min((abs(p - left), 0, left), (abs(p - up), 1, up), (abs(p - corner), 2, corner))[2]
                line[i] = (line[i] + nearest) & 255
        previous = bytes(line)
        pixels = [tuple(line[x * channels:(x + 1) * channels]) for x in range(width)]
        expand = {1: lambda p: (p[0],) * 3 + (255,), 2: lambda p: (p[0],) * 3 + (p[1],),
                  3: lambda p: p + (255,), 4: lambda p: p}[channels]
        rows.append([expand(p) for p in pixels])
    return width, height, rows


def tree(folder):
    """{relative path: bytes or None for folders} of everything under a folder (paths as given,
    str or bytes)."""
    found = {}
    for root, folders, files in os.walk(folder):
        for name in folders + files:
            path = os.path.join(root, name)
            found[os.path.relpath(path, folder)] = None if name in folders else read_bytes(path)
    return found
