"""A real X Direct Save source: an entry dragged out of a zip archive in xarchiver is extracted
into the receiver's folder under the entry's own name (xarchiver ignores the proposed one)."""

import os

from desktop import Desktop, skip_unless_available
from desktop.files import file_uri
from desktop.peers import PeerPair

skip_unless_available("xarchiver", "zip", "unzip")

with Desktop() as d:
    folder = os.path.join(d.temp, "promised")
    os.makedirs(folder)
    rx = PeerPair(d, "--promise-folder", folder, geometry="980,100,250,200")
    archive = d.start_xarchiver({"inside.txt": b"from the archive\n"})
    d.drag_from_xarchiver(archive, rx.point)
    drop = d.wait_json(rx.report)["drops"][0]
    assert drop["targets"] == ["XdndDirectSave0"], drop["targets"]
    promise = drop["promise"]
    assert promise["reply"] == "S", promise
    assert promise["files"] == [file_uri(os.path.join(folder, "inside.txt").encode())], promise
    assert open(os.path.join(folder, "inside.txt"), "rb").read() == b"from the archive\n"
    print(f"ok: xarchiver proposed {promise['proposed_name']!r} and wrote inside.txt")
    d.screenshot("after-drop")
