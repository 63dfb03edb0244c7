"""The shortcut where no grab reaches other programs' keys: a Mosswick whose environment says it
runs in GNOME's Wayland session (on the X test desktop, which is all the settings window's logic
looks at) offers, in its Behavior pane, to add its shortcut to GNOME's own keyboard settings.
Pressing the button writes GNOME's custom shortcuts through gsettings and dconf on the test's
private bus, beside an entry of the user's own, and gsettings reads back what GNOME would read."""

import ast
import time

from desktop import Cases, skip, skip_unless_available
from desktop.programs import mosswick_binary

skip_unless_available("trayer", mosswick=True)

TRAY_TOP = 24
GNOME_SCHEMA = "org.gnome.settings-daemon.plugins.media-keys"
OURS = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/mosswick/"
THEIRS = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/"

cases = Cases(screens=[(1280, 800)], tray=True, session_bus=True)


def tray_icon(d, app):
    icons = [w for w in d.windows(app)
             if (lambda x, y, w, h: y < TRAY_TOP and x > 1000 and w <= 64)(*d.window_geometry(w))]
    return icons[0] if icons else None


def settings_window(d, app):
    windows = [w for w in d.windows(app) if "Mosswick Settings" in (d.window_property(w, "WM_NAME") or "")]
    return windows[0] if windows else None


def open_behavior_pane(d, session):
    """Starts Mosswick under `session`'s environment and opens its settings on the Behavior pane."""
    app = d.start_mosswick(env=session)
    icon = d.wait_for(lambda: tray_icon(d, app), 10, "Mosswick's icon in the tray")
    x, y, w, h = d.window_geometry(icon)
    d.click(x + w // 2, y + h // 2)
    d.wait_for(lambda: [w for w in d.windows(app) if w != icon], 5, "the tray menu")
    d.key("Up")
    d.key("Up")
    d.key("Return")
    window = d.wait_for(lambda: settings_window(d, app), 5, "the settings window")
    d.wait_for(lambda: d.active_window() == window, 3, "the settings window to take the focus")
    d.key("ctrl+Next")
    time.sleep(0.3)
    return app


def gsettings(d, *args):
    return d.run(["gsettings", *args]).strip()


def gnome_string(d, key):
    return ast.literal_eval(gsettings(d, "get", f"{GNOME_SCHEMA}.custom-keybinding:{OURS}", key))


def gnome_list(d):
    printed = gsettings(d, "get", GNOME_SCHEMA, "custom-keybindings")
    return ast.literal_eval(printed.removeprefix("@as "))


# dconf's service runs from the desktop's bus with the desktop's own folders: the case keeps them.
@cases.case(fresh_folders=False)
def gnome_wayland_gets_a_custom_shortcut_beside_the_users_own(d):
    if not d.run(["sh", "-c", "command -v gsettings || true"]).strip() or \
            GNOME_SCHEMA not in gsettings(d, "list-schemas").split():
        skip("gsettings or GNOME's media-keys schema is not installed")
    gsettings(d, "set", GNOME_SCHEMA, "custom-keybindings", f"['{THEIRS}']")
    gsettings(d, "set", f"{GNOME_SCHEMA}.custom-keybinding:{THEIRS}", "binding", "<Super>t")

    app = open_behavior_pane(d, {"XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "GNOME"})
    d.screenshot("gnome-offer")
    d.key("alt+k")  # "Add to GNOME Keyboard Shortcuts"
    d.wait_for(lambda: OURS in gnome_list(d), 5, "Mosswick's entry in GNOME's list")
    time.sleep(0.3)
    d.screenshot("gnome-added")
    assert gnome_list(d) == [THEIRS, OURS], gnome_list(d)
    assert gnome_string(d, "binding") == "F5", gnome_string(d, "binding")
    assert gnome_string(d, "command") == f"{mosswick_binary()} toggle", gnome_string(d, "command")
    assert gsettings(d, "get", f"{GNOME_SCHEMA}.custom-keybinding:{THEIRS}", "binding") == "'<Super>t'"
    print("ok: GNOME: the button adds \"mosswick toggle\" on F5 after the user's own shortcut")

    # Pressed again: still one entry of ours.
    d.key("alt+k")
    time.sleep(0.5)
    assert gnome_list(d) == [THEIRS, OURS], gnome_list(d)
    app.stop()
    print("ok: GNOME: pressed again, the entry is updated, not added twice")


cases.run()
