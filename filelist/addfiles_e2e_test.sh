#!/usr/bin/env bash
# The source-tree browser driven from outside on a private X server: select
# two files and a directory with the mouse (Ctrl for the second and third),
# press the Add arrow, save, and compare the idb written.
# Usage: addfiles_e2e_test.sh ADDFILES_DRIVER
set -u
driver=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
driver_pid=
cleanup_pids="driver_pid"
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
start_xvfb 1024x768x24

tree=$work/tree
mkdir -p "$tree/sub/deep"
touch "$tree/a" "$tree/b" "$tree/sub/c" "$tree/sub/deep/d" "$tree/unselected"
chmod 0644 "$tree/a" "$tree/sub/deep/d" "$tree/unselected"
chmod 0755 "$tree/b" "$tree/sub"
chmod 0600 "$tree/sub/c"
chmod 0700 "$tree/sub/deep"
tree=$(cd "$tree" && pwd -P)

# Clicks come faster than a hand's: a double click needs two within 1 ms.
"$driver" -xrm '*multiClickTime: 1' "$tree" "$work/out.idb" >"$work/where" 2>"$work/driver.err" &
driver_pid=$!
for _ in $(seq 300); do
  grep -q '^ready$' "$work/where" && break
  kill -0 "$driver_pid" 2>/dev/null || { echo "FAIL: driver ended"; cat "$work/driver.err"; exit 1; }
  sleep 0.1
done
grep -q '^ready$' "$work/where" || { echo "FAIL: driver not ready"; exit 1; }

# where KIND NAME: the root coordinates printed for it.
where() { awk -v k="$1" -v n="$2" '$1 == k && $2 == n { print $3, $4 }' "$work/where"; }
click() { xdotool mousemove --sync $1 $2 click 1; }

click $(where entry a)
xdotool keydown Control_L
click $(where entry b)
click $(where entry sub/)
xdotool keyup Control_L
click $(where button add)
click $(where button save)
for _ in $(seq 300); do
  kill -0 "$driver_pid" 2>/dev/null || break
  sleep 0.1
done
wait "$driver_pid"
status=$?
driver_pid=

u=$(id -un)
g=$(id -gn)
cat >"$work/expected.idb" <<EXPECTED
f 0644 $u $g a a 
f 0755 $u $g b b 
d 0755 $u $g sub sub 
f 0600 $u $g sub/c sub/c 
d 0700 $u $g sub/deep sub/deep 
f 0644 $u $g sub/deep/d sub/deep/d 
EXPECTED
failures=0
[[ $status == 0 ]] || { echo "FAIL: driver exit status $status"; cat "$work/driver.err"; failures=1; }
if ! diff -u "$work/expected.idb" "$work/out.idb"; then
  echo "FAIL: saved idb differs"
  failures=1
fi
exit $failures
