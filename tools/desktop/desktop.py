"""A headless X desktop for Mosswick's desktop tests: Xvfb, openbox and, on request, a private
session bus, a compositor, a tray, a second screen and a panel that reserves screen space.

    from desktop import Desktop, skip_unless_available

    skip_unless_available()
    with Desktop() as d:
        rx = d.start_peer("receive", "--geometry", "600,100,300,200", "--report", d.out("rx.json"))
        d.wait_mapped(rx)
        src = d.start_peer("drag", "--file", path, "--geometry", "100,100,200,150")
        d.wait_mapped(src)
        d.drag((200, 175), (750, 200))
        report = d.wait_json(d.out("rx.json"))

Everything the desktop starts runs in a process group of its own and is stopped by process id
when the `with` block ends, when the test fails, times out or is killed. Standard library only.
"""

import atexit
import ctypes
import json
import math
import os
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SKIP_CODE = 77
"""Exit code of a skipped test (CTest's SKIP_RETURN_CODE)."""

REQUIRED_PROGRAMS = ("Xvfb", "openbox", "xdotool", "xwininfo", "xprop", "xrandr", "import")
"""What every desktop needs; skip_unless_available() checks them."""

_HERE = os.path.dirname(os.path.abspath(__file__))


class DesktopError(Exception):
    """The desktop or a program on it did not do what was asked."""


def build_dir():
    """The build folder: $MOSSWICK_BUILD_DIR, else build/ at the top of the source tree."""
    return os.environ.get("MOSSWICK_BUILD_DIR") or os.path.join(_HERE, "..", "..", "build")


def peer_binary():
    """The test peer: $MOSSWICK_TESTPEER, else mosswick-testpeer in the build folder."""
    return os.environ.get("MOSSWICK_TESTPEER") or os.path.join(build_dir(), "mosswick-testpeer")


def mosswick_binary():
    """Mosswick itself: $MOSSWICK_BINARY, else mosswick in the build folder."""
    return os.environ.get("MOSSWICK_BINARY") or os.path.join(build_dir(), "mosswick")


def skip(reason):
    """Ends the test as skipped (exit code 77), saying why."""
    print(f"SKIP: {reason}", flush=True)
    sys.exit(SKIP_CODE)


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


def _arguments(argv):
    # Paths may come as bytes (file names need not be UTF-8); numbers as numbers.
    return [a if isinstance(a, (str, bytes)) else str(a) for a in argv]


def _die_with_parent():
    # Runs in the child before exec: should the test process be killed outright (SIGKILL gives it
    # no chance to clean up), the kernel still stops what it started.
    PR_SET_PDEATHSIG = 1
    try:
        ctypes.CDLL(None, use_errno=True).prctl(PR_SET_PDEATHSIG, signal.SIGTERM)
    except (OSError, AttributeError):
        pass


def _children(pid):
    """Process ids whose parent is `pid`."""
    found = []
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                with open(f"/proc/{entry}/stat", "rb") as f:
                    # The name in parentheses may hold spaces: the parent follows the last ")".
                    if int(f.read().rsplit(b")", 1)[1].split()[1]) == pid:
                        found.append(int(entry))
            except (OSError, IndexError, ValueError):
                pass
    return found


# A /tmp of its own for a program, keeping the X sockets and the desktop's temporary folder ($1)
# at their places; then runs the rest of the arguments.
_PRIVATE_TMP = """set -e
mount --bind /tmp /mnt
mount -t tmpfs tmpfs /tmp
mkdir -p /tmp/.X11-unix "$1"
mount --bind /mnt/.X11-unix /tmp/.X11-unix
case "$1" in /tmp/*) mount --bind "/mnt/${1#/tmp/}" "$1" ;; esac
shift
exec "$@"
"""

_private_tmp = None


def _private_tmp_allowed():
    """Whether this process may give a child a mount namespace of its own (root may)."""
    global _private_tmp
    if _private_tmp is None:
        _private_tmp = shutil.which("unshare") is not None and subprocess.run(
            ["unshare", "--mount", "--propagation", "private", "true"], capture_output=True).returncode == 0
    return _private_tmp


def _xarchiver_running():
    """Whether some xarchiver listens on its single-instance socket (read from /proc, without
    touching it)."""
    listening = 0x10000  # __SO_ACCEPTCON
    try:
        with open("/proc/net/unix") as table:
            next(table)
            for line in table:
                fields = line.split()
                if len(fields) >= 8 and fields[7].startswith("/tmp/.xarchiver-socket") and \
                        int(fields[3], 16) & listening:
                    return True
    except OSError:
        pass
    return False


class Program:
    """A process started on the desktop, leading a process group of its own; what it prints
    (standard output and error) goes to a log file in the test's output folder."""

    def __init__(self, argv, env, log, pass_fds=()):
        self.name = os.path.basename(argv[0])
        self.log = log
        with open(log, "wb") as sink:
            self.popen = subprocess.Popen(
                _arguments(argv), env=env, stdin=subprocess.DEVNULL, stdout=sink,
                stderr=subprocess.STDOUT, start_new_session=True, pass_fds=pass_fds,
                preexec_fn=_die_with_parent)
        self.pid = self.popen.pid

    def running(self):
        """True while the process has not exited."""
        return self.popen.poll() is None

    def output(self):
        """Everything it has printed so far."""
        with open(self.log, "rb") as f:
            return f.read().decode("utf-8", "replace")

    def wait(self, timeout=10):
        """Waits for it to exit and returns its exit code."""
        try:
            return self.popen.wait(timeout)
        except subprocess.TimeoutExpired:
            raise DesktopError(f"{self.name} (pid {self.pid}) still runs after {timeout} s") from None

    def stop(self, grace=2.0):
        """Stops its whole process group: SIGTERM, then SIGKILL after `grace` seconds."""
        if self.popen.returncode is None:
            self._signal(signal.SIGTERM)
            try:
                self.popen.wait(grace)
            except subprocess.TimeoutExpired:
                pass
        # Whatever it started in its group goes too, even once the leader is gone.
        self._signal(signal.SIGKILL)
        self.popen.wait()

    def _signal(self, number):
        try:
            os.killpg(self.pid, number)
        except (ProcessLookupError, PermissionError):
            pass

    def __repr__(self):
        return f"<Program {self.name} pid {self.pid}>"


class Desktop:
    """A private X desktop for one test. Use it as a context manager.

    screens: sizes of the screens (monitors), side by side from the left, tops aligned.
    strut_bottom: height of a panel along the bottom of the first screen that reserves its
        strip, so the window manager's work area is smaller than the screen.
    session_bus: start a private D-Bus session bus (else programs find no session bus).
    compositor: start xcompmgr and wait until it runs.
    tray: start trayer, an XEmbed system tray (openbox has none).
    name: the test's name (default $MOSSWICK_TEST_NAME, else the script's name).
    timeout: seconds after which the test fails (default $MOSSWICK_TEST_TIMEOUT).
    """

    def __init__(self, screens=((1280, 800),), strut_bottom=0, session_bus=False, compositor=False,
                 tray=False, name=None, timeout=None):
        self.name = name or os.environ.get("MOSSWICK_TEST_NAME") or \
            os.path.splitext(os.path.basename(sys.argv[0]))[0]
        self.screens = [tuple(s) for s in screens]
        self._programs = []
        self._closed = False
        self._count = {}
        self.output = self._prepare_output()
        self.temp = tempfile.mkdtemp(prefix="mosswick-desktop-")
        self.home = os.path.join(self.temp, "home")
        self.env = self._sandbox_environment()
        atexit.register(self.close)
        self._previous_handlers = {s: signal.signal(s, self._on_signal)
                                   for s in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)}
        timeout = timeout if timeout is not None else float(os.environ.get("MOSSWICK_TEST_TIMEOUT", 0))
        if timeout:
            signal.signal(signal.SIGALRM, self._on_timeout)
            signal.setitimer(signal.ITIMER_REAL, timeout)
        try:
            self._start_x_server()
            if session_bus:
                self._start_session_bus()
            self._start_window_manager()
            if compositor:
                self._start_compositor()
            if strut_bottom:
                self.add_strut("bottom", strut_bottom)
            if tray:
                self._start_tray()
        except BaseException:
            self.close()
            raise

    # --- lifetime -------------------------------------------------------------------------

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        if kind is not None and kind is not SystemExit and not self._closed:
            self._report_failure()
        self.close()
        return False

    @property
    def programs(self):
        """Everything started on this desktop so far (the X server and window manager too)."""
        return list(self._programs)

    def close(self):
        """Stops everything the desktop started, newest first, and removes its temporary folder.
        The output folder stays."""
        if self._closed:
            return
        self._closed = True
        signal.setitimer(signal.ITIMER_REAL, 0)
        for program in reversed(self._programs):
            program.stop()
        shutil.rmtree(self.temp, ignore_errors=True)
        for number, handler in self._previous_handlers.items():
            signal.signal(number, handler)

    def _on_signal(self, number, frame):
        raise SystemExit(128 + number)

    def _on_timeout(self, number, frame):
        raise TimeoutError(f"{self.name} ran out of time")

    def _report_failure(self):
        try:
            print(f"screenshot at failure: {self.screenshot('failure')}", file=sys.stderr)
        except Exception as problem:  # the display itself may be what failed
            print(f"no screenshot at failure: {problem}", file=sys.stderr)
        print(f"logs of the programs: {self.output}", file=sys.stderr)

    # --- set-up ---------------------------------------------------------------------------

    def _prepare_output(self):
        given = os.environ.get("MOSSWICK_TEST_OUTPUT")
        folder = given or os.path.join(build_dir(), "test-output", self.name)
        if not given:
            shutil.rmtree(folder, ignore_errors=True)  # last run's screenshots would mislead
        os.makedirs(folder, exist_ok=True)
        return os.path.abspath(folder)

    def _sandbox_environment(self):
        env = dict(os.environ)
        # Nothing of the developer's own session may leak in.
        for key in ("WAYLAND_DISPLAY", "QT_QPA_PLATFORMTHEME", "XDG_CURRENT_DESKTOP", "XDG_SESSION_DESKTOP",
                    "DESKTOP_SESSION", "SESSION_MANAGER", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS",
                    "GTK_MODULES", "RESOURCE_NAME"):
            env.pop(key, None)
        for sub in ("data", "config", "cache", "runtime", "home"):
            os.makedirs(os.path.join(self.temp, sub), mode=0o700)
        env.update({
            "HOME": self.home,
            "XDG_DATA_HOME": os.path.join(self.temp, "data"),
            "XDG_CONFIG_HOME": os.path.join(self.temp, "config"),
            "XDG_CACHE_HOME": os.path.join(self.temp, "cache"),
            "XDG_RUNTIME_DIR": os.path.join(self.temp, "runtime"),
            "XDG_SESSION_TYPE": "x11",
            "QT_QPA_PLATFORM": "xcb",
            # A session bus nobody listens on: without one, D-Bus would start a bus of its own
            # for the display, outside this desktop's control.
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=" + os.path.join(self.temp, "runtime", "no-bus"),
            # GTK programs would start the accessibility bus.
            "NO_AT_BRIDGE": "1",
            "GTK_A11Y": "none",
        })
        return env

    def _start_x_server(self):
        # One X screen holding all the monitors side by side: Xvfb's own +xinerama stacks its
        # screens at the same origin, so the monitors are laid out with RandR instead (Qt reads
        # them from RandR, openbox from the Xinerama view the server derives from them).
        width = sum(w for w, _ in self.screens)
        height = max(h for _, h in self.screens)
        reader, writer = os.pipe()
        argv = ["Xvfb", "-displayfd", str(writer), "-nolisten", "tcp", "-noreset",
                "-screen", "0", f"{width}x{height}x24"]
        try:
            self._programs.append(Program(argv, self.env, self._log_path("Xvfb"), pass_fds=(writer,)))
        finally:
            os.close(writer)
        number = b""
        deadline = time.monotonic() + 15
        try:
            while not number.endswith(b"\n") and time.monotonic() < deadline:
                ready, _, _ = select.select([reader], [], [], max(0.0, deadline - time.monotonic()))
                chunk = os.read(reader, 16) if ready else b""
                if not chunk:
                    break
                number += chunk
        finally:
            os.close(reader)
        if not number.endswith(b"\n"):
            raise DesktopError("Xvfb did not report its display number")
        self.display = ":" + number.decode().strip()
        self.env["DISPLAY"] = self.display
        if len(self.screens) > 1:
            self._lay_out_monitors()

    def _lay_out_monitors(self):
        left = 0
        for number, (width, height) in enumerate(self.screens):
            millimetres = f"{width}/{round(width * 25.4 / 96)}x{height}/{round(height * 25.4 / 96)}"
            # The first monitor takes over the server's own output; the others show no output.
            self.run(["xrandr", "--setmonitor", f"screen-{number}", f"{millimetres}+{left}+0",
                      "screen" if number == 0 else "none"])
            left += width
    def _start_window_manager(self):
        self.start(["openbox", "--sm-disable"], name="openbox")
        # openbox takes over window management before it announces itself; the work area comes
        # last, once it has set up the screen.
        self.wait_for(lambda: self.root_property("_NET_SUPPORTING_WM_CHECK") and
                      self.root_property("_NET_WORKAREA"), 10, "openbox to manage the screen")

    def _start_session_bus(self):
        reader, writer = os.pipe()
        try:
            self.start(["dbus-daemon", "--session", "--nofork", f"--print-address={writer}"],
                       name="dbus-daemon", pass_fds=(writer,))
        finally:
            os.close(writer)
        with os.fdopen(reader, "rb") as pipe:
            ready, _, _ = select.select([pipe], [], [], 10)
            address = pipe.readline().decode().strip() if ready else ""
        if not address:
            raise DesktopError("dbus-daemon did not report its address")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = address

    def _start_compositor(self):
        self.start(["xcompmgr"], name="xcompmgr")
        self.wait_for(lambda: self.screens_seen_by_qt().get("compositor"), 10, "xcompmgr to compose")

    def _start_tray(self):
        tray = self.start(["trayer", "--edge", "top", "--align", "right", "--widthtype", "pixel",
                           "--width", "120", "--height", "24", "--SetPartialStrut", "false"], name="trayer")
        self.wait_mapped(tray)

    def add_strut(self, edge, size, screen=0):
        """Starts a panel along `edge` ("top", "bottom", "left", "right") of a screen that
        reserves `size` pixels, and waits until the window manager's work area leaves it out."""
        before = self.workarea()
        panel = self.start_peer("strut", "--edge", edge, "--size", size, "--screen", screen)
        self.wait_mapped(panel)
        self.wait_for(lambda: self.workarea() != before, 10, f"the work area to leave out the {edge} panel")
        return panel

    # --- programs -------------------------------------------------------------------------

    def _log_path(self, name):
        count = self._count[name] = self._count.get(name, 0) + 1
        return os.path.join(self.output, f"{name}-{count}.log")

    def start(self, argv, name=None, env=None, pass_fds=()):
        """Starts a program on this desktop with the sandboxed environment (plus `env`) and
        returns its Program; it is stopped when the desktop closes."""
        environment = dict(self.env, **(env or {}))
        program = Program(argv, environment, self._log_path(name or os.path.basename(str(argv[0]))),
                          pass_fds=pass_fds)
        self._programs.append(program)
        return program

    def start_peer(self, mode, *args, env=None):
        """Starts the test peer (`mosswick-testpeer MODE ARGS`); see its --help."""
        return self.start([peer_binary(), mode, *args], name=f"peer-{mode}", env=env)

    def start_mosswick(self, *args, env=None):
        """Starts Mosswick ($MOSSWICK_BINARY) on this desktop."""
        return self.start([mosswick_binary(), *args], name="mosswick", env=env)

    def make_zip(self, files, name="archive.zip"):
        """Makes a zip archive in the temporary folder holding `files` ({name: bytes}) and
        returns its path."""
        folder = tempfile.mkdtemp(prefix="zip-", dir=self.temp)
        for entry, data in files.items():
            path = os.path.join(folder, entry)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as f:
                f.write(data)
        archive = os.path.join(self.temp, name)
        subprocess.run(["zip", "-q", "-r", archive, *files], cwd=folder, env=self.env, check=True)
        return archive

    def start_xarchiver(self, files, timeout=20):
        """Opens a zip archive of `files` ({name: bytes}) in xarchiver, a real X Direct Save
        source, and waits until it has listed the archive.

        xarchiver runs once per user on the whole machine, whatever the display: a second one
        hands its archive to the first (through /tmp/.xarchiver-socket…, to that one's display)
        and quits. So it runs with a /tmp of its own (a private mount namespace) where that is
        allowed; where it is not, the test is skipped while another xarchiver runs."""
        archive = self.make_zip(files)
        argv = ["xarchiver", archive]
        if _private_tmp_allowed():
            argv = ["unshare", "--mount", "--propagation", "private", "sh", "-c", _PRIVATE_TMP, "sh",
                    self.temp, *argv]
        elif _xarchiver_running():
            skip("another xarchiver of this user is running; it would take the archive instead")
        program = self.start(argv, name="xarchiver")
        window = self.wait_mapped(program, timeout)
        title = os.path.basename(archive)
        # It lists the archive by running unzip: done once the title names it and no helper runs.
        self.wait_for(lambda: title in self.run(["xdotool", "getwindowname", window], check=False)
                      and not _children(program.pid), timeout, "xarchiver to list the archive")
        return program

    def drag_from_xarchiver(self, program, to, row=0, keys=()):
        """Drags entry number `row` of xarchiver's file list to `to`. The list's place in the
        window is xarchiver's default layout (600x400 window, 200 px tree, DejaVu fonts)."""
        x, y, _, _ = self.window_geometry(self.wait_mapped(program))
        self.drag((x + 250, y + 152 + 25 * row), to, keys=keys)

    def run(self, argv, timeout=30, check=True):
        """Runs a command on this desktop to its end and returns its standard output."""
        done = subprocess.run(_arguments(argv), env=self.env, capture_output=True, timeout=timeout)
        if check and done.returncode != 0:
            raise DesktopError(f"{' '.join(map(repr, argv))} failed ({done.returncode}): "
                               f"{done.stderr.decode(errors='replace').strip()}")
        return done.stdout.decode("utf-8", "replace")

    # --- waiting --------------------------------------------------------------------------

    def wait_for(self, condition, timeout=10, what="the condition", interval=0.05):
        """Calls `condition` until it returns something true, and returns that; fails after
        `timeout` seconds, naming `what` it waited for."""
        deadline = time.monotonic() + timeout
        while True:
            result = condition()
            if result:
                return result
            if time.monotonic() > deadline:
                raise DesktopError(f"timed out after {timeout} s waiting for {what}")
            time.sleep(interval)

    def windows(self, program):
        """The visible top-level windows of a program (or process id), as X window ids."""
        pid = program.pid if isinstance(program, Program) else int(program)
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(pid)], env=self.env,
                               capture_output=True, timeout=10)
        return [int(w) for w in found.stdout.split()]

    def wait_mapped(self, program, timeout=10):
        """Waits until a program (or process id) has a visible window and returns its id."""
        def mapped():
            if isinstance(program, Program) and not program.running():
                raise DesktopError(f"{program.name} exited ({program.popen.returncode}) before showing a "
                                   f"window:\n{program.output()[-2000:]}")
            return self.windows(program)
        return self.wait_for(mapped, timeout, f"a window of {program}")[0]

    def wait_file(self, path, timeout=10):
        """Waits until a file exists and returns its path."""
        return self.wait_for(lambda: os.path.exists(path) and path, timeout, f"{path} to be written")

    def wait_json(self, path, until=None, timeout=10):
        """Waits until a JSON file exists (and `until(data)` holds, when given) and returns its
        data. The peers write their reports whole (temporary file, then rename)."""
        def ready():
            try:
                with open(path, encoding="utf-8") as f:
                    data = json.load(f)
            except FileNotFoundError:
                return None
            return data if until is None or until(data) else None
        return self.wait_for(ready, timeout, f"{path}" + (" to hold what was expected" if until else ""))

    def wait_output(self, program, text, timeout=10):
        """Waits until a program has printed `text`."""
        return self.wait_for(lambda: text in program.output(), timeout, f"{program} to print {text!r}")

    # --- input ----------------------------------------------------------------------------

    def xdotool(self, *args):
        """Runs xdotool on this desktop."""
        return self.run(["xdotool", *args])

    def move(self, x, y):
        """Puts the pointer at (x, y) (a warp: no motion events on the way)."""
        self.xdotool("mousemove", x, y)

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

    @staticmethod
    def drag_steps(start, end, button=1, keys=()):
        """The xdotool command line of a drag from `start` to `end`, paced so that X11 drag and
        drop follows it: move onto the source, wait, press, leave the press point in small
        steps (past the drag distance), travel in steps of at most 150 px with a pause after
        each, a final 1 px move, wait for the target's answer, release."""
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

    def drag(self, start, end, button=1, keys=()):
        """Drags with the pointer from `start` to `end` (root coordinates), holding `keys`
        (xdotool names such as "shift") from before the press to after the release."""
        self.xdotool(*self.drag_steps(start, end, button, keys))

    # --- looking --------------------------------------------------------------------------

    def out(self, name):
        """A path in the test's output folder (kept after the test)."""
        return os.path.join(self.output, name)

    def screenshot(self, name):
        """Saves the whole screen as <name>.png in the output folder and returns its path."""
        path = self.out(name + ".png")
        self.run(["import", "-window", "root", path])
        return path

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

    def workarea(self):
        """The window manager's work area (x, y, width, height) on the first desktop."""
        value = self.root_property("_NET_WORKAREA")
        return tuple(int(v) for v in value.split(",")[:4]) if value else None

    def screens_seen_by_qt(self):
        """What a Qt program sees: {"screens": [{"name", "geometry", "available"}], "primary",
        "compositor": bool, "workarea"}."""
        return json.loads(self.run([peer_binary(), "screens"]))
