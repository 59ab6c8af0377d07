# Sourced by the end-to-end scripts that drive Tamblin like a user; each
# takes the arguments TAMBLIN SEND_WM_CLOSE OUTPUT_DIR, which this reads
# (prog, send_wm_close, out), and gets a private X server started through
# tools/xvfb_session.sh ($work, poll, ...; the program's process, prog_pid,
# is ended on exit).  There is no window manager: windows open at the top
# left, a dialog takes the keyboard itself, and a window manager's Close is
# sent as the real client message (send_wm_close).
#   here                       the directory of these scripts (app/)
#   start_tamblin PROG [ARGS]  starts it in the current directory; sets
#                              prog_pid, main (window id), and X, Y
#   menu ENTRY [SUBENTRY]      File menu through the keyboard, entries counted
#                              from 0 (New 0, Open 1, Append 2, Save 3,
#                              SaveAs 4, Create Patch 5 when active; -1 the
#                              last, Quit; Spec 0, Idb 1, Both 2)
#   wait_up TITLE              the id of the visible window of that title,
#                              once it has the keyboard
#   wait_window TITLE          the same, once it is drawn and stays so
#   wait_gone TITLE            until no window of that title is visible
#   click DX DY                a click at that offset in the main window
#   click_in WINDOW DX DY      the same in another window; negative offsets
#                              count from its right or bottom edge
#   type_text TEXT             types into the focused field
#   shot NAME                  screenshot of the main window to $out/NAME.png
#   differ A B                 the two screenshots differ
#   look WINDOW                a checksum of what the window shows now
#   tab N                      chooses tab N (0 to 4) and waits until the
#                              window shows a change
#   main_reacts                the same with a tab other than the current
#   main_settled               until the main window stops changing
#   answer TITLE HOW           answers that dialog (ok, cancel: a click on the
#                              lower left or right button; return, escape,
#                              close) and checks that it goes down and the
#                              main window reacts
#   settle WHAT CMD...         runs CMD; the main window must then change
#   field DX DY TEXT           replaces the text of the field clicked there
#   quit_tamblin               File > Quit, and the program must end with 0
# The X server is up once this has been sourced.
prog=$1
send_wm_close=$2
out=$3
mkdir -p "$out"
prog_pid=
cleanup_pids="prog_pid"
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
window_sum=$(dirname "$send_wm_close")/window_sum
source "$here/../tools/xvfb_session.sh"

# What the screen showed when a check failed goes beside the screenshots.
fail() {
  import -window root "$out/failure.png" 2>/dev/null || true
  echo "${fail_prefix:-FAIL}: $* (the screen: $out/failure.png)" >&2
  exit 1
}
# Viewable windows without a name at least 20 pixels wide: Motif's menus.
popups() {
  local w n=0
  for w in $(xwininfo -root -children | awk '$1 ~ /^0x/ && /has no name/ {print $1}'); do
    xwininfo -id "$w" | awk '/IsViewable/ {v = 1} /Width:/ {w = $2} END {exit !(v && w > 20)}' &&
      n=$((n + 1))
  done
  echo "$n"
}
popups_at_least() { (( $(popups) >= $1 )); }

start_tamblin() {
  "$@" >>"$work/stdout" 2>>"$work/stderr" &
  prog_pid=$!
  main=
  shown() {
    kill -0 "$prog_pid" 2>/dev/null || fail "the program ended; stderr: $(cat "$work/stderr")"
    main=$(visible '^Tamblin$')
    [[ -n $main ]]
  }
  poll 30 shown || fail "no main window; stderr: $(cat "$work/stderr")"
  eval "$(xdotool getwindowgeometry --shell "$main")"
  drawn() { import -window "$main" "$out/drawn.png" 2>/dev/null &&
            (( $(identify -format '%k' "$out/drawn.png") > 20 )); }
  poll 20 drawn || fail "the main window was not drawn"
}

visible() { xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n1; }
# A dialog takes the keyboard once it has seen itself mapped; keys sent
# before then would go to the window underneath.
wait_up() {
  local id=
  found() { id=$(visible "^$1\$"); [[ -n $id ]]; }
  poll 15 found "$1" || fail "no window '$1'"
  focused() { [[ $(xdotool getwindowfocus 2>/dev/null) == "$id" ]]; }
  poll 10 focused || fail "window '$1' did not take the keyboard"
  echo "$id"
}
wait_window() {
  local id
  id=$(wait_up "$1")
  # Drawn and settled: two looks a moment apart show the same.
  settles "$id" || fail "window '$1' did not settle"
  echo "$id"
}
# settles WINDOW: until three looks in a row, a fifth of a second in all,
# show the same.
settles() {
  local before now n=0
  before=$(look "$1")
  same() {
    now=$(look "$1")
    if [[ -n $now && $now == "$before" ]]; then n=$((n + 1)); else n=0; before=$now; fi
    (( n >= 2 ))
  }
  poll 20 same "$1"
}
# main_settled: the main window has stopped changing (a long operation
# drawing its outcome is over).
main_settled() {
  settles "$main" || fail "the main window did not settle"
}
wait_gone() {
  gone() { [[ -z $(visible "^$1\$") ]]; }
  poll 10 gone "$1" || fail "window '$1' is still up"
}

click() { xdotool mousemove --sync $((X + $1)) $((Y + $2)) click 1; }
click_in() {
  local WIDTH HEIGHT X Y WINDOW SCREEN
  eval "$(xdotool getwindowgeometry --shell "$1")"
  local dx=$2 dy=$3
  (( dx < 0 )) && dx=$((WIDTH + dx))
  (( dy < 0 )) && dy=$((HEIGHT + dy))
  xdotool mousemove --sync $((X + dx)) $((Y + dy)) click 1
}
# xdotool types a letter missing from the keyboard map by remapping a spare
# key for it; two different such letters in quick succession may reach the
# program before it has seen the second remapping, so keep to one.
type_text() { xdotool type --delay 12 -- "$1"; }
# clear_field: empties the field that has the focus (up to 120 characters).
clear_field() { xdotool key End; xdotool key --repeat 120 --delay 1 BackSpace; }

menu() {
  # A click on the empty middle of the menu bar gives the window the
  # keyboard without doing anything else.
  click 400 15
  xdotool keydown Alt_L key f keyup Alt_L
  poll 5 popups_at_least 1 || fail "the File menu did not open"
  local i
  # Up from the first entry reaches the last (Quit); Down skips inactive
  # entries such as Create Patch.
  if (( $1 < 0 )); then xdotool key Up; fi
  for ((i = 0; i < $1; i++)); do xdotool key Down; done
  if [[ $# -gt 1 ]]; then
    xdotool key Right
    poll 5 popups_at_least 2 || fail "the submenu of entry $1 did not open"
    for ((i = 0; i < $2; i++)); do xdotool key Down; done
  fi
  xdotool key Return
  # Out of the way of the dialog that may open where the pointer is: keys
  # go to the window under the pointer when it lies inside the focus window.
  xdotool mousemove 1270 1010
}

shot() { import -window "$main" "$out/$1.png" 2>/dev/null; }
look() { "$window_sum" "$1" 2>/dev/null || true; }
# changes_after WINDOW CMD...: runs CMD; true once the window shows
# something else than before.
changes_after() {
  local window=$1 before
  shift
  before=$(look "$window")
  "$@"
  changed() { [[ $(look "$window") != "$before" ]]; }
  poll 10 changed
}
differ() {
  local n
  n=$(compare -metric AE "$out/$1.png" "$out/$2.png" null: 2>&1 || true)
  [[ "$n" =~ ^[0-9]+$ ]] && (( n > 0 ))
}

# The tabs are 130 pixels wide, under the menu bar.
current_tab=0
tab() {
  (( $1 == current_tab )) && return 0
  changes_after "$main" click $((65 + 130 * $1)) 55 || fail "the window did not react to tab $1"
  current_tab=$1
}
# main_reacts: the main window takes input again: another tab shows.  It
# settles first, so that redrawing what a dialog covered is not taken for
# the switch.
main_reacts() {
  settles "$main" || fail "the main window did not settle"
  if (( current_tab == 0 )); then tab 1; else tab 0; fi
}

# OK is the lower left button (ok_x pixels in, for a centred one), Cancel
# the lower right.
answer() {
  local id
  id=$(wait_window "$1")
  case $2 in
    ok) click_in "$id" "${ok_x:-40}" -30 ;;
    cancel) click_in "$id" -45 -30 ;;
    return) xdotool key Return ;;
    escape) xdotool key Escape ;;
    close) "$send_wm_close" "$id" ;;
    *) fail "no answer '$2'" ;;
  esac
  wait_gone "$1"
  main_reacts
}

settle() {
  local what=$1
  shift
  changes_after "$main" "$@" || fail "nothing changed after: $what"
}
field() { click "$1" "$2"; clear_field; type_text "$3"; }

quit_tamblin() {
  menu -1
  ended() { ! kill -0 "$prog_pid" 2>/dev/null; }
  poll 10 ended || fail "File > Quit did not end the program"
  wait "$prog_pid" || fail "exit status $?; stderr: $(tail -c 3000 "$work/stderr")"
  prog_pid=
}

start_xvfb
