"""A headless KDE Wayland session for one test: KWin 5.27 on its virtual backend with XWayland, a
private session bus and its own runtime folder; the pointer driven through KWin's fake-input
protocol (mosswick-kwin-input, built from the protocol's XML) and Wayland-native GTK programs as
the other side of a drag (stand-ins/kwin-gtk-peer.py).

    from desktop.kwin import KWinCases

    cases = KWinCases()

    @cases.case
    def a_drop(d):                 # d: a KWinDesktop
        src = d.start_gtk("src", "--file", path, "--max")
        d.pointer.drag([(800, 500), (1598, 500)], release=False)
        ...

Mosswick and the test peer run as X clients through XWayland (QT_QPA_PLATFORM=xcb); xdotool
reaches X windows only, so input for Wayland windows always goes through `d.pointer`.

KWin is started as kwin_wayland_wrapper would: the X display's sockets are opened here and handed
over (--xwayland-fd). Debian's /usr/bin/kwin_wayland carries the file capability cap_sys_resource,
which a container's bounding set may lack (execve then fails with EPERM), so a copy without it is
run from the build folder. Where KWin, XWayland, GTK or the injector are missing, or KWin does not
come up, the test skips with the reason."""

import os
import shutil
import socket
import subprocess
import time

from .cases import Cases
from .core import Desktop
from .process import DesktopError, Program
from .programs import build_dir, skip
from .xwayland import SYSTEM_PYTHON, XWaylandWindows

KWIN = "/usr/bin/kwin_wayland"
GTK_PEER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "stand-ins", "kwin-gtk-peer.py")
SIZE = (1600, 1000)


def injector():
    """The fake-input pointer injector the build made, at the top of the build folder."""
    return os.environ.get("MOSSWICK_KWIN_INPUT") or os.path.join(build_dir(), "mosswick-kwin-input")


def skip_unless_kwin():
    """Skips unless KWin, XWayland, GTK for Python and the injector are there."""
    missing = [p for p in (KWIN, "/usr/bin/Xwayland") if not os.path.exists(p)]
    if missing:
        skip("not installed: " + ", ".join(missing))
    if not os.access(injector(), os.X_OK):
        skip(f"the KWin pointer injector is not built ({injector()}: needs wayland-scanner, "
             "plasma-wayland-protocols and libwayland-dev when configuring)")
    probe = subprocess.run([SYSTEM_PYTHON, "-c", "import gi; gi.require_version('Gtk', '3.0')"],
                           capture_output=True)
    if probe.returncode != 0:
        skip("no GTK 3 for Python (python3-gi, gir1.2-gtk-3.0)")


def _kwin_copy():
    """A copy of kwin_wayland without its file capability (cp drops the extended attribute)."""
    folder = os.path.join(build_dir(), "kwin")
    copy = os.path.join(folder, "kwin_wayland")
    if not os.path.exists(copy) or os.path.getmtime(copy) < os.path.getmtime(KWIN):
        os.makedirs(folder, exist_ok=True)
        shutil.copy(KWIN, copy + ".new")
        os.replace(copy + ".new", copy)
    return copy


class _XSockets:
    """The listening sockets of a free X display :N (its lock file, the abstract and the file
    system socket), opened before KWin starts as the wrapper would; removed again by close()."""

    def __init__(self):
        for number in range(400 + os.getpid() % 300, 1000):
            lock = f"/tmp/.X{number}-lock"
            try:
                fd = os.open(lock, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o444)
            except FileExistsError:
                continue
            os.write(fd, b"%10d\n" % os.getpid())
            os.close(fd)
            try:
                self._open(number)
            except OSError:
                os.unlink(lock)
                continue
            self.number, self.lock = number, lock
            return
        raise DesktopError("no free X display number for XWayland")

    def _open(self, number):
        os.makedirs("/tmp/.X11-unix", mode=0o1777, exist_ok=True)
        self.path = f"/tmp/.X11-unix/X{number}"
        abstract = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        abstract.bind(f"\0{self.path}")
        abstract.listen(16)
        if os.path.exists(self.path):
            os.unlink(self.path)
        named = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        named.bind(self.path)
        named.listen(16)
        self.sockets = [abstract, named]
        self.fds = [s.fileno() for s in self.sockets]

    def release(self):
        """Closes our copies once KWin holds its own."""
        for s in self.sockets:
            s.close()

    def close(self):
        for path in (self.lock, self.path):
            try:
                os.unlink(path)
            except FileNotFoundError:
                pass


class Pointer:
    """The compositor's pointer (and keyboard), moved and pressed through fake input. Each command
    returns once KWin has handled it, with the CLOCK_MONOTONIC time at which it was sent."""

    compositor = "KWin"

    def __init__(self, desktop, command=None, name="kwin-input", env=None):
        """`command`: the injector and its arguments (KWin's own by default); it reads one command
        a line and answers "done T" to each."""
        fifo = os.path.join(desktop.temp, "pointer.fifo")
        os.mkfifo(fifo)
        command = command or [injector()]
        self.program = desktop.start(["sh", "-c", f'exec "$0" "$@" < "{fifo}"', *command], name=name,
                                     **({"env": env} if env is not None else {}))
        self._pipe = open(fifo, "w", buffering=1)
        self._done = 0
        desktop.wait_output(self.program, "ready")
        self.desktop = desktop

    def send(self, command):
        self._pipe.write(command + "\n")
        self._done += 1

        def answered():
            lines = [l for l in self.program.output().splitlines() if l.startswith("done ")]
            return len(lines) >= self._done and float(lines[self._done - 1].split()[1])
        return self.desktop.wait_for(answered, 10, f"{self.compositor} to take {command!r}", interval=0.005)

    def move_to(self, x, y):
        return self.send(f"abs {x} {y}")

    def move_by(self, dx, dy):
        return self.send(f"rel {dx} {dy}")

    def down(self):
        return self.send("down")

    def up(self):
        return self.send("up")

    def key(self, code):
        """Presses and releases the key of evdev code `code` (F5: 63) on the compositor's keyboard."""
        self.send(f"key {code} 1")
        return self.send(f"key {code} 0")

    def click(self, x, y, button=0x110):
        """Moves to (x, y) and clicks the button of evdev code `button` (right: 0x111)."""
        self.move_to(x, y)
        time.sleep(0.1)
        self.send(f"button {button} 1")
        return self.send(f"button {button} 0")

    def start_drag(self, x, y):
        """Presses at (x, y) and moves past the toolkit's drag distance, as the findings' drags
        do. Returns the time of the first move."""
        self.move_to(x, y)
        time.sleep(0.3)
        self.down()
        time.sleep(0.15)
        first = self.move_by(5, 2)
        time.sleep(0.1)
        self.move_by(10, 3)
        time.sleep(0.1)
        return first

    def glide(self, frm, to, step=130, pause=0.1):
        """Relative moves from `frm` to `to`, none longer than `step` px, `pause` s apart; the last
        one a single pixel, so a target under it answers meanwhile. Returns the time of the move
        that reached `to`."""
        x, y = frm
        tx, ty = to
        while abs(tx - x) > 1 or abs(ty - y) > 1:
            dx = max(-step, min(step, tx - x - (1 if tx > x else -1 if tx < x else 0)))
            dy = max(-step, min(step, ty - y))
            if dx == 0 and dy == 0:
                break
            self.move_by(dx, dy)
            x, y = x + dx, y + dy
            time.sleep(pause)
        reached = self.move_by(tx - x, ty - y) if (tx, ty) != (x, y) else time.monotonic()
        time.sleep(0.3)
        return reached

    def close(self):
        try:
            self._pipe.close()
        except OSError:
            pass


class KWinDesktop(XWaylandWindows, Desktop):
    """Desktop over a headless KWin with XWayland instead of Xvfb and openbox: one screen of
    SIZE, always a private session bus; `pointer` drives KWin's pointer."""

    def __init__(self, **options):
        options.pop("screens", None)
        options.pop("session_bus", None)
        self.kwin = None
        self._sockets = None
        super().__init__(screens=[SIZE], session_bus=False, **options)
        self.pointer = Pointer(self)

    def _start_x_server(self):
        self._start_session_bus()
        runtime = self.env["XDG_RUNTIME_DIR"]
        self.env.update({
            "XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "KDE", "WAYLAND_DISPLAY": "wayland-test",
            # Fake input for any client, and GL composition in software (no GPU here).
            "KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1", "LIBGL_ALWAYS_SOFTWARE": "1",
            "GIO_USE_VFS": "local", "GVFS_DISABLE_FUSE": "1",
        })
        self._sockets = _XSockets()
        display = f":{self._sockets.number}"
        argv = [_kwin_copy(), "--virtual", "--xwayland", "--width", SIZE[0], "--height", SIZE[1],
                "--socket", "wayland-test", "--no-lockscreen", "--xwayland-display", display]
        for fd in self._sockets.fds:
            argv += ["--xwayland-fd", fd]
        # Not a client of another display itself: XWayland's sockets are the ones handed over.
        environment = {k: v for k, v in self.env.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
        self.kwin = Program(argv, environment, self._log_path("kwin_wayland"), pass_fds=tuple(self._sockets.fds))
        self._programs.append(self.kwin)
        self._sockets.release()
        self.display = display
        self.env["DISPLAY"] = display
        try:
            self.wait_for(lambda: os.path.exists(os.path.join(runtime, "wayland-test")) or self._kwin_gone(),
                          20, "KWin's Wayland socket")
            self.wait_for(lambda: self._kwin_gone() or self._x_managed(), 30, "KWin to manage XWayland")
        except DesktopError as problem:
            skip(f"KWin did not come up: {problem}; its log: {self.kwin.output()[-600:]}")
        if self._kwin_gone():
            skip(f"KWin exited ({self.kwin.popen.returncode}): {self.kwin.output()[-600:]}")

    def _kwin_gone(self):
        return not self.kwin.running()

    def _x_managed(self):
        done = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.env, capture_output=True,
                              timeout=10)
        return done.returncode == 0 and b"window id" in done.stdout

    def _start_window_manager(self):
        pass  # KWin manages the X windows itself

    def close(self):
        if getattr(self, "pointer", None):
            self.pointer.close()
        super().close()
        if self._sockets:
            self._sockets.close()

    def start_gtk(self, *args, name="gtk"):
        """Starts the Wayland-native GTK peer (`src` or `dst`; see its --help) and returns it once
        its window is up."""
        env = {"GDK_BACKEND": "wayland", "DISPLAY": ""}
        program = self.start([SYSTEM_PYTHON, GTK_PEER, *args], name=name, env=env)
        self.wait_output(program, "configure", timeout=15)
        return program


class KWinCases(Cases):
    """Cases on one KWinDesktop (see Cases); the whole script skips where KWin cannot run."""

    def __init__(self, **desktop_options):
        super().__init__(desktop=KWinDesktop, **desktop_options)

    def run(self, names=None):
        skip_unless_kwin()
        super().run(names)

    @staticmethod
    def _report(d):
        Cases._report(d)
        # A drag cut short leaves KWin's button held for the next case: xdotool cannot reach it.
        try:
            d.pointer.up()
        except DesktopError:
            pass
