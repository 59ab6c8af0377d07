#!/usr/bin/env bash
# Installs the build into scratch roots (DESTDIR) with the prefixes /usr and
# /usr/local and checks what lands where, as a packager and a user would:
#   1. the programs, manual pages, desktop entry, icons and session-bus
#      activation file are in place; the app-defaults file is where libXt
#      reads it (/etc/X11/app-defaults for /usr) or under the prefix, and
#      nowhere else;
#   2. every installed manual page renders without a warning (groff -ww,
#      man -l);
#   3. the desktop entry passes desktop-file-validate and its icon exists;
#   4. the installed program, started on its own X server, draws with its
#      installed app-defaults file: a site's change to it (the message
#      area's colour) shows on the screen, with either prefix.
# Screenshots go to the output directory.
#
# usage: install_test.sh BUILD_DIR OUTPUT_DIR
set -euo pipefail
build=$1
out=$2
mkdir -p "$out"
prog_pid=
cleanup_pids="prog_pid"
source "$(dirname "${BASH_SOURCE[0]}")/../tools/xvfb_session.sh"

# Not the user's search path: the program must find its file by itself.
unset XFILESEARCHPATH XAPPLRESDIR XUSERFILESEARCHPATH XENVIRONMENT

declare -A root=([/usr]=$work/root-usr [/usr/local]=$work/root-local)
declare -A appdefaults=([/usr]=/etc/X11/app-defaults/Tamblin
                        [/usr/local]=/usr/local/share/X11/app-defaults/Tamblin)
for prefix in /usr /usr/local; do
  DESTDIR=${root[$prefix]} cmake --install "$build" --prefix "$prefix" >"$work/install.log" 2>&1 ||
    fail "install with prefix $prefix: $(cat "$work/install.log")"
done

for prefix in /usr /usr/local; do
  r=${root[$prefix]}
  for f in bin/tamblin bin/tamblin-cli share/man/man1/tamblin.1 share/man/man1/tamblin-cli.1 \
      share/applications/tamblin.desktop share/icons/hicolor/scalable/apps/tamblin.svg \
      share/icons/hicolor/48x48/apps/tamblin.png share/dbus-1/services/com.orvex.Tamblin.service; do
    [[ -f $r$prefix/$f ]] || fail "prefix $prefix: $prefix/$f not installed"
  done
  [[ -x $r$prefix/bin/tamblin && -x $r$prefix/bin/tamblin-cli ]] || fail "prefix $prefix: programs"
  # One app-defaults file, where it is read; nothing outside the prefix
  # but that file.
  found=$(cd "$r" && find . -path '*app-defaults*' -type f | sed 's|^\.||')
  [[ $found == "${appdefaults[$prefix]}" ]] || fail "prefix $prefix: app-defaults at '$found'"
  stray=$(cd "$r" && find . -type f | sed 's|^\.||' | grep -v "^$prefix/" |
          grep -vx "${appdefaults[$prefix]}" || true)
  [[ -z $stray ]] || fail "prefix $prefix: installed outside the prefix: $stray"
  exec_line=$(grep '^Exec=' "$r$prefix/share/dbus-1/services/com.orvex.Tamblin.service")
  [[ $exec_line == "Exec=$prefix/bin/tamblin -nofork" ]] || fail "prefix $prefix: service $exec_line"

  # Manual pages: no warning from groff or man.
  for page in "$r$prefix"/share/man/man*/*; do
    msgs=$(groff -ww -man -z "$page" 2>&1) && [[ -z $msgs ]] || fail "groff -ww $page: $msgs"
    msgs=$(MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null) && [[ -z $msgs ]] ||
      fail "man -l $page: $msgs"
  done
  MANWIDTH=80 man -l "$r$prefix/share/man/man1/tamblin.1" 2>/dev/null | grep -q 'tamblin-cli(1)' ||
    fail "tamblin(1) does not point to tamblin-cli(1)"

  desktop=$r$prefix/share/applications/tamblin.desktop
  msgs=$(desktop-file-validate "$desktop" 2>&1) && [[ -z $msgs ]] || fail "desktop-file-validate: $msgs"
  icon=$(sed -n 's/^Icon=//p' "$desktop")
  [[ -f $r$prefix/share/icons/hicolor/48x48/apps/$icon.png ]] || fail "no icon for Icon=$icon"
  [[ $(identify -format '%wx%h' "$r$prefix/share/icons/hicolor/48x48/apps/$icon.png") == 48x48 ]] ||
    fail "the 48x48 icon is not 48x48"
done

# shows_window PID: the process shows its "Tamblin" window.  One search at
# a time: a search with --sync gives up on the X error of a window that goes
# away while it looks (the previous program's).
shows_window() {
  xdotool search --onlyvisible --pid "$1" --name '^Tamblin$' >/dev/null 2>&1
}
# share NAME COLOUR: share of the screenshot's pixels in that colour.
share() {
  convert "$out/$1.png" -fill black +opaque "$2" -fill white -opaque "$2" \
    -colorspace gray -format '%[fx:mean]' info:
}
# shows NAME COLOUR: a fresh screenshot holds a visible area in COLOUR.
shows() {
  import -window root "$out/$1.png" 2>/dev/null &&
    awk -v s="$(share "$1" "$2")" 'BEGIN { exit !(s > 0.01) }'
}
# run_installed NAME PROGRAM COLOUR: starts PROGRAM, waits until its window
# shows COLOUR (the message area), ends it.
run_installed() {
  local name=$1 prog=$2 colour=$3
  "$prog" -nofork >"$work/$name.out" 2>"$work/$name.err" &
  prog_pid=$!
  poll 30 shows_window "$prog_pid" || fail "$name: no main window; stderr: $(cat "$work/$name.err")"
  poll 20 shows "$name" "$colour" ||
    fail "$name: no message area in $colour (yellow share $(share "$name" yellow))"
  kill "$prog_pid"
  wait "$prog_pid" 2>/dev/null || true
  prog_pid=
}

start_xvfb
changed='#2e8b57'
local_prog=${root[/usr/local]}/usr/local/bin/tamblin
run_installed stock "$local_prog" yellow
[[ $(share stock "$changed") == 0 ]] || fail "the stock file already shows $changed"
for prefix in /usr/local /usr; do
  echo "*readOnlyBackground: $changed" >>"${root[$prefix]}${appdefaults[$prefix]}"
done
run_installed changed-local "$local_prog" "$changed"
run_installed changed-usr "${root[/usr]}/usr/bin/tamblin" "$changed"
echo "install: all passed"
