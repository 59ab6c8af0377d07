#!/usr/bin/env bash
# End to end: a spec file read only in part is not saved over silently.
# The program, on its own X server and session bus, opens a spec with a
# syntax error (through the edit request, as another program would ask);
# File > Save > Spec, typed at the keyboard, must then show the question;
# No leaves the file as it was, and Yes writes what was read.
#
# usage: save_partial_e2e.sh TAMBLIN TAMBLIN_CLI [SCREENSHOT_DIR]
set -euo pipefail
prog=$(realpath "$1")
cli=$(realpath "$2")
out=${3:-$PWD}
mkdir -p "$out"
prog_pid= bus_pid=
cleanup_pids="prog_pid bus_pid"
fail_prefix=save_partial_e2e
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"
start_xvfb

start_session_bus

original='product p id P
endimage
product q id Q endproduct'
printf '%s\n' "$original" >"$work/bad.spec"

(cd "$work" && exec "$prog" -nofork) >"$work/prog.log" 2>&1 &
prog_pid=$!
shows() { xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; }
poll 30 shows "^Tamblin$" || fail "the main window did not appear: $(cat "$work/prog.log")"
window=$(xdotool search --onlyvisible --name '^Tamblin$' | head -n1)
# The program owns its bus name once its window is up; ask until it answers.
poll 20 bash -c '[ "$("$0" edit "$1" "$2" "" "" 2>/dev/null)" = 0 ]' "$cli" "$work" "$work/bad.spec" ||
  fail "the edit request naming bad.spec was not answered with 0: $(cat "$work/prog.log")"
sleep 1
import -window root "$out/save_partial_opened.png"

# save_spec: File > Save > Spec from the keyboard (separators are skipped),
# until the question shows: on a busy machine the menu may not be up yet
# when the keys arrive, and Escape closes what a try left open.
save_spec() {
  eval "$(xdotool getwindowgeometry --shell "$window")"
  for _ in 1 2 3; do
    xdotool key Escape
    xdotool mousemove --sync $((X + WIDTH - 100)) $((Y + HEIGHT - 100)) click 1
    xdotool keydown Alt_L key f keyup Alt_L
    sleep 0.5
    xdotool key Down Down Down Right
    sleep 0.3
    xdotool key Return
    poll 5 shows '^Question$' && return 0
  done
  return 1
}

# answer LEFT|RIGHT: clicks the question's Yes (left) or No (right) button.
answer() {
  local dialog
  dialog=$(xdotool search --onlyvisible --name '^Question$' | head -n1)
  eval "$(xdotool getwindowgeometry --shell "$dialog")"
  if [[ $1 == LEFT ]]; then
    xdotool mousemove --sync $((X + 37)) $((Y + HEIGHT - 34)) click 1
  else
    xdotool mousemove --sync $((X + WIDTH - 37)) $((Y + HEIGHT - 34)) click 1
  fi
}

save_spec || fail "no question after File > Save > Spec"
import -window root "$out/save_partial_question.png"
answer RIGHT  # No
poll 10 bash -c '! xdotool search --onlyvisible --name "^Question$" >/dev/null 2>&1' ||
  fail "the question stayed up after No"
[[ $(cat "$work/bad.spec") == "$original" ]] || fail "No changed the file: $(cat "$work/bad.spec")"

save_spec || fail "no question at the second File > Save > Spec"
answer LEFT  # Yes
want='product p
    id P
endproduct'
poll 10 bash -c '[[ $(cat "$0") == "$1" ]]' "$work/bad.spec" "$want" ||
  fail "Yes did not save what was read: $(cat "$work/bad.spec")"
kill -0 "$prog_pid" 2>/dev/null || fail "the program ended: $(cat "$work/prog.log")"
echo "save_partial_e2e: the question came, No kept the file, Yes saved; screenshots in $out"
