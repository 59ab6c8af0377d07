#!/usr/bin/env bash
# A value too long to draw, through the real window: a spec whose product
# description is 1.1 MB opens (File > Open > Spec, the name typed into the
# dialog), the node details show it cut with a mark instead of ending the
# program with an X request longer than the protocol allows, an Assign of a
# new product name keeps the description whole (the cut text shown is never
# taken for it), and File > SaveAs > Spec writes the file as it was read
# but for the new name.
#
# usage: longvalues_e2e_test.sh TAMBLIN SEND_WM_CLOSE OUTPUT_DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/e2e/gui_lib.sh"
mkdir -p "$work/run"
cd "$work/run"
# 1,100 words of 999 characters (a word may not pass 1,000) in one quoted
# description.
{
  printf 'product longid\n    id "'
  for ((i = 0; i < 1100; i++)); do
    (( i > 0 )) && printf ' '
    printf 'w%04d%0994d' "$i" 0
  done
  printf '"\n    image sw\n        id "Software"\n        version 1\n        order 9999\n'
  printf '        subsys base\n            id "Base"\n            replaces self\n'
  printf '            exp longid.sw.base\n        endsubsys\n    endimage\nendproduct\n'
} >long.spec
(( $(stat -c %s long.spec) > 1000000 )) || fail "the test spec is too short"
export LANG=C.UTF-8
start_tamblin "$prog" -nofork
alive() { kill -0 "$prog_pid" 2>/dev/null || fail "the program ended; stderr: $(cat "$work/stderr")"; }

menu 1 0
wait_window 'Open Spec' >/dev/null
clear_field
type_text "$work/run/long.spec"
# The product opened is selected: its details show, the description cut.
shot before
xdotool key Return
wait_gone 'Open Spec'
shown() { alive; shot after_open && differ before after_open; }
poll 20 shown || fail "the opened spec was not shown"
main_settled
shot product_cut
alive
# A new name, assigned with the cut description shown beside it.
field() { click "$1" "$2"; clear_field; type_text "$3"; }
# Each step waits until the window shows it.
field 705 239 renamed
typed() { shot typed && differ product_cut typed; }
poll 60 typed || fail "the new name did not show"
click 610 194
assigned() { shot assigned && differ typed assigned; }
poll 60 assigned || fail "Assign changed nothing on screen"
main_settled
menu 4 0
wait_window 'Save Spec' >/dev/null
clear_field
type_text "$work/run/again.spec"
xdotool key Return
wait_gone 'Save Spec'
poll 20 test -s again.spec || fail "nothing saved"
alive
sed -e '1s/^product longid$/product renamed/' -e 's/longid\.sw\.base/renamed.sw.base/' long.spec \
  >expected.spec
cp again.spec "$out/"; cmp expected.spec again.spec || fail "the saved spec differs from the one read (renamed)"
quit_tamblin
echo "PASS: a 1.1 MB description shown cut, assigned and saved whole; screenshots in $out"
