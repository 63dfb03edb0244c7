"""Named, independent cases in one test script, sharing one desktop.

    cases = Cases(strut_bottom=40)

    @cases.case
    def a_drop_lands(d):
        ...

    cases.run()

Starting a desktop costs little but starting it for every case adds up, so the cases share one;
what makes them independent is what the runner does around each: programs the case started are
stopped after it (newest first), a button or key it left held is released, and by default the
case gets new, empty HOME and XDG data, config and cache folders, so Mosswick starts with no
settings and no shelf. Each case writes its screenshots, reports and logs into a folder of its
own (<output>/<case name>/).

Every case runs, even after one failed; a failure is reported with the case's name, the error,
its screenshot and its logs' folder. The script exits 1 if any case failed, 77 if every case
was skipped (a case skips by calling skip()), else 0. Case names given on the command line run
those cases alone."""

import os
import sys
import time
import traceback

from .core import Desktop
from .programs import SKIP_CODE, Skipped

_USER_FOLDER_KEYS = ("HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME")


class Cases:
    """A registry of cases and their runner; `desktop_options` go to Desktop."""

    def __init__(self, desktop_class=Desktop, **desktop_options):
        self.desktop_class = desktop_class
        self.desktop_options = desktop_options
        self._cases = []

    def case(self, function=None, *, fresh_folders=True):
        """Registers a case, a function taking the desktop; run in the order registered.
        fresh_folders=False: the case shares the desktop's own user folders."""
        def register(f):
            self._cases.append((f.__name__, f, fresh_folders))
            return f
        return register(function) if function else register

    def run(self, names=None):
        """Runs the cases (those named in `names`, default the command line's arguments, else all)
        and exits as described above; returns only when none failed and not all were skipped."""
        names = list(sys.argv[1:] if names is None else names)
        known = [name for name, _, _ in self._cases]
        unknown = [name for name in names if name not in known]
        if unknown:
            sys.exit(f"no such case: {', '.join(unknown)} (cases: {', '.join(known)})")
        chosen = [c for c in self._cases if not names or c[0] in names]
        results = {}
        with self.desktop_class(**self.desktop_options) as d:
            for name, function, fresh in chosen:
                results[name] = self._run_one(d, name, function, fresh)
        failed = [name for name, result in results.items() if result == "failed"]
        skipped = [name for name, result in results.items() if result == "skipped"]
        print(f"{len(results) - len(failed) - len(skipped)} passed, {len(failed)} failed, "
              f"{len(skipped)} skipped" + (f"; failed: {', '.join(failed)}" if failed else ""), flush=True)
        if failed:
            sys.exit(1)
        if len(skipped) == len(results):
            sys.exit(SKIP_CODE)

    def _run_one(self, d, name, function, fresh):
        top, folders = d.output, {key: d.env[key] for key in _USER_FOLDER_KEYS}
        d.output = os.path.join(top, name)
        os.makedirs(d.output, exist_ok=True)
        if fresh:
            d.fresh_user_folders(name)
        started, begun = len(d.programs), time.monotonic()
        print(f"--- {name}", flush=True)
        try:
            function(d)
            result = "passed"
            print(f"PASS {name} ({time.monotonic() - begun:.1f} s)", flush=True)
        except Skipped as skipped:
            result = "skipped"
            print(f"SKIP {name}: {skipped.reason}", flush=True)
        except Exception as problem:
            result = "failed"
            traceback.print_exc()
            print(f"FAIL {name} ({time.monotonic() - begun:.1f} s): {type(problem).__name__}: {problem}",
                  flush=True)
            if d.out_of_time:
                raise
            self._report(d)
        finally:
            d.stop_programs_since(started)
            d.output = top
            d.env.update(folders)
            d.home = d.env["HOME"]
        return result

    @staticmethod
    def _report(d):
        try:
            print(f"  screenshot: {d.screenshot('failure')}", flush=True)
        except Exception as problem:  # the display itself may be what failed
            print(f"  no screenshot: {problem}", flush=True)
        print(f"  logs: {d.output}", flush=True)
        # A drag cut short leaves the button, or a key, held for the next case.
        d.run(["xdotool", "keyup", "shift", "ctrl", "alt", "mouseup", "1"], check=False)
