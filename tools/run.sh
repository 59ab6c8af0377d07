#!/usr/bin/env bash
# Builds Tamblin and runs it in the foreground ("-nofork").
#
# Without a DISPLAY it starts a private Xvfb, runs the program there, saves a
# screenshot of the main window as out/run/tamblin.png, ends the program and
# says where the picture is.  Extra arguments go to the program.  The Build
# tab runs the forgeset of the same build tree.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/setup.sh
cmake -S . -B out/run -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTAMBLIN_BENCH=OFF >/dev/null
cmake --build out/run -j 2 --target tamblin tamblin-cli forgeset
prog=out/run/app/tamblin
# Build All and Test Build run the forgeset just built, not /usr/sbin/forgeset.
set -- -xrm "*buildProgram: $PWD/out/run/forgeset/forgeset" "$@"

if [[ -n "${DISPLAY:-}" ]]; then
  exec "$prog" -nofork "$@"
fi

shot=$PWD/out/run/tamblin.png
prog_pid=
cleanup_pids="prog_pid"
fail_prefix=run
source tools/xvfb_session.sh
start_xvfb

"$prog" -nofork "$@" &
prog_pid=$!
window=$(find_window 30 '^Tamblin$') || {
  echo "run: the main window did not appear" >&2
  exit 1
}
# The window is up once its picture has more than a handful of colours
# (text and tab images drawn).
for _ in $(seq 100); do
  colours=0
  if import -window "$window" "$shot" 2>/dev/null; then
    colours=$(identify -format '%k' "$shot")
  fi
  (( colours > 20 )) && break
  sleep 0.1
done
(( colours > 20 )) || { echo "run: could not take a screenshot of the main window" >&2; exit 1; }
echo "run: screenshot of the main window: $shot"
