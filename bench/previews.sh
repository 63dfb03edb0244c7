#!/usr/bin/env bash
# Previews of a full shelf on a headless X desktop: 200 photos (4000 x 3000 JPEG) dropped on a
# shown shelf with a cold thumbnail cache, until every tile has its preview, against the
# desktop's gdk-pixbuf-thumbnailer run on the same files one after another; the longest stall of
# the main thread meanwhile; the same drop with a warm cache; the memory of 500 previews.
set -euo pipefail
build=${1:-build}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/common.sh"
. "$here/headless.sh"
[ -x "$build/bench/preview_bench" ] || { echo "preview_bench not built; skipped" >&2; exit 0; }
command -v Xvfb >/dev/null || { echo "Xvfb missing; preview benchmarks skipped" >&2; exit 0; }
photos="$build/bench-photos"
QT_QPA_PLATFORM=offscreen "$build/bench/preview_bench" photos "$photos" 200 2>/dev/null

reference=skip
if command -v gdk-pixbuf-thumbnailer >/dev/null; then
  out=$(mktemp -d /tmp/mosswick-bench-thumbs-XXXXXX)
  start=$(date +%s.%N)
  for f in "$photos"/*.jpg; do
    gdk-pixbuf-thumbnailer -s 128 "file://$(realpath "$f")" "$out/$(basename "$f").png"
  done
  end=$(date +%s.%N)
  reference=$(echo "$end - $start" | bc -l)
  rm -rf "$out"
fi

headless_start
{
  QT_LOGGING_RULES="*.debug=false" "$build/bench/preview_bench" measure "$photos" 2>/dev/null
  QT_LOGGING_RULES="*.debug=false" "$build/bench/preview_bench" memory "$photos" 2>/dev/null
} |
while read -r name value; do
  case $name in
    cold)
      if [ "$reference" = skip ]; then row "200 photos, cold cache: all previews" "$value" "-" "-" "absolute"
      else row "200 photos, cold cache: all previews" "$value" "gdk-pixbuf-thumbnailer" "$reference" 0.5; fi ;;
    cold_stall) row "  longest main-thread stall after the drop" "$value" "-" "-" "<= 0.016 s" ;;
    drop) row "  the drop itself (200 items and their tiles)" "$value" "-" "-" "-" ;;
    warm) row "200 photos, warm cache: all previews" "$value" "-" "-" "<= 0.300 s" ;;
    warm_stall) row "  longest main-thread stall after the drop" "$value" "-" "-" "<= 0.016 s" ;;
    memory_500) printf '%-48s %11.1fMB %-22s %12s %8s %s\n' "500 previews: resident memory over empty shelf" "$value" "-" "-" "-" "<= 40 MB" ;;
  esac
done
