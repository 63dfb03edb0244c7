#!/usr/bin/env bash
# With no display: Mosswick under Xvfb for a few seconds, with a screenshot of what it shows.
set -euo pipefail
build=${1:-build}
out=$(mktemp -d /tmp/mosswick-demo-XXXXXX)
sandbox="$out/home"
mkdir -p "$sandbox"/{data,config,cache,runtime}
chmod 700 "$sandbox/runtime"
export XDG_DATA_HOME="$sandbox/data" XDG_CONFIG_HOME="$sandbox/config" XDG_CACHE_HOME="$sandbox/cache" XDG_RUNTIME_DIR="$sandbox/runtime"

Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$out/display" 2>/dev/null &
xvfb=$!
trap 'kill $app $wm $xvfb 2>/dev/null || true' EXIT
for _ in $(seq 50); do [ -s "$out/display" ] && break; sleep 0.1; done
export DISPLAY=":$(cat "$out/display")"
openbox >/dev/null 2>&1 & wm=$!
"$build/mosswick" >"$out/mosswick.log" 2>&1 & app=$!
sleep 2
import -window root "$out/screen.png"
echo "Mosswick ran headless under Xvfb; screenshot: $out/screen.png (log: $out/mosswick.log)"
