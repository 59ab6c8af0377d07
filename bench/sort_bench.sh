#!/usr/bin/env bash
# Times `tamblin-cli sort` against `LC_ALL=C sort -t' ' -k5,5 -s` on the same
# synthetic idb and checks that both write the same bytes.
#   bench/sort_bench.sh [LINES] [SEED] [RUNS]      (defaults 1000000 1 3)
# Builds a release tree in out/bench; the data goes to a scratch directory.
# Each program runs RUNS times on a warm page cache; the best wall time of
# each is compared, and peak memory (maximum resident set) is reported
# against the file's size.
set -euo pipefail
cd "$(dirname "$0")/.."
lines=${1:-1000000} seed=${2:-1} runs=${3:-3}

cmake -S . -B out/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DTAMBLIN_UI=OFF >/dev/null
cmake --build out/bench -j "${BUILD_JOBS:-2}" --target idbgen tamblin-cli >/dev/null
cli=$PWD/out/bench/cli/tamblin-cli

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
out/bench/bench/idbgen "$seed" "$lines" >"$work/in.idb"
size=$(stat -c %s "$work/in.idb")
cat "$work/in.idb" >/dev/null

# best WALL-SECONDS and its MAX-RSS-KB over the runs of a command
measure() {
  local best="" rss=""
  for ((i = 0; i < runs; i++)); do
    /usr/bin/time -f "%e %M" -o "$work/time" "$@"
    read -r wall kb <"$work/time"
    if [[ -z $best ]] || awk -v a="$wall" -v b="$best" 'BEGIN { exit !(a < b) }'; then
      best=$wall rss=$kb
    fi
  done
  echo "$best $rss"
}

read -r gnu_s gnu_kb < <(measure env LC_ALL=C sort -t' ' -k5,5 -s "$work/in.idb" -o "$work/gnu.idb")
read -r our_s our_kb < <(measure "$cli" sort "$work/in.idb" -o "$work/ours.idb")

if cmp -s "$work/gnu.idb" "$work/ours.idb"; then same=yes; else same=NO; fi
awk -v n="$lines" -v size="$size" -v gs="$gnu_s" -v gk="$gnu_kb" -v os="$our_s" -v ok="$our_kb" \
    -v same="$same" -v cores="$(nproc)" -v load="$(cut -d' ' -f1 /proc/loadavg)" 'BEGIN {
  printf "idb: %d lines, %.1f MB (%d cores, load %s)\n", n, size / 1e6, cores, load
  printf "GNU sort:        %6.2f s  peak %6.1f MB\n", gs, gk * 1024 / 1e6
  printf "tamblin-cli sort:%6.2f s  peak %6.1f MB\n", os, ok * 1024 / 1e6
  printf "time ratio (tamblin/GNU): %.2f  (target <= 0.50)\n", (gs > 0 ? os / gs : 0)
  printf "peak memory / file size:  %.2f  (target < 2.00)\n", ok * 1024 / size
  printf "outputs byte-identical:   %s\n", same
}'
[[ $same == yes ]]
