# Sourced by the tamblin-cli test scripts, with the program as their first
# argument: sets cli (its absolute path) and work (a scratch folder, the
# current directory, removed at exit), counts failures with fail, and
# finish NAME ends the script with a line on success and status 1 on any
# failure.
cli=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 2
failures=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
finish() {
  (( failures == 0 )) && echo "$1: all passed"
  exit $((failures > 0))
}
