#pragma once

namespace mosswick::testpeer {

// Watches the desktop from a connection of its own and prints one JSON line per event on standard
// output, each stamped with CLOCK_MONOTONIC seconds at the moment it was read (the clock Python's
// time.monotonic() reads):
//   {"event": "selection", "owner": W, "time": T}         XdndSelection changed hands (a drag began)
//   {"event": "map" | "unmap", "window": W, "class": C, "time": T}   a top-level window came or went
// "window" is the top-level window (the window manager's frame) and "class" the WM_CLASS class of
// the client inside it. Both kinds go through the same socket and the same reading, so the time
// between a drag's start and a window's appearance carries none of the watcher's own delay.
// Prints "ready" once it watches; runs until killed. Returns the exit code.
int watchDesktop();

}  // namespace mosswick::testpeer
