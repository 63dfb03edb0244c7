"""A headless GNOME compositor (mutter) for one test, with XWayland, a private session bus and
runtime folder, a pointer driven through mutter's RemoteDesktop D-Bus API, and Wayland-native GTK
programs. Mosswick and the test peer run on its XWayland display, as on a GNOME desktop.

    with MutterDesktop() as d:
        source = d.start_gtk("source", *files)
        d.pointer.move_to(800, 500)
        d.pointer.press()
        ...

What is needed (mutter, XWayland, Debian's python3 with GTK 3's introspection data) is checked
first: without it, or when mutter does not come up, the test is skipped and says why."""

import glob
import os
import re
import select
import shutil
import subprocess
import time

from .core import Desktop
from .process import DesktopError
from .programs import skip
from .xwayland import SYSTEM_PYTHON, XWaylandWindows

_STAND_INS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "stand-ins")
WAYLAND_DISPLAY = "wl-mosswick"


def _missing(programs):
    missing = [p for p in (*programs, "Xwayland", "xdotool", "xwininfo", "xprop") if not shutil.which(p)]
    probe = subprocess.run([SYSTEM_PYTHON, "-c", "import gi; gi.require_version('Gtk', '3.0'); "
                            "from gi.repository import Gtk, Gio"], capture_output=True)
    if probe.returncode != 0:
        missing.append("python3-gi with gir1.2-gtk-3.0")
    return missing


class RemotePointer:
    """mutter's pointer, through the RemoteDesktop stand-in. Each call returns once mutter took
    the event; positions are in the compositor's (= XWayland's root) pixels."""

    def __init__(self, desktop, height):
        self.height = height
        self.log = open(desktop.out("pointer.log"), "ab")
        self.process = subprocess.Popen([SYSTEM_PYTHON, os.path.join(_STAND_INS, "remote-desktop-pointer.py")],
                                        env=desktop.env, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=self.log, start_new_session=True)
        ready = self.process.stdout.readline()
        if ready.strip() != b"ready":
            raise DesktopError(f"mutter's RemoteDesktop did not start a session ({ready!r})")
        self.at = None
        self.held = False

    def _send(self, command):
        self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline().decode()
        if not answer.startswith("done"):
            raise DesktopError(f"the pointer refused {command!r}: {answer.strip()}")
        return float(answer.split()[-1])

    def move_to(self, x, y):
        """An absolute move, as two relative ones by way of the bottom-left corner."""
        self._send("home")
        self._send(f"rel {x} {y - (self.height - 1)}")
        self.at = (x, y)

    def move_by(self, dx, dy):
        self._send(f"rel {dx} {dy}")
        self.at = (self.at[0] + dx, self.at[1] + dy)

    def glide_to(self, x, y, step=150, pause=0.1):
        """Moves in steps of at most `step` pixels with a pause after each, then 1 px more: drag
        and drop follows such a path."""
        dx, dy = x - 1 - self.at[0], y - 1 - self.at[1]
        count = max(1, -(-max(abs(dx), abs(dy)) // step))
        for i in range(count):
            self.move_by(round(dx * (i + 1) / count) - round(dx * i / count),
                         round(dy * (i + 1) / count) - round(dy * i / count))
            time.sleep(pause)
        self.move_by(1, 1)
        time.sleep(0.3)

    def press(self):
        self.held = True
        return self._send("down")

    def release(self):
        self.held = False
        return self._send("up")

    def key(self, keysym):
        """Types one key (an X keysym) into whatever has the keyboard focus."""
        return self._send(f"key {keysym:#x}")

    def click(self, x, y, button=None):
        """Moves to (x, y) and clicks the left button, or the one of evdev code `button` (right:
        0x111)."""
        self.move_to(x, y)
        time.sleep(0.1)
        if button is None:
            self.press()
            return self.release()
        self._send(f"down {button:#x}")
        return self._send(f"up {button:#x}")

    def start_drag(self, x, y):
        """Presses at (x, y) and leaves the press point past the drag distance; returns the time
        of the press."""
        self.move_to(x, y)
        time.sleep(0.3)
        pressed = self.press()
        time.sleep(0.15)
        for dx, dy in ((5, 2), (10, 3)):
            self.move_by(dx, dy)
            time.sleep(0.1)
        return pressed

    def stop(self):
        if self.process.poll() is None:
            try:
                self._send("up")  # a case that failed mid-drag must not leave the button held
            except (DesktopError, OSError):
                pass
            self.process.stdin.close()
            try:
                self.process.wait(3)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.log.close()


class _Stoppable:
    """Lets the desktop stop the pointer with its programs."""

    def __init__(self, pointer):
        self.pointer = pointer

    def stop(self):
        self.pointer.stop()


class MutterDesktop(XWaylandWindows, Desktop):
    """A headless mutter with XWayland for one test; use it as a context manager. `size` is its one
    virtual monitor."""

    COMPOSITOR = "mutter"
    REQUIRES = ("mutter",)

    def __init__(self, size=(1600, 1000), name=None, timeout=None, **ignored):
        missing = _missing(self.REQUIRES)
        if missing:
            skip("not installed: " + ", ".join(missing))
        self.size = tuple(size)
        super().__init__(screens=[self.size], name=name, timeout=timeout)

    # Desktop.__init__ calls these three to set up the session: here they start the compositor.
    def _start_x_server(self):
        self.env.update({"XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "GNOME",
                         "GIO_USE_VFS": "local", "GVFS_DISABLE_FUSE": "1", "LIBGL_ALWAYS_SOFTWARE": "1"})
        # Mosswick chooses its Qt platform itself there, as on a user's desktop.
        self.env.pop("QT_QPA_PLATFORM", None)
        self._start_session_bus()
        width, height = self.size
        # RUNNING_UNDER_GDM: XWayland on :1024 or :1025 rather than the first free low display.
        mutter = self.start(self._command(["--headless", "--wayland", "--virtual-monitor", f"{width}x{height}",
                                           f"--wayland-display={WAYLAND_DISPLAY}"]), name=self.COMPOSITOR,
                            env={"RUNNING_UNDER_GDM": "1"})
        runtime = self.env["XDG_RUNTIME_DIR"]
        try:
            self.wait_for(lambda: "Using public X11 display" in mutter.output() and
                          os.path.exists(os.path.join(runtime, WAYLAND_DISPLAY)) or not mutter.running(),
                          20, "mutter to start XWayland")
        except DesktopError:
            pass
        found = re.search(r"Using public X11 display (:\d+)", mutter.output())
        if not mutter.running() or not found:
            tail = " | ".join(mutter.output().strip().splitlines()[-3:])
            self.close()
            skip(f"{self.COMPOSITOR} did not start here: {tail or 'no output'}")
        self.display = found.group(1)
        authority = glob.glob(os.path.join(runtime, ".mutter-Xwaylandauth.*"))
        self.env.update({"DISPLAY": self.display, "WAYLAND_DISPLAY": WAYLAND_DISPLAY})
        if authority:
            self.env["XAUTHORITY"] = authority[0]
        # XWayland answers once mutter has handed it the display.
        self.wait_for(lambda: subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.env,
                                             capture_output=True).returncode == 0, 20, "XWayland to answer")
        self._settle()
        self.pointer = RemotePointer(self, height)
        self._programs.append(_Stoppable(self.pointer))

    def _command(self, options):
        return [self.COMPOSITOR, *options]

    def _settle(self):
        """Called once XWayland answers, before any program starts."""

    def stop_programs_since(self, count):
        # A case that failed mid-drag must not leave the button held for the next one.
        pointer = getattr(self, "pointer", None)
        if pointer and pointer.held and pointer.process.poll() is None:
            pointer.release()
        super().stop_programs_since(count)

    def _start_window_manager(self):
        pass  # mutter is the window manager

    def start_gtk(self, role, *args):
        """Starts the Wayland-native GTK peer (see stand-ins/gtk-wayland-peer.py), filling the
        screen, and waits until it is mapped."""
        program = self.start([SYSTEM_PYTHON, os.path.join(_STAND_INS, "gtk-wayland-peer.py"), role, *args],
                             name=f"gtk-{role}", env={"GDK_BACKEND": "wayland"})
        self.wait_output(program, "ready", 15)
        time.sleep(0.5)  # maximizing takes a configure round trip
        return program

    @staticmethod
    def gtk_events(program, kind):
        """The CLOCK_MONOTONIC times (= time.monotonic()) at which the GTK peer printed `kind`."""
        return [float(line.split()[1]) for line in program.output().splitlines() if line.startswith(kind + " ")]


class GnomeShellDesktop(MutterDesktop):
    """GNOME Shell 43 on the same terms: mutter's compositor with the Shell's top bar, overview
    and (absent without extensions) tray."""

    COMPOSITOR = "gnome-shell"
    REQUIRES = ("gnome-shell", "unshare", "gdbus")

    def _command(self, options):
        # The Shell wants *a* system bus (its UPower and logind proxies): a private, empty one.
        reader, writer = os.pipe()
        try:
            self.start(["dbus-daemon", "--session", "--nofork", f"--print-address={writer}"],
                       name="system-bus", pass_fds=(writer,))
        finally:
            os.close(writer)
        with os.fdopen(reader, "rb") as pipe:
            ready, _, _ = select.select([pipe], [], [], 10)
            address = pipe.readline().decode().strip() if ready else ""
        if not address:
            raise DesktopError("the Shell's system bus did not report its address")
        self.env["DBUS_SYSTEM_BUS_ADDRESS"] = address
        # /run/systemd/seats without logind makes the Shell throw at start: it is hidden in a
        # mount namespace of the Shell's own (unshare execs, so the Shell keeps the process id).
        return ["unshare", "-m", "--propagation", "private", "sh", "-c",
                'mount -t tmpfs tmpfs /run/systemd 2>/dev/null; exec "$0" "$@"', *super()._command(options)]

    def _overview(self, *value):
        method = "Set" if value else "Get"
        return self.run(["gdbus", "call", "--session", "--dest", "org.gnome.Shell", "--object-path",
                         "/org/gnome/Shell", "--method", f"org.freedesktop.DBus.Properties.{method}",
                         "org.gnome.Shell", "OverviewActive", *value], check=False)

    def _settle(self):
        # The Shell opens its overview at start; a window mapped under it takes no pointer input
        # afterwards, so it is closed before anything else starts.
        self.wait_for(lambda: "true" in self._overview(), 15, "the Shell's overview to open")
        time.sleep(1)
        self.wait_for(lambda: self._overview("<false>") is not None and "false" in self._overview(), 10,
                      "the Shell's overview to close", interval=1)
