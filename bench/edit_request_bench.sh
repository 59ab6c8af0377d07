#!/usr/bin/env bash
# The edit-installation request against the real program on its own X
# server and session bus: the time from sending until the answer, for four
# values of 10 MB (refused: longer than a path), of 100 KB, and of a short
# existing directory (the reference, measured in the same run).  Before
# values longer than a path were refused, four values of 10 MB kept the
# program busy for over 9 minutes.
#
# usage: edit_request_bench.sh TAMBLIN EDIT_REQUEST_SEND
set -euo pipefail
prog=$1
send=$2
prog_pid=
cleanup_pids="prog_pid"
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
start_xvfb
export PROG=$prog SEND=$send WORK=$work
export -f poll
dbus-run-session -- bash -c '
  set -euo pipefail
  cd "$WORK"
  "$PROG" -nofork >"$WORK/prog.out" 2>&1 &
  owned() { dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
              org.freedesktop.DBus.NameHasOwner string:com.orvex.Tamblin | grep -q "boolean true"; }
  poll 30 owned || { echo "the program did not take its bus name" >&2; exit 1; }
  "$SEND" 1 20
  "$SEND" $((100 * 1024)) 10
  "$SEND" $((10 * 1024 * 1024)) 5
  kill %1
' 2>&1 | grep -v "fd limit"
