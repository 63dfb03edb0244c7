"""The menus on the shelf, chosen from the keyboard as a user would after a right click: "Copy"
puts the files on the clipboard in the three forms other programs paste (read back byte for byte
by the test peer), "Show in Folder" asks the file manager's bus name for the whole stack at once
(a stand-in file manager records the call), and the shelf's own menu clears the shelf and brings
it back, and opens the settings window."""

import base64
import json
import os

from desktop import Cases, skip_unless_available
from desktop.mosswick import saved_items
from desktop.programs import peer_binary
from desktop.shelved import ShelfWithFiles, uri

skip_unless_available(mosswick=True)

STAND_IN = os.path.join(os.path.dirname(__file__), "..", "..", "tools", "desktop", "stand-ins", "file-manager.py")

cases = Cases(strut_bottom=40, session_bus=True)


def choose(d, shelf, at, downs):
    """Right-clicks at `at` and, once the menu is up, picks the row `downs` presses of Down away
    (separators and disabled rows are passed over)."""
    before = set(d.windows(shelf.shelf.app))
    d.click(*at, button=3)
    d.wait_for(lambda: set(d.windows(shelf.shelf.app)) - before, 5, "the menu")
    for _ in range(downs):
        d.key("Down")
    d.key("Return")


def clipboard(d, name):
    d.run([peer_binary(), "clipboard-dump", "--report", d.out(name)])
    report = d.wait_json(d.out(name))
    return {k: base64.b64decode(v) for k, v in report.get("data", {}).items()}


@cases.case
def copy_puts_the_selection_on_the_clipboard(d):
    shelf = ShelfWithFiles(d, ["a b.txt", "caf\xe9.txt"])
    choose(d, shelf, shelf.tile(1), 3)  # Open, Show in Folder, Copy
    paths = [shelf.paths[1]]
    got = d.wait_for(lambda: clipboard(d, "clipboard.json") or None, 5, "the clipboard to hold the copy")
    assert got["text/uri-list"] == b"".join(uri(p) + b"\r\n" for p in paths), got
    assert got["x-special/gnome-copied-files"] == b"copy\n" + b"\n".join(uri(p) for p in paths), got
    assert got["text/plain"] == b"\n".join(paths), got
    print("ok: Copy gives a URI list, GNOME's copied files and the paths as text")


@cases.case
def show_in_folder_asks_the_file_manager_once_for_the_stack(d):
    report = d.out("file-manager.jsonl")
    stand_in = d.start(["/usr/bin/python3", STAND_IN, report], name="file-manager")
    d.wait_output(stand_in, "ready")
    shelf = ShelfWithFiles(d, ["one.txt", "two.txt"], batch="3F2504E0-4F89-11D3-9A0C-0305E82C3301")
    choose(d, shelf, shelf.tile(0), 2)  # Open, Show in Folder
    d.wait_for(lambda: os.path.exists(report), 5, "the file manager to be asked")
    with open(report, encoding="utf-8") as f:
        calls = [json.loads(line) for line in f]
    assert calls == [{"method": "ShowItems", "uris": [uri(p).decode() for p in shelf.paths]}], calls
    print("ok: Show in Folder asks the file manager for both files of the stack in one call")


@cases.case
def the_shelfs_menu_clears_the_shelf_and_brings_it_back(d):
    shelf = ShelfWithFiles(d, ["a.txt", "b.txt"])
    x, y, width, height = d.window_geometry(shelf.shelf.window())
    background = (x + width // 2, y + height - 12)
    # Bring Back is disabled: Add Clipboard Contents, Window Position, Window Size, Clear the Shelf.
    choose(d, shelf, background, 4)
    shelf.saved_names(lambda items: items == [])
    choose(d, shelf, background, 1)  # Bring Back Last Removed Files
    names = shelf.saved_names(lambda items: len(items) == 2)
    assert names == ["a.txt", "b.txt"], names
    print("ok: the shelf's menu clears the shelf, and brings the items back")


@cases.case
def settings_opens_from_the_shelfs_menu(d):
    shelf = ShelfWithFiles(d, ["a.txt"])
    x, y, width, height = d.window_geometry(shelf.shelf.window())
    # Bring Back is disabled: Add Clipboard Contents, Window Position, Window Size, Clear the
    # Shelf, Hide Mosswick, Settings….
    choose(d, shelf, (x + width // 2, y + height - 12), 6)

    def settings_window():
        for window in d.windows(shelf.shelf.app):
            if (d.window_property(window, "_NET_WM_NAME") or "").endswith('"Mosswick Settings"'):
                return window
        return None
    d.wait_for(settings_window, 5, "the settings window")
    d.screenshot("settings-from-the-shelf")
    print("ok: Settings… on the shelf's menu opens the settings window")


cases.run()
