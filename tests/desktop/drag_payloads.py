"""Links, images and text dragged from one application into another arrive with exactly the
targets and bytes the source offered: links as browsers offer them (no text/uri-list), the
image's own PNG bytes, text as UTF-8."""

import os

from desktop import Desktop, skip_unless_available
from desktop.files import make_png
from desktop.peers import PeerPair, data

skip_unless_available()

with Desktop() as d:
    rx = PeerPair(d)

    url, title = "https://example.org/a page?q=1", "Ünïcode title — ✓"
    drop, _ = rx.drag("--link", url, "--title", title)
    pair = f"{url}\n{title}"
    assert drop["targets"] == ["text/x-moz-url", "_NETSCAPE_URL", "text/plain", "UTF8_STRING", "STRING", "TEXT"], \
        drop["targets"]
    assert data(drop, "text/x-moz-url") == pair.encode("utf-16-le"), data(drop, "text/x-moz-url")
    assert data(drop, "_NETSCAPE_URL") == pair.encode(), data(drop, "_NETSCAPE_URL")
    assert data(drop, "UTF8_STRING") == url.encode()
    print("ok: a link with its title, as a browser offers it")

    drop, _ = rx.drag("--link", url, "--title", title, "--link-uri-list")
    assert data(drop, "text/uri-list") == url.encode() + b"\r\n", drop["targets"]
    assert data(drop, "text/x-moz-url") == pair.encode("utf-16-le")
    print("ok: a link that also offers text/uri-list")

    png = make_png(os.path.join(d.temp, "picture.png"), 40, 30)
    drop, _ = rx.drag("--image", os.path.join(d.temp, "picture.png"))
    assert data(drop, "image/png") == png, "the PNG bytes changed on the way"
    assert "application/x-qt-image" in drop["targets"], drop["targets"]
    assert data(drop, "application/x-qt-image").startswith(b"\x89PNG")
    assert drop["qt"]["image"] == [40, 30], drop["qt"]
    print("ok: an image")

    text = "Zwei Zeilen:\nä ö ü — ✓ 😀"
    drop, _ = rx.drag("--text", text)
    assert data(drop, "text/plain") == text.encode() and data(drop, "UTF8_STRING") == text.encode()
    assert "text/uri-list" not in drop["targets"]
    assert drop["qt"]["text"] == text, drop["qt"]
    print("ok: plain text")

    # Mixed: a file with its own alternate text; each keeps its bytes.
    path = os.path.join(d.temp, "note.txt")
    open(path, "w").close()
    drop, _ = rx.drag("--file", path, "--text", "a note", "--html", "<b>a note</b>")
    assert data(drop, "text/uri-list") == b"file://" + path.encode() + b"\r\n"
    assert data(drop, "UTF8_STRING") == b"a note" and data(drop, "text/html") == b"<b>a note</b>"
    print("ok: a file with text and HTML beside it")
    d.screenshot("after-drops")
