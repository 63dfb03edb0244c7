"""`mosswick <command>` from a shell reaches the running shelf: `add` puts files on it as one
batch (and starts a shelf when none runs), names a missing path on standard error while the rest
still go on, keeps a name that is not UTF-8 byte for byte; `list --json` reads back what was added
and `remove` takes an item away by its ID; `clear` then `restore` brings the items back; `quit`
writes the shelf out before the process ends, within the save's delay. `paste` puts the
clipboard's files and text on the shelf byte for byte (and says so when it holds nothing);
`show`, `hide` and `toggle` map and unmap the shelf's window, also when no shelf runs yet (then
`show` and `toggle` start one, `hide` does nothing, and without a display the command says it
could not start one).

Each case has fresh user folders; a shelf a command started itself is ended with `quit`."""

import base64
import json
import os
import subprocess

from desktop import Cases, skip_unless_available
from desktop.files import read_bytes
from desktop.mosswick import Shelf, running_copies, saved_items
from desktop.programs import mosswick_binary

skip_unless_available(mosswick=True, peer=False)

cases = Cases()


def cli(d, *args, stdin=b"", cwd=None, timeout=30):
    """Runs `mosswick ARGS…` on the desktop: (exit code, standard output, standard error), bytes."""
    done = subprocess.run([mosswick_binary(), *args], env=d.env, input=stdin, capture_output=True,
                          cwd=cwd, timeout=timeout)
    return done.returncode, done.stdout, done.stderr


def listed(d):
    code, out, err = cli(d, "list", "--json")
    assert code == 0, (code, err)
    return json.loads(out)


def path_bytes(item, key):
    """A path field of `list --json` as bytes: the base64 beside it when the path is not UTF-8."""
    if key + "Base64" in item:
        return base64.b64decode(item[key + "Base64"])
    return os.fsencode(item[key])


def folder(d, files):
    """A folder of its own in the case's temp space holding `files` {bytes name: bytes}."""
    top = os.path.join(os.fsencode(d.temp), os.fsencode(os.path.basename(d.output)))
    os.makedirs(top, exist_ok=True)
    for name, data in files.items():
        with open(os.path.join(top, name), "wb") as f:
            f.write(data)
    return top


def staged(d, count):
    """Waits until `count` items are listed, each with its staged copy made, and returns them."""
    def ready():
        items = listed(d)
        return len(items) == count and all(item["stagedPath"] for item in items) and items
    return d.wait_for(ready, 15, f"{count} staged items")


@cases.case
def add_with_a_missing_path_adds_the_others_as_one_batch(d):
    Shelf(d)
    top = folder(d, {b"one.txt": b"first", b"two.txt": b"second"})
    missing = os.path.join(top, b"gone.txt")
    code, out, err = cli(d, "add", os.path.join(top, b"one.txt"), missing, b"two.txt", cwd=top)
    assert code == 1, (code, err)
    assert err == b"mosswick: cannot add " + missing + b": No such file or directory\n", err
    items = staged(d, 2)
    assert {item["name"] for item in items} == {"one.txt", "two.txt"}, items
    assert items[0]["batchID"] and items[0]["batchID"] == items[1]["batchID"], items
    for item in items:
        assert read_bytes(path_bytes(item, "stagedPath")) == read_bytes(os.path.join(top, os.fsencode(item["name"])))
        assert path_bytes(item, "originalPath") == os.path.join(top, os.fsencode(item["name"]))
        assert item["kind"] == "file" and item["contentType"] == "text/plain", item
        assert item["webURL"] is None and item["addedAt"].endswith("Z"), item

    # Every key a script may read, and remove by the ID read back.
    assert set(items[0]) >= {"id", "name", "kind", "contentType", "size", "stagedPath", "originalPath",
                             "webURL", "batchID", "addedAt"}, items[0]
    assert cli(d, "remove", items[0]["id"])[0] == 0
    assert [item["id"] for item in listed(d)] == [items[1]["id"]]
    code, _, err = cli(d, "remove", items[0]["id"])
    assert code == 1 and b"no item with ID" in err, (code, err)


@cases.case
def add_starts_a_shelf_and_quit_saves_it_at_once(d):
    top = folder(d, {b"note.txt": b"kept"})
    try:
        code, _, err = cli(d, "add", "note.txt", cwd=top)
        assert code == 0, (code, err)
        # At once, inside the save's delay: quit must write the shelf before it answers.
        code, _, err = cli(d, "quit")
        assert code == 0, (code, err)
        assert [item["displayName"] for item in saved_items(d)] == ["note.txt"]
    finally:
        cli(d, "quit")
    # Nothing listens any more: hide has nothing to do and says so by succeeding quietly.
    assert cli(d, "hide") == (0, b"", b"")


@cases.case
def a_name_that_is_not_utf8_stays_bytes(d):
    Shelf(d)
    name = b"caf\xe9 \xff.txt"
    top = folder(d, {name: b"latin-1"})
    code, _, err = cli(d, "add", "-", stdin=name + b"\0", cwd=top)
    assert code == 0, (code, err)
    [item] = staged(d, 1)
    assert os.path.basename(path_bytes(item, "stagedPath")) == name, item
    assert path_bytes(item, "originalPath") == os.path.join(top, name), item
    assert read_bytes(path_bytes(item, "stagedPath")) == b"latin-1"
    code, out, _ = cli(d, "list")
    assert code == 0 and out.rstrip(b"\n").split(b"\t")[-1] == path_bytes(item, "stagedPath"), out


@cases.case
def clear_then_restore_brings_the_items_back(d):
    Shelf(d)
    top = folder(d, {b"a.txt": b"a", b"b.txt": b"b"})
    assert cli(d, "add", b"a.txt", b"b.txt", cwd=top)[0] == 0
    before = sorted(item["id"] for item in staged(d, 2))
    assert cli(d, "clear")[0] == 0
    assert listed(d) == []
    assert cli(d, "restore")[0] == 0
    assert sorted(item["id"] for item in listed(d)) == before
    code, _, err = cli(d, "restore")
    assert code == 1 and err == b"mosswick: nothing to restore\n", (code, err)


@cases.case
def paste_adds_the_clipboards_files_and_text_byte_for_byte(d):
    shelf = Shelf(d)
    named = {"naïve café.bin".encode(): bytes(range(256)) * 4, b"plain.txt": b"two lines\nof text\n"}
    top = folder(d, named)
    contents = {os.path.join(top, name): data for name, data in named.items()}
    owner = d.start_peer("clipboard", "--files", *contents)
    d.wait_output(owner, "ready")
    assert cli(d, "paste") == (0, b"", b"")
    shelf.window()  # pasting brings the shelf up, as the double press does
    items = staged(d, 2)
    assert sorted(read_bytes(path_bytes(item, "stagedPath")) for item in items) == sorted(contents.values()), items
    assert sorted(path_bytes(item, "originalPath") for item in items) == sorted(contents), items
    owner.stop()

    text = "Grüße aus Köln ✓\nzweite Zeile"
    owner = d.start_peer("clipboard", "--text", text)
    d.wait_output(owner, "ready")
    assert cli(d, "paste") == (0, b"", b"")
    [clipping] = [item for item in staged(d, 3) if item["id"] not in {i["id"] for i in items}]
    assert read_bytes(path_bytes(clipping, "stagedPath")) == text.encode(), clipping
    owner.stop()

    # Nobody owns the clipboard any more: nothing to add, and the caller hears so.
    assert cli(d, "paste") == (1, b"", b"mosswick: the clipboard holds nothing to add\n")
    assert len(listed(d)) == 3


@cases.case
def show_hide_and_toggle_map_and_unmap_the_shelf(d):
    shelf = Shelf(d)
    d.move(5, 5)  # a shelf under the pointer lingers
    assert not shelf.visible()
    for verb, shown in [("show", True), ("show", True), ("hide", False), ("hide", False), ("toggle", True),
                        ("toggle", False)]:
        assert cli(d, verb) == (0, b"", b""), verb
        if shown:
            shelf.window()
        else:
            shelf.wait_hidden()
        print(f"ok: {verb} leaves the shelf {'up' if shown else 'away'}")


@cases.case
def show_and_toggle_start_a_shelf_when_none_runs(d):
    d.move(5, 5)
    binary, runtime = mosswick_binary(), d.env["XDG_RUNTIME_DIR"]
    try:
        assert cli(d, "hide") == (0, b"", b"")
        assert running_copies(binary, runtime) == [], "hide started a shelf"
        for verb in ("show", "toggle"):
            assert cli(d, verb) == (0, b"", b""), verb
            [pid] = running_copies(binary, runtime)
            d.wait_mapped(pid)  # started, and shown
            assert cli(d, "quit")[0] == 0
            d.wait_for(lambda: not running_copies(binary, runtime), 10, "the started shelf to quit")
            print(f"ok: {verb} with no shelf running starts one and shows it")
    finally:
        cli(d, "quit")

    # No display to start one on: said so, with the exit code the manual gives.
    env = {key: value for key, value in d.env.items() if key != "DISPLAY"}
    done = subprocess.run([binary, "show"], env=env, capture_output=True, timeout=60)
    assert (done.returncode, done.stdout, done.stderr) == \
        (3, b"", b"mosswick: could not reach or start the shelf\n"), done
    assert running_copies(binary, runtime) == []


cases.run()
