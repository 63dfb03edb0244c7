"""The shelf stands where its position and size put it, inside the part of the screen that panels
leave free, and keeps out of the task bar on every workspace, also after it was put away and
brought back.

A compositor runs, so the screenshot shows the shelf's rounded, see-through corners.

The frames are worked out by hand for a 1280x800 screen (X root pixels, y down):
- a 40 px panel at the bottom leaves 0,0 1280x760: (760 - 68) / 88 = 7.9, so 7 slots fit;
  standard is 3 slots (320 px tall), smallest 1 (144 px), biggest 7 (672 px);
  the left edge is at x 6, the right at 1280 - 196 - 6 = 1078;
  top y = 6, bottom y = 760 - 6 - h, centre halfway: standard 220, smallest 308, biggest 44.
- with a 30 px panel at the top and a 50 px one at the left as well, 50,30 1230x730 is left:
  (730 - 68) / 88 = 7.5, still 7 slots; the left edge is at x 56, top at y 36, bottom at
  760 - 6 - h."""

from desktop import Desktop, skip_unless_available
from desktop.mosswick import Shelf

skip_unless_available("xcompmgr", mosswick=True)

BOTTOM_PANEL = {
    ("standard", "leftTop"): (6, 6, 196, 320),
    ("standard", "leftCenter"): (6, 220, 196, 320),
    ("standard", "leftBottom"): (6, 434, 196, 320),
    ("standard", "rightTop"): (1078, 6, 196, 320),
    ("standard", "rightCenter"): (1078, 220, 196, 320),
    ("standard", "rightBottom"): (1078, 434, 196, 320),
    ("smallest", "leftTop"): (6, 6, 196, 144),
    ("smallest", "leftCenter"): (6, 308, 196, 144),
    ("smallest", "leftBottom"): (6, 610, 196, 144),
    ("smallest", "rightTop"): (1078, 6, 196, 144),
    ("smallest", "rightCenter"): (1078, 308, 196, 144),
    ("smallest", "rightBottom"): (1078, 610, 196, 144),
    ("biggest", "leftTop"): (6, 6, 196, 672),
    ("biggest", "rightCenter"): (1078, 44, 196, 672),
    ("biggest", "leftBottom"): (6, 82, 196, 672),
}

THREE_PANELS = {
    ("biggest", "leftTop"): (56, 36, 196, 672),
    ("biggest", "leftCenter"): (56, 59, 196, 672),
    ("biggest", "rightBottom"): (1078, 82, 196, 672),
    ("standard", "leftCenter"): (56, 235, 196, 320),
    ("standard", "rightTop"): (1078, 36, 196, 320),
    ("smallest", "leftBottom"): (56, 610, 196, 144),
}

TASKBAR_STATES = {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_ABOVE"}


def place(d, cases, workarea):
    assert d.workarea() == workarea, d.workarea()
    for (size, position), frame in cases.items():
        shelf = Shelf(d, {"position": position, "size": size}, summon=True)
        shelf.wait_frame(frame)
        shelf.stop()
        print(f"ok: {size} at {position}: {frame} in the work area {workarea}")


def keeps_out_of_the_taskbar(d, shelf, window, when):
    states = set(d.window_state(window))
    assert TASKBAR_STATES <= states, f"{when}: _NET_WM_STATE is {states}"
    assert d.window_property(window, "_NET_WM_DESKTOP") == "4294967295", \
        f"{when}: _NET_WM_DESKTOP is {d.window_property(window, '_NET_WM_DESKTOP')}"
    assert d.window_class(window) == ("mosswick", "Mosswick"), d.window_class(window)


with Desktop(strut_bottom=40, compositor=True) as d:
    place(d, BOTTOM_PANEL, (0, 0, 1280, 760))

    shelf = Shelf(d, {"position": "rightCenter", "size": "standard"}, summon=True)
    window = shelf.wait_frame(BOTTOM_PANEL["standard", "rightCenter"])
    keeps_out_of_the_taskbar(d, shelf, window, "first shown")
    # The window manager drops the states of a window that is withdrawn: they must come back.
    shelf.put_away((400, 400))
    shelf.summon_again()
    window = shelf.wait_frame(BOTTOM_PANEL["standard", "rightCenter"])
    keeps_out_of_the_taskbar(d, shelf, window, "shown again")
    d.screenshot("shelf-right-center")
    shelf.stop()
    print("ok: out of the task bar and the pager, on every workspace, above others; also when shown again")

    d.add_strut("top", 30)
    d.add_strut("left", 50)
    place(d, THREE_PANELS, (50, 30, 1230, 730))
