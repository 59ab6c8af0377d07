# Sourced by the scripts that run a program on a private X server (the
# end-to-end tests and tools/run.sh).  It gives them:
#   $work              a scratch directory, removed on exit
#   cleanup_pids       names of variables holding process ids (set it before
#                      sourcing); those processes, then the X server, are
#                      ended on exit
#   fail MESSAGE       prints "$fail_prefix: MESSAGE" (default FAIL) and exits 1
#   poll SECONDS CMD   runs CMD every 0.1 s until it succeeds or time is up
#   start_xvfb [GEOMETRY]  starts Xvfb on a free display and exports DISPLAY
work=$(mktemp -d)
xvfb_pid=
: "${cleanup_pids:=}"

xvfb_session_cleanup() {
  local name pid
  for name in $cleanup_pids xvfb_pid; do
    pid=${!name:-}
    [[ -n $pid ]] || continue
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  rm -rf "$work"
}
trap xvfb_session_cleanup EXIT

fail() { echo "${fail_prefix:-FAIL}: $*" >&2; exit 1; }

poll() {
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    (( SECONDS < deadline )) || return 1
    sleep 0.1
  done
}

xvfb_session_ready() {
  [[ -s "$work/display" ]] || { kill -0 "$xvfb_pid" 2>/dev/null || return 0; return 1; }
}

start_xvfb() {
  local geometry=${1:-1280x1024x24}
  # Xvfb picks a free display number and writes it to descriptor 3.
  # -noreset: without it the server starts over each time its last client
  # leaves, and while it does another test's server may take the display.
  Xvfb -displayfd 3 -screen 0 "$geometry" -nolisten tcp -noreset \
    3>"$work/display" >/dev/null 2>"$work/xvfb.log" &
  xvfb_pid=$!
  poll 20 xvfb_session_ready && [[ -s "$work/display" ]] ||
    fail "Xvfb did not start: $(cat "$work/xvfb.log")"
  export DISPLAY=":$(head -n1 "$work/display")"
}

# find_window SECONDS NAME: prints the id of the first mapped window whose
# name matches NAME.  One search at a time, tried again: a search that meets
# a window being destroyed meanwhile (the start-up banner) fails with an X
# error, where --sync would give up.
find_window() {
  local deadline=$((SECONDS + $1)) id
  while :; do
    id=$(xdotool search --onlyvisible --name "$2" 2>/dev/null | head -n1) || true
    [[ -n "$id" ]] && { echo "$id"; return 0; }
    (( SECONDS < deadline )) || return 1
    sleep 0.1
  done
}

# session_bus_config [SERVICE_DIR]: writes $work/session.conf, a private
# session bus listening in $work on which anyone may own any name (the
# program takes its own there, never on the user's bus), with SERVICE_DIR
# for activation files when given.
session_bus_config() {
  local services=
  [[ -n ${1:-} ]] && services="  <servicedir>$1</servicedir>"
  cat >"$work/session.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=$work</listen>
$services
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
CONF
}

# start_session_bus: that bus, running; exports DBUS_SESSION_BUS_ADDRESS and
# sets bus_pid (name it in cleanup_pids so that it ends with the script).
start_session_bus() {
  session_bus_config
  dbus-daemon --config-file="$work/session.conf" --fork --print-address=3 --print-pid=4 \
    3>"$work/bus.address" 4>"$work/bus.pid"
  bus_pid=$(head -n1 "$work/bus.pid")
  DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$work/bus.address")
  export DBUS_SESSION_BUS_ADDRESS
}
