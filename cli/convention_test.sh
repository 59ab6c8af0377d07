#!/usr/bin/env bash
# The convention every tamblin-cli subcommand follows (cli/CliCommand.h):
# help on standard output with status 0, usage errors with 2, results on
# standard output or the -o file ("-o -" being standard output), messages on
# standard error only, silent success unless -v, every failed write
# reported, and no save over something that is not a regular file.
#   cli/convention_test.sh PATH_TO_TAMBLIN_CLI
set -uo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/test_lib.sh"

# run ARGS...: runs tamblin-cli; sets rc, out and err.
run() {
  "$cli" "$@" >out.txt 2>err.txt
  rc=$?
  out=$(cat out.txt)
  err=$(cat err.txt)
}
# check WHAT STATUS STDOUT STDERR
check() {
  [[ $rc == "$2" ]] || fail "$1: status $rc, expected $2 (stderr: $err)"
  [[ $out == "$3" ]] || fail "$1: stdout '$out', expected '$3'"
  [[ $err == "$4" ]] || fail "$1: stderr '$err', expected '$4'"
}

# Inputs each subcommand reads without complaint.
mkdir -p tree/bin dir
mkfifo fifo
ln -s dir dirlink
touch tree/bin/tool
printf 'product p id P\n  image i id I version 1\n    subsys s id S exp p.i.s endsubsys\n  endimage\nendproduct\n' >p.spec
printf 'f 0755 root sys usr/bin/tool bin/tool p.i.s\n' >p.idb
declare -A args=([format]="p.spec" [sort]="p.idb" [check]="p.idb --sbase tree --spec p.spec")
declare -A kind=([format]=spec [sort]=idb [check]=report)

run --help
check "--help" 0 "$out" ""
listing=$out
[[ $listing == *"Exit status:"* ]] || fail "--help does not give the exit statuses"
"$cli" --help >/dev/full 2>err.txt
[[ $? == 2 && $(cat err.txt) == "Couldn't write help to standard output (No space left on device)." ]] ||
  fail "--help >/dev/full: $(cat err.txt)"
run
[[ $rc == 2 && -z $out && $err == usage:* ]] || fail "no subcommand: status $rc, stdout '$out'"
run frobnicate
[[ $rc == 2 && -z $out && $err == *"unknown subcommand 'frobnicate'"* ]] ||
  fail "unknown subcommand: status $rc, stdout '$out', stderr '$err'"

for sub in format sort check edit; do
  for help in -h --help "--help --bogus" "a b c d e f -h"; do
    # shellcheck disable=SC2086
    run $sub $help
    [[ $rc == 0 && -z $err && $out == "usage: tamblin-cli $sub "* ]] ||
      fail "$sub $help: status $rc, stdout '${out%%$'\n'*}', stderr '$err'"
  done
  [[ $out == *"Exit status:"* ]] || fail "$sub --help does not give the exit statuses"
  # The subcommand's own usage line is the one the overview lists.
  line=${out%%$'\n'*}
  [[ $listing == *"  ${line#usage: tamblin-cli }"* ]] || fail "$sub: '$line' is not in --help"
  "$cli" $sub --help >/dev/full 2>err.txt
  [[ $? == 2 && $(cat err.txt) == "Couldn't write help to standard output (No space left on device)." ]] ||
    fail "$sub --help >/dev/full: $(cat err.txt)"
  run $sub --bogus
  [[ $rc == 2 && -z $out && $err == "tamblin-cli $sub: unknown option '--bogus'"$'\n'"usage: tamblin-cli $sub "* ]] ||
    fail "$sub --bogus: status $rc, stdout '$out', stderr '$err'"
done

for sub in format sort check; do
  read -ra a <<<"${args[$sub]}"
  k=${kind[$sub]}
  run $sub "${a[@]}"
  check "$sub" 0 "$out" ""
  result=$out
  [[ -n $result ]] || fail "$sub wrote nothing"

  run $sub "${a[@]}" -o -
  check "$sub -o -" 0 "$result" ""
  [[ ! -e ./- ]] || fail "$sub -o - made a file named '-'"
  run $sub -o out.file "${a[@]}"
  check "$sub -o FILE" 0 "" ""
  [[ $(cat out.file) == "$result" ]] || fail "$sub -o FILE wrote '$(cat out.file)'"
  run $sub "${a[@]}" -v -o out.file
  [[ $rc == 0 && -z $out && $err == *"Saved $k 'out.file'." ]] || fail "$sub -v -o FILE: status $rc, stderr '$err'"
  run $sub -v "${a[@]}"
  [[ $rc == 0 && $out == "$result" && $err == *"Wrote $k to standard output." ]] ||
    fail "$sub -v: status $rc, stderr '$err'"

  # Failed writes: a full disk, a closed standard output.
  "$cli" $sub "${a[@]}" >/dev/full 2>err.txt
  rc=$?
  [[ $rc == 2 && $(cat err.txt) == "Couldn't write $k to standard output (No space left on device)." ]] ||
    fail "$sub >/dev/full: status $rc, stderr '$(cat err.txt)'"
  "$cli" $sub "${a[@]}" >&- 2>err.txt
  rc=$?
  [[ $rc == 2 && $(cat err.txt) == "Couldn't write $k to standard output (Bad file descriptor)." ]] ||
    fail "$sub >&-: status $rc, stderr '$(cat err.txt)'"

  # -o /dev/stdout: into a regular file it works; into a pipe it is refused
  # for what it is.  No save replaces a directory or a device.
  "$cli" $sub "${a[@]}" -o /dev/stdout >redirected 2>err.txt
  [[ $? == 0 && $(cat redirected) == "$result" && ! -s err.txt ]] || fail "$sub -o /dev/stdout >file: $(cat err.txt)"
  piped=$("$cli" $sub "${a[@]}" -o /dev/stdout 2>err.txt | cat; echo "status ${PIPESTATUS[0]}")
  [[ $piped == "status 1" && $(cat err.txt) == "'/dev/stdout' is not a regular file."$'\n'"Try again." ]] ||
    fail "$sub -o /dev/stdout | cat: '$piped', stderr '$(cat err.txt)'"
  # (Never a real device here: a fault would replace it for the whole
  # machine.)
  for target in dir fifo dirlink; do
    run $sub "${a[@]}" -o $target
    check "$sub -o $target" 1 "" "'$target' is not a regular file."$'\n'"Try again."
  done
  [[ -d dir && -p fifo && -L dirlink ]] || fail "$sub replaced a directory or a pipe"
  run $sub "${a[@]}" -o no/such/dir/out
  [[ $rc == 2 && -z $out && $err == "Couldn't open $k 'no/such/dir/out' (No such file or directory)." ]] ||
    fail "$sub -o no/such/dir/out: status $rc, stderr '$err'"
done

# edit needs a session bus; without one it says so, and nothing else.
(unset DBUS_SESSION_BUS_ADDRESS; run edit "$work" "" "" "" -v
  check "edit without a bus" 2 "" "tamblin-cli edit: no session bus (DBUS_SESSION_BUS_ADDRESS is not set)"
  exit $((failures > 0))) || failures=$((failures + 1))
run edit a b c
check "edit with three arguments" 2 "" "tamblin-cli edit: too few arguments
usage: tamblin-cli edit DIR SPEC IDB DIST [-v]"

finish convention
