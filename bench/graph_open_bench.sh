#!/usr/bin/env bash
# The product hierarchy in the real program, timed from outside on a private
# X server: a spec of 20,000 nodes is opened by a request on the session bus
# (`tamblin-cli edit`, handled inside the event loop), and the time runs
# until the program has laid out and drawn the graph and waits for input
# again (the program's idle probe, sent by bench/gui_driver, says when: see
# yr/YrIdleProbe.h).  References measured in
# the same run: the same for specs of 2 and 2,000 nodes (the fixed cost of
# the request and the probe), and `tamblin-cli format` of the 20,000-node
# spec (reading and writing it without a window).  Then ten turns of the
# mouse wheel over the 20,000-node graph, each timed the same way.
# Screenshots of the 2- and 20,000-node graphs go to OUT_DIR.
#   bench/graph_open_bench.sh [BUILD_DIR] [RUNS] [OUT_DIR]   (out/test 3 .)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-out/test} runs=${2:-3} shots=$(realpath "${3:-.}")
cmake --build "$build" -j "${BUILD_JOBS:-2}" --target tamblin tamblin-cli gui_driver spec_gen >/dev/null
build=$(realpath "$build")
prog=$build/app/tamblin cli=$build/cli/tamblin-cli driver=$build/bench/gui_driver

prog_pid= bus_pid=
cleanup_pids="prog_pid bus_pid"
fail_prefix=graph_open_bench
source tools/xvfb_session.sh
start_xvfb

mkdir -p "$work/project"
printf 'product p\n    id "P"\n    image i\n        id "I"\n        version 1\n        order 9999\n    endimage\nendproduct\n' \
  >"$work/project/n2.spec"
"$build/bench/spec_gen" 1980 >"$work/project/n2000.spec"    # 1,980 + 20 + 2 nodes
"$build/bench/spec_gen" 19800 >"$work/project/n20000.spec"  # 19,800 + 198 + 20 nodes

# A session bus of our own, so that the program takes the request's name.
start_session_bus

owns_name() {
  dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.NameHasOwner string:com.orvex.Tamblin 2>/dev/null | grep -q true
}

main_window() { xdotool search --onlyvisible --name '^Tamblin$' 2>/dev/null | head -n1 | grep .; }

# opened SPEC [SHOT|then:SPEC2]: seconds from the request to the graph
# drawn, in a program started for it; a second argument takes a screenshot
# and times wheel turns, or (then:) times opening SPEC2 over SPEC instead.
opened() {
  (cd "$work" && TAMBLIN_IDLE_PROBE=1 exec "$prog" -nofork) >"$work/prog.log" 2>&1 &
  prog_pid=$!
  poll 30 owns_name || fail "the program did not take its bus name: $(cat "$work/prog.log")"
  # One look at a time: xdotool gives up on an X error when a window it
  # listed goes away meanwhile (the start-up banner), so --sync cannot be
  # trusted to keep looking.
  poll 30 main_window >/dev/null || fail "the main window did not appear"
  local window
  window=$(main_window)
  eval "$(xdotool getwindowgeometry --shell "$window")"
  # The graph fills the lower left of the window.
  "$driver" "$window" run "$cli edit $work/project $1 '' '' >/dev/null" >"$work/probe.out" ||
    fail "driver: $(cat "$work/probe.out")"
  if [[ ${2:-} == then:* ]]; then
    "$driver" "$window" run "$cli edit $work/project ${2#then:} '' '' >/dev/null" \
      >"$work/probe.out" || fail "driver: $(cat "$work/probe.out")"
  fi
  cat "$work/probe.out"
  if [[ -n ${2:-} && ${2:-} != then:* ]]; then
    import -window "$window" "$shots/$2.png"
    "$driver" "$window" wheel $((X + 200)) $((Y + 450)) 10 >"$work/wheel.out"
    import -window "$window" "$shots/$2-scrolled.png"
  fi
  kill "$prog_pid"
  wait "$prog_pid" 2>/dev/null || true
  prog_pid=
}

# best of RUNS for a size
best() {
  local b=""
  for ((r = 0; r < runs; r++)); do
    local s
    s=$(opened "$@") || exit 1
    [[ -z $b ]] || awk -v a="$s" -v b="$b" 'BEGIN { exit !(a < b) }' && b=$s
  done
  echo "$b"
}

n2=$(best n2.spec)
n2000=$(best n2000.spec)
n20000=$(best n20000.spec)
replaced=$(best n20000.spec then:n2.spec)
format=""
for ((r = 0; r < runs; r++)); do
  /usr/bin/time -f %e -o "$work/time" "$cli" format "$work/project/n20000.spec" -o "$work/out.spec" >/dev/null
  s=$(cat "$work/time")
  [[ -z $format ]] || awk -v a="$s" -v b="$format" 'BEGIN { exit !(a < b) }' && format=$s
done
opened n2.spec graph-2 >/dev/null
opened n20000.spec graph-20000 >/dev/null
wheel=$(awk '{ s += $1; if ($1 > m) m = $1 } END { printf "%.4f %.4f", s / NR, m }' "$work/wheel.out")

awk -v n2="$n2" -v n2000="$n2000" -v n20000="$n20000" -v fmt="$format" -v wheel="$wheel" \
    -v replaced="$replaced" \
    -v load="$(cut -d' ' -f1-3 /proc/loadavg)" -v cores="$(nproc)" -v runs="$runs" 'BEGIN {
  split(wheel, w, " ")
  printf "graph open, request to drawn and idle (best of %d; %d cores, load %s)\n", runs, cores, load
  printf "  2 nodes (reference):        %6.3f s\n", n2
  printf "  2,002 nodes:                %6.3f s\n", n2000
  printf "  20,018 nodes:               %6.3f s  (target < 1 s)\n", n20000
  printf "  2 nodes over 20,018:        %6.3f s  (the large graph taken down)\n", replaced
  printf "  tamblin-cli format 20,018:  %6.3f s  (reference)\n", fmt
  printf "  20,018 nodes / format:      %6.2fx\n", n20000 / fmt
  printf "  wheel turn at 20,018 nodes: %6.3f s mean, %.3f s worst of 10 (with the probe)\n", w[1], w[2]
}'
echo "screenshots: $shots/graph-2.png $shots/graph-20000.png $shots/graph-20000-scrolled.png"
