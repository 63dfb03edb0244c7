#!/usr/bin/env bash
# The desktop test harness's own cost: how long one scripted drag between two test peers takes,
# from starting the xdotool sequence to the receiver's report holding the drop (median of 10).
# Its pauses are what make X11 drag and drop follow xdotool; latencies measured through the
# harness include this much.
set -euo pipefail
build=$(cd "${1:-build}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
[ -x "$build/mosswick-testpeer" ] || { echo "test peer not built; harness benchmark skipped" >&2; exit 0; }
command -v Xvfb >/dev/null || { echo "Xvfb missing; harness benchmark skipped" >&2; exit 0; }

median=$(MOSSWICK_BUILD_DIR="$build" PYTHONPATH="$here/../tools/desktop" python3 - <<'PY'
import statistics, time
from desktop import Desktop

with Desktop(name="bench-harness") as d:
    rx = d.start_peer("receive", "--geometry", "700,100,300,200", "--report", d.out("rx.json"))
    src = d.start_peer("drag", "--text", "timed", "--stay", "--geometry", "100,100,200,150",
                       "--report", d.out("src.json"))
    d.wait_mapped(rx)
    d.wait_mapped(src)
    times = []
    for n in range(1, 11):
        started = time.monotonic()
        d.drag((200, 175), (850, 200))
        d.wait_json(d.out("rx.json"), until=lambda r: len(r["drops"]) == n, timeout=10)
        times.append(time.monotonic() - started)
        # The source takes the next drag once it has heard this one finish.
        d.wait_json(d.out("src.json"), until=lambda r: len(r["drags"]) == n)
    print(statistics.median(times))
PY
)
row "one scripted drag through the harness (median of 10)" "$median" "-" "-" "absolute"
