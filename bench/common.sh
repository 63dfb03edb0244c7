# Shared by the benchmark scripts: timing and one table row per measurement.
#   row NAME OURS_SECONDS REFERENCE_NAME REFERENCE_SECONDS TARGET_RATIO
# prints the measurement, both times, the ratio ours/reference and whether it meets the target.
# With REFERENCE_SECONDS "-" the row is an absolute time.

bench_seconds() {  # runs "$@" and prints its wall time in seconds
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null
  end=$(date +%s.%N)
  echo "$end - $start" | bc -l
}

bench_best_of() {  # N command...: the best wall time of N runs
  local n=$1; shift
  local best="" t
  for _ in $(seq "$n"); do
    t=$(bench_seconds "$@")
    if [ -z "$best" ] || [ "$(echo "$t < $best" | bc -l)" = 1 ]; then best=$t; fi
  done
  echo "$best"
}

bench_header() {
  printf '%-48s %12s %-22s %12s %8s %s\n' "measurement" "mosswick" "reference" "ref time" "ratio" "target"
}

# A script run alone prints its own header; under tools/bench.sh the table has one.
bench_header_printed=${bench_header_printed:-}
row() {
  local name=$1 ours=$2 refname=$3 ref=$4 target=$5
  if [ -z "$bench_header_printed" ]; then
    bench_header
    bench_header_printed=1
  fi
  if [ "$ref" = "-" ]; then
    printf '%-48s %11.4fs %-22s %12s %8s %s\n' "$name" "$ours" "$refname" "-" "-" "$target"
  else
    local ratio verdict
    ratio=$(echo "$ours / $ref" | bc -l)
    verdict=$([ "$(echo "$ratio <= $target" | bc -l)" = 1 ] && echo "met (<= ${target}x)" || echo "MISSED (<= ${target}x)")
    printf '%-48s %11.4fs %-22s %11.4fs %7.3fx %s\n' "$name" "$ours" "$refname" "$ref" "$ratio" "$verdict"
  fi
}
