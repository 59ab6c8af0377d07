#!/usr/bin/env bash
# Checks `tamblin-cli format`: output, messages on standard error, exit
# status, and that nothing is written when the spec was not read cleanly.
#   cli/format_test.sh PATH_TO_TAMBLIN_CLI
set -uo pipefail
cli=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failures=0

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
expect "to a file" 0 "" "Saved spec 'out.spec'." -- sub/p.spec -o out.spec
[[ "$(cat out.spec)" == "$good" ]] || { echo "FAIL out.spec content"; failures=$((failures + 1)); }

printf 'product p id P\n  image i id I version 1\n  endimage\n  endimage\nendproduct\n' > bad.spec
expect "syntax error" 1 "" "Error reading bad.spec, line 4:  syntax error (at 'endimage')
Read bad.spec up to line 4; the rest was skipped." \
  -- bad.spec -o never.spec
[[ ! -e never.spec ]] || { echo "FAIL never.spec was written"; failures=$((failures + 1)); }
expect "missing file" 1 "" "Unable to access nope.spec (No such file or directory)." -- nope.spec
printf 'include gone.spec\nproduct p id P endproduct\n' > inc.spec
expect "missing include" 1 "" "Unable to access gone.spec (No such file or directory).
Read inc.spec without the includes that failed." -- inc.spec
expect "not a regular file" 1 "" "Warning: 'sub' is not a regular file.
Try again." -- sub
expect "usage" 2 "" "usage: tamblin-cli format SPEC [-o OUT]" --

exit $((failures > 0))
