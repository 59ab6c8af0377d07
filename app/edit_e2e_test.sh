#!/usr/bin/env bash
# End-to-end check of the edit-installation request with the real program
# on its own X server and its own session bus:
#   1. a request from tamblin-cli starts the program through the bus's
#      activation file and gets status 0; the program entered the directory
#      (its title shows, it answers a second request with -1 for a missing
#      directory);
#   2. a second instance waits for the name while the first keeps
#      answering; when the first ends, the second takes the name and
#      answers;
#   3. another method of the interface shows the error box (Return takes
#      it down) and the caller gets an error; values longer than a path
#      are refused at once with a clear message;
#   4. with the product renamed in the window (typed, then Assign), a
#      request to open another spec asks the abandon question; a second
#      request sent meanwhile waits; Escape (keep the changes) refuses the
#      first with -1 and leaves the hierarchy as it was, then the second is
#      answered; asked again, Return (drop the changes) opens the spec;
#   5. without a session bus address the program runs without the service
#      and does not launch a bus of its own on the display.
# Screenshots go to the output directory.  Every wait polls a condition
# with a deadline.
#
# usage: edit_e2e_test.sh TAMBLIN TAMBLIN_CLI SERVICE_TEMPLATE OUTPUT_DIR
set -euo pipefail
prog=$1
cli=$2
template=$3
out=$4
mkdir -p "$out"
second_pid= third_pid=
cleanup_pids="third_pid second_pid"
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
# True once process $1 shows its "Tamblin" window.  One look at a time:
# xdotool walks the whole window tree and gives up on an X error when a
# window it listed is gone before it is queried, which happens while a
# program is still building or tearing down its windows (its busy banner,
# dialogs), so --sync cannot be trusted to keep looking.
shows_window() {
  xdotool search --onlyvisible --pid "$1" --name '^Tamblin$' >/dev/null 2>&1
}

start_xvfb

# A session bus whose activation directory holds our service file, pointing
# at the program under test.
mkdir -p "$work/services" "$work/project"
sed "s|^Exec=.*|Exec=$prog -nofork|" "$template" >"$work/services/com.orvex.Tamblin.service"
grep -q '^Name=com.orvex.Tamblin$' "$work/services/com.orvex.Tamblin.service" || fail "service file"
session_bus_config "$work/services"

# owned_by PID: PID owns the service's name.
owned_by() {
  [ "$(dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
         org.freedesktop.DBus.GetConnectionUnixProcessID string:com.orvex.Tamblin 2>/dev/null |
       awk '/uint32/ {print $2}')" = "$1" ]
}
# shot NAME: screenshot of the whole screen; crop NAME: the hierarchy graph.
shot() { import -window root "$OUT/$1.png" 2>/dev/null; }
graph_of() { convert "$OUT/$1.png" -crop 400x480+10+240 +repage "$OUT/$1-graph.png"; }
same_graph() {
  graph_of "$1" && graph_of "$2" &&
    [ "$(compare -metric AE "$OUT/$1-graph.png" "$OUT/$2-graph.png" null: 2>&1 || true)" = 0 ]
}
# dialog_of PID MAIN: a visible named window other than MAIN: a dialog of
# PID, the one program on the display then (Motif's dialog shells carry no
# process id to search by).
dialog_of() {
  running "$1" && xdotool search --onlyvisible --name . 2>/dev/null | grep -vx "$2" | head -n1 | grep .
}
running() { kill -0 "$1" 2>/dev/null; }
ended() { ! kill -0 "$1" 2>/dev/null; }

export PROG=$prog CLI=$cli WORK=$work OUT=$out
export -f poll shows_window owned_by shot graph_of same_graph dialog_of running ended
dbus-run-session --config-file="$work/session.conf" -- bash -c '
  set -euo pipefail
  fail() { echo "FAIL: $*" >&2; exit 1; }
  cd "$WORK"
  status=$("$CLI" edit "$WORK/project" "" "" "") || fail "first request: $status"
  [ "$status" = 0 ] || fail "first request replied $status"
  owner=$(dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
            org.freedesktop.DBus.GetConnectionUnixProcessID string:com.orvex.Tamblin | awk "/uint32/ {print \$2}")
  [ -n "$owner" ] || fail "nobody owns com.orvex.Tamblin"
  [ "$(readlink /proc/$owner/cwd)" = "$WORK/project" ] || fail "the program is not in the project directory"

  "$PROG" -nofork >"$WORK/second.out" 2>&1 &
  second=$!
  poll 30 shows_window "$second" || fail "the second instance shows no window"
  kill -0 "$second" || fail "the second instance ended"
  poll 10 owned_by "$owner" || fail "the name left the first instance"
  status=$("$CLI" edit "$WORK/missing" "" "" "") && fail "missing directory accepted: $status"
  [ "$status" = -1 ] || fail "missing directory replied $status"
  now=$(dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
          org.freedesktop.DBus.GetConnectionUnixProcessID string:com.orvex.Tamblin | awk "/uint32/ {print \$2}")
  [ "$now" = "$owner" ] || fail "the name moved to $now"
  shot waiting-for-name

  # The first ends: the second takes the name over and answers.
  kill "$owner"
  poll 20 owned_by "$second" || fail "the second instance did not take the name"
  status=$("$CLI" edit "$WORK/project" "" "" "") || fail "request to the second: $status"
  [ "$(readlink /proc/$second/cwd)" = "$WORK/project" ] || fail "the second did not enter the directory"
  shot took-name

  # Another method of the interface: the error box for the user, an error
  # for the caller; Return takes the box down.
  main=$(xdotool search --onlyvisible --pid "$second" --name "^Tamblin$" | head -n1)
  reply=$(dbus-send --session --print-reply --dest=com.orvex.Tamblin /com/orvex/Tamblin \
            com.orvex.Packager.Other string:x 2>&1) && fail "another method was answered: $reply"
  [[ $reply == *"UnknownMethod: Unexpected or invalid message format for Other"* ]] ||
    fail "another method: $reply"
  poll 20 dialog_of "$second" "$main" >/dev/null || fail "no error box for another method"
  shot error-box
  dialog=$(dialog_of "$second" "$main")
  eval "$(xdotool getwindowgeometry --shell "$dialog")"
  xdotool mousemove $((X + WIDTH / 2)) $((Y + 20)) key Return
  no_dialog() { ! dialog_of "$second" "$main" >/dev/null; }
  poll 10 no_dialog || fail "the error box stayed up"

  # Values longer than any path are refused before any work, with a clear
  # message (a command line cannot carry more than 128 KB in one value).
  big=$(head -c 100000 /dev/zero | tr "\0" a)
  reply=$(dbus-send --session --print-reply --dest=com.orvex.Tamblin /com/orvex/Tamblin \
            com.orvex.Packager.Orvex_Packager_Edit_Installation "string:$big" "string:$big" \
            "string:$big" "string:$big" 2>&1) && fail "overlong values accepted"
  [[ $reply == *"InvalidArgs: Edit request refused: its working directory is 100000 bytes long; no path is longer than 4095 bytes."* ]] ||
    fail "overlong values: ${reply:0:300}"
  [ "$(readlink /proc/$second/cwd)" = "$WORK/project" ] || fail "an overlong request changed directory"
  shot refused

  # Rename the product as a user does: click into "Product Name", type,
  # click Assign.  The window has no frame: it sits at the origin.
  main=$(xdotool search --onlyvisible --pid "$second" --name "^Tamblin$" | head -n1)
  eval "$(xdotool getwindowgeometry --shell "$main")"
  xdotool mousemove $((X + 700)) $((Y + 263)) click 1
  xdotool key End type 2
  xdotool mousemove $((X + 610)) $((Y + 194)) click 1
  sleep 0.5
  shot renamed
  printf "product other\n    id \"Other\"\nendproduct\n" >"$WORK/project/other.spec"

  # Keep the changes: the request is refused, and the one sent meanwhile
  # waits for the answer.
  "$CLI" edit "$WORK/project" other.spec "" "" >"$WORK/first.out" 2>&1 & first=$!
  poll 20 dialog_of "$second" "$main" >/dev/null || fail "no question for the unsaved changes"
  dialog=$(dialog_of "$second" "$main")
  "$CLI" edit "$WORK/project" "" "" "$WORK/dist2" >"$WORK/meanwhile.out" 2>&1 & meanwhile=$!
  sleep 1
  running "$first" || fail "the request did not wait for the question: $(cat "$WORK/first.out")"
  running "$meanwhile" || fail "a request was answered under the question: $(cat "$WORK/meanwhile.out")"
  shot question
  eval "$(xdotool getwindowgeometry --shell "$dialog")"
  xdotool mousemove $((X + WIDTH / 2)) $((Y + 20)) key Escape
  poll 20 ended "$first" || fail "Escape did not answer the question"
  wait "$first" && fail "refused request exited 0"
  [ "$(cat "$WORK/first.out")" = -1 ] || fail "kept changes replied $(cat "$WORK/first.out")"
  poll 20 ended "$meanwhile" || fail "the waiting request was never answered"
  wait "$meanwhile" || fail "the waiting request failed: $(cat "$WORK/meanwhile.out")"
  ! dialog_of "$second" "$main" >/dev/null || fail "the question stayed up"
  shot kept
  same_graph renamed kept || fail "the hierarchy changed although the changes were kept"

  # Drop the changes: Return answers OK and the spec is opened.
  "$CLI" edit "$WORK/project" other.spec "" "" >"$WORK/again.out" 2>&1 & again=$!
  poll 20 dialog_of "$second" "$main" >/dev/null || fail "no question the second time"
  dialog=$(dialog_of "$second" "$main")
  eval "$(xdotool getwindowgeometry --shell "$dialog")"
  xdotool mousemove $((X + WIDTH / 2)) $((Y + 20)) key Return
  poll 20 ended "$again" || fail "Return did not answer the question"
  wait "$again" || fail "opening after dropping the changes: $(cat "$WORK/again.out")"
  opened() { shot opened && ! same_graph renamed opened; }
  poll 10 opened || fail "the hierarchy still shows the renamed product"
  kill "$second"
  wait "$second" 2>/dev/null || true
'

# No bus address: the program starts, shows its window, and no bus was
# launched for the display.
env -u DBUS_SESSION_BUS_ADDRESS "$prog" -nofork >"$work/third.out" 2>&1 &
third_pid=$!
poll 30 shows_window "$third_pid" ||
  fail "no window without a bus: $(kill -0 "$third_pid" 2>/dev/null && echo running || echo ended)
$(cat "$work/third.out")
X server: $(kill -0 "$xvfb_pid" 2>/dev/null && echo running || echo ended) $DISPLAY
$(cat "$work/xvfb.log")"
if xprop -root | grep -qi dbus; then fail "a bus was launched: $(xprop -root | grep -i dbus)"; fi
if xlsatoms | grep -q _DBUS_SESSION_BUS_SELECTION; then fail "a bus was launched for the display"; fi
echo "edit request end to end: ok"
