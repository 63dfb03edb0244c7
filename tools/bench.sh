#!/usr/bin/env bash
# Runs the benchmarks and prints one table row per measurement.
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")/.." && pwd)
shopt -s nullglob
. "$here/bench/common.sh"
bench_header
export bench_header_printed=1
for script in "$here"/bench/*.sh; do
  bash "$script" "$build"
done
