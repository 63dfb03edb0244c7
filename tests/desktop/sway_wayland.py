"""Mosswick under sway (wlroots 0.15, headless, XWayland), with drags from and to a Wayland-native
GTK program. sway shows an X client a drag's start (the drag selection changes hands) but neither
its types, its end, nor the pointer; an X window under the drag learns the types and can read the
data, but at the drop an unfocused one gets none. So every drag start brings a 4 px strip to the
shelf's edge, which grows into the shelf when a drag of files enters it, the data read as it
enters; the shelf is a window sway leaves unmanaged, as it centres the ones it manages.

Cases: the hidden shelf leaves the screen free; a file dragged from GTK brings the strip, grows it
and lands byte for byte; a drag cancelled elsewhere takes the strip away again; a file dropped on
the summoned shelf lands byte for byte or is refused, never accepted empty; the summoned shelf
stands where placed; a text drag never grows the strip nor is read; a file dragged out of the
shelf into GTK arrives, or stays on the shelf; the shortcut (an X key grab) is heard only from X
windows; bare sway has no tray; Show in Folder from the tile menu; an image's tile shows its
preview. Each prints what it saw."""

import json
import os
import subprocess
import time
import urllib.parse

from desktop import skip_unless_available
from desktop.files import file_uri
from desktop.kwin import SYSTEM_PYTHON
from desktop.mosswick import Shelf, save_file, saved_items, shelve, staged_path
from desktop.sway import SIZE, SwayCases
from desktop.watch import ShelfWatch

skip_unless_available(mosswick=True)

WIDTH, HEIGHT = SIZE
SOURCE = (200, 150)  # clear of the middle, where sway centres managed windows
# The summoned shelf: right bottom, 6 px off the screen's edges; one tile makes it 196 x 144.
ONE_TILE = (WIDTH - 6 - 196, HEIGHT - 6 - 144, 196, 144)
# Every drag start brings a 4 px strip to the shelf's edge (x 1276..1279); a drag of files entering
# it grows it into the shelf (empty: 706..794 high). The strip goes after STRIP_LIFETIME s.
STRIP_X = WIDTH - 2
DROP_ROW = 720
ON_SHELF = (WIDTH - 6 - 98, DROP_ROW)
STRIP_LIFETIME = 6
F5, DOWN, RETURN = 63, 108, 28  # evdev
FILE_MANAGER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "desktop", "stand-ins",
                            "file-manager.py")

cases = SwayCases()


def sample(d, name=b"report 2026.txt", size=70000):
    """A file with bytes that are not all text, in the case's own folder."""
    path = os.path.join(os.fsencode(d.output), name)
    with open(path, "wb") as f:
        f.write(bytes((i * 7 + i // 256) % 256 for i in range(size)))
    return path


def gtk_source(d, *args):
    """The GTK drag source, tiled over the whole screen."""
    src = d.start_gtk("src", *args, name="gtk-src")
    d.wait_output(src, f"configure {WIDTH}x{HEIGHT}", timeout=15)
    # Configured is not yet shown: sway gives the pointer to a surface once it is mapped and the
    # pointer moves over it.
    time.sleep(1)
    d.pointer.move_to(SOURCE[0] - 20, SOURCE[1])
    return src


def drag_from_source(d, to):
    began = d.pointer.start_drag(*SOURCE)
    d.pointer.glide((SOURCE[0] + 15, SOURCE[1] + 5), to)
    return began


def release_in_source(d, at):
    d.pointer.glide(at, (300, 300))
    d.pointer.up()


def events_of(program, word, since=0.0):
    return [float(l.split()[0]) for l in program.output().splitlines() if l.split()[1:2] == [word]
            and float(l.split()[0]) >= since]


def shelf_frame(d, shelf):
    window = shelf.window()
    time.sleep(0.6)  # the slide in
    return d.window_geometry(window)


def middle(frame):
    return frame[0] + frame[2] // 2, frame[1] + frame[3] // 2


@cases.case
def hidden_shelf_leaves_the_screen_free(d):
    shelf = Shelf(d)
    time.sleep(1.5)
    frames = [d.window_geometry(w) for w in d.windows(shelf.app)]
    on_screen = [f for f in frames if f[0] + f[2] > 0 and f[1] + f[3] > 0 and f[0] < WIDTH and f[1] < HEIGHT]
    # sway centres a managed window it is asked to move off screen, where it would take clicks.
    assert not on_screen, f"the hidden shelf stands on screen at {on_screen}"
    print(f"ok: the hidden shelf stands outside the screen ({frames})")


def drag_to_strip(d):
    """Takes a drag begun in the source to beside the strip, then one move into it; returns the
    time it reached the strip."""
    drag_from_source(d, (STRIP_X - 8, DROP_ROW))
    reached = d.pointer.move_by(8, 0)
    time.sleep(0.3)
    return reached


def drag_begins(src, since):
    return events_of(src, "drag-begin", since)


@cases.case
def file_drag_brings_the_strip_and_lands(d):
    watch = ShelfWatch(d)
    path = sample(d)
    src = gtk_source(d, "--file", path)
    shelf = Shelf(d)
    start = time.monotonic()
    reached = drag_to_strip(d)
    began = drag_begins(src, start)
    assert began, src.output()
    selections = watch.drag_starts(start)
    assert selections, "an X client sees a Wayland drag begin (the drag selection changes hands)"
    strip = watch.wait("map", start)
    grown = d.wait_for(lambda: [t for t, w, _ in watch.sizes(reached - 0.5) if w > 100], 5,
                       "the strip to grow into the shelf")[0]
    assert shelf_width(d, shelf.app) > 100
    d.pointer.glide((STRIP_X, DROP_ROW), ON_SHELF)
    time.sleep(0.3)
    d.pointer.up()
    items = shelf.wait_saved(lambda items: items and items[0].get("stagedURL") and
                             os.path.exists(staged_path(items[0])))
    staged = staged_path(items[0])
    d.wait_for(lambda: open(staged, "rb").read() == open(path, "rb").read(), 10, "the staged copy to be whole")
    assert os.path.exists(path), "the shelf copies: the original stays"
    print(f"ok: drag selection {(selections[0] - began[0]) * 1000:.1f} ms after GTK's drag-begin; strip mapped "
          f"{(strip - began[0]) * 1000:.0f} ms after it; grown {(grown - reached) * 1000:.0f} ms after the drag "
          f"reached the strip; dropped: {os.path.getsize(staged)} identical bytes")


def shelf_width(d, app):
    windows = d.windows(app)
    return d.window_geometry(windows[0])[2] if windows and d.window_geometry(windows[0])[0] >= 0 else 0


@cases.case
def cancelled_drag_leaves_nothing_up(d):
    watch = ShelfWatch(d)
    src = gtk_source(d, "--file", sample(d))
    Shelf(d)
    start = time.monotonic()
    drag_from_source(d, (900, 400))
    release_in_source(d, (900, 400))
    d.wait_output(src, "drag-end")
    shown = watch.wait("map", start)
    gone = watch.wait("unmap", shown, timeout=STRIP_LIFETIME + 3)
    assert all(w <= 10 for _, w, _ in watch.sizes(start)), watch.sizes(start)
    assert not saved_items(d)
    print(f"ok: a drag cancelled in its source: the strip came {shown - start:.2f} s after the press and went "
          f"{gone - shown:.1f} s later, never grown")


@cases.case
def drop_on_the_summoned_shelf_lands_or_is_refused(d):
    path = sample(d)
    src = gtk_source(d, "--file", path)
    shelf = Shelf(d, summon=True)
    frame = shelf_frame(d, shelf)
    start = time.monotonic()
    drag_from_source(d, middle(frame))
    time.sleep(0.5)
    d.pointer.up()
    # GTK hears nothing of a drop on an X window here (wlroots passes no XdndFinished on): it is
    # judged by what the shelf saved.
    try:
        items = shelf.wait_saved(lambda items: items and items[0].get("stagedURL") and
                                 os.path.exists(staged_path(items[0])), timeout=3)
    except Exception:
        items = []
    assert os.path.exists(path), "the original stays"
    if items:
        staged = staged_path(items[0])
        d.wait_for(lambda: open(staged, "rb").read() == open(path, "rb").read(), 10, "the staged copy to be whole")
        print(f"ok: a GTK file dropped on the summoned shelf at {frame} landed, "
              f"{os.path.getsize(staged)} identical bytes")
    else:
        told_success = events_of(src, "drag-end", start) and not events_of(src, "drag-failed", start)
        assert not told_success, "a drop that kept nothing must not tell its source it succeeded"
        print(f"seen: a GTK file dropped on the summoned shelf was not shelved (its data read on enter: "
              f"{'read on enter' in shelf.app.output()}; the source heard of no end); the original stays")


@cases.case
def summoned_shelf_lands_where_placed(d):
    shelve(d, [sample(d, b"a.txt", 10)])
    shelf = Shelf(d, summon=True)
    shelf.wait_frame(ONE_TILE)
    # Left alone by sway: managed, it would be centred and widened.
    managed = [n["window"] for n in _sway_windows(d)]
    assert not set(d.windows(shelf.app)) & set(managed), managed
    print(f"ok: the summoned shelf stands where placed, {ONE_TILE}, a window sway does not manage")


def _sway_windows(d):
    tree = json.loads(d.swaymsg("-t", "get_tree", "-r"))
    found, stack = [], [tree]
    while stack:
        node = stack.pop()
        if node.get("window") is not None:
            found.append(node)
        stack.extend(node.get("nodes", []) + node.get("floating_nodes", []))
    return found


@cases.case
def text_drag_never_grows_the_strip(d):
    watch = ShelfWatch(d)
    src = gtk_source(d, "--file", sample(d), "--text-only")
    shelf = Shelf(d)
    start = time.monotonic()
    reached = drag_to_strip(d)
    gone = watch.wait("unmap", start, timeout=3)
    d.pointer.glide((STRIP_X, DROP_ROW), ON_SHELF)
    d.pointer.up()
    time.sleep(1)
    assert all(w <= 10 for _, w, _ in watch.sizes(start)), watch.sizes(start)
    assert shelf_width(d, shelf.app) == 0 and not saved_items(d), saved_items(d)
    assert "drag-data-get" not in src.output(), src.output()
    print(f"ok: a text drag entering the strip took it away {(gone - reached) * 1000:.0f} ms after reaching it; "
          "nothing shelved")


@cases.case
def file_dragged_out_arrives_in_gtk(d):
    path = sample(d, b"plan.bin")
    items = shelve(d, [path])
    report = d.out("dst.json")
    d.start_gtk("dst", "--report", report, name="gtk-dst")
    watch = ShelfWatch(d)
    shelf = Shelf(d, summon=True)
    tile = middle(shelf_frame(d, shelf))
    d.pointer.move_to(tile[0] - 10, tile[1])  # the pointer's entry must reach XWayland first
    time.sleep(0.3)
    start = d.pointer.start_drag(*tile)
    d.pointer.glide((tile[0] + 15, tile[1] + 5), (150, 150))
    time.sleep(0.3)
    d.pointer.up()
    try:
        drop = d.wait_json(report, until=lambda r: r["drops"], timeout=5)["drops"][0]
    except Exception:
        assert watch.drag_starts(start - 0.5), "the tile's drag began"
        assert os.path.exists(staged_path(items[0])) and os.path.exists(path), "nothing lost"
        print("ok: a tile's drag began but did not arrive in the GTK window (X source to Wayland target); "
              "the file stays on the shelf")
        return
    arrived = urllib.parse.unquote_to_bytes(urllib.parse.urlsplit(drop["uris"][0]).path)
    assert open(arrived, "rb").read() == open(path, "rb").read()
    print(f"ok: a tile dragged into a GTK window arrived as {drop['uris'][0]}")


@cases.case
def shortcut_reaches_only_from_x_windows(d):
    watch = ShelfWatch(d)
    gtk_source(d, "--file", sample(d))
    Shelf(d)
    # The X key grab sees nothing typed into a Wayland window.
    start = time.monotonic()
    d.pointer.key(F5)
    time.sleep(1.5)
    assert not watch.shelf(start), watch.shelf(start)
    # With an X window focused, it does.
    rx = d.start_peer("receive", "--geometry", "200,200,300,200")
    window = d.wait_mapped(rx)
    d.wait_for(lambda: d.active_window() == window, 5, "the X window to be active")
    time.sleep(0.3)
    start = time.monotonic()
    d.pointer.key(F5)
    shown = watch.wait("map", start, timeout=3)
    print(f"ok: F5 typed into the GTK window never reached the shelf; typed into an X window it brought "
          f"the shelf up in {(shown - start) * 1000:.0f} ms")


@cases.case
def no_tray_in_bare_sway(d):
    owner = d.run(["xdotool", "search", "--class", "trayer"], check=False)
    shelf = Shelf(d)
    time.sleep(2)
    log = shelf.app.output()
    tray_lines = [l for l in log.splitlines() if "tray" in l.lower()]
    assert shelf.app.running()
    print(f"ok: no tray host in bare sway ({owner.strip() or 'no XEmbed tray'}); Mosswick keeps running; "
          f"its log on the tray: {tray_lines[:2]}")


@cases.case
def show_in_folder_reaches_the_file_manager(d):
    report = d.out("file-manager.jsonl")
    stand_in = d.start([SYSTEM_PYTHON, FILE_MANAGER, report], name="file-manager")
    d.wait_output(stand_in, "ready")
    path = sample(d, b"minutes.txt")
    shelve(d, [path])
    shelf = Shelf(d, summon=True)
    tile = middle(shelf_frame(d, shelf))
    before = set(d.windows(shelf.app))
    d.pointer.click(*tile, button=0x111)
    d.wait_for(lambda: set(d.windows(shelf.app)) - before, 5, "the tile menu")
    for key in (DOWN, DOWN, RETURN):  # Open, Show in Folder
        d.pointer.key(key)
    d.wait_for(lambda: os.path.exists(report), 5, "the file manager to be asked")
    with open(report, encoding="utf-8") as f:
        calls = [json.loads(line) for line in f]
    assert calls == [{"method": "ShowItems", "uris": [file_uri(path)]}], calls
    print("ok: Show in Folder from the tile menu asked the file manager to show the file")


@cases.case
def an_image_tile_shows_its_preview(d):
    colour = (230, 0, 230)
    path = os.path.join(os.fsencode(d.output), b"flat.png")
    subprocess.run(["convert", "-size", "120x90", "xc:#%02x%02x%02x" % colour, path], check=True, timeout=30)
    items = shelve(d, [path])
    items[0]["contentTypeIdentifier"] = "image/png"
    with open(save_file(d), "w", encoding="utf-8") as f:
        json.dump(items, f)
    shelf = Shelf(d, summon=True)
    window = shelf.window()

    def near():
        return sum(all(abs(a - b) <= 48 for a, b in zip(pixel, colour))
                   for row in d.window_pixels(window) for pixel in row)
    count = d.wait_for(lambda: near() > 1000 and near(), 10, "the tile to show the image")
    print(f"ok: the image's tile shows its preview ({count} pixels of its colour)")


cases.run()
