#!/usr/bin/env bash
# End-to-end check of the real program on its own X server, driven like a
# user with xdotool:
#   1. it starts, shows the banner and its window, with the start hint in
#      the message area;
#   2. clicking a tab changes the panels shown, and the first tab brings
#      the first screen back;
#   3. View > Show Messages (through the menu's mnemonic) hides the message
#      area;
#   4. File > Quit ends it with status 0 (nothing unsaved);
#   5. started without -nofork, the command returns at once and the program
#      carries on in the background until File > Quit.
# Screenshots go to the output directory.  Every wait polls a condition with
# a deadline.
#
# usage: MainWindow_e2e_test.sh TAMBLIN OUTPUT_DIR
set -euo pipefail
prog=$1
out=$2
mkdir -p "$out"
prog_pid=
cleanup_pids="prog_pid"
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
start_xvfb

cd "$work"
"$prog" -nofork >"$work/stdout" 2>"$work/stderr" &
prog_pid=$!
window=$(find_window 30 '^Tamblin$') ||
  fail "no main window"

# shot NAME: screenshot of the whole screen.
shot() { import -window root "$out/$1.png" 2>/dev/null; }
# yellow NAME: share of the screenshot's pixels in the message area's
# colour (the read-only background, yellow by default).
yellow() {
  convert "$out/$1.png" -fill black +opaque yellow -fill white -opaque yellow \
    -colorspace gray -format '%[fx:mean]' info:
}
# differ A B: the two screenshots differ in at least one pixel.
differ() {
  local n
  n=$(compare -metric AE "$out/$1.png" "$out/$2.png" null: 2>&1 || true)
  [[ "$n" =~ ^[0-9]+$ ]] && (( n > 0 ))
}
drawn() { shot start && (( $(identify -format '%k' "$out/start.png") > 20 )); }
poll 20 drawn || fail "the window was not drawn"

head -n1 "$work/stdout" | grep -qx 'Tamblin                       03/09/96' ||
  fail "banner: $(head -n1 "$work/stdout")"
start_yellow=$(yellow start)
awk -v y="$start_yellow" 'BEGIN { exit !(y > 0.03) }' || fail "no message area at start ($start_yellow)"

# The tabs: "Tag Files" (the second picture, 130 pixels wide, under the
# menu bar) shows other panels; "Create Product Hierarchy" brings back
# exactly the first screen.
eval "$(xdotool getwindowgeometry --shell "$window")"
xdotool mousemove $((X + 200)) $((Y + 55)) click 1
tagged() { shot tags && differ start tags; }
poll 10 tagged || fail "choosing Tag Files changed nothing"
xdotool mousemove $((X + 65)) $((Y + 55)) click 1
back() { shot back && ! differ start back; }
poll 10 back || fail "Create Product Hierarchy did not bring back the first view"

# Focus the window, then open View with its mnemonic.
xdotool mousemove $((X + 600)) $((Y + 400)) click 1
menu_open() { shot menu && differ start menu; }
xdotool keydown Alt_L key v keyup Alt_L
poll 10 menu_open || fail "the View menu did not open"
# The first entry is "Show Messages": choose it.
xdotool key Return
hidden() { shot hidden && awk -v a="$(yellow hidden)" -v b="$start_yellow" 'BEGIN { exit !(a < b / 2) }'; }
poll 10 hidden || fail "View > Show Messages did not hide the message area"

# File > Quit: the last entry of File.
xdotool keydown Alt_L key f keyup Alt_L
file_open() { shot file && differ hidden file; }
poll 10 file_open || fail "the File menu did not open"
xdotool key Up Return
ended() { ! kill -0 "$prog_pid" 2>/dev/null; }
poll 10 ended || fail "File > Quit did not end the program"
status=0
wait "$prog_pid" || status=$?
prog_pid=
(( status == 0 )) || fail "exit status $status; stderr: $(cat "$work/stderr")"

# Without -nofork: the parent returns at once, the child shows the window.
timeout 10 "$prog" >"$work/stdout2" 2>"$work/stderr2" || true
window=$(find_window 30 '^Tamblin$') ||
  fail "no main window from the background process"
drawn2() { shot start2 && (( $(identify -format '%k' "$out/start2.png") > 20 )); }
poll 20 drawn2 || fail "the background process's window was not drawn"
eval "$(xdotool getwindowgeometry --shell "$window")"
xdotool mousemove $((X + 600)) $((Y + 400)) click 1
shot start2
xdotool keydown Alt_L key f keyup Alt_L
file_open2() { shot file2 && differ start2 file2; }
poll 10 file_open2 || fail "the File menu of the background process did not open"
xdotool key Up Return
gone() { ! xdotool search --onlyvisible --name '^Tamblin$' >/dev/null; }
poll 10 gone || fail "File > Quit did not end the background process"
echo "PASS: started, hid the messages, quit; forked and quit; screenshots in $out"
