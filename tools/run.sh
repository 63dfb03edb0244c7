#!/usr/bin/env bash
# Starts Mosswick on the current display; with no display, a short headless demo under Xvfb.
set -euo pipefail
build=${1:-build}
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$build/mosswick"
fi
here=$(cd "$(dirname "$0")/.." && pwd)
exec bash "$here/tools/headless-demo.sh" "$build"
