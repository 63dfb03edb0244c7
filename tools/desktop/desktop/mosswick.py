"""Mosswick on a test desktop: its settings file written before it starts, its save file and
staged copies read back, and its shelf window found, waited for and put away."""

import glob
import json
import os
import time
import urllib.parse
import uuid

from .process import DesktopError
from .programs import mosswick_binary


def write_settings(desktop, **settings):
    """Replaces Mosswick's settings file with these keys (as Preferences stores them). Mosswick
    reads it once, at start-up."""
    folder = os.path.join(desktop.env["XDG_CONFIG_HOME"], "Mosswick")
    os.makedirs(folder, mode=0o700, exist_ok=True)
    path = os.path.join(folder, "settings.json")
    with open(path + ".new", "w", encoding="utf-8") as f:
        json.dump(settings, f)
    os.replace(path + ".new", path)


def data_folder(desktop):
    """Mosswick's data folder on this desktop: the save file and the staged copies."""
    return os.path.join(desktop.env["XDG_DATA_HOME"], "Mosswick")


def save_file(desktop):
    """The path of the shelf's save file."""
    return os.path.join(data_folder(desktop), "shelf.json")


def saved_items(desktop):
    """The items of the shelf's save file (none when it is not there yet)."""
    try:
        with open(save_file(desktop), encoding="utf-8") as f:
            return json.load(f)
    except FileNotFoundError:
        return []


def staged_path(item):
    """The local path (bytes) of an item's staged copy."""
    url = item["stagedURL"]
    assert url.startswith("file://"), url
    return urllib.parse.unquote_to_bytes(urllib.parse.urlsplit(url).path)


def close(frame, expected, tolerance=1):
    """Whether two frames (x, y, width, height) match within `tolerance` pixels each."""
    return len(frame) == len(expected) and all(abs(a - b) <= tolerance for a, b in zip(frame, expected))


def wakeups(program, seconds):
    """How often the program's threads went to sleep and woke again over `seconds` (voluntary
    context switches): an idle Mosswick has no timer running and no reason to wake at all."""
    def count():
        total = 0
        for status in glob.glob(f"/proc/{program.pid}/task/*/status"):
            try:
                with open(status) as f:
                    total += sum(int(line.split()[1]) for line in f if line.startswith("voluntary_ctxt_switches"))
            except OSError:
                pass  # a thread that ended meanwhile
        return total
    before = count()
    time.sleep(seconds)
    return count() - before


def running_copies(binary, runtime_dir=None):
    """Process ids of the programs running `binary` (an absolute path): a Mosswick that is no child
    of the test's (started by a command, a desktop launcher or an update) is found this way.
    With `runtime_dir`, only those of the desktop whose XDG_RUNTIME_DIR that is: tests running at
    the same time start the same binary."""
    binary, found = os.path.realpath(binary), []
    marker = f"XDG_RUNTIME_DIR={runtime_dir}".encode() if runtime_dir else None
    for entry in os.listdir("/proc"):
        try:
            if not entry.isdigit() or os.readlink(f"/proc/{entry}/exe") != binary:
                continue
            if marker:
                with open(f"/proc/{entry}/environ", "rb") as f:
                    if marker not in f.read().split(b"\0"):
                        continue
            found.append(int(entry))
        except OSError:
            pass  # gone meanwhile, or not ours to look at
    return found


class Shelf:
    """A running Mosswick, started with the settings given, and its shelf window."""

    def __init__(self, desktop, settings=None, summon=False):
        self.desktop = desktop
        write_settings(desktop, **(settings or {}))
        self.app = desktop.start_mosswick(*(["--summon"] if summon else []))

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
        d = self.desktop
        window = self.window()
        x, y, width, h = d.window_geometry(window)
        d.click(x + width // 2, y + h - 12)
        d.wait_for(lambda: d.active_window() == window, 3, "the clicked shelf to take the focus")
        d.move(*pointer_to)
        d.key("Escape")
        self.wait_hidden()

    def summon_again(self):
        """A second launch, which asks the running Mosswick to bring the shelf up and exits."""
        self.desktop.run([mosswick_binary(), "--summon"])

    def stop(self):
        self.app.stop()
        assert self.app.popen.returncode == 0, f"Mosswick exited with {self.app.popen.returncode}:\n" + \
            self.app.output()[-2000:]

    @property
    def data_folder(self):
        return data_folder(self.desktop)

    def wait_saved(self, until, timeout=10):
        """The items of the save file once `until(items)` holds."""
        return self.desktop.wait_json(save_file(self.desktop), until=until, timeout=timeout)


def shelve(desktop, files, batch=None, links=None):
    """Writes a save file holding `files` (paths, bytes or str, top of the shelf first), each with a
    staged copy of its own, for a Mosswick not yet started to restore; `batch` makes them one
    stack, `links` maps a file to the (url, title) of the link it stands for. Returns the items
    as written."""
    staging = os.path.join(os.fsencode(data_folder(desktop)), b"Staged")
    os.makedirs(staging, mode=0o700, exist_ok=True)
    items = []
    for path in files:
        path = os.fsencode(path)
        item_id = str(uuid.uuid4()).upper()
        folder = os.path.join(staging, item_id.encode())
        os.makedirs(folder, mode=0o700)
        staged = os.path.join(folder, os.path.basename(path))
        with open(path, "rb") as source, open(staged, "wb") as copy:
            copy.write(source.read())
        item = {"id": item_id, "displayName": os.path.basename(path).decode(errors="replace"),
                "originURL": _file_uri(path), "stagedURL": _file_uri(staged),
                "contentTypeIdentifier": "text/plain", "byteSize": os.path.getsize(path),
                "addedAt": 0, "isPromised": False}
        if batch:
            item["batchID"] = batch
        if links and path in {os.fsencode(p) for p in links}:
            url, title = links[next(p for p in links if os.fsencode(p) == path)]
            item.update(webURL=url, displayName=title, contentTypeIdentifier="application/x-desktop")
        items.append(item)
    with open(save_file(desktop) + ".new", "w", encoding="utf-8") as f:
        json.dump(items, f)
    os.replace(save_file(desktop) + ".new", save_file(desktop))
    return items


def _file_uri(path):
    return "file://" + urllib.parse.quote_from_bytes(path, safe="/")
