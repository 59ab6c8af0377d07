#!/usr/bin/env bash
# Times `tamblin-cli format` on generated specs of 10,000 and 100,000
# subsystems and reports wall time and peak memory.  Not a test: run it by
# hand after building (default build folder out/test).
#   bench/spec_format.sh [BUILD_DIR]
set -euo pipefail
build=${1:-out/test}
cli=$build/cli/tamblin-cli
gen=$build/bench/spec_gen
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for n in 10000 100000; do
  "$gen" "$n" > "$work/s$n.spec"
  size=$(stat -c %s "$work/s$n.spec")
  for run in 1 2 3; do
    /usr/bin/time -f "%e %M" -o "$work/time" "$cli" format "$work/s$n.spec" -o "$work/out$n.spec" \
      2>/dev/null
    read -r secs kb < "$work/time"
    echo "subsystems=$n bytes=$size run=$run seconds=$secs peak_rss_kb=$kb"
  done
  # The generated text is already in written form: it must come back unchanged.
  cmp -s "$work/s$n.spec" "$work/out$n.spec" || { echo "output differs for $n" >&2; exit 1; }
done
