#!/usr/bin/env bash
# Staging speed against the tools a user would reach for: one 1 GiB file against
# `cp --reflink=auto`, a folder of 10,000 small files against `cp -r`, and the deep size of a
# 100,000-file tree against `du -sb`. Every measurement is the best of a few runs with a warm
# cache, ours and the reference taking turns; copies are deleted between runs, untimed. All data
# lives in a temporary folder under /tmp that is removed at the end.
set -euo pipefail
build=$(cd "${1:-build}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=common.sh
source "$here/common.sh"

tool="$build/bench/stage_tool"
if [ ! -x "$tool" ]; then
  echo "staging.sh: $tool is not built" >&2
  exit 1
fi

work=$(mktemp -d /tmp/mosswick-bench-staging.XXXXXX)
trap 'rm -rf "$work"' EXIT
export XDG_DATA_HOME="$work/data"
mkdir -p "$work/copies"

python3 - "$work" <<'EOF'
import os, random, sys
work = sys.argv[1]
random.seed(7)
block = os.urandom(1 << 20)
with open(os.path.join(work, "large.bin"), "wb") as out:
    for _ in range(1024):
        out.write(block)
def tree(top, folders, files, largest):
    for f in range(folders):
        folder = os.path.join(top, "group%02d" % (f // 50), "folder%04d" % f)
        os.makedirs(folder)
        for i in range(files):
            with open(os.path.join(folder, "file%03d.dat" % i), "wb") as out:
                out.write(os.urandom(random.randint(0, largest)))
tree(os.path.join(work, "small-files"), 100, 100, 8192)
tree(os.path.join(work, "size-tree"), 1000, 100, 2048)
EOF
sync

clear_copies() {
  rm -rf "$XDG_DATA_HOME" "$work/copies"/*
  sync
}

# turns N OURS_COMMAND REFERENCE_COMMAND: runs each N times, alternating, clearing copies after
# every run; prints the best time of each.
turns() {
  local n=$1 ours=$2 reference=$3 best_ours="" best_reference="" t
  for _ in $(seq "$n"); do
    t=$(bench_seconds bash -c "$ours")
    clear_copies
    if [ -z "$best_ours" ] || [ "$(echo "$t < $best_ours" | bc -l)" = 1 ]; then best_ours=$t; fi
    t=$(bench_seconds bash -c "$reference")
    clear_copies
    if [ -z "$best_reference" ] || [ "$(echo "$t < $best_reference" | bc -l)" = 1 ]; then best_reference=$t; fi
  done
  echo "$best_ours $best_reference"
}

# Warm the cache for every source, and each tool's own start.
cat "$work/large.bin" >/dev/null
du -sb "$work/small-files" "$work/size-tree" >/dev/null
"$tool" size "$work/size-tree" >/dev/null

read -r ours reference < <(turns 5 "'$tool' stage '$work/large.bin'" "cp --reflink=auto '$work/large.bin' '$work/copies/'")
row "stage a 1 GiB file" "$ours" "cp --reflink=auto" "$reference" 1.05

# The last rung, for file systems that refuse both faster ones, has no target: its bytes pass
# through user space, once more than with copy_file_range (which cp uses here).
read -r ours _ < <(turns 3 "'$tool' stage-rw '$work/large.bin'" "true")
row "stage a 1 GiB file, read/write rung forced" "$ours" "-" "-" "-"

read -r ours reference < <(turns 5 "'$tool' stage '$work/small-files'" "cp -r '$work/small-files' '$work/copies/'")
row "stage a folder of 10,000 small files" "$ours" "cp -r" "$reference" 1.2

read -r ours reference < <(turns 5 "'$tool' size '$work/size-tree'" "du -sb '$work/size-tree'")
row "deep size of a 100,000-file tree" "$ours" "du -sb" "$reference" 1.2
