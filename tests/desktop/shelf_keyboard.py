"""The shelf from the keyboard alone, once the shortcut or a click on its empty strip gave it the
focus: arrows select (Shift extends), Delete removes and Ctrl+Z brings back, Ctrl+A and Ctrl+C put
every file on the clipboard (read back by the test peer), Shift+F10 opens the tile menu, and Enter
opens the file with the desktop's default application (a stand-in that records what it was asked
to open)."""

import base64
import os
import stat
import time

from desktop import Cases, skip_unless_available
from desktop.programs import peer_binary
from desktop.shelved import ShelfWithFiles, uri

skip_unless_available(mosswick=True)

cases = Cases(strut_bottom=40, session_bus=True)


def focus(d, shelf):
    window = shelf.shelf.window()
    x, y, width, height = d.window_geometry(window)
    d.click(x + width // 2, y + height - 12)
    d.wait_for(lambda: d.active_window() == window, 3, "the clicked shelf to take the focus")


def clipboard(d, name):
    d.run([peer_binary(), "clipboard-dump", "--report", d.out(name)])
    report = d.wait_json(d.out(name))
    return {k: base64.b64decode(v) for k, v in report.get("data", {}).items()}


def install_opener(d, report):
    """Makes a script that appends its argument to `report` the default application for plain
    text, where xdg-open looks for it."""
    script = os.path.join(d.output, "opener.sh")
    with open(script, "w", encoding="utf-8") as f:
        f.write(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >> '{report}'\n")
    os.chmod(script, os.stat(script).st_mode | stat.S_IXUSR)
    applications = os.path.join(d.env["XDG_DATA_HOME"], "applications")
    os.makedirs(applications, exist_ok=True)
    with open(os.path.join(applications, "mosswick-test-opener.desktop"), "w", encoding="utf-8") as f:
        f.write("[Desktop Entry]\nType=Application\nName=Opener\n"
                f"Exec={script} %f\nMimeType=text/plain;\n")
    with open(os.path.join(d.env["XDG_CONFIG_HOME"], "mimeapps.list"), "w", encoding="utf-8") as f:
        f.write("[Default Applications]\ntext/plain=mosswick-test-opener.desktop\n")


@cases.case
def the_shortcut_brings_the_shelf_up_with_the_focus(d):
    # First of the cases: a focused program that quit (an earlier case's Mosswick) leaves X's focus
    # on None, where no shortcut is delivered to anybody.
    shelf = ShelfWithFiles(d, ["x.txt", "y.txt"])
    # Summoned at start-up it took no focus: keys go elsewhere.
    d.key("Down", "Delete")
    shelf.kept()
    # The shortcut (F5) puts it away, then calls it up with the focus.
    d.key("F5")
    shelf.shelf.wait_hidden()
    time.sleep(0.5)  # past the double press's window
    d.key("F5")
    d.wait_for(lambda: d.active_window() == shelf.shelf.window(), 5, "the summoned shelf to take the focus")
    d.key("Down", "Delete")
    assert shelf.saved_names(lambda items: len(items) == 1) == ["y.txt"]
    print("ok: the shortcut brings the shelf up ready for the keyboard")


@cases.case
def arrows_select_delete_removes_and_ctrl_z_brings_back(d):
    shelf = ShelfWithFiles(d, ["a.txt", "b.txt", "c.txt"])
    focus(d, shelf)
    # The first Down lands on the top tile, the next moves on; Shift+Down takes the third too.
    d.key("Down", "Down", "shift+Down", "Delete")
    assert shelf.saved_names(lambda items: len(items) == 1) == ["a.txt"]
    d.key("ctrl+z")
    # Brought back to the top, as the toolbar's button does.
    assert shelf.saved_names(lambda items: len(items) == 3) == ["b.txt", "c.txt", "a.txt"]
    # Nothing is selected now: Up lands on the bottom tile, and Down past the end stays there.
    d.key("Up", "Down", "Delete")
    assert shelf.saved_names(lambda items: len(items) == 2) == ["b.txt", "c.txt"]
    print("ok: arrows select, Shift extends, Delete removes the selection, Ctrl+Z brings it back")


@cases.case
def ctrl_a_and_ctrl_c_copy_every_file(d):
    shelf = ShelfWithFiles(d, ["one.txt", "two.txt"])
    focus(d, shelf)
    d.key("ctrl+a", "ctrl+c")
    got = d.wait_for(lambda: clipboard(d, "clipboard.json") or None, 5, "the clipboard to hold the copy")
    assert got["text/uri-list"] == b"".join(uri(p) + b"\r\n" for p in shelf.paths), got
    assert got["text/plain"] == b"\n".join(shelf.paths), got
    print("ok: Ctrl+A then Ctrl+C put both files on the clipboard")


@cases.case
def shift_f10_opens_the_tile_menu_of_the_selection(d):
    shelf = ShelfWithFiles(d, ["menu one.txt", "menu two.txt"])
    focus(d, shelf)
    before = set(d.windows(shelf.shelf.app))
    d.key("Down", "Down", "shift+F10")
    d.wait_for(lambda: set(d.windows(shelf.shelf.app)) - before, 5, "the tile menu")
    d.key("Down", "Down", "Down", "Return")  # Open, Show in Folder, Copy
    got = d.wait_for(lambda: clipboard(d, "clipboard.json") or None, 5, "the clipboard to hold the copy")
    assert got["text/plain"] == shelf.paths[1], got
    print("ok: Shift+F10 opens the tile menu for the selected tile, whose Copy copies it")


@cases.case
def enter_opens_with_the_default_application(d):
    report = d.out("opened.txt")
    install_opener(d, report)
    shelf = ShelfWithFiles(d, ["first.txt", "second.txt"])
    focus(d, shelf)
    d.key("Down", "Down", "Return")
    d.wait_for(lambda: os.path.exists(report), 10, "the default application to be asked")
    with open(report, "rb") as f:
        opened = f.read().splitlines()
    assert opened == [shelf.paths[1]], opened
    print("ok: Enter opens the selected file with the desktop's default application")


cases.run()
