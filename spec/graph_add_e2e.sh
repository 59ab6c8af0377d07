#!/usr/bin/env bash
# End to end: the program on a private X server, driven with the mouse.
# With the product selected at start, a click on Add under the hierarchy
# must show a new image node to the right of the product.
#
# The Add button and the nodes are told apart by colours given as ordinary
# X resources, so the script finds them in screenshots without knowing the
# layout.  Usage: graph_add_e2e.sh path/to/tamblin [screenshot.png]
set -euo pipefail
prog=$1
shot=${2:-$PWD/graph_add.png}
prog_pid=
cleanup_pids="prog_pid"
fail_prefix=graph_add_e2e
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
start_xvfb
unset DBUS_SESSION_BUS_ADDRESS

add='#ff00ff' product='#00ff00' image='#00ffff'
(cd "$work" && exec "$prog" -nofork \
   -xrm "*addPushButton.background: $add" \
   -xrm "*graph*my_product.background: $product" \
   -xrm "*graph*my_image.background: $image") >"$work/prog.log" 2>&1 &
prog_pid=$!
find_window 30 '^Tamblin$' >/dev/null ||
  fail "the main window did not appear"

# box COLOUR FILE: "width height x y" of the pixels of that colour, or
# nothing when there are none.
box() {
  local out
  out=$(convert "$2" -fill black +opaque "$1" -fill white -opaque "$1" -trim \
        -format '%w %h %X %Y' info: 2>/dev/null) || return 0
  # A picture without the colour trims to a single black pixel.
  [[ $(convert "$2" -fill black +opaque "$1" -format '%[fx:maxima]' info:) == 0 ]] && return 0
  echo "$out" | tr -d '+'
}
# waitfor COLOUR: polls screenshots until the colour shows (at most 10 s).
waitfor() {
  for _ in $(seq 100); do
    import -window root "$work/now.png" 2>/dev/null || true
    found=$(box "$1" "$work/now.png")
    [[ -n "$found" ]] && return 0
    sleep 0.1
  done
  return 1
}

waitfor "$add" || fail "no Add button on the screen"
read -r w h x y <<<"$found"
waitfor "$product" || fail "no product node on the screen"
read -r _ _ px _ <<<"$found"
[[ -z $(box "$image" "$work/now.png") ]] || fail "an image node exists before Add"

xdotool mousemove $((x + w / 2)) $((y + h / 2)) click 1
waitfor "$image" || fail "no new image node after a click on Add"
read -r _ _ ix _ <<<"$found"
(( ix > px )) || fail "the new image node ($ix) is not right of its product ($px)"
cp "$work/now.png" "$shot"
kill -0 "$prog_pid" 2>/dev/null || fail "the program ended: $(cat "$work/prog.log")"
echo "graph_add_e2e: new image node at x=$ix right of the product at x=$px; screenshot $shot"
