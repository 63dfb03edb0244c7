# Sourced by benchmark scripts that need an X desktop: starts Xvfb on a free display and openbox,
# with private user folders, and stops both when the script exits.
#   headless_start [WIDTHxHEIGHT]
headless_start() {
  local size=${1:-1920x1080}
  headless_dir=$(mktemp -d /tmp/mosswick-bench-x-XXXXXX)
  mkdir -p "$headless_dir"/{data,config,cache,runtime}
  chmod 700 "$headless_dir/runtime"
  export XDG_DATA_HOME="$headless_dir/data" XDG_CONFIG_HOME="$headless_dir/config"
  export XDG_CACHE_HOME="$headless_dir/cache" XDG_RUNTIME_DIR="$headless_dir/runtime"
  unset WAYLAND_DISPLAY QT_QPA_PLATFORM
  Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp 3>"$headless_dir/display" 2>/dev/null &
  headless_pids=($!)
  trap headless_stop EXIT
  for _ in $(seq 100); do [ -s "$headless_dir/display" ] && break; sleep 0.05; done
  export DISPLAY=":$(cat "$headless_dir/display")"
  openbox >/dev/null 2>&1 &
  headless_pids+=($!)
  # openbox says it is running before it manages windows; give it a moment to settle.
  for _ in $(seq 100); do xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && break; sleep 0.05; done
  sleep 0.3
}

headless_stop() {
  kill "${headless_pids[@]}" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$headless_dir"
}
