"""The programs under test and what a test needs to run them: where the build put Mosswick and
the test peer, skipping a test that lacks something, and starting both on a desktop."""

import json
import os
import shutil
import sys

SKIP_CODE = 77
"""Exit code of a skipped test (CTest's SKIP_RETURN_CODE)."""

REQUIRED_PROGRAMS = ("Xvfb", "openbox", "xdotool", "xwininfo", "xprop", "xrandr", "import")
"""What every desktop needs; skip_unless_available() checks them."""

MOSSWICK_STARTED = "Mosswick is running"
"""The line Mosswick prints once it has started up (its shortcut registered or refused)."""

_TOP = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..")


class Skipped(SystemExit):
    """A test (or one case of it) that cannot run here. Left uncaught, it ends the script with
    SKIP_CODE; the case runner catches it and goes on with the next case."""

    def __init__(self, reason):
        super().__init__(SKIP_CODE)
        self.reason = reason

    def __str__(self):
        return self.reason


def build_dir():
    """The build folder: $MOSSWICK_BUILD_DIR, else build/ at the top of the source tree."""
    return os.environ.get("MOSSWICK_BUILD_DIR") or os.path.join(_TOP, "build")


def peer_binary():
    """The test peer: $MOSSWICK_TESTPEER, else mosswick-testpeer in the build folder."""
    return os.environ.get("MOSSWICK_TESTPEER") or os.path.join(build_dir(), "mosswick-testpeer")


def mosswick_binary():
    """Mosswick itself: $MOSSWICK_BINARY, else mosswick in the build folder."""
    return os.environ.get("MOSSWICK_BINARY") or os.path.join(build_dir(), "mosswick")


def skip(reason):
    """Ends the test (or, under the case runner, the case) as skipped, saying why."""
    print(f"SKIP: {reason}", file=sys.stdout, flush=True)
    raise Skipped(reason)


def skip_unless_available(*programs, peer=True, mosswick=False):
    """Skips the test when Xvfb, openbox, xdotool, the X utilities, any of `programs`, the test
    peer or (with mosswick=True) the Mosswick binary is missing."""
    missing = [p for p in REQUIRED_PROGRAMS + programs if not shutil.which(p)]
    if missing:
        skip("not installed: " + ", ".join(missing))
    if peer and not os.access(peer_binary(), os.X_OK):
        skip(f"the test peer is not built ({peer_binary()})")
    if mosswick and not os.access(mosswick_binary(), os.X_OK):
        skip(f"mosswick is not built ({mosswick_binary()})")


class Programs:
    """Desktop methods that start the programs under test."""

    def start_peer(self, mode, *args, env=None):
        """Starts the test peer (`mosswick-testpeer MODE ARGS`); see its --help."""
        return self.start([peer_binary(), mode, *args], name=f"peer-{mode}", env=env)

    def start_mosswick(self, *args, env=None):
        """Starts Mosswick ($MOSSWICK_BINARY) on this desktop and waits until it has started up."""
        app = self.start([mosswick_binary(), *args], name="mosswick", env=env)
        self.wait_output(app, MOSSWICK_STARTED)
        return app

    def screens_seen_by_qt(self):
        """What a Qt program sees: {"screens": [{"name", "geometry", "available"}], "primary",
        "compositor": bool, "workarea"}."""
        return json.loads(self.run([peer_binary(), "screens"]))
