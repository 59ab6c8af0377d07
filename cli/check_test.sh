#!/usr/bin/env bash
# Behaviour of `tamblin-cli check`: findings, summary, exit codes and where
# the source root comes from.  Usage: check_test.sh TAMBLIN_CLI
set -u
source "$(dirname "${BASH_SOURCE[0]}")/test_lib.sh"
# expect STATUS STDOUT STDERR COMMAND...: compares exit status and both outputs.
expect() {
  local status=$1 out=$2 err=$3
  shift 3
  "$@" >out.txt 2>err.txt
  local got=$?
  [ "$got" = "$status" ] || fail "$*: exit $got, expected $status"
  [ "$(cat out.txt)" = "$out" ] || fail "$*: stdout '$(cat out.txt)', expected '$out'"
  [ "$(cat err.txt)" = "$err" ] || fail "$*: stderr '$(cat err.txt)', expected '$err'"
}

mkdir -p tree/bin tree/lib other
touch tree/bin/tool tree/lib/x other/y
printf 'f 0755 root sys usr/bin/tool bin/tool p.sw.base\nf 0644 root sys usr/lib/x lib/x p.sw.lib\n' >clean.idb
printf 'f 0644 root sys usr/lib/x lib/x p.sw.lib\nf 0644 root sys usr/y y p.sw.lib\n' >missing.idb
printf 'f 0644 root sys a a t\nf 0644 root sys b b\n' >bad.idb
root=$(cd tree && pwd -P)
usage='usage: tamblin-cli check IDB [--sbase DIR] [--spec SPEC] [-o OUT] [-v]'

unset SBASE
expect 0 "2 entries, 0 not found under $root" "" "$cli" check clean.idb --sbase tree
expect 1 "not found: y (installs as usr/y)
2 entries, 1 not found under $root" "" "$cli" check --sbase tree missing.idb
SBASE=$work/other expect 1 "not found: lib/x (installs as usr/lib/x)
2 entries, 1 not found under $work/other" "" "$cli" check missing.idb
# Neither option nor SBASE: the current directory.
(cd tree && expect 0 "2 entries, 0 not found under $root" "" "$cli" check ../clean.idb
  exit $((failures > 0))) || failures=$((failures + 1))

expect 1 "" "Couldn't read idb 'bad.idb' (Expected tag in field 7 on line 2)." "$cli" check bad.idb --sbase tree
expect 2 "" "Couldn't open idb 'none.idb' (No such file or directory)." "$cli" check none.idb --sbase tree
expect 2 "" "tamblin-cli check: Source Root '$work/clean.idb' is not a directory." \
  "$cli" check clean.idb --sbase clean.idb
while IFS='|' read -r args why; do
  # shellcheck disable=SC2086
  expect 2 "" "tamblin-cli check: $why
$usage" "$cli" check $args
done <<'CASES'
|too few arguments
--sbase|option '--sbase' needs a value
clean.idb --sbase|option '--sbase' needs a value
clean.idb missing.idb|too many arguments
clean.idb --sbase a --sbase b|option '--sbase' given twice
clean.idb -x|unknown option '-x'
clean.idb --spec|option '--spec' needs a value
clean.idb --spec a --spec b|option '--spec' given twice
CASES

# With a spec: tags no mapping names, subsystems no record lands in.
cat >p.spec <<'SPEC'
product p id "P"
  image sw id "S" version 1
    subsys base id "B" exp p.sw.base endsubsys
    subsys lib id "L"
      exp p.sw.lib
      exp p.sw.old
    endsubsys
    subsys extra id "E" exp p.sw.gone endsubsys
  endimage
endproduct
SPEC
printf 'f 0755 root sys usr/bin/tool bin/tool p.sw.base\nf 0644 root sys usr/lib/x lib/x p.sw.lib\nf 0644 root sys usr/lib/z lib/x p.sw.new\n' >tags.idb
expect 1 "tag not mapped by any subsystem: p.sw.new
subsystem without files: p.sw.extra
3 entries, 0 not found under $root, 1 tags not in the spec, 1 subsystems without files" "" \
  "$cli" check tags.idb --sbase tree --spec p.spec
sed '/subsys extra/d' p.spec >clean.spec
expect 0 "2 entries, 0 not found under $root, 0 tags not in the spec, 0 subsystems without files" "" \
  "$cli" check clean.idb --spec clean.spec --sbase tree
printf 'product p id P\n  image i id I version 1\n  endimage\n  endimage\nendproduct\n' >bad.spec
expect 1 "" "Error reading bad.spec, line 4:  syntax error (at 'endimage')
Read bad.spec up to line 4; the rest was skipped." \
  "$cli" check clean.idb --sbase tree --spec bad.spec
expect 2 "" "Unable to access nope.spec (No such file or directory)." \
  "$cli" check clean.idb --sbase tree --spec nope.spec

# A record that would not read back the same once saved (a tab in a path).
touch "tree/lib/t"$'\t'"b"
printf 'f 0644 root sys usr/lib/x lib/x p.sw.lib\nf 0644 root sys usr/t\tb lib/t\tb p.sw.lib\n' >tab.idb
expect 1 "does not read back: usr/t"$'\t'"b (the destination path holds a tab)
2 entries, 0 not found under $root, 1 not read back the same" "" "$cli" check tab.idb --sbase tree

finish check
