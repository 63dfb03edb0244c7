"""On two monitors the shelf keeps clear of a panel on the monitor it stands on, though Qt counts
every monitor whole when there are several; a panel that comes up while the shelf is shown moves
it, and the other monitor is left as it was.

Monitors 1280x800 at 0,0 and 1024x768 at 1280,0 (tops aligned, so the root is 2304x800). A 40 px
panel along the bottom of the second reserves 800 - 768 + 40 = 72 rows of the root, over that
monitor's columns only. Worked out by hand, right bottom, standard (320 px):
- second monitor, no panel: x = 2304 - 196 - 6 = 2102, y = 768 - 6 - 320 = 442;
- with the panel: y = 728 - 6 - 320 = 402;
- first monitor, untouched: x = 1280 - 196 - 6 = 1078, y = 800 - 6 - 320 = 474."""

from desktop import Desktop, skip_unless_available
from desktop.mosswick import Shelf

skip_unless_available(mosswick=True)

with Desktop(screens=[(1280, 800), (1024, 768)]) as d:
    d.move(1700, 400)
    shelf = Shelf(d, {"position": "rightBottom", "size": "standard"}, summon=True)
    shelf.wait_frame((2102, 442, 196, 320))
    print("ok: with no panel the shelf stands at the second monitor's bottom right")

    panel = d.start_peer("strut", "--edge", "bottom", "--size", "40", "--screen", "1")
    d.wait_mapped(panel)
    shelf.wait_frame((2102, 402, 196, 320))
    d.screenshot("above-the-panel")
    print("ok: a panel coming up on that monitor lifts the shown shelf above it")

    shelf.put_away((300, 400))
    shelf.summon_again()
    shelf.wait_frame((1078, 474, 196, 320))
    print("ok: on the first monitor the other's panel takes nothing")

    shelf.put_away((1700, 300))
    shelf.summon_again()
    shelf.wait_frame((2102, 402, 196, 320))
    print("ok: summoned again on the second monitor it stands above the panel")

    panel.stop()
    shelf.wait_frame((2102, 442, 196, 320))
    print("ok: and goes back down once the panel has gone")
    shelf.stop()
