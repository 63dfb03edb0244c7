"""X Direct Save between two peers: the file is written where the receiver asked, under the
proposed name's exact bytes; a failing, a late and a self-naming source are reported as such;
and a receiver that does not ask for the file never makes the source write it."""

import base64
import os
import time

from desktop import Desktop, skip_unless_available
from desktop.files import file_uri
from desktop.peers import PeerPair, data

skip_unless_available()

with Desktop() as d:
    folder = os.path.join(d.temp, "promised")
    os.makedirs(folder)
    rx = PeerPair(d, "--promise-folder", folder)
    body = "Name,Wert\nä,1\n"

    # A proposed name that is not UTF-8.
    name = b"r\xe9sum\xe9.csv"
    drop, drag = rx.drag("--promise", name, "--promise-type", "text/csv", "--promise-data", body)
    target = os.path.join(os.fsencode(folder), name)
    promise = drop["promise"]
    assert (promise["reply"], drag["promise"]["reply"]) == ("S", "S"), (promise, drag)
    assert drop["targets"][:2] == ["XdndDirectSave0", "text/csv"], drop["targets"]
    assert promise["files"] == [file_uri(target)] and drag["promise"]["written"] == file_uri(target), promise
    assert open(target, "rb").read() == body.encode()
    os.remove(target)
    print("ok: a promise kept where the receiver asked, under the proposed name's bytes")

    drop, drag = rx.drag("--promise", "broken.txt", "--promise-data", "x", "--fail", "E")
    assert (drop["promise"]["reply"], drag["promise"]["reply"]) == ("E", "E") and not os.listdir(folder), drop
    # "F" with the bytes offered beside it: the receiver is to write them itself.
    drop, drag = rx.drag("--promise", "image.jpg", "--promise-type", "image/jpeg", "--promise-data", "JPEG bytes",
                         "--fail", "F", "--octet-stream")
    assert drop["promise"]["reply"] == "F" and not os.listdir(folder), drop["promise"]
    assert data(drop, "application/octet-stream") == b"JPEG bytes", drop["targets"]
    print("ok: failing promises answer E and F and write nothing")

    started = time.monotonic()
    drop, drag = rx.drag("--promise", "slow.txt", "--promise-data", "late", "--late", "1.5")
    assert time.monotonic() - started >= 1.5 and drop["promise"]["reply"] == "S", drop["promise"]
    assert base64.b64decode(drop["promise"]["bytes"]) == b"late"
    os.remove(os.path.join(folder, "slow.txt"))
    print("ok: a late promise still arrives")

    drop, drag = rx.drag("--promise", "asked.txt", "--promise-data", "mine", "--own-name", "chosen.txt")
    assert drop["promise"]["reply"] == "S" and "bytes" not in drop["promise"], drop["promise"]
    assert drop["promise"]["files"] == [file_uri(os.path.join(folder, "chosen.txt").encode())], drop["promise"]
    os.remove(os.path.join(folder, "chosen.txt"))
    print("ok: a source that picks its own name writes into the receiver's folder")

    plain = PeerPair(d, geometry="700,450,300,200", name="rx-plain")
    drop, drag = plain.drag("--promise", "never.txt", "--promise-data", "x")
    assert "XdndDirectSave0" in drop["targets"] and "promise" not in drop and "promise" not in drag, drop
    assert not os.listdir(folder)
    print("ok: a receiver that does not ask for the file gets none written")
