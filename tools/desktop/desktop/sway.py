"""A headless sway (wlroots) session for one test: sway 1.7 on its headless backend with XWayland
and its own runtime folder, the pointer and keyboard driven through the virtual-pointer and
virtual-keyboard protocols (mosswick-sway-input, built from their XML in tools/sway-input) and Wayland-native GTK
programs as the other side of a drag (stand-ins/kwin-gtk-peer.py).

    from desktop.sway import SwayCases

    cases = SwayCases()

    @cases.case
    def a_drop(d):                 # d: a SwayDesktop
        src = d.start_gtk("src", "--file", path)
        ...

sway refuses to run as root, so under root it runs as the unprivileged user `nobody` (setpriv),
with a runtime folder of its own; everything else runs as the test's user and reaches sway's Wayland socket by
its full path. XWayland, started by sway, admits only sway's user: sway's configuration lets the
test's user in (xhost) and keeps one X client connected so XWayland stays up. XWayland ignores
selections until sway has focused a managed X window once, so one is shown and focused first.
Wayland windows tile (one fills the screen: the only geometry Wayland lets us know), X windows
float where they ask to be. Where sway, XWayland, GTK or the injector are missing, or sway does not
come up, the test skips with the reason."""

import os
import pwd
import shlex
import subprocess
import time

from . import kwin
from .cases import Cases
from .core import Desktop
from .kwin import GTK_PEER, SYSTEM_PYTHON, KWinDesktop
from .process import DesktopError, Program
from .programs import build_dir, skip

SWAY = "/usr/bin/sway"
SIZE = (1280, 800)


def injector():
    """The virtual-pointer injector the build made, at the top of the build folder."""
    return os.environ.get("MOSSWICK_SWAY_INPUT") or os.path.join(build_dir(), "mosswick-sway-input")


def skip_unless_sway():
    """Skips unless sway, XWayland, setpriv, GTK for Python and the injector are there."""
    missing = [p for p in (SWAY, "/usr/bin/swaymsg", "/usr/bin/Xwayland", "/usr/bin/xhost", "/usr/bin/setpriv")
               if not os.path.exists(p)]
    if missing:
        skip("not installed: " + ", ".join(missing))
    if not os.access(injector(), os.X_OK):
        skip(f"the sway pointer injector is not built ({injector()}: needs wayland-scanner and libwayland-dev "
             "when configuring)")
    probe = subprocess.run([SYSTEM_PYTHON, "-c", "import gi; gi.require_version('Gtk', '3.0')"],
                           capture_output=True)
    if probe.returncode != 0:
        skip("no GTK 3 for Python (python3-gi, gir1.2-gtk-3.0)")


class Pointer(kwin.Pointer):
    """sway's pointer (and keyboard), moved and pressed through a virtual pointer and keyboard, with
    the same commands and gestures as KWin's. Each command returns once sway has handled it, with
    the CLOCK_MONOTONIC time at which it was sent."""

    compositor = "sway"

    def __init__(self, desktop):
        super().__init__(desktop, [injector(), str(SIZE[0]), str(SIZE[1])], name="sway-input",
                         env=desktop.wayland_env())

    def click(self, x, y, button=0x110):
        """Moves to (x, y) and clicks the button of evdev code `button` (right: 0x111). The pointer
        comes from beside the spot and rests first: sway hands an X window a click only once the
        pointer's entry has reached XWayland."""
        self.move_to(x - 10, y)
        time.sleep(0.3)
        self.move_by(10, 0)
        time.sleep(0.3)
        self.send(f"button {button} 1")
        return self.send(f"button {button} 0")


class SwayDesktop(Desktop):
    """Desktop over a headless sway with XWayland instead of Xvfb and openbox: one screen of SIZE;
    `pointer` drives sway's pointer, `swaymsg` asks sway."""

    def __init__(self, **options):
        options.pop("screens", None)
        options.setdefault("session_bus", True)
        self.sway = None
        super().__init__(screens=[SIZE], **options)
        self.pointer = Pointer(self)

    def wayland_env(self):
        return {"WAYLAND_DISPLAY": self.wayland_socket, "SWAYSOCK": self.env["SWAYSOCK"]}

    def _start_x_server(self):
        # Run as root, the test hands sway to `nobody`; otherwise sway runs as the test's user.
        nobody = pwd.getpwnam("nobody") if os.getuid() == 0 else pwd.getpwuid(os.getuid())
        # sway's user must reach its folder inside the test's temporary folder.
        os.chmod(self.temp, 0o711)
        home = os.path.join(self.temp, "sway")
        os.mkdir(home, 0o700)
        if os.getuid() == 0:
            os.chown(home, nobody.pw_uid, nobody.pw_gid)
        display_file = os.path.join(home, "display")
        config = os.path.join(self.temp, "sway.conf")
        keeper = "xprop -root -spy _NET_ACTIVE_WINDOW > /dev/null 2>&1"
        with open(config, "w", encoding="utf-8") as f:
            f.write(f"""xwayland enable
output HEADLESS-1 resolution {SIZE[0]}x{SIZE[1]} position 0 0
default_border none
default_floating_border none
focus_follows_mouse no
for_window [class=".*"] floating enable
exec sh -c {shlex.quote(f'xhost +si:localuser:{pwd.getpwuid(os.getuid()).pw_name} > /dev/null && {keeper} & '
                         f'echo "$DISPLAY" > {display_file}.new && mv {display_file}.new {display_file}')}
""")
        os.chmod(config, 0o644)
        environment = {"PATH": "/usr/bin:/bin", "HOME": home, "XDG_RUNTIME_DIR": home,
                       "WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman",
                       "WLR_HEADLESS_OUTPUTS": "1"}
        argv = [SWAY, "-c", config]
        if os.getuid() == 0:
            argv = ["setpriv", f"--reuid={nobody.pw_uid}", f"--regid={nobody.pw_gid}", "--clear-groups", *argv]
        self.sway = Program(argv, environment, self._log_path("sway"))
        self._programs.append(self.sway)
        try:
            self.wait_for(lambda: self._sway_gone() or (os.path.exists(display_file) and self._socket(home)),
                          20, "sway's sockets and XWayland's display")
        except DesktopError as problem:
            skip(f"sway did not come up: {problem}; its log: {self.sway.output()[-600:]}")
        if self._sway_gone():
            skip(f"sway exited ({self.sway.popen.returncode}): {self.sway.output()[-600:]}")
        with open(display_file, encoding="utf-8") as f:
            self.display = f.read().strip()
        self.wayland_socket = os.path.join(home, "wayland-1")
        self.env.update({
            "DISPLAY": self.display, "XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "sway",
            "SWAYSOCK": self._socket(home),
            "GIO_USE_VFS": "local", "GVFS_DISABLE_FUSE": "1",
        })
        self.env.pop("WAYLAND_DISPLAY", None)
        try:
            self.wait_for(lambda: subprocess.run(["xdpyinfo"], env=self.env, capture_output=True,
                                                 timeout=10).returncode == 0, 20, "XWayland to let us in")
        except DesktopError as problem:
            skip(f"XWayland under sway did not admit the test's user: {problem}")

    def _sway_gone(self):
        return not self.sway.running()

    @staticmethod
    def _socket(home):
        found = [n for n in os.listdir(home) if n.startswith("sway-ipc.") and n.endswith(".sock")]
        return os.path.join(home, found[0]) if found and os.path.exists(os.path.join(home, "wayland-1")) else None

    def _start_window_manager(self):
        # A managed X window focused once gives XWayland its seat; until then it ignores selections.
        peer = self.start_peer("receive", "--geometry", "200,200,200,100")
        window = self.wait_mapped(peer)
        self.wait_for(lambda: self.active_window() == window, 10, "sway to focus an X window")
        self._programs.remove(peer)
        peer.stop()

    def swaymsg(self, *args):
        return self.run(["swaymsg", *args])

    def close(self):
        if getattr(self, "pointer", None):
            self.pointer.close()
        super().close()

    window_pixels = KWinDesktop.window_pixels

    def start_gtk(self, *args, name="gtk"):
        """Starts the Wayland-native GTK peer (`src` or `dst`; see its --help) and returns it once
        its window is up."""
        env = {"GDK_BACKEND": "wayland", "DISPLAY": "", **self.wayland_env()}
        program = self.start([SYSTEM_PYTHON, GTK_PEER, *args], name=name, env=env)
        self.wait_output(program, "configure", timeout=15)
        return program


class SwayCases(Cases):
    """Cases on one SwayDesktop (see Cases); the whole script skips where sway cannot run."""

    def __init__(self, **desktop_options):
        super().__init__(desktop=SwayDesktop, **desktop_options)

    def run(self, names=None):
        skip_unless_sway()
        super().run(names)

    @staticmethod
    def _report(d):
        Cases._report(d)
        # A drag cut short leaves the virtual button held for the next case.
        try:
            d.pointer.up()
        except DesktopError:
            pass
