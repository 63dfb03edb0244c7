"""The X session of a test desktop: the sandboxed user folders and environment, Xvfb with its
monitors, openbox, and on request a private session bus, a compositor, a tray and panels that
reserve screen space."""

import os
import select
import time

from .process import DesktopError, Program

# Nothing of the developer's own session may leak in.
_SESSION_VARIABLES = ("WAYLAND_DISPLAY", "QT_QPA_PLATFORMTHEME", "XDG_CURRENT_DESKTOP", "XDG_SESSION_DESKTOP",
                      "DESKTOP_SESSION", "SESSION_MANAGER", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS",
                      "GTK_MODULES", "RESOURCE_NAME")

_USER_FOLDERS = {"HOME": "home", "XDG_DATA_HOME": "data", "XDG_CONFIG_HOME": "config",
                 "XDG_CACHE_HOME": "cache"}


class Session:
    """Desktop methods that set up and describe the X session."""

    def _sandbox_environment(self):
        env = dict(os.environ)
        for key in _SESSION_VARIABLES:
            env.pop(key, None)
        runtime = os.path.join(self.temp, "runtime")
        os.makedirs(runtime, mode=0o700)
        env.update({
            "XDG_RUNTIME_DIR": runtime,
            "XDG_SESSION_TYPE": "x11",
            "QT_QPA_PLATFORM": "xcb",
            # A session bus nobody listens on: without one, D-Bus would start a bus of its own
            # for the display, outside this desktop's control.
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=" + os.path.join(runtime, "no-bus"),
            # GTK programs would start the accessibility bus.
            "NO_AT_BRIDGE": "1",
            "GTK_A11Y": "none",
        })
        self.env = env
        self.fresh_user_folders("")

    def fresh_user_folders(self, label):
        """Points HOME and the XDG data, config and cache folders of programs started from now on
        at new, empty folders (under `label` in the temporary folder): what a program keeps there
        from earlier starts is gone for them."""
        base = os.path.join(self.temp, label)
        for key, sub in _USER_FOLDERS.items():
            path = os.path.join(base, sub)
            os.makedirs(path, mode=0o700)
            self.env[key] = path
        self.home = self.env["HOME"]

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

    def start_compositor(self):
        """Starts xcompmgr (a case's own, stopped with the case) and waits until it composes."""
        self._start_compositor()

    def _start_compositor(self):
        self.start(["xcompmgr"], name="xcompmgr")
        self.wait_for(lambda: self.screens_seen_by_qt().get("compositor"), 10, "xcompmgr to compose")

    def _start_tray(self, look=True):
        if look == "xfce4-panel-dark":
            return self._start_xfce_panel()
        # "dark": a near-black panel that does not say what colour its icons should be.
        colors = ["--transparent", "true", "--alpha", "0", "--tint", "0x202020"] if look == "dark" else []
        tray = self.start(["trayer", "--edge", "top", "--align", "right", "--widthtype", "pixel",
                           "--width", "120", "--height", "24", "--SetPartialStrut", "false"] + colors,
                          name="trayer")
        self.wait_mapped(tray)

    def _start_xfce_panel(self):
        """Xfce's panel along the top with only its notification area, in GTK's dark theme: a tray
        that names its icons' colour (_NET_SYSTEM_TRAY_COLORS) and also hosts StatusNotifierItems.
        Its settings are written beforehand, so it starts without asking which layout to use."""
        channel = os.path.join(self.env["XDG_CONFIG_HOME"], "xfce4", "xfconf", "xfce-perchannel-xml")
        os.makedirs(channel, exist_ok=True)
        with open(os.path.join(channel, "xfce4-panel.xml"), "w", encoding="utf-8") as f:
            f.write(XFCE_PANEL_SETTINGS)
        panel = self.start(["env", "GTK_THEME=Adwaita:dark", "xfce4-panel"], name="xfce4-panel")
        self.wait_mapped(panel, 20)
        return panel

    def add_strut(self, edge, size, screen=0):
        """Starts a panel along `edge` ("top", "bottom", "left", "right") of a screen that
        reserves `size` pixels, and waits until the window manager's work area leaves it out."""
        before = self.workarea()
        panel = self.start_peer("strut", "--edge", edge, "--size", size, "--screen", screen)
        self.wait_mapped(panel)
        self.wait_for(lambda: self.workarea() != before, 10, f"the work area to leave out the {edge} panel")
        return panel

    def workarea(self):
        """The window manager's work area (x, y, width, height) on the first desktop."""
        value = self.root_property("_NET_WORKAREA")
        return tuple(int(v) for v in value.split(",")[:4]) if value else None


XFCE_PANEL_SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray"/>
  </property>
</channel>
"""
