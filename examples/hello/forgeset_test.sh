#!/usr/bin/env bash
# The example product from spec and idb to installed packages, judged by
# Debian's own tools: dpkg-deb, lintian, dpkg (into a scratch root) and apt.
# Usage: forgeset_test.sh FORGESET
set -u
forgeset=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
example=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
# has TEXT FILE: FILE holds the line TEXT.
has() { grep -qxF -- "$1" "$2" || fail "'$1' not in $2: $(cat "$2")"; }

export DEBFULLNAME="Example Maintainer" DEBEMAIL="example@example.org" SOURCE_DATE_EPOCH=1700000000
"$example/src/build.sh" tree || { echo "FAIL: building the example"; exit 1; }
cp "$example/hello.idb" "$example/hello.spec" .
run() { "$forgeset" -sbase tree -idb hello.idb -spec hello.spec "$@"; }

# Test build: the plan, nothing written, exit 0.
run -dryrun -verbose >dryrun.txt 2>&1 || fail "-dryrun exit $?: $(cat dryrun.txt)"
has "hello.idb:7: warning: attribute mach(CPUBOARD=IP22) has no meaning on Linux and is ignored" dryrun.txt
has "  Depends: hello.sw.base (= 1.2), hello.sw.lib (= 1.2), hello.man.pages (= 1.2)" dryrun.txt
has "  Conflicts: oldhello.sw.extras (<< 1.2)" dryrun.txt
has "forgeset: check clean: 5 packages from 7 records" dryrun.txt
[ -e dist ] && fail "-dryrun wrote $(ls dist)"

# Exit status: 1 for problems (each FILE:LINE), 2 for usage or unreadable input.
sed 's/hello\.sw\.extras mach/hello.sw.gone mach/' hello.idb >bad.idb
"$forgeset" -sbase tree -idb bad.idb -spec hello.spec -dryrun >bad.txt 2>&1
[ $? = 1 ] || fail "problems: exit not 1"
has "bad.idb:7: tag not mapped by any subsystem: hello.sw.gone" bad.txt
"$forgeset" -sbase tree -idb none.idb -spec hello.spec -dryrun >none.txt 2>&1
[ $? = 2 ] || fail "unreadable idb: exit not 2"
has "forgeset: Couldn't open idb 'none.idb' (No such file or directory)." none.txt
"$forgeset" -idb hello.idb -spec hello.spec >usage.txt 2>&1
[ $? = 2 ] || fail "usage: exit not 2"
has "forgeset: give -all or -dryrun" usage.txt
"$forgeset" -help >help.txt 2>&1 || fail "-help exit $?"
grep -q '^usage: forgeset ' help.txt || fail "-help: $(cat help.txt)"

# Build.
run -dist dist -all >all.txt 2>&1 || fail "-all exit $?: $(cat all.txt)"
has "wrote $work/dist/hello.sw.base_1.2_$(dpkg --print-architecture).deb (3 files, $(stat -c %s dist/hello.sw.base_*.deb) bytes)" all.txt
has "forgeset: built 5 packages in $work/dist" all.txt
ls dist >debs.txt
for p in hello_1.2_all hello.sw.base_1.2_amd64 hello.sw.lib_1.2_amd64 hello.sw.extras_1.2_all \
    hello.man.pages_1.2_all; do
  has "$p.deb" debs.txt
done

# The fields and the files with the idb's modes and owners, as dpkg-deb reads them.
base=$(ls dist/hello.sw.base_*.deb)
dpkg-deb -f "$base" Package Version Architecture Priority Depends >fields.txt
has "Package: hello.sw.base" fields.txt
has "Version: 1.2" fields.txt
has "Priority: important" fields.txt
grep -q '^Depends: hello.sw.lib (>= 1), libc6 (>= ' fields.txt || fail "Depends: $(cat fields.txt)"
dpkg-deb --contents "$base" | awk '{print $1, $2, $6, $7, $8}' >contents.txt
has "-rw-r--r-- root/root ./etc/hello.conf  " contents.txt
has "-rwxr-xr-x root/root ./usr/bin/hello  " contents.txt
has "lrwxrwxrwx root/root ./usr/bin/hi -> hello" contents.txt
dpkg-deb --contents dist/hello.sw.extras_1.2_all.deb | awk '{print $1, $2, $6}' >extras.txt
has "-rw-r----- daemon/adm ./usr/share/hello/greetings" extras.txt
has "drwxr-xr-x root/root ./usr/share/hello/" extras.txt
dpkg-deb -I "$base" conffiles >conffiles.txt
has "/etc/hello.conf" conffiles.txt
# Executables are stripped; the library is too (stripdso).
dpkg-deb -x "$base" x && dpkg-deb -x dist/hello.sw.lib_1.2_amd64.deb x
file x/usr/bin/hello x/usr/lib/libgreet.so.1 >file.txt
[ "$(grep -c 'not stripped' file.txt)" = 0 ] || fail "unstripped: $(cat file.txt)"

# lintian: no errors but the copyright file this example does not ship.
lintian --no-cfg --suppress-tags no-copyright-file dist/*.deb >lintian.txt 2>&1
grep '^E:' lintian.txt && fail "lintian errors"

# Reproducible: a second build gives the same bytes; -nocompress plain members.
mkdir again && (cd again && cp ../hello.idb ../hello.spec . && ln -s ../tree tree &&
  "$forgeset" -sbase tree -idb hello.idb -spec hello.spec -dist ../dist2 -all >/dev/null)
for f in dist/*.deb dist/Packages dist/Release; do
  cmp -s "$f" "dist2/$(basename "$f")" || fail "$f differs between two builds"
done
run -dist plain -nocompress -nostrip -all >/dev/null || fail "-nocompress -nostrip"
ar t plain/hello.sw.base_1.2_amd64.deb >members.txt
has "data.tar" members.txt
has "control.tar" members.txt
dpkg-deb -x plain/hello.sw.base_1.2_amd64.deb plainx
file plainx/usr/bin/hello | grep -q 'not stripped' || fail "-nostrip stripped: $(file plainx/usr/bin/hello)"

# Install into a scratch root: files, modes, owners, links, conffiles, scripts in order.
root=$work/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/triggers"
# The example needs the C library, which the scratch root takes from the host.
dpkg-query -s libc6 >"$root/var/lib/dpkg/status"
: >"$root/var/lib/dpkg/available"
dpkg_root() { dpkg --root="$root" --force-script-chrootless --force-not-root "$@"; }
# A subsystem whose prereq is absent is refused, naming it.
dpkg_root -i "$base" >refused.txt 2>&1 && fail "hello.sw.base installed without hello.sw.lib"
grep -q "hello.sw.base depends on hello.sw.lib" refused.txt || fail "refusal: $(cat refused.txt)"
dpkg_root --purge hello.sw.base >/dev/null 2>&1
: >"$root/var/tmp/hello.markers"
dpkg_root -i dist/hello.sw.lib_1.2_amd64.deb "$base" dist/hello.sw.extras_1.2_all.deb >install.txt 2>&1 ||
  fail "install: $(cat install.txt)"
stat -c '%A %U %G %n' "$root/usr/bin/hello" "$root/etc/hello.conf" \
  "$root/usr/share/hello/greetings" | sed "s|$root||" >stat.txt
has "-rwxr-xr-x root root /usr/bin/hello" stat.txt
has "-rw-r--r-- root root /etc/hello.conf" stat.txt
has "-rw-r----- daemon adm /usr/share/hello/greetings" stat.txt
[ "$(readlink "$root/usr/bin/hi")" = hello ] || fail "link: $(readlink "$root/usr/bin/hi")"
dpkg-query --admindir="$root/var/lib/dpkg" -W -f='${Conffiles}\n' hello.sw.base >registered.txt
grep -q "^ /etc/hello.conf [0-9a-f]\{32\}" registered.txt || fail "conffiles: $(cat registered.txt)"
printf 'preop\npostop\nexitop\n' >expected.txt
cmp -s expected.txt "$root/var/tmp/hello.markers" || fail "scripts ran: $(cat "$root/var/tmp/hello.markers")"
LD_LIBRARY_PATH=$root/usr/lib "$root/usr/bin/hello" tester >hello.txt
has "Hello, tester!" hello.txt

# Removal runs the removeop; purge removes the conffile.
dpkg_root -r hello.sw.extras hello.sw.base >/dev/null 2>&1 || fail "remove"
[ "$(tail -n 1 "$root/var/tmp/hello.markers")" = removeop ] ||
  fail "removeop: $(cat "$root/var/tmp/hello.markers")"
[ -e "$root/etc/hello.conf" ] || fail "remove took the conffile"
dpkg_root --purge hello.sw.base >/dev/null 2>&1 || fail "purge"
[ -e "$root/etc/hello.conf" ] && fail "purge left the conffile"

# apt with only the dist directory as its source installs the product's
# required and default subsystems, not the optional one.
mkdir -p apt/lists/partial apt/cache/archives/partial apt/etc
echo "deb [trusted=yes] file:$work/dist ./" >apt/etc/sources.list
aptopts=(-o Dir::Etc="$work/apt/etc" -o Dir::Etc::sourcelist="$work/apt/etc/sources.list"
  -o Dir::Etc::sourceparts=- -o Dir::State::Lists="$work/apt/lists"
  -o Dir::Cache="$work/apt/cache" -o Dir::State::status="$root/var/lib/dpkg/status"
  -o Debug::NoLocking=1 -o APT::Get::List-Cleanup=0)
apt-get "${aptopts[@]}" update >update.txt 2>&1 || fail "apt-get update: $(cat update.txt)"
# libc6 is not in the scratch root: take the host's status for it.
cp /var/lib/dpkg/status "$root/var/lib/dpkg/status"
apt-get "${aptopts[@]}" --simulate install hello >simulate.txt 2>&1 ||
  fail "apt-get install hello: $(cat simulate.txt)"
grep '^Inst ' simulate.txt | awk '{print $2}' | sort >installs.txt
printf 'hello\nhello.man.pages\nhello.sw.base\nhello.sw.lib\n' >want.txt
cmp -s want.txt installs.txt || fail "apt installs: $(cat installs.txt)"

[ "$failures" = 0 ] && echo "forgeset: all passed"
exit $((failures > 0))
