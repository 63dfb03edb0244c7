"""Mosswick's shelf on a test desktop: settings written before it starts, its window found and
waited for, its frame compared, the screen's pixels read back, and the save file and staged
copies it leaves."""

import json
import os
import struct
import subprocess
import urllib.parse
import zlib

from desktop import DesktopError, mosswick_binary


class Shelf:
    """A running Mosswick and its shelf window."""

    def __init__(self, desktop, settings=None, summon=False):
        self.desktop = desktop
        write_settings(desktop, settings or {})
        self.app = desktop.start_mosswick(*(["--summon"] if summon else []))
        desktop.wait_output(self.app, "Mosswick is running")

    def window(self, timeout=10):
        """The shelf's window once it is mapped."""
        return self.desktop.wait_mapped(self.app, timeout)

    def visible(self):
        return bool(self.desktop.windows(self.app))

    def wait_frame(self, expected, tolerance=1, timeout=5):
        """Waits until the shelf is mapped at `expected` (x, y, width, height in X root pixels,
        each within `tolerance`) and returns the window. Slides take a quarter of a second, so
        the frame is waited for, not read once."""
        seen = []

        def placed():
            windows = self.desktop.windows(self.app)
            if not windows:
                seen.append("not mapped")
                return None
            frame = self.desktop.window_geometry(windows[0])
            seen.append(frame)
            return windows[0] if close(frame, expected, tolerance) else None
        try:
            return self.desktop.wait_for(placed, timeout, f"the shelf at {expected}")
        except DesktopError:
            raise AssertionError(f"the shelf is not at {expected} (±{tolerance}): last seen {seen[-1]}") from None

    def wait_hidden(self, timeout=5):
        self.desktop.wait_for(lambda: not self.visible(), timeout, "the shelf to go away")

    def put_away(self, pointer_to):
        """Clicks the shelf's empty bottom strip (the shelf then takes the focus), moves the pointer
        to `pointer_to` (a shelf under the pointer lingers), presses Escape and waits until the
        shelf is gone."""
        window = self.window()
        x, y, width, h = self.desktop.window_geometry(window)
        self.desktop.click(x + width // 2, y + h - 12)
        self.desktop.wait_for(lambda: active_window(self.desktop) == window, 3, "the clicked shelf to take the focus")
        self.desktop.move(*pointer_to)
        self.desktop.key("Escape")
        self.wait_hidden()

    def summon_again(self):
        """A second launch, which asks the running Mosswick to bring the shelf up and exits."""
        self.desktop.run([mosswick_binary(), "--summon"])

    def stop(self):
        self.app.stop()
        assert self.app.popen.returncode == 0, f"Mosswick exited with {self.app.popen.returncode}:\n" + \
            self.app.output()[-2000:]

    # --- what it keeps ------------------------------------------------------------------------

    @property
    def data_folder(self):
        return data_folder(self.desktop)

    def saved_items(self, until, timeout=10):
        """The items of shelf.json once `until(items)` holds."""
        return self.desktop.wait_json(save_file(self.desktop), until=until, timeout=timeout)


def data_folder(desktop):
    """Mosswick's data folder on this desktop: the save file and the staged copies."""
    return os.path.join(desktop.env["XDG_DATA_HOME"], "Mosswick")


def save_file(desktop):
    return os.path.join(data_folder(desktop), "shelf.json")


def active_window(desktop):
    """_NET_ACTIVE_WINDOW as a window id, or None."""
    value = desktop.root_property("_NET_ACTIVE_WINDOW")
    return int(value.split("#")[-1].strip(), 16) if value else None


def write_settings(desktop, settings):
    folder = os.path.join(desktop.env["XDG_CONFIG_HOME"], "Mosswick")
    os.makedirs(folder, mode=0o700, exist_ok=True)
    path = os.path.join(folder, "settings.json")
    with open(path + ".new", "w", encoding="utf-8") as f:
        json.dump(settings, f)
    os.replace(path + ".new", path)


def close(frame, expected, tolerance=1):
    return len(frame) == len(expected) and all(abs(a - b) <= tolerance for a, b in zip(frame, expected))


def staged_path(item):
    """The local path (bytes) of an item's staged copy."""
    url = item["stagedURL"]
    assert url.startswith("file://"), url
    return urllib.parse.unquote_to_bytes(urllib.parse.urlsplit(url).path)


def read_bytes(path):
    with open(path, "rb") as f:
        return f.read()


# --- pixels ----------------------------------------------------------------------------------

def pixels(desktop, rect):
    """The screen's pixels in `rect` (x, y, width, height) as rows of (r, g, b)."""
    x, y, width, h = rect
    done = subprocess.run(["import", "-window", "root", "-crop", f"{width}x{h}+{x}+{y}", "+repage",
                           "-depth", "8", "ppm:-"], env=desktop.env, capture_output=True, timeout=30, check=True)
    data = done.stdout
    # "P6\nW H\n255\n" then the samples.
    fields, offset = [], 0
    while len(fields) < 4:
        while data[offset:offset + 1].isspace():
            offset += 1
        end = offset
        while not data[end:end + 1].isspace():
            end += 1
        fields.append(data[offset:end])
        offset = end
    offset += 1
    assert fields[0] == b"P6" and int(fields[3]) == 255, fields
    w, h = int(fields[1]), int(fields[2])
    body = data[offset:offset + w * h * 3]
    return [[tuple(body[(row * w + col) * 3:(row * w + col) * 3 + 3]) for col in range(w)] for row in range(h)]


def pixel(desktop, x, y):
    return pixels(desktop, (x, y, 1, 1))[0][0]


def distinct_colours(desktop, rect):
    return {p for row in pixels(desktop, rect) for p in row}


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
        pixels_ = [tuple(line[x * channels:(x + 1) * channels]) for x in range(width)]
        expand = {1: lambda p: (p[0],) * 3 + (255,), 2: lambda p: (p[0],) * 3 + (p[1],),
                  3: lambda p: p + (255,), 4: lambda p: p}[channels]
        rows.append([expand(p) for p in pixels_])
    return width, height, rows
