#!/usr/bin/env bash
# Runs every libFuzzer target in the fuzz build for a bounded time each, from its seed corpus.
set -euo pipefail
build=${1:-build-fuzz}
seconds=${2:-20}
here=$(cd "$(dirname "$0")/.." && pwd)
shopt -s nullglob
ran=0
for fuzzer in "$build"/fuzz/fuzz_*; do
  [ -f "$fuzzer" ] && [ -x "$fuzzer" ] || continue
  name=$(basename "$fuzzer")
  corpus=$(mktemp -d)
  seeds="$here/fuzz/corpus/${name#fuzz_}"
  [ -d "$seeds" ] && cp -r "$seeds"/. "$corpus"/
  echo "== $name for ${seconds}s"
  QT_LOGGING_RULES="mosswick.*=false" ASAN_OPTIONS=detect_leaks=0 "$fuzzer" -max_total_time="$seconds" -max_len=65536 "$corpus" 2>&1 | tail -n 3
  rm -rf "$corpus"
  ran=$((ran + 1))
done
echo "fuzz: $ran fuzzers ran without a crash"
