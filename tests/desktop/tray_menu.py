"""The tray icon in a real XEmbed tray (trayer at the top right): it appears, a click opens the
application menu, and choosing "Window Position ▸ Right Edge, Top" saves the position and shows
the shelf there; with showMenuBarIcon off no icon appears."""

import json
import shutil
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


def luminance(rgb):
    r, g, b = rgb
    return 0.2126 * r + 0.7152 * g + 0.0722 * b


# A dark panel that does not name its icons' colour: the glyph must still stand out from it.
with Desktop(screens=[(1280, 800)], tray="dark") as d:
    shelf = Shelf(d)
    icon = d.wait_for(lambda: tray_icons(d, shelf), 10, "Mosswick's icon in the dark tray")[0]
    x, y, w, h = d.window_geometry(icon)
    d.screenshot("tray-icon-dark")
    panel = luminance(d.pixel(x - 4, y + h // 2))
    assert panel < 60, f"the tray is not dark: luminance {panel}"
    seen = [luminance(p) for row in d.pixels((x, y, w, h)) for p in row]
    standing_out = sum(1 for value in seen if abs(value - panel) > 100)
    assert standing_out >= len(seen) // 10, \
        f"only {standing_out} of {len(seen)} pixels of the icon stand out from the dark panel"
    print(f"ok: on a dark tray {standing_out} of {len(seen)} pixels of the icon stand out")
    shelf.stop()


# Xfce's panel in a dark theme names its icons' colour: the glyph is filled with it, not merely
# rimmed. Its notification area hosts the icon itself (as a StatusNotifierItem), so the icon is
# found on the screen rather than among Mosswick's windows.
if shutil.which("xfce4-panel"):
    with Desktop(screens=[(1280, 800)], session_bus=True, tray="xfce4-panel-dark") as d:
        shelf = Shelf(d)
        panel = luminance(d.pixel(640, 14))
        assert panel < 80, f"the panel is not dark: luminance {panel}"

        def light_pixels():
            found = [(x, y) for y, row in enumerate(d.pixels((0, 0, 200, 28))) for x, p in enumerate(row)
                     if luminance(p) > 200]
            return found if len(found) > 40 else None
        light = d.wait_for(light_pixels, 15, "Mosswick's icon on Xfce's panel")
        d.screenshot("tray-icon-xfce-dark")
        xs, ys = [x for x, _ in light], [y for _, y in light]
        box = (max(xs) - min(xs) + 1) * (max(ys) - min(ys) + 1)
        assert len(light) >= 0.45 * box, f"{len(light)} light pixels in a {box}-pixel icon: not filled"
        print(f"ok: on Xfce's dark panel the glyph is filled in its light text colour ({len(light)} of {box})")
        shelf.stop()
else:
    print("skipped: xfce4-panel is not installed")
