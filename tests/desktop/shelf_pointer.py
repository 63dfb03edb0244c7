"""Under the "at the pointer" trigger a file drag from another application brings the shelf up
beside the pointer; a drag hovering over it keeps it up and lights it; once the drag is let go
elsewhere it goes. Summoned, it does not take the focus, but once clicked, Escape puts it away.

Each drag stops just past the drag distance (the press point + (15, 5)) until the shelf is up, so
the pointer's place at the moment the drag was seen is known exactly. Frames are worked out by
hand for a 1280x800 screen with a 40 px panel at the bottom (work area 0,0 1280x760), standard
size (320 px tall). Mosswick takes the pointer at the centre of its pixel (+0.5), so the
expected frames allow 1 px:
- pointer at (215, 180): room on its right, x = 215 + 24 = 239(.5), y = 180 - 160 = 20(.5).
- pointer at (1115, 380): no room on its right (1115 + 24 + 196 > 1280), x = 1115 - 196 - 24
  = 895(.5); y = 380 - 160 = 220(.5).
- pointer at (215, 640): y = 480 would reach below the work area, held at 760 - 6 - 320 = 434.
"""


from desktop import Desktop, skip_unless_available
from desktop.files import make_files
from desktop.mosswick import Shelf

skip_unless_available(mosswick=True)

STANDARD_H = 320


def begin_drag(d, files, geometry):
    """Starts a file drag from a new peer and holds it just past the drag distance."""
    x, y, width, height = geometry
    source = d.start_peer("drag", "--files", *files, "--geometry", f"{x},{y},{width},{height}")
    d.wait_mapped(source)
    press = (x + width // 2, y + height // 2)
    d.xdotool("mousemove", *press, "sleep", 0.3, "mousedown", 1, "sleep", 0.1,
              "mousemove_relative", "--", 5, 2, "sleep", 0.1, "mousemove_relative", "--", 10, 3)
    return source, (press[0] + 15, press[1] + 5)


def travel(d, dx, dy, steps):
    """Paced relative moves while the button is held, so the drag follows them."""
    args = []
    for i in range(steps):
        args += ["mousemove_relative", "--", round(dx * (i + 1) / steps) - round(dx * i / steps),
                 round(dy * (i + 1) / steps) - round(dy * i / steps), "sleep", 0.1]
    d.xdotool(*args)


def let_go_on_the_desktop(d, source, at):
    """Moves the held drag to a point where nothing takes drops, releases it, and waits until the
    source has finished."""
    here = d.pointer()
    travel(d, at[0] - here[0], at[1] - here[1], 4)
    d.xdotool("sleep", 0.2, "mouseup", 1)
    assert source.wait() == 0


def accent_like(colour):
    r, g, b = colour
    return b > r + 60


with Desktop(strut_bottom=40) as d:
    files = make_files(d.temp, [b"one.txt", b"two.txt"])
    shelf = Shelf(d, {"showTrigger": "dragStartsAtCursor", "size": "standard"})

    # Up beside the pointer, with room on its right; then the drag hovers over it.
    source, at = begin_drag(d, files, (100, 100, 200, 150))
    window = shelf.wait_frame((240, 21, 196, STANDARD_H))
    assert d.pointer() == at == (215, 180), (d.pointer(), at)
    print("ok: a drag brings the shelf up to the right of the pointer")

    travel(d, 80, 20, 2)
    frame = d.window_geometry(window)
    edge = (frame[0] + 9, frame[1] + frame[3] // 2)  # on the highlight's line, 8 px in
    d.wait_for(lambda: accent_like(d.pixel(*edge)), 3, "the drop highlight")
    # Hovering, moving a little now and then as a hand does, for well over a second.
    d.xdotool(*(["mousemove_relative", "--", 1, 0, "sleep", 0.3] * 4))
    d.xdotool("mousemove_relative", "--", -4, 0, "sleep", 0.2)
    assert shelf.visible() and d.window_geometry(window) == frame, d.window_geometry(window)
    assert accent_like(d.pixel(*edge)), d.pixel(*edge)
    d.screenshot("drop-highlight")
    print("ok: a drag hovering over the shelf keeps it up and lit")

    let_go_on_the_desktop(d, source, (700, 500))
    shelf.wait_hidden()
    print("ok: let go elsewhere, the shelf goes")

    # No room to the right of the pointer: it opens on the left.
    source, at = begin_drag(d, files, (1000, 300, 200, 150))
    shelf.wait_frame((896, 221, 196, STANDARD_H))
    assert d.pointer() == at == (1115, 380), (d.pointer(), at)
    let_go_on_the_desktop(d, source, (400, 500))
    shelf.wait_hidden()
    print("ok: near the right edge it opens to the left of the pointer")

    # Low on the screen: held above the panel.
    source, at = begin_drag(d, files, (100, 560, 200, 150))
    shelf.wait_frame((240, 434, 196, STANDARD_H))
    assert d.pointer() == at == (215, 640), (d.pointer(), at)
    let_go_on_the_desktop(d, source, (700, 300))
    shelf.wait_hidden()
    print("ok: low on the screen it stays above the panel")

    # Summoned, it docks at its edge and leaves the focus where it was.
    shelf.summon_again()
    window = shelf.wait_frame((1078, 434, 196, STANDARD_H))
    assert d.active_window() != window, d.active_window()
    d.screenshot("empty-shelf")
    # Off the shelf before Escape: under the pointer it would linger until the pointer leaves.
    shelf.put_away((600, 400))
    print("ok: the shelf takes the focus only once clicked, and Escape then puts it away")
    shelf.stop()
