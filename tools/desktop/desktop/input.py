"""Pointer and keyboard on a test desktop, through xdotool; drags paced so that X11 drag and drop
follows them."""

import math
import subprocess
import time


def drag_steps(start, end, button=1, keys=()):
    """The xdotool command line of a drag from `start` to `end`, paced so that X11 drag and drop
    follows it: move onto the source, wait, press, leave the press point in small steps (past the
    drag distance), travel in steps of at most 150 px with a pause after each, a final 1 px move,
    wait for the target's answer, release."""
    (sx, sy), (ex, ey) = start, end
    steps = ["mousemove", sx, sy, "sleep", 0.3]
    for key in keys:
        steps += ["keydown", key, "sleep", 0.05]
    steps += ["mousedown", button, "sleep", 0.1]
    moves = [(5, 2), (10, 3)]
    dx, dy = ex - sx - 16, ey - sy - 6
    count = max(2, math.ceil(max(abs(dx), abs(dy)) / 150))
    done_x = done_y = 0
    for i in range(1, count + 1):
        x, y = round(dx * i / count), round(dy * i / count)
        moves.append((x - done_x, y - done_y))
        done_x, done_y = x, y
    moves.append((1, 1))
    for mx, my in moves:
        steps += ["mousemove_relative", "--", mx, my, "sleep", 0.1]
    steps[-1] = 0.2
    steps += ["mouseup", button]
    for key in reversed(keys):
        steps += ["keyup", key]
    return steps


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


class Input:
    """Desktop methods that drive the pointer and the keyboard."""

    drag_steps = staticmethod(drag_steps)

    def xdotool(self, *args):
        """Runs xdotool on this desktop."""
        return self.run(["xdotool", *args])

    def move(self, x, y):
        """Puts the pointer at (x, y) (a warp: no motion events on the way)."""
        self.xdotool("mousemove", x, y)

    def pointer(self):
        """Where the pointer is, (x, y)."""
        fields = dict(part.split(":") for part in self.xdotool("getmouselocation").split())
        return int(fields["x"]), int(fields["y"])

    def press(self, button=1):
        self.xdotool("mousedown", button)

    def release(self, button=1):
        self.xdotool("mouseup", button)

    def click(self, x, y, button=1):
        self.xdotool("mousemove", x, y, "sleep", 0.1, "click", button)

    def key(self, *keys):
        """Presses and releases each key in turn (xdotool names: "F5", "ctrl+alt+space")."""
        self.xdotool("key", *keys)

    def key_down(self, key):
        self.xdotool("keydown", key)

    def key_up(self, key):
        self.xdotool("keyup", key)

    def drag(self, start, end, button=1, keys=()):
        """Drags with the pointer from `start` to `end` (root coordinates), holding `keys`
        (xdotool names such as "shift") from before the press to after the release."""
        self.xdotool(*drag_steps(start, end, button, keys))


class Drag:
    """A drag (drag_steps) run in the background, so the test can look at the screen while the
    button is down. `started` and `ended` are time.monotonic() at the xdotool process's start and
    exit (its last step is the release)."""

    press_move = staticmethod(press_move)

    def __init__(self, desktop, start, end, keys=()):
        self.started = time.monotonic()
        self.process = subprocess.Popen(["xdotool", *map(str, drag_steps(start, end, keys=keys))],
                                        env=desktop.env, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.ended = None

    def finish(self, timeout=30):
        """Waits for the release and returns the drag."""
        _, errors = self.process.communicate(timeout=timeout)
        self.ended = time.monotonic()
        assert self.process.returncode == 0, f"xdotool failed: {errors.decode(errors='replace')}"
        return self
