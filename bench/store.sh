#!/usr/bin/env bash
# Saving and restoring a shelf of 500 items (absolute times; no reference tool does this).
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
sandbox=$(mktemp -d /tmp/mosswick-bench-XXXXXX)
trap 'rm -rf "$sandbox"' EXIT
export XDG_DATA_HOME="$sandbox/data" XDG_CONFIG_HOME="$sandbox/config" QT_QPA_PLATFORM=offscreen
"$build/bench/store_bench" --benchmark_format=csv 2>/dev/null | awk -F, '/^"BM_/ { gsub(/"/, "", $1); print $1, $3 }' |
while read -r name ms; do
  seconds=$(echo "$ms / 1000" | bc -l)
  case $name in
    BM_Save500Items) row "save 500 items (encode + atomic write)" "$seconds" "-" "-" "absolute" ;;
    BM_Restore500Items) row "restore 500 items (read, decode, check files)" "$seconds" "-" "-" "absolute" ;;
  esac
done
