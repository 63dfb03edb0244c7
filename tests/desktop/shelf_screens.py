"""On two screens the shelf comes up on the one the pointer is on, at the chosen edge of that
screen, and moves to the other when summoned again with the pointer there.

Screens 1280x800 at 0,0 and 1024x768 at 1280,0 (tops aligned), a 40 px panel at the bottom of the
first. With more than one screen Qt reports each screen whole as its available area (it ignores
_NET_WORKAREA, one rectangle for all monitors); Mosswick reads the panel's strut itself, so the
shelf still keeps above it. Worked out by hand:
- right bottom, standard (320 px): first screen x = 1280 - 196 - 6 = 1078, y = 800 - 40 - 6 -
  320 = 434; second screen x = 2304 - 196 - 6 = 2102, y = 768 - 6 - 320 = 442.
- left centre, biggest: (768 - 68) / 88 = 7.9, 7 slots, 672 px; second screen x = 1280 + 6 =
  1286, y = 6 + (768 - 672 - 12) / 2 = 48."""

from desktop import Desktop, skip_unless_available
from desktop.mosswick import Shelf

skip_unless_available(mosswick=True)

with Desktop(screens=[(1280, 800), (1024, 768)], strut_bottom=40) as d:
    assert [s["available"] for s in d.screens_seen_by_qt()["screens"]] == [[0, 0, 1280, 800], [1280, 0, 1024, 768]]

    d.move(400, 400)
    shelf = Shelf(d, {"position": "rightBottom", "size": "standard"}, summon=True)
    shelf.wait_frame((1078, 434, 196, 320))
    print("ok: summoned with the pointer on the first screen, it stands at that screen's right edge, above its panel")

    shelf.put_away((1700, 400))
    shelf.summon_again()
    shelf.wait_frame((2102, 442, 196, 320))
    print("ok: put away and summoned again with the pointer on the second screen, it stands there")

    shelf.put_away((300, 700))
    shelf.summon_again()
    shelf.wait_frame((1078, 434, 196, 320))
    print("ok: and back on the first")
    shelf.stop()

    d.move(2000, 100)
    shelf = Shelf(d, {"position": "leftCenter", "size": "biggest"}, summon=True)
    shelf.wait_frame((1286, 48, 196, 672))
    d.screenshot("second-screen")
    shelf.stop()
    print("ok: the biggest shelf counts the slots of the second screen's height")
