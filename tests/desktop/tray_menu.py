"""The tray icon in a real XEmbed tray (trayer at the top right): it appears, a click opens the
application menu, and choosing "Window Position ▸ Right Edge, Top" saves the position and shows
the shelf there; with showMenuBarIcon off no icon appears."""

import json
import os

from desktop import Desktop, skip_unless_available
from desktop.mosswick import Shelf

skip_unless_available("trayer", mosswick=True)

TRAY_TOP = 24  # trayer's height: everything of Mosswick's above it sits in the tray


def tray_icons(d, shelf):
    return [w for w in d.windows(shelf.app) if d.window_geometry(w)[1] < TRAY_TOP]


def other_windows(d, shelf, icon):
    return [w for w in d.windows(shelf.app) if w != icon]


def saved_settings(d):
    path = os.path.join(d.env["XDG_CONFIG_HOME"], "Mosswick", "settings.json")
    with open(path, encoding="utf-8") as f:
        return json.load(f)


with Desktop(screens=[(1280, 800)], tray=True) as d:
    shelf = Shelf(d)
    icon = d.wait_for(lambda: tray_icons(d, shelf), 10, "Mosswick's icon in the tray")[0]
    x, y, w, h = d.window_geometry(icon)
    assert 8 <= w <= 64 and 8 <= h <= 64, (x, y, w, h)
    d.screenshot("tray-icon")
    print("ok: the icon sits in the tray")

    d.click(x + w // 2, y + h // 2)
    d.wait_for(lambda: other_windows(d, shelf, icon), 5, "the tray menu")
    d.screenshot("tray-menu")
    # Down: "Window Position"; Right: its submenu, on "Left Edge, Top"; the header of the right
    # edge is not a row, so three more Downs reach "Right Edge, Top".
    d.key("Down")
    d.key("Right")
    for _ in range(3):
        d.key("Down")
    d.key("Return")
    d.wait_for(lambda: saved_settings(d).get("position") == "rightTop", 5, "the position to be saved")

    def at_right_top():
        for window in other_windows(d, shelf, icon):
            x, y, w, h = d.window_geometry(window)
            if x + w > 1200 and y < 120 and h > 60:
                return window
        return None
    d.wait_for(at_right_top, 5, "the shelf previewed at the right edge, top")
    d.screenshot("tray-position-previewed")
    print("ok: Window Position ▸ Right Edge, Top from the tray moves the shelf there")
    shelf.stop()

    shelf = Shelf(d, {"showMenuBarIcon": False})
    shelf.summon_again()  # something of Mosswick's on screen shows it is up before looking
    d.wait_for(lambda: d.windows(shelf.app), 10, "the summoned shelf")
    assert not tray_icons(d, shelf), "an icon appeared with showMenuBarIcon off"
    print("ok: with showMenuBarIcon off the tray stays empty")
    shelf.stop()
