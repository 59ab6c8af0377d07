#!/usr/bin/env bash
# Behaviour of `tamblin-cli sort`: output, exit codes, and that nothing is
# written when the input cannot be read.  Usage: sort_test.sh TAMBLIN_CLI
set -u
source "$(dirname "${BASH_SOURCE[0]}")/test_lib.sh"
# expect STATUS STDERR-TEXT COMMAND...: runs the command, compares exit status and standard error.
expect() {
  local status=$1 err=$2
  shift 2
  "$@" >out.txt 2>err.txt
  local got=$?
  [ "$got" = "$status" ] || fail "$*: exit $got, expected $status"
  [ "$(cat err.txt)" = "$err" ] || fail "$*: stderr '$(cat err.txt)', expected '$err'"
}
same() { cmp -s "$1" "$2" || fail "$1 differs from $2: $(diff "$1" "$2" | head -5)"; }

printf 'f 0644 root sys b b t\n# comment\nl 0777 root sys a a t symval(x)\nf  0755 bin bin c c t  x  y\n' >in.idb
printf 'l 0777 root sys a a t symval(x)\nf 0644 root sys b b t\nf 0755 bin bin c c t x y\n' >sorted
printf 'f 0644 root sys b b t\nf 0644 root sys a a\n' >bad.idb
cp in.idb in.orig
cp bad.idb bad.orig

expect 0 "" "$cli" --help
grep -q '^  sort IDB \[-o OUT\] \[-v\]' out.txt || fail "--help does not list sort"

# Standard output by default; the comment line is dropped.
expect 0 "" "$cli" sort in.idb
same out.txt sorted
same in.idb in.orig
expect 0 "" "$cli" sort in.idb -o out.idb
same out.idb sorted
same in.idb in.orig
[ -s out.txt ] && fail "-o OUT also wrote standard output"

# In place, through a symbolic link.
cp in.idb inplace.idb
ln -s inplace.idb link.idb
expect 0 "" "$cli" sort link.idb -o link.idb
same inplace.idb sorted
[ -L link.idb ] || fail "saving through a link replaced the link"

expect 1 "Couldn't read idb 'bad.idb' (Expected tag in field 7 on line 2)." "$cli" sort bad.idb -o never.idb
[ -e never.idb ] && fail "output written after a read failure"
expect 1 "Couldn't read idb 'bad.idb' (Expected tag in field 7 on line 2)." "$cli" sort bad.idb -o bad.idb
same bad.idb bad.orig
[ -s out.txt ] && fail "output written after a read failure"

printf 'f 0644 root sys a a t\nf 0644 r\0t sys b b t\n' >nul.idb
expect 1 "Couldn't read idb 'nul.idb' (Unexpected NUL byte on line 2)." "$cli" sort nul.idb -o never.idb
[ -e never.idb ] && fail "output written after a NUL byte"

expect 2 "Couldn't open idb 'missing.idb' (No such file or directory)." "$cli" sort missing.idb
[ -e missing.idb ] && fail "missing input was created"

expect 2 "Couldn't open idb 'no/dir/x.idb' (No such file or directory)." "$cli" sort in.idb -o no/dir/x.idb

# What is not a regular file is refused and left as it is.
mkfifo fifo
expect 1 "'fifo' is not a regular file.
Try again." "$cli" sort in.idb -o fifo
[ -p fifo ] || fail "the FIFO was replaced"
if [ "$(id -u)" = 0 ] && mknod nulldev c 1 3 2>/dev/null; then
  expect 1 "'nulldev' is not a regular file.
Try again." "$cli" sort nulldev -o nulldev
  expect 1 "'nulldev' is not a regular file.
Try again." "$cli" sort in.idb -o nulldev
  [ -c nulldev ] || fail "the device node was replaced"
else
  echo "skip: device nodes (needs root)"
fi

# Hard links keep sharing the text.
cp in.idb linked.idb
ln linked.idb other.idb
expect 0 "" "$cli" sort linked.idb -o linked.idb
same other.idb sorted
[ "$(stat -c %h linked.idb)" = 2 ] || fail "the hard link was split"

# As an ordinary user: a write-protected file is refused as fopen("w")
# would refuse it; a writable one in a directory the user may not write is
# saved, and keeps its owner.
if [ "$(id -u)" = 0 ] && command -v setpriv >/dev/null; then
  chmod 755 "$work"
  mkdir locked
  cp in.idb locked/ro.idb
  cp in.idb locked/rw.idb
  chown nobody locked/ro.idb locked/rw.idb
  chmod 444 locked/ro.idb
  as_nobody() { setpriv --reuid=nobody --regid=nogroup --clear-groups "$@"; }
  expect 2 "Couldn't open idb 'locked/ro.idb' (Permission denied)." as_nobody "$cli" sort locked/ro.idb -o locked/ro.idb
  same locked/ro.idb in.orig
  expect 0 "" as_nobody "$cli" sort locked/rw.idb -o locked/rw.idb
  same locked/rw.idb sorted
  [ "$(stat -c %U locked/rw.idb)" = nobody ] || fail "owner changed"
else
  echo "skip: acting as another user (needs root and setpriv)"
fi

# kill -9 during the save of a large idb leaves the old or the new text,
# and no temporary file.
awk 'BEGIN { for (i = 300000; i > 0; i--) printf "f 0644 root sys d/%07d s/%07d t\n", i, i }' >big.orig
LC_ALL=C sort -k5,5 big.orig >big.sorted
mkdir kill
for delay in 0.02 0.05 0.1 0.15 0.2 0.3; do
  cp big.orig kill/big.idb
  "$cli" sort kill/big.idb -o kill/big.idb &
  pid=$!
  sleep "$delay"
  kill -9 "$pid" 2>/dev/null
  wait "$pid" 2>/dev/null
  if ! cmp -s kill/big.idb big.orig && ! cmp -s kill/big.idb big.sorted; then
    fail "killed after ${delay}s: neither the old nor the new text"
  fi
  [ "$(ls -A kill)" = big.idb ] || fail "killed after ${delay}s: left $(ls -A kill | tr '\n' ' ')"
done

usage="usage: tamblin-cli sort IDB [-o OUT] [-v]"
expect 2 "tamblin-cli sort: too few arguments
$usage" "$cli" sort
expect 2 "tamblin-cli sort: too many arguments
$usage" "$cli" sort a.idb b.idb
expect 2 "tamblin-cli sort: option '-o' needs a value
$usage" "$cli" sort in.idb -o
expect 2 "tamblin-cli sort: option '-o' given twice
$usage" "$cli" sort in.idb -o a -o b
expect 2 "tamblin-cli sort: unknown option '-x'
$usage" "$cli" sort -x in.idb
same in.idb in.orig

finish sort
