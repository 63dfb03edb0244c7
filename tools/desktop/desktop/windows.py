"""Looking at a test desktop: finding a program's windows, their geometry and properties, the
window manager's view, screenshots and the screen's pixels."""

import os
import re
import subprocess

from .process import Program, DesktopError


class Windows:
    """Desktop methods that find and inspect windows and read the screen."""

    def windows(self, program):
        """The visible top-level windows of a program (or process id), as X window ids: mapped and
        standing at least partly on the screen (a window kept mapped outside it is not seen)."""
        pid = program.pid if isinstance(program, Program) else int(program)
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(pid)], env=self.env,
                               capture_output=True, timeout=10)
        windows = [int(w) for w in found.stdout.split()]
        if not windows:
            return []
        # The whole root window: xdotool's display geometry is only the first monitor's.
        root = self.run(["xwininfo", "-root"])
        width = int(re.search(r"Width: (\d+)", root).group(1))
        height = int(re.search(r"Height: (\d+)", root).group(1))

        def on_screen(window):
            try:
                x, y, w, h = self.window_geometry(window)
            except (DesktopError, KeyError):
                return False  # gone meanwhile
            return x < width and y < height and x + w > 0 and y + h > 0
        return [w for w in windows if on_screen(w)]

    def wait_mapped(self, program, timeout=10):
        """Waits until a program (or process id) has a visible window and returns its id."""
        def mapped():
            if isinstance(program, Program) and not program.running():
                raise DesktopError(f"{program.name} exited ({program.popen.returncode}) before showing a "
                                   f"window:\n{program.output()[-2000:]}")
            return self.windows(program)
        return self.wait_for(mapped, timeout, f"a window of {program}")[0]

    def window_geometry(self, window):
        """(x, y, width, height) of a window's client area in root coordinates (xwininfo: it does
        not count the window manager's frame in, as xdotool getwindowgeometry does)."""
        fields = {}
        for line in self.run(["xwininfo", "-id", window]).splitlines():
            key, _, value = line.strip().partition(":")
            fields[key] = value.strip()
        return tuple(int(fields[k]) for k in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def window_property(self, window, name):
        """A window's property as xprop prints its value, or None when it is not set."""
        return self._property(["-id", str(window)], name)

    def root_property(self, name):
        """A property of the root window as xprop prints its value, or None."""
        return self._property(["-root"], name)

    def _property(self, target, name):
        # "NAME(TYPE) = value", "NAME(WINDOW): window id # 0x...", or "NAME:  not found."
        line = self.run(["xprop", *target, name], check=False).strip()
        found = re.match(r"[^(:]+\([^)]*\)(?: = |: )(.*)$", line, re.S)
        return found.group(1).strip() if found else None

    def window_class(self, window):
        """WM_CLASS of a window as (instance, class), or None."""
        value = self.window_property(window, "WM_CLASS")
        return tuple(part.strip().strip('"') for part in value.split(",")) if value else None

    def window_state(self, window):
        """The atoms of a window's _NET_WM_STATE (e.g. "_NET_WM_STATE_ABOVE")."""
        value = self.window_property(window, "_NET_WM_STATE")
        return [atom.strip() for atom in value.split(",")] if value else []

    def client_list(self):
        """The windows openbox manages (_NET_CLIENT_LIST), as ids."""
        value = self.root_property("_NET_CLIENT_LIST")
        return [int(w.split("#")[-1].strip(), 16) for w in value.split(",")] if value else []

    def active_window(self):
        """_NET_ACTIVE_WINDOW as a window id, or None."""
        value = self.root_property("_NET_ACTIVE_WINDOW")
        return int(value.split("#")[-1].strip(), 16) if value else None

    # --- the screen -----------------------------------------------------------------------

    def screenshot(self, name):
        """Saves the whole screen as <name>.png in the output folder and returns its path."""
        path = os.path.join(self.output, name + ".png")
        self.run(["import", "-window", "root", path])
        return path

    def pixels(self, rect):
        """The screen's pixels in `rect` (x, y, width, height) as rows of (r, g, b)."""
        x, y, width, h = rect
        data = subprocess.run(["import", "-window", "root", "-crop", f"{width}x{h}+{x}+{y}", "+repage",
                               "-depth", "8", "ppm:-"], env=self.env, capture_output=True, timeout=30,
                              check=True).stdout
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

    def pixel(self, x, y):
        """The screen's colour at (x, y) as (r, g, b)."""
        return self.pixels((x, y, 1, 1))[0][0]
