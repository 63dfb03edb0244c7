"""The shelf as a screen reader finds it: read through the real accessibility bus (the AT-SPI
bus on the test's own session bus, read with pyatspi as Orca does), each tile is an entry of a
list named by its file's name, kind and size, a stack by its count and names, and the toolbar's
count and buttons say what they are."""

import json
import os
import shutil

from desktop import Cases, skip, skip_unless_available
from desktop.shelved import ShelfWithFiles

skip_unless_available(mosswick=True)

BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
TREE = os.path.join(os.path.dirname(__file__), "..", "..", "tools", "desktop", "stand-ins", "accessible-tree.py")

cases = Cases(strut_bottom=40, session_bus=True)


def start_accessibility_bus(d):
    """Once per desktop: the cases share its session bus."""
    if "QT_LINUX_ACCESSIBILITY_ALWAYS_ON" in d.env:
        return
    if not os.path.exists(BUS_LAUNCHER) or not shutil.which("dbus-send"):
        skip("no accessibility bus (at-spi2-core)")
    d.start([BUS_LAUNCHER, "--launch-immediately"], name="at-spi-bus")
    d.wait_for(lambda: "unix:" in d.run(["dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus",
                                         "/org/a11y/bus", "org.a11y.Bus.GetAddress"], check=False),
               10, "the accessibility bus")
    # Qt speaks on the bus only when told that something listens.
    d.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"


def nodes(tree, role=None):
    found = [tree] if tree and (role is None or tree.get("role") == role) else []
    for child in tree.get("children", []):
        found += nodes(child, role)
    return found


def read_tree(d, until, what):
    """The tree of Mosswick's accessible objects once `until(tree)` holds."""
    seen = []

    def ready():
        tree = json.loads(d.run(["/usr/bin/python3", TREE, "mosswick"], check=False) or "{}")
        seen[:] = [tree]
        return tree if tree and until(tree) else None
    try:
        return d.wait_for(ready, 15, what)
    finally:
        with open(d.out("accessible-tree.json"), "w", encoding="utf-8") as f:
            json.dump(seen[0] if seen else {}, f, indent=1)


def tile_names(tree):
    return [n["name"] for n in nodes(tree, "list item")]


@cases.case
def tiles_count_and_buttons_are_named_on_the_bus(d):
    start_accessibility_bus(d)
    ShelfWithFiles(d, ["Holiday notes.txt", "b.txt"])
    tree = read_tree(d, lambda t: len(tile_names(t)) == 2, "both tiles on the accessibility bus")
    names = tile_names(tree)
    # The files hold "contents of <name>": 29 and 17 bytes.
    assert names == ["Holiday notes.txt, plain text document, 29 bytes",
                     "b.txt, plain text document, 17 bytes"], names
    lists = [n["name"] for n in nodes(tree, "list")]
    assert "Items on the shelf" in lists, lists
    labels = [n["name"] for n in nodes(tree, "label")]
    assert "2 items" in labels, labels
    buttons = [n["name"] for n in nodes(tree, "push button")]
    assert "Clear the shelf" in buttons, buttons
    print("ok: each tile reads as its name, kind and size; the count and the buttons are named")


@cases.case
def a_stack_reads_as_its_count_and_names_and_selection_is_told(d):
    start_accessibility_bus(d)
    shelf = ShelfWithFiles(d, ["one.txt", "two.txt", "three.txt"], batch="3F2504E0-4F89-11D3-9A0C-0305E82C3301")
    tree = read_tree(d, lambda t: len(tile_names(t)) == 1, "the stack on the accessibility bus")
    assert tile_names(tree) == ["3 items: one.txt, two.txt, three.txt"], tile_names(tree)
    d.click(*shelf.tile(0))
    read_tree(d, lambda t: "selected" in nodes(t, "list item")[0]["states"], "the tile to read as selected")
    print("ok: a stack reads as its count and names; a clicked tile reads as selected")


cases.run()
