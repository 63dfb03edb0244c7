"""Drags between two test peers: one receiver stays up, each drag starts a source of its own."""

import base64

SOURCE_GEOMETRY = "100,100,200,150"
SOURCE_POINT = (200, 175)
TARGET_GEOMETRY = "700,100,300,200"


def data(drop, target):
    """The bytes a drop delivered for an X target."""
    return base64.b64decode(drop["data"][target])


class PeerPair:
    """A receiving peer at TARGET_GEOMETRY; drag() starts a source peer and drops on it."""

    def __init__(self, desktop, *receiver_args, geometry=TARGET_GEOMETRY, name="rx"):
        self.desktop = desktop
        self.name = name
        self.report = desktop.out(f"{name}.json")
        self.drops = 0
        self.drags = 0
        self.receiver = desktop.start_peer("receive", "--geometry", geometry, "--report", self.report,
                                           *receiver_args)
        desktop.wait_mapped(self.receiver)
        x, y, width, height = (int(v) for v in geometry.split(","))
        self.point = (x + width // 2, y + height // 2)

    def drag(self, *source_args, to=None):
        """Drags the payload `source_args` describe onto the receiver (or to `to`, a point) and
        returns (what the receiver recorded, what the source reported); the record is None when
        nothing reached this receiver."""
        self.drags += 1
        source_report = self.desktop.out(f"{self.name}-drag-{self.drags}.json")
        source = self.desktop.start_peer("drag", "--geometry", SOURCE_GEOMETRY, "--report", source_report,
                                         *source_args)
        self.desktop.wait_mapped(source)
        self.desktop.drag(SOURCE_POINT, to or self.point)
        reported = self.desktop.wait_json(source_report)["drags"][0]
        source.wait()
        if not reported["finished"] or reported["target_window"] not in self.desktop.windows(self.receiver):
            return None, reported
        self.drops += 1
        drop = self.desktop.wait_json(self.report, until=lambda r: len(r["drops"]) >= self.drops)
        return drop["drops"][self.drops - 1], reported
