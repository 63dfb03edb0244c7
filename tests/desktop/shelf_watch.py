"""Mosswick's shelf seen from outside, for the tests of what brings it up: the real binary with
settings of the test's choosing, and the peer's watcher recording every drag start and every
time the shelf's window comes or goes, with monotonic times (so a shelf that flashes up for a
few milliseconds, or comes twice, is seen as surely as one that stays)."""

import glob
import json
import os
import subprocess
import time

import shelf as shelf_module

SHELF_CLASS = "Mosswick"


class ShelfWatch:
    """The watcher peer's record of one desktop."""

    def __init__(self, desktop):
        self.desktop = desktop
        self.watcher = desktop.start_peer("watch")
        desktop.wait_output(self.watcher, "ready")

    def events(self, since=0.0):
        """Everything recorded at or after `since` (time.monotonic() seconds), oldest first."""
        found = []
        for line in self.watcher.output().splitlines():
            if line.startswith("{"):
                event = json.loads(line)
                if event["time"] >= since:
                    found.append(event)
        return found

    def shelf(self, since=0.0, until=None):
        """The shelf's "map" and "unmap" events between `since` and `until`."""
        return [e for e in self.events(since) if e.get("class") == SHELF_CLASS and
                (until is None or e["time"] <= until)]

    def drag_starts(self, since=0.0, until=None):
        """Times at which some program took the drag selection (began a drag)."""
        return [e["time"] for e in self.events(since) if e["event"] == "selection" and
                (until is None or e["time"] <= until)]

    def is_up(self):
        """Whether the shelf's window is mapped now (as far as the watcher has read)."""
        events = self.shelf()
        return bool(events) and events[-1]["event"] == "map"

    def wait(self, kind, since, timeout=5):
        """Waits for the shelf's first `kind` ("map" or "unmap") event at or after `since` and
        returns its time."""
        def seen():
            events = [e for e in self.shelf(since) if e["event"] == kind]
            return events[0]["time"] if events else None
        return self.desktop.wait_for(seen, timeout, f"the shelf's window to {kind}")

    def wait_hidden(self, timeout=5):
        """Waits until the shelf's window is not mapped."""
        self.desktop.wait_for(lambda: not self.is_up(), timeout, "the shelf to go away")


class Drag:
    """A drag (Desktop.drag_steps) run in the background, so the test can look at the shelf while
    the button is down. `started` and `ended` are time.monotonic() at the xdotool process's start
    and exit (its last step is the release)."""

    def __init__(self, desktop, start, end, keys=()):
        self.started = time.monotonic()
        self.process = subprocess.Popen(["xdotool", *map(str, desktop.drag_steps(start, end, keys=keys))],
                                        env=desktop.env, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.ended = None

    @staticmethod
    def press_move(start, end, steps=4):
        """xdotool steps that press at `start`, move to `end` in `steps` paced moves and release:
        what selecting text or moving a window by its title bar does with the mouse."""
        (sx, sy), (ex, ey) = start, end
        moves = ["mousemove", sx, sy, "sleep", 0.3, "mousedown", 1, "sleep", 0.1]
        done_x = done_y = 0
        for i in range(1, steps + 1):
            x, y = round((ex - sx) * i / steps), round((ey - sy) * i / steps)
            moves += ["mousemove_relative", "--", x - done_x, y - done_y, "sleep", 0.1]
            done_x, done_y = x, y
        return moves + ["mouseup", 1]

    def finish(self, timeout=30):
        _, errors = self.process.communicate(timeout=timeout)
        self.ended = time.monotonic()
        assert self.process.returncode == 0, f"xdotool failed: {errors.decode(errors='replace')}"
        return self


def write_settings(desktop, **settings):
    """Replaces Mosswick's settings file with these keys (as Preferences stores them)."""
    shelf_module.write_settings(desktop, settings)


def shelf_file(desktop):
    """The path of the shelf's save file."""
    return shelf_module.save_file(desktop)


def saved_items(desktop):
    """The items of the shelf's save file (none when it is not there yet)."""
    try:
        with open(shelf_file(desktop), encoding="utf-8") as f:
            return json.load(f)
    except FileNotFoundError:
        return []


def start_mosswick(desktop, *args):
    """Starts Mosswick and waits until it has started up (its shortcut registered or refused)."""
    app = desktop.start_mosswick(*args)
    desktop.wait_output(app, "Mosswick is running")
    return app


def shelf_window(desktop, app):
    """The shelf's client window id (Mosswick's only visible top-level window)."""
    return desktop.wait_mapped(app)


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
