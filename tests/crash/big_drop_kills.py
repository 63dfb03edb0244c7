"""The real Mosswick killed (SIGKILL) at random moments while it copies a drop of 3,000 files,
many times. After every kill, the next start must not delete any copy that finished more than a
second before the kill, and must bring back every item the save file held.

A copy is finished once its hidden partial is renamed into place in the item's folder, which
dates the folder: its modification time is when the copy finished.

MOSSWICK_CRASH_ROUNDS sets how many drops are killed (4 by default, about 8 s each here)."""

import json
import os
import random
import shutil
import signal
import time

from desktop import Desktop, skip_unless_available
from desktop.files import make_files
from desktop.mosswick import data_folder, save_file, write_settings
from desktop.peers import SOURCE_GEOMETRY, SOURCE_POINT

skip_unless_available(mosswick=True)

FILES = 3000
ROUNDS = int(os.environ.get("MOSSWICK_CRASH_ROUNDS", "4"))
SHELF_POINT = (1176, 700)
# Copies finished this long before the kill may not have been saved yet.
SAVE_GRACE = 1.0


def finished_copies(staging):
    """{item folder name: when its copy finished} for the folders holding a finished copy."""
    found = {}
    for name in os.listdir(staging):
        folder = os.path.join(staging, name)
        try:
            entries = [e for e in os.listdir(folder) if not e.startswith(".")]
            if len(entries) == 1:
                found[name.upper()] = os.lstat(folder).st_mtime
        except OSError:
            pass
    return found


def saved_ids(d):
    """The ids in the save file; it must always parse."""
    try:
        with open(save_file(d), encoding="utf-8") as f:
            return {item["id"].upper() for item in json.load(f)}
    except FileNotFoundError:
        return set()


with Desktop(screens=[(1280, 800)], strut_bottom=40) as d:
    source_folder = os.path.join(os.fsencode(d.temp), b"drop")
    os.makedirs(source_folder)
    files = make_files(source_folder, [f"file {i:04}.bin".encode() for i in range(FILES)],
                       content=lambda name: name * 800)
    staging = os.path.join(data_folder(d), "Staged")
    checked_copies = checked_items = 0
    for round_ in range(ROUNDS):
        # Each round starts from an empty shelf that keeps every item of the drop.
        shutil.rmtree(data_folder(d), ignore_errors=True)
        write_settings(d, maximumItemCount=0)
        app = d.start_mosswick()
        source = d.start_peer("drag", "--geometry", SOURCE_GEOMETRY, *(["--files"] + files))
        d.wait_mapped(source)
        d.drag(SOURCE_POINT, SHELF_POINT)
        # The kill comes at a random moment once copying is under way (a busy machine may delay
        # its start); the last round, if none did yet, late enough for some copies to be checked.
        d.wait_for(lambda: os.path.isdir(staging) and finished_copies(staging), 30, "the first finished copy")
        late = round_ == ROUNDS - 1 and checked_copies == 0
        time.sleep(random.uniform(1.5 if late else 0.3, 3.0))
        killed_at = time.time()
        os.killpg(app.pid, signal.SIGKILL)
        app.popen.wait()
        source.stop()

        copies = finished_copies(staging) if os.path.isdir(staging) else {}
        must_keep = {name for name, finished in copies.items() if finished < killed_at - SAVE_GRACE}
        saved = saved_ids(d)

        again = d.start_mosswick()
        again.stop()  # a clean quit saves the shelf as it came back, and waits for its pruning
        kept = finished_copies(staging)
        lost = sorted(must_keep - set(kept))
        assert not lost, f"round {round_}: {len(lost)} copies finished over a second before the kill " \
                         f"were deleted, e.g. {lost[:3]}"
        restored = saved_ids(d)
        missing = sorted(saved - restored)
        assert not missing, f"round {round_}: {len(missing)} saved items did not come back, e.g. {missing[:3]}"
        checked_copies += len(must_keep)
        checked_items += len(saved)
        print(f"ok: round {round_}: killed {killed_at % 100:.2f}; {len(copies)} copies finished, "
              f"{len(must_keep)} over a second before, {len(saved)} items saved; all kept", flush=True)
    assert checked_copies > 0, "no copy ever finished a second before a kill: nothing was checked"
    print(f"ok: {ROUNDS} kills during a drop of {FILES} files: {checked_copies} copies and {checked_items} saved "
          "items, none lost")
