"""The installed package starts from its desktop entry. `cmake --install` with DESTDIR (what the
package and `make install` do) puts Mosswick under a scratch root; its entry validates, is found by
its id in that root's data folder, and is launched as a desktop launches it: with `gio launch`
when GLib's tools are installed, else by expanding its Exec line as the Desktop Entry
Specification says. The shelf comes up (the entry asks for it), its icon sits in the tray, and the
installed binary answers `mosswick list`."""

import os
import shlex
import shutil
import subprocess

from desktop import Desktop, build_dir, skip_unless_available
from desktop.mosswick import running_copies

skip_unless_available("trayer", "desktop-file-validate", peer=False)

TRAY_TOP = 24  # trayer's height


def exec_argv(entry, field_codes):
    """The Exec line of `entry` as an argument list: quoting undone, field codes replaced from
    `field_codes` (a code with nothing to stand for is dropped, %% is a percent sign)."""
    line = next(line for line in open(entry, encoding="utf-8").read().splitlines() if line.startswith("Exec="))
    argv = []
    for word in shlex.split(line[len("Exec="):]):
        if word in field_codes:
            argv.extend(field_codes[word])
        elif len(word) == 2 and word[0] == "%" and word != "%%":
            continue
        else:
            argv.append(word.replace("%%", "%"))
    return argv


with Desktop(tray=True, session_bus=True) as d:
    root = os.path.join(d.temp, "root")
    subprocess.run(["cmake", "--install", build_dir(), "--prefix", "/usr"], env=dict(os.environ, DESTDIR=root),
                   check=True, capture_output=True, timeout=120)
    share, binary = os.path.join(root, "usr", "share"), os.path.join(root, "usr", "bin", "mosswick")
    entry = os.path.join(share, "applications", "mosswick.desktop")
    validated = subprocess.run(["desktop-file-validate", entry], capture_output=True, text=True)
    assert validated.returncode == 0 and not validated.stdout.strip(), validated.stdout
    print("ok: the installed desktop entry validates")

    # The session of a user with the package installed: its data folder searched for entries and
    # icons, its binaries on the PATH.
    d.env["XDG_DATA_DIRS"] = share + ":/usr/share"
    d.env["PATH"] = os.path.dirname(binary) + ":" + os.environ["PATH"]
    try:
        if shutil.which("gio"):
            launcher = d.start(["gio", "launch", entry], name="gio")  # the launched shelf inherits its log
            assert launcher.wait(30) == 0, launcher.output()
            how = "gio launch"
        else:
            argv = exec_argv(entry, {"%i": ["--icon", "mosswick"], "%c": ["Mosswick"], "%k": [entry]})
            d.start(argv, name="launched")
            how = "its Exec line"
        pid = d.wait_for(lambda: running_copies(binary), 20, "the installed Mosswick to start")[0]
        d.wait_for(lambda: [w for w in d.windows(pid) if d.window_geometry(w)[1] < TRAY_TOP], 10,
                   "its icon in the tray")
        d.wait_for(lambda: [w for w in d.windows(pid) if d.window_geometry(w)[1] >= TRAY_TOP], 10,
                   "the shelf the entry asks for")
        d.screenshot("launched")
        listed = subprocess.run([binary, "list"], env=d.env, capture_output=True, timeout=30)
        assert (listed.returncode, listed.stdout, listed.stderr) == (0, b"", b""), listed
        print(f"ok: launched through {how}, the installed Mosswick shows its shelf and tray icon and answers list")
    finally:
        if running_copies(binary):
            subprocess.run([binary, "quit"], env=d.env, capture_output=True, timeout=30)
            try:
                d.wait_for(lambda: not running_copies(binary), 10, "the launched Mosswick to quit")
            finally:
                for pid in running_copies(binary):
                    os.kill(pid, 9)
