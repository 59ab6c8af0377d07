#!/usr/bin/env bash
# The source-tree browser driven from outside on a private X server: select
# entries with the mouse (Ctrl for the second and third), press the Add
# arrow, save, and compare the idb written.  Two trees: plain names (two
# files and a directory), then the source root itself ("./") over names an
# idb line cannot hold (a blank, a tab, a directory "a" + newline holding
# "etc"), which must be skipped with a line each in the message log while
# the others are added.
# Usage: addfiles_e2e_test.sh ADDFILES_DRIVER
# With SCREENSHOT=FILE the window is saved there after the second Add.
set -u
driver=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
driver_pid=
cleanup_pids="driver_pid"
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
start_xvfb 1024x768x24

failures=0
u=$(id -un)
g=$(id -gn)

# where KIND NAME: the root coordinates printed for it.
where() { awk -v k="$1" -v n="$2" '$1 == k && $2 == n { print $3, $4 }' "$work/where"; }
click() {
  [[ $# == 2 ]] || { echo "FAIL: nothing to click"; cat "$work/where"; exit 1; }
  xdotool mousemove --sync "$1" "$2" click 1
}

# run TREE OUT ENTRY...: starts the driver on TREE, clicks the entries (the
# first plainly, the others with Ctrl), Add and Save; the idb goes to OUT.
run() {
  local tree=$1 out=$2
  shift 2
  # Clicks come faster than a hand's: a double click needs two within 1 ms.
  "$driver" -xrm '*multiClickTime: 1' "$tree" "$out" >"$work/where" 2>"$work/driver.err" &
  driver_pid=$!
  for _ in $(seq 300); do
    grep -q '^ready$' "$work/where" && break
    kill -0 "$driver_pid" 2>/dev/null || { echo "FAIL: driver ended"; cat "$work/driver.err"; exit 1; }
    sleep 0.1
  done
  grep -q '^ready$' "$work/where" || { echo "FAIL: driver not ready"; exit 1; }

  click $(where entry "$1")
  shift
  xdotool keydown Control_L
  for entry in "$@"; do click $(where entry "$entry"); done
  xdotool keyup Control_L
  click $(where button add)
  if [[ -n ${SCREENSHOT:-} ]]; then
    sleep 0.5
    import -window root -crop 500x500+0+0 "$SCREENSHOT"
  fi
  click $(where button save)
  for _ in $(seq 300); do
    kill -0 "$driver_pid" 2>/dev/null || break
    sleep 0.1
  done
  wait "$driver_pid"
  local status=$?
  driver_pid=
  [[ $status == 0 ]] || { echo "FAIL: driver exit status $status"; cat "$work/driver.err"; failures=1; }
}

same() {
  if ! diff -u "$1" "$2"; then
    echo "FAIL: $3"
    failures=1
  fi
}

tree=$work/tree
mkdir -p "$tree/sub/deep"
touch "$tree/a" "$tree/b" "$tree/sub/c" "$tree/sub/deep/d" "$tree/unselected"
chmod 0644 "$tree/a" "$tree/sub/deep/d" "$tree/unselected"
chmod 0755 "$tree/b" "$tree/sub"
chmod 0600 "$tree/sub/c"
chmod 0700 "$tree/sub/deep"
tree=$(cd "$tree" && pwd -P)
run "$tree" "$work/out.idb" a b sub/
cat >"$work/expected.idb" <<EXPECTED
f 0644 $u $g a a 
f 0755 $u $g b b 
d 0755 $u $g sub sub 
f 0600 $u $g sub/c sub/c 
d 0700 $u $g sub/deep sub/deep 
f 0644 $u $g sub/deep/d sub/deep/d 
EXPECTED
same "$work/expected.idb" "$work/out.idb" "saved idb differs"

odd=$work/odd
mkdir -p "$odd/a"$'\n' "$odd/dir with space" "$odd/good"
touch "$odd/a"$'\n'"/etc" "$odd/dir with space/f" "$odd/tab"$'\t'"here" "$odd/good/g" "$odd/ok"
chmod 0755 "$odd/a"$'\n' "$odd/dir with space" "$odd/good"
chmod 0644 "$odd/a"$'\n'"/etc" "$odd/dir with space/f" "$odd/tab"$'\t'"here" "$odd/good/g" "$odd/ok"
odd=$(cd "$odd" && pwd -P)
run "$odd" "$work/odd.idb" ./
cat >"$work/expected-odd.idb" <<EXPECTED
d 0755 $u $g good good 
f 0644 $u $g good/g good/g 
f 0644 $u $g ok ok 
EXPECTED
same "$work/expected-odd.idb" "$work/odd.idb" "saved idb of the odd tree differs"
cannot=", which an idb line cannot hold."
sort >"$work/expected-log" <<EXPECTED
Skipped '$odd/a\n': its name holds a newline$cannot
Skipped '$odd/a\n/etc': its name holds a newline$cannot
Skipped '$odd/dir with space': its name holds a blank$cannot
Skipped '$odd/dir with space/f': its name holds a blank$cannot
Skipped '$odd/tab\there': its name holds a tab$cannot
EXPECTED
grep '^Skipped' "$work/driver.err" | sort >"$work/log"
same "$work/expected-log" "$work/log" "the message log does not name each skipped path"
exit $failures
