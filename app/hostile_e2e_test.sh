#!/usr/bin/env bash
# Hostile input through the real window: an idb record with a 1 MB
# attribute shown on "Add Attributes", a 133-byte spec that doubles a
# variable thirty times, a spec that includes 50 MB of random bytes, and one
# that includes itself.  After each the program is alive, its window answers
# a tab click at once, and it has not grown without bound; the product of
# the include cycle is read, and saved, once.
#
# usage: hostile_e2e_test.sh TAMBLIN SEND_WM_CLOSE OUTPUT_DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/e2e/gui_lib.sh"
mkdir -p "$work/run"
cd "$work/run"

{
  printf 'f 0644 root sys usr/lib/small dist/small p.sw.base\n'
  printf 'f 0755 root sys usr/bin/big dist/big p.sw.base postop(echo '
  head -c $((1 << 20)) /dev/zero | tr '\0' 'a'
  printf ')\n'
} >big.idb
{
  echo 'setenv A=$A$A'
  echo 'product p id P image i id I version 1'
  for i in $(seq 30); do echo "subsys s$i id \$A endsubsys"; done
  echo 'endimage endproduct'
} >doubling.spec
head -c $((50 << 20)) /dev/urandom >random.dat
printf 'product p id P image i id I version 1 subsys s id S endsubsys endimage endproduct\ninclude cycle.spec\n' \
  >cycle.spec
printf 'include random.dat\nproduct p id P image i id I version 1 subsys s id S endsubsys endimage endproduct\n' \
  >random.spec

start_tamblin "$prog" -nofork
alive() { kill -0 "$prog_pid" 2>/dev/null || fail "the program ended; stderr: $(tail -c 3000 "$work/stderr")"; }
# The most the program may hold at any time; it once grew past 1.8 GB.
peak_kb() { awk '/^VmHWM:/ {print $2}' "/proc/$prog_pid/status"; }
bounded() { (( $(peak_kb) < 1024 * 1024 )) || fail "the program grew to $(peak_kb) kB"; }
# Error boxes the reading raised are answered as a user would, by Return.
dismiss_errors() {
  local id
  while id=$(visible '^Error$') && [[ -n $id ]]; do
    wait_window Error >/dev/null
    xdotool key Return
    wait_gone Error
  done
}
open_file() {  # MENU_ENTRY TITLE FILE
  menu 1 "$1"
  wait_window "$2" >/dev/null
  clear_field
  type_text "$work/run/$3"
  xdotool key Return
  wait_gone "$2"
  main_settled
  dismiss_errors
  alive
}

# ---- the 1 MB attribute, on the tab that once ended the program -----------------
open_file 1 'Open Idb' big.idb
tab 3
shot attributes
alive
main_reacts
bounded

# ---- the doubling spec: its messages, and a window that still answers ---------
open_file 0 'Open Spec' doubling.spec
tab 0
shot doubling
main_reacts
bounded

# ---- 50 MB of random bytes included ------------------------------------------
start=$(date +%s)
open_file 0 'Open Spec' random.spec
tab 0
shot random
main_reacts
bounded
secs=$(( $(date +%s) - start ))
(( secs < 60 )) || fail "the 50 MB include kept the window busy for $secs s"

# ---- the include cycle: one product, saved once ----------------------------------
open_file 0 'Open Spec' cycle.spec
shot cycle
menu 4 0
wait_window 'Save Spec' >/dev/null
clear_field
type_text "$work/run/cycle_saved.spec"
xdotool key Return
wait_gone 'Save Spec'
poll 10 test -s cycle_saved.spec || fail "the spec of the include cycle was not saved"
cp cycle_saved.spec "$out/"
products=$(grep -c '^product ' cycle_saved.spec || true)
(( products == 1 )) || fail "the include cycle gave $products products"
bounded

quit_tamblin
echo "PASS: a 1 MB attribute, a doubling spec, a 50 MB binary include and an include cycle survived; screenshots in $out"
