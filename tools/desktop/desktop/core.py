"""A private X desktop for one test: its lifetime, its output folder, and starting programs on it
and waiting for them."""

import atexit
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile

from . import process
from .input import Input
from .process import DesktopError, Program
from .programs import Programs, build_dir
from .session import Session
from .windows import Windows
from .xarchiver import Xarchiver


class Desktop(Session, Programs, Xarchiver, Input, Windows):
    """A private X desktop for one test. Use it as a context manager.

    screens: sizes of the screens (monitors), side by side from the left, tops aligned.
    strut_bottom: height of a panel along the bottom of the first screen that reserves its
        strip, so the window manager's work area is smaller than the screen.
    session_bus: start a private D-Bus session bus (else programs find no session bus).
    compositor: start xcompmgr and wait until it runs.
    tray: start trayer, an XEmbed system tray (openbox has none); "dark" for a near-black one.
    name: the test's name (default $MOSSWICK_TEST_NAME, else the script's name).
    timeout: seconds after which the test fails (default $MOSSWICK_TEST_TIMEOUT).
    """

    def __init__(self, screens=((1280, 800),), strut_bottom=0, session_bus=False, compositor=False,
                 tray=False, name=None, timeout=None):
        self.name = name or os.environ.get("MOSSWICK_TEST_NAME") or \
            os.path.splitext(os.path.basename(sys.argv[0]))[0]
        self.screens = [tuple(s) for s in screens]
        self._programs = []
        self._closed = False
        self._count = {}
        self.out_of_time = False
        self.output = self._prepare_output()
        self.temp = tempfile.mkdtemp(prefix="mosswick-desktop-")
        self._sandbox_environment()
        atexit.register(self.close)
        self._previous_handlers = {s: signal.signal(s, self._on_signal)
                                   for s in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)}
        timeout = timeout if timeout is not None else float(os.environ.get("MOSSWICK_TEST_TIMEOUT", 0))
        if timeout:
            signal.signal(signal.SIGALRM, self._on_timeout)
            signal.setitimer(signal.ITIMER_REAL, timeout)
        try:
            self._start_x_server()
            if session_bus:
                self._start_session_bus()
            self._start_window_manager()
            if compositor:
                self._start_compositor()
            if strut_bottom:
                self.add_strut("bottom", strut_bottom)
            if tray:
                self._start_tray(tray)
        except BaseException:
            self.close()
            raise

    # --- lifetime -------------------------------------------------------------------------

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        if kind is not None and not issubclass(kind, SystemExit) and not self._closed:
            self._report_failure()
        self.close()
        return False

    @property
    def programs(self):
        """Everything started on this desktop so far (the X server and window manager too)."""
        return list(self._programs)

    def stop_programs_since(self, count):
        """Stops the programs started after the first `count`, newest first."""
        while len(self._programs) > count:
            self._programs.pop().stop()

    def close(self):
        """Stops everything the desktop started, newest first, and removes its temporary folder.
        The output folder stays."""
        if self._closed:
            return
        self._closed = True
        signal.setitimer(signal.ITIMER_REAL, 0)
        self.stop_programs_since(0)
        shutil.rmtree(self.temp, ignore_errors=True)
        for number, handler in self._previous_handlers.items():
            signal.signal(number, handler)

    def _on_signal(self, number, frame):
        raise SystemExit(128 + number)

    def _on_timeout(self, number, frame):
        self.out_of_time = True
        raise TimeoutError(f"{self.name} ran out of time")

    def _report_failure(self):
        try:
            print(f"screenshot at failure: {self.screenshot('failure')}", file=sys.stderr)
        except Exception as problem:  # the display itself may be what failed
            print(f"no screenshot at failure: {problem}", file=sys.stderr)
        print(f"logs of the programs: {self.output}", file=sys.stderr)

    # --- output ---------------------------------------------------------------------------

    def _prepare_output(self):
        given = os.environ.get("MOSSWICK_TEST_OUTPUT")
        folder = given or os.path.join(build_dir(), "test-output", self.name)
        if not given:
            shutil.rmtree(folder, ignore_errors=True)  # last run's screenshots would mislead
        os.makedirs(folder, exist_ok=True)
        return os.path.abspath(folder)

    def out(self, name):
        """A path in the test's output folder (kept after the test)."""
        return os.path.join(self.output, name)

    def _log_path(self, name):
        key = (self.output, name)
        count = self._count[key] = self._count.get(key, 0) + 1
        return os.path.join(self.output, f"{name}-{count}.log")

    # --- programs -------------------------------------------------------------------------

    def start(self, argv, name=None, env=None, pass_fds=()):
        """Starts a program on this desktop with the sandboxed environment (plus `env`) and
        returns its Program; it is stopped when the desktop closes."""
        environment = dict(self.env, **(env or {}))
        program = Program(argv, environment, self._log_path(name or os.path.basename(str(argv[0]))),
                          pass_fds=pass_fds)
        self._programs.append(program)
        return program

    def run(self, argv, timeout=30, check=True):
        """Runs a command on this desktop to its end and returns its standard output."""
        done = subprocess.run(process.arguments(argv), env=self.env, capture_output=True, timeout=timeout)
        if check and done.returncode != 0:
            raise DesktopError(f"{' '.join(map(repr, argv))} failed ({done.returncode}): "
                               f"{done.stderr.decode(errors='replace').strip()}")
        return done.stdout.decode("utf-8", "replace")

    # --- waiting --------------------------------------------------------------------------

    def wait_for(self, condition, timeout=10, what="the condition", interval=0.05):
        """Calls `condition` until it returns something true, and returns that; fails after
        `timeout` seconds, naming `what` it waited for."""
        return process.wait_for(condition, timeout, what, interval)

    def wait_file(self, path, timeout=10):
        """Waits until a file exists and returns its path."""
        return self.wait_for(lambda: os.path.exists(path) and path, timeout, f"{path} to be written")

    def wait_json(self, path, until=None, timeout=10):
        """Waits until a JSON file exists (and `until(data)` holds, when given) and returns its
        data. The peers write their reports whole (temporary file, then rename)."""
        def ready():
            try:
                with open(path, encoding="utf-8") as f:
                    data = json.load(f)
            except FileNotFoundError:
                return None
            return data if until is None or until(data) else None
        return self.wait_for(ready, timeout, f"{path}" + (" to hold what was expected" if until else ""))

    def wait_output(self, program, text, timeout=10):
        """Waits until a program has printed `text`."""
        return self.wait_for(lambda: text in program.output(), timeout, f"{program} to print {text!r}")
