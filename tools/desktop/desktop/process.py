"""Programs started on a test desktop: each leads a process group of its own, logs to a file in
the test's output folder and is stopped by process id, with everything it started."""

import ctypes
import os
import signal
import subprocess
import time


class DesktopError(Exception):
    """The desktop or a program on it did not do what was asked."""


def arguments(argv):
    """A command line as subprocess takes it: paths may come as bytes (file names need not be
    UTF-8), numbers as numbers."""
    return [a if isinstance(a, (str, bytes)) else str(a) for a in argv]


def wait_for(condition, timeout=10, what="the condition", interval=0.05):
    """Calls `condition` until it returns something true, and returns that; fails after `timeout`
    seconds, naming `what` it waited for."""
    deadline = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise DesktopError(f"timed out after {timeout} s waiting for {what}")
        time.sleep(interval)


def _die_with_parent():
    # Runs in the child before exec: should the test process be killed outright (SIGKILL gives it
    # no chance to clean up), the kernel still stops what it started.
    PR_SET_PDEATHSIG = 1
    try:
        ctypes.CDLL(None, use_errno=True).prctl(PR_SET_PDEATHSIG, signal.SIGTERM)
    except (OSError, AttributeError):
        pass


def children(pid):
    """Process ids whose parent is `pid`."""
    found = []
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                with open(f"/proc/{entry}/stat", "rb") as f:
                    # The name in parentheses may hold spaces: the parent follows the last ")".
                    if int(f.read().rsplit(b")", 1)[1].split()[1]) == pid:
                        found.append(int(entry))
            except (OSError, IndexError, ValueError):
                pass
    return found


class Program:
    """A process started on the desktop, leading a process group of its own; what it prints
    (standard output and error) goes to a log file in the test's output folder."""

    def __init__(self, argv, env, log, pass_fds=()):
        self.name = os.path.basename(argv[0])
        self.log = log
        with open(log, "wb") as sink:
            self.popen = subprocess.Popen(
                arguments(argv), env=env, stdin=subprocess.DEVNULL, stdout=sink,
                stderr=subprocess.STDOUT, start_new_session=True, pass_fds=pass_fds,
                preexec_fn=_die_with_parent)
        self.pid = self.popen.pid

    def running(self):
        """True while the process has not exited."""
        return self.popen.poll() is None

    def output(self):
        """Everything it has printed so far."""
        with open(self.log, "rb") as f:
            return f.read().decode("utf-8", "replace")

    def wait(self, timeout=10):
        """Waits for it to exit and returns its exit code."""
        try:
            return self.popen.wait(timeout)
        except subprocess.TimeoutExpired:
            raise DesktopError(f"{self.name} (pid {self.pid}) still runs after {timeout} s") from None

    def stop(self, grace=2.0):
        """Stops its whole process group: SIGTERM, then SIGKILL after `grace` seconds."""
        if self.popen.returncode is None:
            self._signal(signal.SIGTERM)
            try:
                self.popen.wait(grace)
            except subprocess.TimeoutExpired:
                pass
        # Whatever it started in its group goes too, even once the leader is gone.
        self._signal(signal.SIGKILL)
        self.popen.wait()

    def _signal(self, number):
        try:
            os.killpg(self.pid, number)
        except (ProcessLookupError, PermissionError):
            pass

    def __repr__(self):
        return f"<Program {self.name} pid {self.pid}>"
