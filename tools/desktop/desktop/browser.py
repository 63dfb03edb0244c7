"""Chromium as a drag source: a page served on 127.0.0.1 with a link, an image and a link to a
file at fixed places, shown in an application window (no tabs, no toolbar, so the page starts at
the window's client area) with a fresh profile. As a drop target: a page whose whole body is a
drop zone that writes the name and size of each dropped File into its title."""

import functools
import json
import http.server
import os
import shutil
import tempfile
import threading

from .files import make_png
from .programs import skip

# Where the page's elements stand, in page pixels from the client area's top-left corner.
LINK = (40, 40)
IMAGE = (40, 120)
IMAGE_SIZE = (96, 64)
FILE_LINK = (40, 240)
LINK_TITLE = "Moss and lichens"
IMAGE_ALT = "A gradient"
WINDOW = (20, 20, 520, 420)  # x, y, width, height

PAGE = f"""<!doctype html><html><head><meta charset="utf-8"><title>Drag source</title>
<style>body {{ margin: 0; font: 20px sans-serif; }} .at {{ position: absolute; }}</style></head>
<body>
<a class="at" id="link" style="left:{LINK[0]}px; top:{LINK[1]}px" href="/moss.html">{LINK_TITLE}</a>
<img class="at" id="image" style="left:{IMAGE[0]}px; top:{IMAGE[1]}px" width="{IMAGE_SIZE[0]}"
 height="{IMAGE_SIZE[1]}" src="/gradient.png" alt="{IMAGE_ALT}">
<a class="at" id="file" style="left:{FILE_LINK[0]}px; top:{FILE_LINK[1]}px" href="/notes.txt">notes.txt</a>
</body></html>
"""


DROP_TITLE = "Drop zone"
DROPPED = "dropped:"

DROP_PAGE = f"""<!doctype html><html><head><meta charset="utf-8"><title>{DROP_TITLE}</title>
<style>html, body {{ margin: 0; height: 100%; background: #dfe; font: 20px sans-serif; }}</style></head>
<body><p>Drop files here</p><script>
document.body.addEventListener("dragover", e => e.preventDefault());
document.body.addEventListener("drop", e => {{
  e.preventDefault();
  const files = Array.from(e.dataTransfer.files, f => [f.name, f.size]);
  document.title = "{DROPPED}" + JSON.stringify(files);
}});
</script></body></html>
"""


def chromium_binary():
    for name in ("chromium", "chromium-browser", "google-chrome"):
        found = shutil.which(name)
        if found:
            return found
    return None


class _QuietHandler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *args):
        pass


class Browser:
    """A page server and a Chromium window showing it, on one desktop; both stop with it."""

    def __init__(self, desktop, page="index.html", title="Drag source"):
        binary = chromium_binary()
        if not binary:
            skip("Chromium is not installed (chromium, from tools/install-deps.sh)")
        self.desktop = desktop
        self.site = tempfile.mkdtemp(prefix="site-", dir=desktop.temp)
        with open(os.path.join(self.site, "index.html"), "w", encoding="utf-8") as f:
            f.write(PAGE)
        with open(os.path.join(self.site, "drop.html"), "w", encoding="utf-8") as f:
            f.write(DROP_PAGE)
        with open(os.path.join(self.site, "moss.html"), "w", encoding="utf-8") as f:
            f.write("<!doctype html><title>Moss</title><p>Moss.</p>")
        with open(os.path.join(self.site, "notes.txt"), "w", encoding="utf-8") as f:
            f.write("Notes on moss.\n")
        self.image = make_png(os.path.join(self.site, "gradient.png"), *IMAGE_SIZE)

        handler = functools.partial(_QuietHandler, directory=self.site)
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.base = f"http://127.0.0.1:{self.server.server_address[1]}"

        profile = tempfile.mkdtemp(prefix="chromium-", dir=desktop.temp)
        x, y, width, height = WINDOW
        # As root Chromium refuses to start without --no-sandbox (--test-type keeps the warning
        # about it from pushing the page down); the rest keeps a test run quiet
        # and off the network, with no first-run dialog or keyring prompt in the way.
        self.program = desktop.start([
            binary, "--no-sandbox", "--test-type", "--disable-gpu", "--no-first-run", "--no-default-browser-check",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--password-store=basic", "--disable-features=Translate,MediaRouter",
            f"--user-data-dir={profile}", f"--window-position={x},{y}", f"--window-size={width},{height}",
            f"--app={self.base}/{page}"], name="chromium")
        self.title = title
        self.window = desktop.wait_mapped(self.program, timeout=60)
        self.client = desktop.wait_for(self._page_shown, 60, "Chromium to show the page")

    def _page_shown(self):
        # The window is mapped before the page is laid out; its title says the page is in.
        title = self.desktop.window_property(self.window, "_NET_WM_NAME") or ""
        if self.title not in title:
            return None
        return self.desktop.window_geometry(self.window)

    def point(self, element):
        """Screen coordinates of a point inside a page element, given by its place on the page."""
        cx, cy, _, _ = self.client
        return (cx + element[0] + 12, cy + element[1] + 10)

    def dropped(self, timeout=10):
        """The [name, size] pairs of the files the drop page took, once it took some."""
        def title():
            text = self.desktop.window_property(self.window, "_NET_WM_NAME") or ""
            if DROPPED not in text:
                return None
            # xprop quotes the title and escapes the quotes in it.
            unquoted = text.strip('"').replace('\\"', '"')
            return unquoted[unquoted.index(DROPPED) + len(DROPPED):]
        return json.loads(self.desktop.wait_for(title, timeout, "a drop on the page"))

    def url(self, path):
        return f"{self.base}/{path.lstrip('/')}"

    def close(self):
        self.server.shutdown()
        self.server.server_close()
