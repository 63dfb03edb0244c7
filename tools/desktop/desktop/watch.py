"""The shelf seen from outside, for the tests of what brings it up: the test peer's watcher
records every drag start and every time a window comes or goes, with monotonic times, so a shelf
that flashes up for a few milliseconds, or comes twice, is seen as surely as one that stays."""

import json

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
        return [e for e in self.events(since) if e.get("class") == SHELF_CLASS and e["event"] in ("map", "unmap")
                and (until is None or e["time"] <= until)]

    def sizes(self, since=0.0):
        """(time, width, height) of each change of the shelf window's size at or after `since`."""
        return [(e["time"], e["width"], e["height"]) for e in self.events(since)
                if e.get("class") == SHELF_CLASS and e["event"] == "size"]

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
