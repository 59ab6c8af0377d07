#!/usr/bin/env bash
# The Build tab with the example product, driven like a user on a private X
# server: Test Build reports a record whose tag no subsystem maps as
# "FILE:LINE: ..."; a double click on that line shows the Tag Files tab with
# the record selected; with the idb mended, Test Build is clean and Build All
# writes the packages, and "Done." follows each run in the log.  Screenshots
# go to OUTDIR.
# Usage: forgeset_e2e_test.sh FORGESET_DRIVER FORGESET OUTDIR
set -u
driver=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
forgeset=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
out=$3
mkdir -p "$out"
out=$(cd "$out" && pwd)
example=$(cd "$(dirname "${BASH_SOURCE[0]}")/../examples/hello" && pwd)
driver_pid=
cleanup_pids="driver_pid"
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
start_xvfb

cd "$work"
"$example/src/build.sh" tree >/dev/null || fail "building the example"
mkdir project
cp "$example/hello.spec" "$example/hello.idb" project/
# The manual page's record (line 8, the seventh record) carries a tag that
# no subsystem maps.
sed -i '8s/hello\.man\.pages/hello.man.unknown/' project/hello.idb
grep -q 'hello.man.unknown' project/hello.idb || fail "could not spoil the idb"
export SBASE=$work/tree DEBFULLNAME="Example Maintainer" DEBEMAIL=example@example.org
"$driver" -xrm "*buildProgram: $forgeset" -xrm '*multiClickTime: 400' \
  "$work/project/hello.spec" "$work/project/hello.idb" "$work/dist" "$work" \
  >"$work/where" 2>"$work/driver.err" &
driver_pid=$!
ready() { grep -q '^ready$' "$work/where" || { kill -0 "$driver_pid" 2>/dev/null || return 0; return 1; }; }
poll 120 ready && grep -q '^ready$' "$work/where" || fail "driver not ready: $(cat "$work/driver.err")"
where() { awk -v k="$1" '$1 == k { print $2, $3 }' "$work/where"; }
click() { xdotool mousemove --sync $1 $2 click 1; }
logged() { grep -qxF -- "$1" "$work/log.txt" 2>/dev/null; }
logs() { grep -cxF -- "$1" "$work/log.txt" 2>/dev/null || true; }
# runs_done N: the log holds N "Done." lines (counted anew at each look).
runs_done() { test "$(logs Done.)" = "$1"; }
shot() { import -window root "$out/$1.png" 2>/dev/null; }

click $(where tab)
click $(where dryrun)
problem="$work/project/hello.idb:8: tag not mapped by any subsystem: hello.man.unknown"
poll 120 logged "$problem" || fail "Test Build did not report the missing file: $(cat "$work/log.txt")"
poll 120 logged "Done." || fail "no Done. after Test Build"
shot testbuild
[ -e "$work/dist/Packages" ] && fail "Test Build wrote packages"

# The double click on the problem's line shows the record to fix.
poll 10 test -s "$work/problem.txt" || fail "no problem line drawn"
xdotool mousemove --sync $(sed -n 1p "$work/problem.txt") click --repeat 2 --delay 80 1
shown() { grep -qx 'view 1' "$work/state.txt" && grep -qx 'selected 7' "$work/state.txt"; }
poll 10 shown || fail "double click: $(cat "$work/state.txt")"
shot doubleclick
# The next line names the spec's subsystem that is left without files.
grep -qxF "$work/project/hello.spec:36: subsystem without files: hello.man.pages" "$work/log.txt" ||
  fail "no spec problem line"
xdotool mousemove --sync $(sed -n 2p "$work/problem.txt") click --repeat 2 --delay 80 1
node() { grep -qx 'view 0' "$work/state.txt" && grep -qx 'node hello.man.pages' "$work/state.txt"; }
poll 10 node || fail "double click on the spec line: $(cat "$work/state.txt")"
shot specnode

cp "$example/hello.idb" project/hello.idb
click $(where tab)
click $(where dryrun)
poll 120 logged "forgeset: check clean: 5 packages from 7 records" || fail "second Test Build not clean"
poll 120 runs_done 2 || fail "no Done. after the second Test Build"
click $(where all)
poll 120 logged "forgeset: built 5 packages in $work/dist" || fail "Build All: $(tail -n 5 "$work/log.txt")"
poll 120 runs_done 3 || fail "no Done. after Build All: $(tail -n 4 "$work/log.txt")"
shot buildall
for deb in hello_1.2_all hello.sw.base_1.2_amd64 hello.sw.lib_1.2_amd64 hello.sw.extras_1.2_all \
    hello.man.pages_1.2_all; do
  dpkg-deb --info "$work/dist/$deb.deb" >/dev/null 2>&1 || fail "$deb.deb missing or broken"
done
grep -q '^Package: hello$' "$work/dist/Packages" || fail "Packages lists no hello"
echo "forgeset e2e: all passed"
