#!/usr/bin/env bash
# With no display: a short demo on a private Xvfb desktop (Mosswick, and the test peer dragging a
# file onto the shelf), a screenshot of each step; it ends by itself and says where they are.
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)
# The peer plays the other program; a build of Mosswick alone lacks it.
[ -x "$build/mosswick-testpeer" ] || cmake --build "$build" --target mosswick-testpeer
exec python3 "$here/headless-demo.py" "$build"
