#!/usr/bin/env bash
# One working session of the real program, driven like a user through all
# five tabs on a private X server (no window manager): name and describe
# the product, add an image and a subsystem, add files and directories from
# the source tree, tag them, set modes, owners and destinations, a two-line
# preop, config and mach attributes, delete and undo, File > Save > Both
# through the real file dialogs (typing the names), quit; then start again,
# File > Open > Both through the dialogs, save under new names, quit.  The
# files saved are compared with the expected ones kept beside this script,
# and the files saved after reopening with the first ones.
#
# Lists are driven by their filter fields and the keyboard where rows would
# need coordinates, so that a new list widget with the same names and Motif
# list behaviour keeps this script working; the panels' controls are clicked
# at their places in the window's default layout.
#
# usage: session_e2e_test.sh TAMBLIN SEND_WM_CLOSE OUTPUT_DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/e2e/gui_lib.sh"

src=$work/src
mkdir -p "$src/bin" "$src/etc" "$work/run"
echo 'hello' >"$src/bin/hello"
echo 'key=value' >"$src/etc/conf"
echo 'read me' >"$src/README"
chmod 0755 "$src/bin" "$src/etc" "$src/bin/hello"
chmod 0644 "$src/etc/conf" "$src/README"
src=$(cd "$src" && pwd -P)
cd "$work/run"
export LANG=C.UTF-8 SBASE="$src" RBASE=/
# The browser's filter selects what it matches as one types; the idb's
# filter runs on Return.
browser_filter() { field 200 499 "$1"; }
idb_filter() { field 615 760 "$1"; xdotool key Return; }

start_tamblin "$prog" -nofork

# ---- Create Product Hierarchy: the product is selected at start -----------
field 705 239 tamblin_test
field 705 282 '"Tamblin Session Test"'
settle "Assign of the product" click 610 194
settle "Add under the product" click 191 221      # a new image, selected
field 705 239 extra
field 705 282 '"Extra Files"'
field 705 325 2
settle "Assign of the image" click 610 194
settle "Add under the image" click 191 221        # a new subsystem, selected
field 705 239 tools
# Typed UTF-8 must be kept.  xdotool maps each letter missing from the
# keyboard onto a spare key for its press; two in a row can race that
# mapping and lose one, so each goes alone.
click 705 282; clear_field; type_text '"T'
for _ in 1 2; do xdotool key odiaeresis; sleep 0.3; done
type_text 'l Files"'
click 462 349                                     # Default
settle "Assign of the subsystem" click 610 194
shot tab0_hierarchy

# ---- Tag Files --------------------------------------------------------------
tab 1
# The first tag (tamblin_test.sw.base) for the README and bin/.
click 100 606
browser_filter '^(README|bin/)$'
settle "Add of README and bin/" click 205 539
# The last tag (tamblin_test.extra.tools), by keyboard in the tag list, for etc/.
click 100 606
xdotool key ctrl+End space
browser_filter '^etc/$'
settle "Add of etc/" click 205 539
# Retag the README: select it in the idb, the tag list's last tag (the
# list now starts with the idb's tags), Assign.
idb_filter README
click 100 606
xdotool key ctrl+End space
settle "Assign of a tag" click 195 797
shot tab1_tagged

# ---- Edit Permissions & Destinations ----------------------------------------
tab 2
idb_filter 'bin/hello'
field 245 370 root
field 245 409 sys
field 300 458 usr/local/bin
settle "Assign of owner and destination" click 195 541
idb_filter 'etc/conf'
field 245 331 0600
field 300 458 etc/tamblin
settle "Assign of mode and destination" click 195 541
shot tab2_perms

# ---- Add Attributes ------------------------------------------------------------
tab 3
idb_filter 'bin/hello'
click 165 352                                     # the preop command
type_text 'echo one'
xdotool key Return
type_text 'echo two'
click 430 640                                     # a page down the panel
click 32 479                                      # model Desktop 10 Lumen
shot tab3_attrs
settle "Assign of preop and mach" click 195 800
idb_filter 'tamblin/conf'                          # the line shows the destination
click 222 763                                     # Clear All Values
click 430 200                                     # back up the panel
click 26 230                                      # config
settle "Assign of config" click 195 800

# Delete everything, then undo it.
idb_filter '.'
settle "Delete Selected Items" click 557 799
settle "Undo Last Operation" click 723 799
shot tab3_undone

# ---- Build Product: only looked at ------------------------------------------------
tab 4
shot tab4_build

# ---- File > Save > Both through the dialogs, typing the names -----------------------
menu 3 2
wait_window 'Save Spec' >/dev/null
clear_field
type_text "$work/run/session.spec"
xdotool key Return
wait_gone 'Save Spec'
id=$(wait_window 'Save Idb')
clear_field
type_text "$work/run/session.idb"
click_in "$id" 40 -30                             # OK
wait_gone 'Save Idb'
poll 10 test -s session.idb || fail "no idb saved"
quit_tamblin

# ---- Again: File > Open > Both, then save under new names -----------------------------
start_tamblin "$prog" -nofork
menu 1 2
wait_window 'Open Spec' >/dev/null
clear_field
type_text "$work/run/session.spec"
xdotool key Return
wait_gone 'Open Spec'
id=$(wait_window 'Open Idb')
clear_field
type_text "$work/run/session.idb"
click_in "$id" 40 -30
wait_gone 'Open Idb'
tab 1
shot reopened
for kind in 0:spec 1:idb; do
  menu 4 "${kind%%:*}"
  title='Save Spec'
  [[ ${kind#*:} == idb ]] && title='Save Idb'
  wait_window "$title" >/dev/null
  clear_field
  type_text "$work/run/again.${kind#*:}"
  xdotool key Return
  wait_gone "$title"
done
poll 10 test -s again.idb || fail "no idb saved after reopening"
quit_tamblin

# ---- What was saved ------------------------------------------------------------------
cp session.spec session.idb again.spec again.idb "$out/"
user=$(id -un)
group=$(id -gn)
sed -e "s/@USER@/$user/g" -e "s/@GROUP@/$group/g" "$here/e2e/session.idb" >"$work/expected.idb"
diff -u "$here/e2e/session.spec" session.spec || fail "the spec saved differs from the expected one"
diff -u "$work/expected.idb" session.idb || fail "the idb saved differs from the expected one"
cmp session.spec again.spec || fail "the spec reopened and saved again differs"
cmp session.idb again.idb || fail "the idb reopened and saved again differs"
echo "PASS: one session through the five tabs, saved, reopened and saved alike; screenshots in $out"
