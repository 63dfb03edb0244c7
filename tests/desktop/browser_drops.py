"""Drags from a real Chromium bring the shelf up and land on it the first time: Chromium lists the
desktop's windows when its drag begins and never again, so a shelf that only now comes on screen
must be a window it already knows. Under each show trigger (at the drag's start, at the pointer,
at the screen's edge) a link and an image are dragged from a page served on 127.0.0.1 onto the
shelf while it slides in; each lands (the link with its URL and title, the image byte for byte),
and after the shelf was put away the same drag lands again. A compositor runs for half of the
cases, as it changes how the window manager and the shelf treat the window.

The shelf keeps its defaults but the trigger: right bottom, adaptive. On the 1280x800 screen with
a 40 px panel at the bottom the drops aim at (1176, 700), inside even the one-slot shelf; a shelf
opened at the pointer stands right of where the drag began, so the drops there aim at the
shelf's own window wherever it stands."""

import math
import time

from desktop import Cases, skip_unless_available
from desktop.browser import IMAGE, IMAGE_ALT, LINK, LINK_TITLE, Browser
from desktop.files import read_bytes
from desktop.mosswick import Shelf, saved_items, staged_path
from desktop.watch import ShelfWatch

skip_unless_available("xcompmgr", mosswick=True)

SCREEN = (1280, 800)
SHELF_POINT = (1176, 700)
AWAY = (640, 560)  # an empty spot: neither the page nor the shelf

TRIGGERS = ("dragStarts", "dragStartsAtCursor", "dragToScreenEdge")


def paced_moves(points):
    """xdotool steps that walk the pointer through `points` in moves of at most 120 px, each
    followed by a pause: Chromium follows a drag only through motion events that come apart."""
    steps = []
    for (ax, ay), (bx, by) in zip(points, points[1:]):
        count = max(1, math.ceil(max(abs(bx - ax), abs(by - ay)) / 120))
        done_x = done_y = 0
        for i in range(1, count + 1):
            x, y = round((bx - ax) * i / count), round((by - ay) * i / count)
            steps += ["mousemove_relative", "--", x - done_x, y - done_y, "sleep", 0.1]
            done_x, done_y = x, y
    return steps


class BrowserDrag:
    """One drag from the page, in the background: pressed on `start`, past the drag distance, then
    through `via` (the screen's edge, when that is the trigger) and on to the shelf, where it
    waits for the shelf's window and releases over it."""

    def __init__(self, d, watch, start, via=()):
        self.d, self.watch, self.start = d, watch, start
        self.began = time.monotonic()
        sx, sy = start
        self.pressed = ["mousemove", sx, sy, "sleep", 0.3, "mousedown", 1, "sleep", 0.1]
        self.d.xdotool(*self.pressed, *paced_moves([start, (sx + 5, sy + 2), (sx + 15, sy + 5), *via]))

    def shown_at(self):
        """The time the shelf came during this drag."""
        return self.watch.wait("map", self.began, timeout=5)

    def release_over(self, point):
        x, y = self.d.pointer()
        self.d.xdotool(*paced_moves([(x, y), point]), "mousemove_relative", "--", 1, 1, "sleep", 0.3,
                       "mouseup", 1)
        self.ended = time.monotonic()


def shelf_window_point(d, shelf):
    x, y, w, h = d.window_geometry(shelf.window())
    return (x + w // 2, y + h // 2)


def drag_onto_shelf(d, watch, shelf, browser, element, trigger):
    """Drags `element` from the page onto the shelf, which must come during the drag; returns the
    new item once it is saved."""
    before = len(saved_items(d))
    via = [(SCREEN[0] - 2, 400)] if trigger == "dragToScreenEdge" else []
    drag = BrowserDrag(d, watch, browser.point(element), via)
    shown = drag.shown_at()
    assert shown > drag.began, "the shelf was up before the drag"
    target = shelf_window_point(d, shelf) if trigger == "dragStartsAtCursor" else SHELF_POINT
    drag.release_over(target)
    assert shown < drag.ended, "the shelf came only after the release"
    items = shelf.wait_saved(lambda items: len(items) > before, timeout=10)
    return items[0]


def put_away(d, watch, shelf):
    shelf.put_away(AWAY)
    watch.wait_hidden()


def check_link(item, browser):
    assert (item.get("displayName"), item.get("webURL")) == (LINK_TITLE, browser.url("moss.html")), item


def check_image(item, browser):
    path = staged_path(item)
    assert path and read_bytes(path) == browser.image, f"the staged image differs from the page's: {item}"


CHECKS = {"link": (LINK, check_link), "image": (IMAGE, check_image)}

cases = Cases(strut_bottom=40, compositor=False)


def register(kind, trigger, compositor):
    element, check = CHECKS[kind]

    def case(d):
        if compositor:
            d.start_compositor()
        browser = Browser(d)
        try:
            watch = ShelfWatch(d)
            shelf = Shelf(d, {"showTrigger": trigger})
            for attempt in ("first", "again"):
                item = drag_onto_shelf(d, watch, shelf, browser, element, trigger)
                check(item, browser)
                d.screenshot(f"{kind}-{attempt}")
                put_away(d, watch, shelf)
            print(f"ok: {kind} from Chromium under {trigger}" + (" with a compositor" if compositor else "") +
                  ": lands on the shelf that slid in during the drag, twice")
        finally:
            browser.close()

    case.__name__ = f"{kind}_{trigger}" + ("_composited" if compositor else "")
    cases.case(case)


for index, trigger in enumerate(TRIGGERS):
    register("link", trigger, compositor=index % 2 == 1)
    register("image", trigger, compositor=index % 2 == 0)

cases.run()
