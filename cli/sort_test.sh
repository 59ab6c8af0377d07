#!/usr/bin/env bash
# Behaviour of `tamblin-cli sort`: output, exit codes, and that nothing is
# written when the input cannot be read.  Usage: sort_test.sh TAMBLIN_CLI
set -u
cli=$(realpath "$1")
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir"
failures=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
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

[ "$failures" = 0 ] && echo "all sort cases passed"
exit "$failures"
