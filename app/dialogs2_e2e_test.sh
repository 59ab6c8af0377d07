#!/usr/bin/env bash
# The dialogs of the real program that come up in the middle of work,
# answered like a user answers them on a private X server without a window
# manager (see dialogs_e2e_test.sh for the file, message and question
# boxes):
#   - the interrupt dialog of an Add that searches a directory: its
#     Interrupt button, Return, Escape and a window manager's Close stop
#     the search (the find child ends, nothing is added); while it is up
#     the main window takes no input, once it is down it does at once;
#   - the Add Files panel's directory chooser (the browser's popup menu):
#     Cancel, Escape and Close leave the browser where it was; OK and
#     Return move it, and an Add there adds from the directory chosen;
#   - the Create Patch dialog: Cancel, Escape and Close; Return with no
#     file chosen is refused with an error box and the dialog stays; OK
#     with a file chosen creates the patch product, which is saved.
# After each answer the dialog must be unmapped and the main window must
# take input again (a tab switch changes what it shows).
#
# usage: dialogs2_e2e_test.sh TAMBLIN SEND_WM_CLOSE OUTPUT_DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/e2e/gui_lib.sh"

src=$work/src
mkdir -p "$src/bin" "$src/etc" "$src/extra" "$src/more" "$work/run"
echo hello >"$src/bin/hello"
echo 'key=value' >"$src/etc/conf"
echo 'read me' >"$src/README"
echo new >"$src/extra/new_file"
echo other >"$src/more/other_file"
# A search that outlasts the test: each level links twice to the next, so
# find -follow meets some 2^25 paths, none of them a loop.
for ((i = 0; i < 25; i++)); do mkdir -p "$src/deep/l$i"; done
for ((i = 0; i < 24; i++)); do
  ln -s "../l$((i + 1))" "$src/deep/l$i/a"
  ln -s "../l$((i + 1))" "$src/deep/l$i/b"
done
src=$(cd "$src" && pwd -P)
cd "$work/run"
cp "$here/e2e/session.spec" .
sed -e "s/@USER@/$(id -un)/g" -e "s/@GROUP@/$(id -gn)/g" "$here/e2e/session.idb" >session.idb
export LANG=C.UTF-8 SBASE="$src" RBASE=/
start_tamblin "$prog" -nofork

# File > Open > Both through the dialogs.
menu 1 2
for kind in spec idb; do
  title="Open ${kind^}"
  wait_window "$title" >/dev/null
  clear_field
  type_text "$work/run/session.$kind"
  xdotool key Return
  wait_gone "$title"
done

# Tag Files: the browser's filter selects as one types; the Add arrow.
browser_filter() { field 200 499 "$1"; }
add_arrow() { click 205 539; }
# The lower middle of a dialog (a lone button there).
click_middle() {
  local width
  width=$(xwininfo -id "$1" | awk '/Width:/ {print $2}')
  click_in "$1" $((width / 2)) -35
}

# ---- the interrupt dialog -------------------------------------------------
searching() { pgrep -P "$prog_pid" -x find >/dev/null; }
stopped() { ! searching; }
tab 1
browser_filter '^deep/$'
for how in interrupt return escape close; do
  tab 1
  add_arrow
  id=$(wait_up Working)
  poll 10 searching || fail "no search runs under the interrupt dialog"
  if [[ $how == interrupt ]]; then
    import -window "$id" "$out/interrupt_up.png"
    # Modal while up: this click on the third tab (beside the dialog) is
    # not taken, so that the same click after the answer still has
    # something to show.
    click 325 55
  fi
  case $how in
    interrupt) click_middle "$id" ;;
    return) xdotool key Return ;;
    escape) xdotool key Escape ;;
    close) "$send_wm_close" "$id" ;;
  esac
  wait_gone Working
  poll 10 stopped || fail "$how did not stop the search"
  if [[ $how == interrupt ]]; then tab 2; shot interrupt_gone; else main_reacts; fi
done

# ---- the directory chooser: the browser's popup menu ------------------------
# The menu opens where the pointer is, its one entry just below and right.
# A click that comes before the menu has taken the pointer is lost: click
# again as long as the menu is up and the chooser is not.  Sets id.
chooser() {
  tab 1
  xdotool mousemove --sync $((X + 200)) $((Y + 400)) click 3
  poll 5 popups_at_least 1 || fail "the browser's popup menu did not open"
  xdotool mousemove --sync $((X + 260)) $((Y + 413))
  chosen() {
    [[ -n $(visible '^Browsing Directory$') ]] && return 0
    if popups_at_least 1; then xdotool click 1; fi
    return 1
  }
  poll 10 chosen || fail "the popup menu's entry did not open the chooser"
  xdotool mousemove 1270 1010
  id=$(wait_window 'Browsing Directory')
}
for how in cancel escape close; do
  chooser
  answer 'Browsing Directory' "$how"
done
# OK and Return move the browser; what is added then comes from there.
chooser
import -window "$id" "$out/chooser_up.png"
clear_field
type_text "$src/extra"
click_in "$id" 40 -30
wait_gone 'Browsing Directory'
main_reacts
shot chooser_gone
tab 1
browser_filter '^new_file$'
settle "Add of extra/new_file" add_arrow
chooser
clear_field
type_text "$src/more"
answer 'Browsing Directory' return
tab 1
browser_filter '^other_file$'
settle "Add of more/other_file" add_arrow

# Create Patch follows the spec's changes: a node added and deleted again
# makes it active.  Save > Both then keeps both files under their names.
tab 0
settle "Add under the product" click 191 221
settle "Delete of the new image" click 246 221
menu 3 2
wait_gone 'Save Spec'
poll 10 grep -q 'extra/new_file' session.idb || fail "the idb was not saved"
grep -q 'more/other_file' session.idb || fail "Return in the chooser did not move the browser"
! grep -q deep session.idb || fail "an interrupted search added files"

# ---- Create Patch ---------------------------------------------------------------
for how in cancel escape close; do
  menu 5
  answer 'Create Patch' "$how"
done
[[ ! -e tamblin_test_patch1.spec ]] || fail "a patch was saved"
menu 5
id=$(wait_window 'Create Patch')
import -window "$id" "$out/patch_up.png"
# Return is OK; with no file chosen it is refused and the dialog stays.
xdotool key Return
wait_window Error >/dev/null
xdotool key Return
wait_gone Error
[[ -n $(visible '^Create Patch$') ]] || fail "a refused OK took the dialog down"
click_in "$id" 100 47                             # the first file, README
click_in "$id" 40 -30                             # OK
wait_gone 'Create Patch'
main_reacts
tab 0
shot patch_gone
# The patch is a new spec and idb pair: Save > Both proposes their names.
menu 3 2
for title in 'Save Spec' 'Save Idb'; do
  wait_window "$title" >/dev/null
  xdotool key Return
  wait_gone "$title"
done
poll 10 test -s tamblin_test_patch1.idb || fail "the patch was not saved"
grep -q '^product tamblin_test_patch1$' tamblin_test_patch1.spec ||
  fail "no patch product: $(head -n1 tamblin_test_patch1.spec)"
grep -q ' README tamblin_test_patch1\.' tamblin_test_patch1.idb ||
  fail "the chosen file is not in the patch: $(cat tamblin_test_patch1.idb)"
cp session.idb tamblin_test_patch1.spec tamblin_test_patch1.idb "$out/"
quit_tamblin
echo "PASS: the interrupt dialog, the directory chooser and Create Patch went down on every answer; screenshots in $out"
