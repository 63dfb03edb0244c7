"""xarchiver, a real X Direct Save source, on a test desktop.

xarchiver runs once per user on the whole machine, whatever the display: a second one hands its
archive to the first (through /tmp/.xarchiver-socket…, to that one's display) and quits. So it
runs with a /tmp of its own (a private mount namespace) where that is allowed; where it is not,
the test is skipped while another xarchiver runs."""

import os
import shutil
import subprocess
import tempfile

from .process import children
from .programs import skip

# A /tmp of its own for a program, keeping the X sockets and the desktop's temporary folder ($1)
# at their places; then runs the rest of the arguments.
_PRIVATE_TMP = """set -e
mount --bind /tmp /mnt
mount -t tmpfs tmpfs /tmp
mkdir -p /tmp/.X11-unix "$1"
mount --bind /mnt/.X11-unix /tmp/.X11-unix
case "$1" in /tmp/*) mount --bind "/mnt/${1#/tmp/}" "$1" ;; esac
shift
exec "$@"
"""

_private_tmp = None


def _private_tmp_allowed():
    """Whether this process may give a child a mount namespace of its own (root may)."""
    global _private_tmp
    if _private_tmp is None:
        _private_tmp = shutil.which("unshare") is not None and subprocess.run(
            ["unshare", "--mount", "--propagation", "private", "true"], capture_output=True).returncode == 0
    return _private_tmp


def _xarchiver_running():
    """Whether some xarchiver listens on its single-instance socket (read from /proc, without
    touching it)."""
    listening = 0x10000  # __SO_ACCEPTCON
    try:
        with open("/proc/net/unix") as table:
            next(table)
            for line in table:
                fields = line.split()
                if len(fields) >= 8 and fields[7].startswith("/tmp/.xarchiver-socket") and \
                        int(fields[3], 16) & listening:
                    return True
    except OSError:
        pass
    return False


class Xarchiver:
    """Desktop methods for archives and xarchiver."""

    def make_zip(self, files, name="archive.zip"):
        """Makes a zip archive in the temporary folder holding `files` ({name: bytes}) and
        returns its path."""
        folder = tempfile.mkdtemp(prefix="zip-", dir=self.temp)
        for entry, data in files.items():
            path = os.path.join(folder, entry)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as f:
                f.write(data)
        archive = os.path.join(folder + ".d", name)
        os.makedirs(os.path.dirname(archive))
        subprocess.run(["zip", "-q", "-r", archive, *files], cwd=folder, env=self.env, check=True)
        return archive

    def start_xarchiver(self, files, timeout=20):
        """Opens a zip archive of `files` ({name: bytes}) in xarchiver and waits until it has
        listed the archive."""
        archive = self.make_zip(files)
        argv = ["xarchiver", archive]
        if _private_tmp_allowed():
            argv = ["unshare", "--mount", "--propagation", "private", "sh", "-c", _PRIVATE_TMP, "sh",
                    self.temp, *argv]
        elif _xarchiver_running():
            skip("another xarchiver of this user is running; it would take the archive instead")
        program = self.start(argv, name="xarchiver")
        window = self.wait_mapped(program, timeout)
        title = os.path.basename(archive)
        # It lists the archive by running unzip: done once the title names it and no helper runs.
        self.wait_for(lambda: title in self.run(["xdotool", "getwindowname", window], check=False)
                      and not children(program.pid), timeout, "xarchiver to list the archive")
        return program

    def drag_from_xarchiver(self, program, to, row=0, keys=()):
        """Drags entry number `row` of xarchiver's file list to `to`. The list's place in the
        window is xarchiver's default layout (600x400 window, 200 px tree, DejaVu fonts)."""
        x, y, _, _ = self.window_geometry(self.wait_mapped(program))
        self.drag((x + 250, y + 152 + 25 * row), to, keys=keys)
