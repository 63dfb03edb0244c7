"""A self-installed copy updates itself from a local HTTPS server, end to end. Two builds of
Mosswick made as a release is (feed address and Ed25519 public key given at build time; see
tests/desktop/CMakeLists.txt), version 1.9.0 and 1.10.0, packed by `make dist`'s script; the old
one installed by its install.sh into a home folder of the test's, started, and asked from its
tray menu to "Check for Updates…" while the server offers:

- archives it must refuse: signed by another key, altered after signing, shorter or longer than
  the feed says, offered over plain HTTP, redirected to plain HTTP, or only an older version.
  Each time the message says why, and the installed copy is untouched and still answers;
- then the new version, properly signed: it is verified and installed, the old binary stays as
  mosswick.old while the old copy still runs (its message box is up), and once that is closed the
  new copy starts in its place, answers the command line with the items the old one had, and
  removes mosswick.old."""

import base64
import hashlib
import http.server
import json
import os
import ssl
import subprocess
import threading

from desktop import Desktop, signing, skip, skip_unless_available
from desktop.mosswick import running_copies, write_settings
from desktop.process import DesktopError, wait_for

skip_unless_available("trayer", "openssl", "tar", "strip", peer=False)
FOLDER = os.environ.get("MOSSWICK_UPDATE_TEST", "")
OLD, NEW = os.environ.get("MOSSWICK_UPDATE_OLD", ""), os.environ.get("MOSSWICK_UPDATE_NEW", "")
if not (os.path.isdir(FOLDER) and os.access(OLD, os.X_OK) and os.access(NEW, os.X_OK)):
    skip("the update test's builds of Mosswick are not there (MOSSWICK_UPDATE_TEST/_OLD/_NEW)")

SETTINGS = signing.make_settings(FOLDER)
SECRET = signing.secret_key(FOLDER)
OTHER_SECRET = signing.new_key_pair()[1]
TOP = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
TRAY_TOP = 24  # trayer's height


def sha(path):
    with open(path, "rb") as f:
        return hashlib.sha256(f.read()).hexdigest()


class Server:
    """The update server: HTTPS on the builds' own loopback address, answering each path from
    `routes` ({path: (status, headers, body)}), which a case replaces."""

    def __init__(self, certificate, key):
        self.routes = {}
        server = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                status, headers, body = server.routes.get(self.path, (404, {}, b"not here"))
                self.send_response(status)
                for name, value in headers.items():
                    self.send_header(name, value)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *args):
                pass

        self.httpd = http.server.ThreadingHTTPServer((SETTINGS["host"], SETTINGS["port"]), Handler)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
        self.httpd.socket = context.wrap_socket(self.httpd.socket, server_side=True)
        self.thread = threading.Thread(target=self.httpd.serve_forever, daemon=True)
        self.thread.start()

    def url(self, path):
        return f"https://{SETTINGS['host']}:{SETTINGS['port']}{path}"

    def offer(self, releases, files=()):
        """Serves a feed of `releases` and the archives `files` ({path: body or (status, headers,
        body)})."""
        self.routes = {"/feed.json": (200, {"Content-Type": "application/json"},
                                      json.dumps({"releases": releases}).encode())}
        for path, body in dict(files).items():
            self.routes[path] = body if isinstance(body, tuple) else (200, {}, body)

    def close(self):
        self.httpd.shutdown()
        self.httpd.server_close()


def release(version, url, archive, size=None, secret=SECRET):
    """A feed's entry for `archive` at `url`, signed with `secret`; `size` says another length."""
    return {"version": version, "url": url, "size": len(archive) if size is None else size,
            "signature": base64.b64encode(signing.sign(secret, archive)).decode()}


def make_archive(d, binary, version):
    out = os.path.join(d.temp, "dist")
    subprocess.run(["bash", os.path.join(TOP, "tools", "make-dist.sh"), os.environ["MOSSWICK_BUILD_DIR"], out,
                    version, binary], check=True, capture_output=True, timeout=120)
    [name] = [n for n in os.listdir(out) if n.startswith(f"mosswick-{version}-")]
    with open(os.path.join(out, name), "rb") as f:
        return name, f.read()


def install(d, archive_name):
    unpacked = os.path.join(d.temp, "unpacked")
    os.makedirs(unpacked)
    subprocess.run(["tar", "-xzf", os.path.join(d.temp, "dist", archive_name), "-C", unpacked], check=True)
    [top] = os.listdir(unpacked)
    prefix = os.path.join(d.home, ".local")
    subprocess.run(["sh", os.path.join(unpacked, top, "install.sh")], env=dict(d.env, PREFIX=prefix), check=True,
                   capture_output=True, timeout=60)
    return prefix


class Copy:
    """The installed copy under `prefix`, and what of it a refused update must leave alone."""

    def __init__(self, d, prefix):
        self.d, self.prefix = d, prefix
        self.binary = os.path.join(prefix, "bin", "mosswick")

    def cli(self, *args):
        done = subprocess.run([self.binary, *args], env=self.d.env, capture_output=True, timeout=30)
        return done.returncode, done.stdout.decode(errors="replace"), done.stderr.decode(errors="replace")

    def state(self):
        """The installed files that an update touches: their checksums, and what lies beside them."""
        return {"binary": sha(self.binary), "bin": sorted(os.listdir(os.path.dirname(self.binary))),
                "share/mosswick": sorted(os.listdir(os.path.join(self.prefix, "share", "mosswick")))}


def update_messages(program_log):
    with open(program_log, "rb") as f:
        return [line.split(b"mosswick.updates: ", 1)[1].decode(errors="replace")
                for line in f.read().splitlines() if b"mosswick.updates: " in line]


def check_for_updates(d, pid, log):
    """Chooses "Check for Updates…" in the tray menu of the Mosswick with process id `pid`; returns
    what the updater said (read from the log; the same sentence is in the message box, left up)
    and the windows that were there before (the box is none of them)."""
    said = len(update_messages(log))
    icon = d.wait_for(lambda: [w for w in d.windows(pid) if d.window_geometry(w)[1] < TRAY_TOP], 10,
                      "Mosswick's icon in the tray")[0]
    before = set(d.windows(pid))
    x, y, w, h = d.window_geometry(icon)
    d.click(x + w // 2, y + h // 2)
    d.wait_for(lambda: set(d.windows(pid)) - before, 5, "the tray menu")
    # Window Position, Window Size, (Bring Back is disabled), Add Clipboard Contents, About, then it.
    d.key(*["Down"] * 5)
    d.key("Return")
    messages = d.wait_for(lambda: update_messages(log)[said:], 20, "the updater's answer")
    assert len(messages) == 1, messages
    return messages[0], before


def close_message_box(d, pid, before):
    """Waits for the message box (a new window titled "Mosswick", as the shelf is too) and closes
    it with Return."""
    def box():
        for window in set(d.windows(pid)) - before:
            if d.run(["xdotool", "getwindowname", str(window)]).strip() == "Mosswick":
                return window
        return None
    window = d.wait_for(box, 5, "the message box")
    d.xdotool("windowactivate", "--sync", str(window))
    d.key("Return")
    d.wait_for(lambda: window not in d.windows(pid), 5, "the message box to close")


with Desktop(tray=True) as d:
    old_name, old_archive = make_archive(d, OLD, "1.9.0")
    new_name, new_archive = make_archive(d, NEW, "1.10.0")
    prefix = install(d, old_name)
    copy = Copy(d, prefix)
    assert copy.cli("--version")[1] == "mosswick 1.9.0\n", copy.cli("--version")

    # The server's certificate, for this run: trusted by the update test's builds, never by others.
    server_key = os.path.join(d.temp, "server-key.pem")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                    "-nodes", "-keyout", server_key, "-out", SETTINGS["authorities"], "-days", "1",
                    "-subj", f"/CN={SETTINGS['host']}", "-addext", f"subjectAltName=IP:{SETTINGS['host']}"],
                   check=True, capture_output=True, timeout=60)
    try:
        server = Server(SETTINGS["authorities"], server_key)
    except OSError as error:
        skip(f"cannot serve on {SETTINGS['host']}:{SETTINGS['port']}: {error}")
    new_path = "/" + new_name
    new_url = server.url(new_path)
    older = release("1.8.2", server.url("/old.tar.gz"), old_archive)
    other_new = new_archive[:-1] + bytes([new_archive[-1] ^ 1])
    write_settings(d, checkForUpdatesAutomatically=False)
    note = os.path.join(d.temp, "note.txt")
    with open(note, "wb") as f:
        f.write(b"kept across the update")

    old = d.start([copy.binary], name="mosswick")
    try:
        d.wait_output(old, "Mosswick is running")
        assert copy.cli("add", note)[0] == 0
        untouched = copy.state()
        assert untouched["bin"] == ["mosswick"], untouched

        refusals = [
            ("signed by another key", [release("1.10.0", new_url, new_archive, secret=OTHER_SECRET)],
             {new_path: new_archive}, "the download of 1.10.0 is not signed with this app's key"),
            ("altered after signing", [release("1.10.0", new_url, new_archive)], {new_path: other_new},
             "the download of 1.10.0 is not signed with this app's key"),
            ("shorter than the feed says", [release("1.10.0", new_url, new_archive)],
             {new_path: new_archive[:-100]}, "was cut short"),
            ("longer than the feed says", [release("1.10.0", new_url, new_archive, size=len(new_archive) - 100)],
             {new_path: new_archive}, "the download is larger than announced"),
            ("offered over plain HTTP",
             [release("1.10.0", f"http://{SETTINGS['host']}:8080{new_path}", new_archive)], {},
             "an archive is not offered over HTTPS (release 1.10.0)"),
            ("redirected to plain HTTP", [release("1.10.0", new_url, new_archive)],
             {new_path: (302, {"Location": f"http://{SETTINGS['host']}:8080{new_path}"}, b"")},
             "redirected to plain HTTP"),
            ("an older version only", [older], {"/old.tar.gz": old_archive}, "Mosswick 1.9.0 is up to date."),
        ]
        for what, releases, files, expected in refusals:
            server.offer(releases, files)
            message, before = check_for_updates(d, old.pid, old.log)
            assert expected in message, (what, message)
            close_message_box(d, old.pid, before)
            assert copy.state() == untouched, (what, copy.state())
            assert old.running() and copy.cli("list")[0] == 0, what
            print(f"ok: {what}: refused, nothing changed: {message}")

        # The real update. While its message box is up, the old copy still runs and the new one is
        # installed with the old binary kept beside it.
        server.offer([older, release("1.10.0", new_url, new_archive)],
                     {new_path: new_archive, "/old.tar.gz": old_archive})
        message, before = check_for_updates(d, old.pid, old.log)
        assert message == "Mosswick was updated to 1.10.0 and restarts now.", message
        assert copy.cli("--version")[1] == "mosswick 1.10.0\n"
        assert sorted(os.listdir(os.path.dirname(copy.binary))) == ["mosswick", "mosswick.old"]
        assert sha(copy.binary + ".old") == untouched["binary"]
        assert os.listdir(os.path.join(prefix, "share", "mosswick")) == ["installed-from-archive"]
        assert old.running()
        close_message_box(d, old.pid, before)
        old.wait(10)  # and reaped: the restart waits for the old process to be gone
        new_pid = d.wait_for(lambda: running_copies(copy.binary), 15, "the new copy to start")[0]
        assert new_pid != old.pid
        d.wait_for(lambda: not os.path.exists(copy.binary + ".old"), 15, "the new copy to remove mosswick.old")
        with open(f"/proc/{new_pid}/exe", "rb") as running:
            assert hashlib.sha256(running.read()).hexdigest() == sha(copy.binary), "the running copy is not the new one"
        code, out, err = copy.cli("list")
        assert code == 0 and "note.txt" in out, (code, out, err)
        print("ok: 1.10.0 verified, installed, mosswick.old kept until it started; it runs and kept the shelf")
    finally:
        # The new copy is no child of the test's: ask it to quit, or end it by its process id.
        if running_copies(copy.binary):
            try:
                copy.cli("quit")
                wait_for(lambda: not running_copies(copy.binary), 5, "the new copy to quit")
            except (DesktopError, subprocess.TimeoutExpired):
                for pid in running_copies(copy.binary):
                    os.kill(pid, 9)
        server.close()
