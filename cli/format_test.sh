#!/usr/bin/env bash
# Checks `tamblin-cli format`: output, messages on standard error, exit
# status, and that nothing is written when the spec was not read cleanly.
#   cli/format_test.sh PATH_TO_TAMBLIN_CLI
set -uo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/test_lib.sh"

# expect NAME STATUS STDOUT STDERR -- ARGS...
expect() {
  local name=$1 status=$2 out=$3 err=$4
  shift 5
  "$cli" format "$@" > got.out 2> got.err
  local rc=$?
  if [[ $rc != "$status" || "$(cat got.out)" != "$out" || "$(cat got.err)" != "$err" ]]; then
    echo "FAIL $name: status $rc (want $status)"
    echo "--- stdout:"; cat got.out; echo "--- want:"; echo "$out"
    echo "--- stderr:"; cat got.err; echo "--- want:"; echo "$err"
    failures=$((failures + 1))
  else
    echo "ok   $name"
  fi
}

mkdir sub
printf 'subsys s id "S  s"\nendsubsys\n' > sub/s.spec
printf 'product p id P\n  image i id I version 2 order 3\n  include s.spec\n  endimage\nendproduct\n' \
  > sub/p.spec
good='product p
    id P
    image i
        id I
        version 2
        order 3
        subsys s
            id "S s"
        endsubsys
    endimage
endproduct'
expect "includes beside the including file" 0 "$good" "" -- sub/p.spec
expect "to a file, silently" 0 "" "" -- sub/p.spec -o out.spec
[[ "$(cat out.spec)" == "$good" ]] || { echo "FAIL out.spec content"; failures=$((failures + 1)); }

printf 'product p id P\n  image i id I version 1\n  endimage\n  endimage\nendproduct\n' > bad.spec
expect "syntax error" 1 "" "Error reading bad.spec, line 4:  syntax error (at 'endimage')
Read bad.spec up to line 4; the rest was skipped." \
  -- bad.spec -o never.spec
[[ ! -e never.spec ]] || { echo "FAIL never.spec was written"; failures=$((failures + 1)); }
expect "missing file" 2 "" "Unable to access nope.spec (No such file or directory)." -- nope.spec
printf 'include gone.spec\nproduct p id P endproduct\n' > inc.spec
expect "missing include" 2 "" "Unable to access gone.spec (No such file or directory).
Read inc.spec without the includes that failed." -- inc.spec
expect "not a regular file" 2 "" "'sub' is not a regular file.
Try again." -- sub
usage="usage: tamblin-cli format SPEC [-o OUT] [-v]"
expect "usage" 2 "" "tamblin-cli format: too few arguments
$usage" --
expect "two specs" 2 "" "tamblin-cli format: too many arguments
$usage" -- sub/p.spec bad.spec

# A token over the lexer's limit ends the program; its message must not
# land in the output.
{ printf 'product p id '; head -c 1200 /dev/zero | tr '\0' x; printf '\nendproduct\n'; } > long.spec
expect "token over the limit" 1 "" "Input string too long, limit 1000" -- long.spec
expect "token over the limit, -o" 1 "" "Input string too long, limit 1000" -- long.spec -o long.out
[[ ! -e long.out ]] || { echo "FAIL long.out was written"; failures=$((failures + 1)); }

mkfifo fifo
expect "FIFO as output" 1 "" "'fifo' is not a regular file.
Try again." -- sub/p.spec -o fifo
[[ -p fifo ]] || { echo "FAIL the FIFO was replaced"; failures=$((failures + 1)); }

# A full disk is named as such, and the old file stays.
{
  echo 'product p id P image i id I version 1 order 1'
  for i in $(seq 1500); do echo "subsys s$i id \"Subsystem number $i\" exp p.i.s$i endsubsys"; done
  echo 'endimage endproduct'
} >big.spec
if [[ $(id -u) == 0 ]] && unshare -m true 2>/dev/null; then
  mkdir mnt
  unshare -m bash -c 'mount -t tmpfs -o size=64k tmpfs mnt && echo old >mnt/out.spec &&
    "$0" format big.spec -o mnt/out.spec >got.out 2>got.err; echo $? >got.status;
    cat mnt/out.spec >got.kept; ls -A mnt >got.ls' "$cli"
  if [[ $(cat got.status) != 2 || $(cat got.err) != "Couldn't write spec 'mnt/out.spec' (No space left on device)." ||
        $(cat got.kept) != old || $(cat got.ls) != out.spec ]]; then
    echo "FAIL full disk: status $(cat got.status), stderr $(cat got.err), kept $(cat got.kept), files $(cat got.ls)"
    failures=$((failures + 1))
  else
    echo "ok   full disk"
  fi
else
  echo "skip full disk: mounting a small tmpfs needs root"
fi

finish format
