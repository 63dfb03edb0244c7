"""The thumbnail cache is shared with GNOME's thumbnail factory both ways: a thumbnail the factory
wrote is used by Mosswick as it stands, and one Mosswick wrote is valid to the factory's lookup.
Needs GNOME's factory through Python GObject (gir1.2-gnomedesktop-3.0, python3-gi): without them
the test is skipped (exit 77). Usage: thumbnail_interop.py PROBE"""

import os
import subprocess
import sys
import tempfile
import urllib.parse

SKIP = 77

try:
    import gi
    gi.require_version("GnomeDesktop", "3.0")
    gi.require_version("GdkPixbuf", "2.0")
    from gi.repository import GdkPixbuf, GLib, GnomeDesktop  # noqa: E402
except (ImportError, ValueError) as error:
    print(f"skipped: GNOME's thumbnail factory cannot be loaded ({error})")
    sys.exit(SKIP)

probe = os.path.abspath(sys.argv[1])
with tempfile.TemporaryDirectory(prefix="mosswick-interop-") as root:
    cache_home = os.path.join(root, "cache")
    os.makedirs(cache_home, mode=0o700)
    # Both sides read the cache folder from the environment: the factory at its first use.
    os.environ["XDG_CACHE_HOME"] = cache_home
    os.environ["HOME"] = root
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")

    def picture(name, colour):
        """A PNG file of one colour; names are bytes and need not be UTF-8."""
        path = os.path.join(os.fsencode(root), name)
        pixbuf = GdkPixbuf.Pixbuf.new(GdkPixbuf.Colorspace.RGB, False, 8, 300, 200)
        pixbuf.fill(colour)
        ok, data = pixbuf.save_to_bufferv("png", [], [])
        with open(path, "wb") as f:
            f.write(data)
        return path

    def uri_of(path):
        return GLib.filename_to_uri(os.fsdecode(path), None)

    def mtime_of(path):
        return int(os.stat(path).st_mtime)

    def run_probe(path):
        result = subprocess.run([probe, path, "image/png"], env=env, capture_output=True, timeout=60)
        assert result.returncode == 0, result
        return result.stdout.decode().strip()

    factory = GnomeDesktop.DesktopThumbnailFactory.new(GnomeDesktop.DesktopThumbnailSize.NORMAL)
    for name in [b"plain.png", b"with space & 'quotes' #1;[x].png", "caf\u00e9 \u2013 \u00fcber.png".encode(),
                 b"not-utf8-\xff\xfe.png"]:
        # GNOME writes, Mosswick reads it as it stands.
        path = picture(name, 0xff0000ff)
        uri = uri_of(path)
        thumbnail = factory.generate_thumbnail(uri, "image/png")
        factory.save_thumbnail(thumbnail, uri, mtime_of(path))
        written = factory.lookup(uri, mtime_of(path))
        assert written, ("the factory found no thumbnail of its own", name)
        with open(written, "rb") as f:
            before = f.read()
        outcome = run_probe(path)
        assert outcome == "cached", (name, outcome)
        with open(written, "rb") as f:
            assert f.read() == before, ("the factory's thumbnail was rewritten", name)

        # Mosswick writes, GNOME finds it valid.
        other = picture(b"mosswick-" + name, 0x00ff00ff)
        outcome = run_probe(other)
        assert outcome == "made", (name, outcome)
        found = factory.lookup(uri_of(other), mtime_of(other))
        assert found, ("the factory does not accept Mosswick's thumbnail", name, uri_of(other))
        assert urllib.parse.unquote(os.path.basename(found)).endswith(".png"), found
        print("shared both ways:", name)
