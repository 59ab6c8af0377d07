#!/usr/bin/env bash
# The file selection, error, warning and question dialogs of the real
# program answered like a user answers them (the dialogs that come up in
# the middle of work: dialogs2_e2e_test.sh), on a private X server without
# a window manager: clicks on OK and Cancel,
# Return, Escape, and a window manager's Close (the WM_DELETE_WINDOW client
# message sent to the dialog's shell).  After each answer the dialog must be
# unmapped and the main window must take input again (a tab switch changes
# what it shows).  Also: the start-up banner is gone once the window is up,
# the file dialogs are wide enough for their paths, the dialogs carry real
# titles, and an error box has no Cancel.
#
# usage: dialogs_e2e_test.sh TAMBLIN SEND_WM_CLOSE OUTPUT_DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/e2e/gui_lib.sh"
mkdir -p "$work/run" "$work/src/bin"
echo hello >"$work/src/bin/hello"
cd "$work/run"
export LANG=C.UTF-8 SBASE="$work/src"
start_tamblin "$prog" -nofork

[[ -z $(visible '^Busy$') ]] || fail "the start-up banner is still up"

# ---- file selection: File > SaveAs > Spec ---------------------------------
for how in cancel escape close; do
  menu 4 0
  id=$(wait_window 'Save Spec')
  width=$(xwininfo -id "$id" | awk '/Width:/ {print $2}')
  (( width >= 590 )) || fail "the file dialog is $width pixels wide"
  answer 'Save Spec' "$how"
  [[ ! -e my_product.spec ]] || fail "$how wrote the spec"
done
shot file_dialog_answered
# OK and Return write the file named in the dialog.
menu 4 0
wait_window 'Save Spec' >/dev/null
clear_field
type_text "$work/run/first.spec"
answer 'Save Spec' ok
[[ -s first.spec ]] || fail "OK did not save first.spec"
menu 4 0
wait_window 'Save Spec' >/dev/null
clear_field
type_text "$work/run/second.spec"
answer 'Save Spec' return
[[ -s second.spec ]] || fail "Return did not save second.spec"
cmp -s first.spec second.spec || fail "the two saves differ"

# The same dialog for the idb and for opening: Escape and Close.
menu 1 1
answer 'Open Idb' escape
menu 1 0
answer 'Open Spec' close

# ---- the error box: Assign on Tag Files with nothing selected -------------
# (the Assign arrow stands under the tag list).
error_box() {
  tab 1
  click 195 797
  local id
  id=$(wait_window Error)
  # One button, centred: no Cancel that would repeat OK.
  import -window "$id" "$out/error.png"
}
for how in ok return escape close; do
  error_box
  ok_x=$(( $(xwininfo -id "$(visible '^Error$')" | awk '/Width:/ {print $2}') / 2 ))
  answer Error "$how"
done
ok_x=

# ---- the warning box: saving the spec as a directory ----------------------
for how in ok escape close; do
  menu 4 0
  wait_window 'Save Spec' >/dev/null
  clear_field
  type_text "$work/src"
  xdotool key Return
  wait_gone 'Save Spec'
  ok_x=$(( $(xwininfo -id "$(wait_window Warning)" | awk '/Width:/ {print $2}') / 2 ))
  answer Warning "$how"
done
ok_x=

# ---- the question box: unsaved changes, then File > New > Spec ------------
# A new product name assigned makes the spec differ from its file.
tab 0
click 705 239
clear_field
type_text changed_name
click 610 194
for how in cancel escape close; do
  menu 0 0
  answer Question "$how"
done
# Yes (OK, lower left) drops the changes: the default product is back.
menu 0 0
answer Question ok
tab 0
click 705 239
shot after_yes
menu 4 0
wait_window 'Save Spec' >/dev/null
clear_field
type_text "$work/run/third.spec"
answer 'Save Spec' return
grep -q '^product my_product$' third.spec || fail "Yes did not start a new spec: $(head -n1 third.spec)"

# ---- File > Quit ends the program: every dialog let go of it --------------
quit_tamblin
echo "PASS: every dialog went down on every answer; screenshots in $out"
