#!/usr/bin/env bash
# Times `tamblin-cli format` on small hostile specs that once ran for
# minutes or grew to gigabytes (environment values that double themselves,
# many references, a file that includes itself, a 50 MB binary include, a
# 50 MB include of control characters only, a description of 120,000 words
# and a subsystem of 20,000 rules, which once joined by copying), beside a valid generated spec
# of 10,000 subsystems as the reference measured in the same run.  Reports
# wall time and peak memory.  Not a test: run it by hand after building
# (default build folder out/test).
#   bench/spec_hostile.sh [BUILD_DIR]
set -euo pipefail
build=${1:-out/test}
cli=$(realpath "$build/cli/tamblin-cli")
gen=$build/bench/spec_gen
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$gen" 10000 > "$work/reference.spec"
{
  echo 'setenv A=$A$A'
  echo 'product p id P image i id I version 1'
  for i in $(seq 30); do echo "subsys s$i id \$A endsubsys"; done
  echo 'endimage endproduct'
} > "$work/doubling.spec"
{
  echo 'setenv B=$B$B$B$B$B$B$B$B'
  echo 'product p id P image i id I version 1'
  for i in $(seq 25); do echo "subsys s$i id \$B\$B\$B\$B\$B\$B endsubsys"; done
  echo 'endimage endproduct'
} > "$work/references.spec"
printf 'setenv C=$C$C\nproduct p id $C endproduct\ninclude self.spec\ninclude self.spec\n' \
  > "$work/self.spec"
head -c $((50 << 20)) /dev/urandom > "$work/random.dat"
printf 'include random.dat\nproduct p id P endproduct\n' > "$work/random.spec"
head -c $((50 << 20)) /dev/zero | tr '\0' '\1' > "$work/control.dat"
printf 'include control.dat\nproduct p id P endproduct\n' > "$work/control.spec"

{
  printf 'product p id'
  for i in $(seq 120000); do printf ' w%d' "$i"; done
  printf '\nimage i id I version 1\nsubsys s id S\n'
  for i in $(seq 20000); do printf 'follows x%d 1 2\n' "$i"; done
  printf 'endsubsys endimage endproduct\n'
} > "$work/words.spec"

cd "$work"
for spec in reference doubling references self random control words; do
  # Hostile inputs exit 1 after their messages; only time and memory count.
  /usr/bin/time -f "%e %M" -o time "$cli" format "$spec.spec" > out 2> err || true
  read -r secs kb < <(tail -n 1 time)
  echo "spec=$spec bytes=$(stat -c %s "$spec.spec") stderr_lines=$(wc -l < err)" \
       "seconds=$secs peak_rss_kb=$kb"
done
