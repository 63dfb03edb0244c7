"""Files and folders dragged from one application into another arrive as the exact file URIs of
their names' bytes, and the source learns which action the target took."""

import os

from desktop import Desktop, skip_unless_available
from desktop.files import file_uri, make_files
from desktop.peers import PeerPair, data

skip_unless_available()

with Desktop() as d:
    folder = os.path.join(d.temp, "files")
    os.makedirs(folder)
    rx = PeerPair(d)

    # A name that is not UTF-8 (Latin-1 "café") must not be decoded on the way.
    [latin1] = make_files(folder, [b"caf\xe9.txt"])
    drop, drag = rx.drag("--file", latin1)
    assert data(drop, "text/uri-list") == file_uri(latin1).encode() + b"\r\n", drop
    assert drop["qt"]["urls"] == [file_uri(latin1)], drop["qt"]
    assert drop["targets"][0] == "text/uri-list", drop["targets"]
    assert (drag["action"], drop["action"]) == ("copy", "copy"), (drag, drop["action"])
    print("ok: a file whose name is not UTF-8")

    # Several at once, in order, one with a newline in its name and one with spaces and accents.
    several = make_files(folder, [b"first.txt", b"two\nlines.txt", "Ünïcode name ✓.txt".encode()])
    drop, drag = rx.drag("--files", *several)
    expected = b"".join(file_uri(p).encode() + b"\r\n" for p in several)
    assert data(drop, "text/uri-list") == expected, data(drop, "text/uri-list")
    assert drop["qt"]["urls"] == [file_uri(p) for p in several], drop["qt"]["urls"]
    print("ok: several files, a newline and accents in their names")

    inner = os.path.join(folder, "a folder")
    os.makedirs(inner)
    drop, drag = rx.drag("--folder", inner)
    assert data(drop, "text/uri-list") == file_uri(inner.encode()).encode() + b"\r\n", drop
    print("ok: a folder")

    # A target that moves: the source hears "move", not the copy it proposed.
    mover = PeerPair(d, "--accept", "move", geometry="700,450,300,200", name="rx-move")
    drop, drag = mover.drag("--file", latin1)
    assert (drag["action"], drag["exec_action"], drop["action"]) == ("move", "move", "move"), drag
    # A source that offers copy alone gets copy from the same target.
    drop, drag = mover.drag("--file", latin1, "--actions", "copy")
    assert (drag["action"], drop["action"]) == ("copy", "copy"), (drag, drop["action"])
    print("ok: the source reports the action the target took")

    # Dropped where no window takes drops: no target, no finish, action none.
    drop, drag = rx.drag("--file", latin1, to=(600, 700))
    assert drop is None and (drag["action"], drag["finished"]) == ("none", False), drag
    # A target that refuses: the source hears none, the target records nothing.
    refuser = PeerPair(d, "--accept", "ignore", geometry="350,450,300,200", name="rx-refuse")
    drop, drag = refuser.drag("--file", latin1)
    assert drop is None and drag["action"] == "none", drag
    assert not os.path.exists(refuser.report)
    print("ok: no target, and a target that refuses, give action none")
    d.screenshot("after-drops")
