#!/usr/bin/env bash
# gui_bench.sh [BUILD_DIR] [LINES...]: the file list measured through the
# real window.
#
# For each size (default 100000 and 1000000 lines of about 80 bytes, made by
# idbgen) the program runs on a private Xvfb with TAMBLIN_IDLE_PROBE set.
# gui_driver sends each input as real X events (XTest, as xdotool does) and
# then an idle probe: the program answers it from an Xt work procedure, which
# runs only when no event is waiting, after an XSync, so the time printed
# runs from the first event sent until the event loop is idle again and the
# server has drawn what the program sent.  "probe floor" is the probe alone.
#
# The reference for opening and saving is `tamblin-cli sort` of the same
# file (the same reading, sorting and writing without a window), the best of
# three runs made in the same session.  Results go to standard output as a
# table; screenshots of the opened list go to $out (default out/gui_bench).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$here/out/test}" && pwd)
shift || true
sizes=("$@")
(( ${#sizes[@]} )) || sizes=(100000 1000000)
prog=$build/app/tamblin
cli=$build/cli/tamblin-cli
gen=$build/bench/idbgen
driver=$build/bench/gui_driver
for f in "$prog" "$cli" "$gen" "$driver"; do
  [[ -x $f ]] || { echo "gui_bench: $f is missing (build tamblin tamblin-cli idbgen gui_driver)" >&2; exit 1; }
done
out=${out:-$here/out/gui_bench}
mkdir -p "$out"

prog_pid=
cleanup_pids="prog_pid"
fail_prefix=gui_bench
source "$here/tools/xvfb_session.sh"
start_xvfb 1280x1024x24

now() { date +%s.%N; }
# three runs of a command: "best median" in seconds
three_runs() {
  local t0 times=()
  for _ in 1 2 3; do
    t0=$(now)
    "$@" >/dev/null
    times+=("$(echo "$(now) - $t0" | bc -l)")
  done
  printf '%s\n' "${times[@]}" | sort -n | awk 'NR == 1 {b = $1} NR == 2 {m = $1} END {printf "%.3f %.3f\n", b, m}'
}
# best of three figures printed by a command run three times
best3() {
  local a b c
  a=$("$@"); b=$("$@"); c=$("$@")
  printf '%s\n%s\n%s\n' "$a" "$b" "$c" | sort -n | head -n1
}
centre() {  # root centre of a widget: "x y"
  local x y w h
  read -r x y w h < <("$driver" "$window" where "$1") || fail "no widget $1"
  echo "$((x + w / 2)) $((y + h / 2))"
}
measure_click() { local c; c=$(centre "$1"); "$driver" "$window" click $c; }
alt_menu() {  # File menu, then the keys to walk to an entry
  local c; c=$(centre '*FileList*label')
  xdotool mousemove $c
  xdotool keydown Alt_L key f keyup Alt_L
  sleep 0.3
  xdotool key "$@"
  "$driver" "$window" idle >/dev/null
}
ratio() { echo "scale=2; $1 / $2" | bc -l; }
verdict() { (( $(echo "$1" | bc -l) )) && echo ok || echo MISSED; }

# Half the records carry one of these four tags of the eight idbgen uses.
half='^tamblin.(sw.base|sw.lib|sw.hdr|man.pages) '

rows=()
for lines in "${sizes[@]}"; do
  dir=$work/$lines
  mkdir -p "$dir"
  idb=$dir/bench.idb
  "$gen" 7 "$lines" >"$idb"
  bytes=$(stat -c %s "$idb")
  matched=$(cut -d' ' -f7 "$idb" | grep -cE '^tamblin.(sw.base|sw.lib|sw.hdr|man.pages)$' || true)
  read -r ref ref_median < <(three_runs "$cli" sort "$idb" -o "$dir/ref.idb")

  (cd "$dir" && TAMBLIN_IDLE_PROBE=1 exec "$prog" -nofork >"$dir/stdout" 2>"$dir/stderr") &
  prog_pid=$!
  window=$(timeout 30 xdotool search --sync --onlyvisible --name '^Tamblin$' | head -n1) ||
    fail "no main window: $(cat "$dir/stderr")"
  floor=$("$driver" "$window" idle)
  measure_click '*tab1' >/dev/null   # Tag Files: the list shows

  # File > Open > Idb, the name typed into the dialog; measured from Return.
  # Three times (the idb is unchanged in between, so nothing asks).
  opens=()
  for _ in 1 2 3; do
    alt_menu Down Right Down Return
    fsb=$(timeout 10 xdotool search --sync --onlyvisible --name '^Open Idb$' | head -n1) ||
      fail "no Open Idb dialog"
    eval "$(xdotool getwindowgeometry --shell "$fsb")"
    xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2))
    xdotool key ctrl+slash   # the selection's text selected, then replaced
    xdotool type --delay 5 "$idb"
    opens+=("$("$driver" "$window" key Return)")
    poll 10 bash -c "! xdotool search --onlyvisible --name '^Open Idb$' >/dev/null" ||
      fail "the Open Idb dialog stayed up"
  done
  open=$(printf '%s\n' "${opens[@]}" | sort -n | head -n1)
  import -window "$window" "$out/open_$lines.png" 2>/dev/null || true

  tab_away=$(best3 measure_click '*tab2')
  tab_back=$(best3 measure_click '*tab1')

  field=$(centre '*FileList*selectionTextField')
  set_filter() {  # replaces the field's text, not measured
    xdotool mousemove $field click 1
    xdotool key ctrl+slash
    xdotool type --delay 5 "$1"
  }
  xdotool mousemove $field click 1
  read -r key_mean key_worst < <("$driver" "$window" type "$half")
  halves=("$("$driver" "$window" key Return)")
  alls=() nones=()
  for _ in 1 2 3; do
    alls+=("$(measure_click '*FileList*allPushButton')")
    nones+=("$(measure_click '*FileList*nonePushButton')")
    set_filter "$half"
    halves+=("$("$driver" "$window" key Return)")
  done
  filter_half=$(printf '%s\n' "${halves[@]}" | sort -n | head -n1)
  all=$(printf '%s\n' "${alls[@]}" | sort -n | head -n1)
  none=$(printf '%s\n' "${nones[@]}" | sort -n | head -n1)
  import -window "$window" "$out/half_$lines.png" 2>/dev/null || true
  assign=$(measure_click '*FileListTags*arrowButton')
  import -window "$window" "$out/assigned_$lines.png" 2>/dev/null || true
  # Undo, redo, undo: the assignment is undone at the end.
  undo=$(best3 measure_click '*FileList*undoPushButton')

  # A page at a time, from a clicked row: median and worst of ten.
  read -r lx ly lw lh < <("$driver" "$window" where '*FileList*fileList')
  "$driver" "$window" click $((lx + 40)) $((ly + 12)) >/dev/null
  pages=$(for _ in $(seq 10); do "$driver" "$window" key Next; done | sort -n)
  page=$(echo "$pages" | sed -n 5p)
  page_worst=$(echo "$pages" | tail -n1)
  import -window "$window" "$out/paged_$lines.png" 2>/dev/null || true

  # File > Save > Idb (the idb has its name: no dialog); measured from Return.
  alt_menu Down Down Down Right Down
  save=$("$driver" "$window" key Return)
  LC_ALL=C sort -c -t' ' -k5,5 "$idb" 2>/dev/null || fail "Save did not write the sorted idb"
  cmp -s "$idb" "$dir/ref.idb" || fail "the saved idb differs from tamblin-cli sort's"
  peak_kb=$(awk '/^VmHWM/ {print $2}' "/proc/$prog_pid/status")
  kill "$prog_pid"
  wait "$prog_pid" 2>/dev/null || true
  prog_pid=

  mb=$(echo "scale=1; $bytes / 1048576" | bc -l)
  peak_mb=$(echo "scale=1; $peak_kb / 1024" | bc -l)
  rows+=("== $lines lines, $mb MB; filter matches $matched lines; probe floor ${floor}s ==")
  rows+=("open to visible list, best of 3 | $open s | sort best $ref s (median $ref_median s), ratio $(ratio "$open" "$ref") | goal <= 1.5x: $(verdict "$open <= 1.5 * $ref")")
  rows+=("tab switch away / back, best of 3 | $tab_away s / $tab_back s | goal < 0.3 s | $(verdict "$tab_away < 0.3 && $tab_back < 0.3")")
  rows+=("typing the filter, per key | mean $key_mean s, worst $key_worst s | floor $floor s | (costs nothing until Return)")
  rows+=("filter selecting half (Return), best of 4 | $filter_half s | goal < 0.3 s | $(verdict "$filter_half < 0.3")")
  rows+=("All, best of 3 | $all s | goal < 0.3 s | $(verdict "$all < 0.3")")
  rows+=("None, best of 3 | $none s | goal < 0.3 s | $(verdict "$none < 0.3")")
  rows+=("Assign a tag to the half | $assign s | goal < 0.3 s | $(verdict "$assign < 0.3")")
  rows+=("Undo, best of 3 | $undo s | goal < 0.3 s | $(verdict "$undo < 0.3")")
  rows+=("Save, one run | $save s | sort best $ref s (median $ref_median s), ratio $(ratio "$save" "$ref") | goal <= 1.5x: $(verdict "$save <= 1.5 * $ref")")
  rows+=("page down, median of 10 (worst) | $page s ($page_worst s) | goal < 0.020 s | $(verdict "$page < 0.020")")
  rows+=("peak memory (VmHWM) | $peak_mb MB | file $mb MB, ratio $(ratio "$peak_mb" "$mb") | goal < 3x: $(verdict "$peak_mb < 3 * $mb")")
done
printf '%s\n' "${rows[@]}"
