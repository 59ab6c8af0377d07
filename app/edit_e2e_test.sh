#!/usr/bin/env bash
# End-to-end check of the edit-installation request with the real program
# on its own X server and its own session bus:
#   1. a request from tamblin-cli starts the program through the bus's
#      activation file and gets status 0; the program entered the directory
#      (its title shows, it answers a second request with -1 for a missing
#      directory);
#   2. a second instance cannot own the name and runs on without the
#      service, while the first keeps answering;
#   3. without a session bus address the program runs without the service
#      and does not launch a bus of its own on the display.
# Every wait polls a condition with a deadline.
#
# usage: edit_e2e_test.sh TAMBLIN TAMBLIN_CLI SERVICE_TEMPLATE
set -euo pipefail
prog=$1
cli=$2
template=$3
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
cat >"$work/session.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=$work</listen>
  <servicedir>$work/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONF

export PROG=$prog CLI=$cli WORK=$work
export -f poll shows_window
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
  status=$("$CLI" edit "$WORK/missing" "" "" "") && fail "missing directory accepted: $status"
  [ "$status" = -1 ] || fail "missing directory replied $status"
  now=$(dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
          org.freedesktop.DBus.GetConnectionUnixProcessID string:com.orvex.Tamblin | awk "/uint32/ {print \$2}")
  [ "$now" = "$owner" ] || fail "the name moved to $now"
  kill "$second" "$owner"
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
