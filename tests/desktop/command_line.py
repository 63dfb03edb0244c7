"""`mosswick <command>` from a shell reaches the running shelf: `add` puts files on it as one
batch (and starts a shelf when none runs), names a missing path on standard error while the rest
still go on, keeps a name that is not UTF-8 byte for byte; `list --json` reads back what was added
and `remove` takes an item away by its ID; `clear` then `restore` brings the items back; `quit`
writes the shelf out before the process ends, within the save's delay.

Each case has fresh user folders; a shelf a command started itself is ended with `quit`."""

import base64
import json
import os
import subprocess

from desktop import Cases, skip_unless_available
from desktop.files import read_bytes
from desktop.mosswick import Shelf, saved_items
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


cases.run()
