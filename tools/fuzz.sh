#!/usr/bin/env bash
# Runs one fuzz target for a while:  tools/fuzz.sh NAME SECONDS [JOBS]
# Builds the clang sanitizer build (out/asan, configured as tools/test.sh
# does) and runs NAME on its corpus in out/asan/fuzz-corpus/NAME.  With JOBS
# above 1, that many fuzzing processes share the corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
if [[ $# -lt 2 ]]; then
  echo "usage: tools/fuzz.sh NAME SECONDS [JOBS]" >&2
  exit 2
fi
name=$1 seconds=$2 jobs=${3:-1}

cmake -S . -B out/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DTAMBLIN_SANITIZE=ON -DTAMBLIN_FUZZ=ON -DTAMBLIN_WERROR=ON -DTAMBLIN_BENCH=OFF >/dev/null
cmake --build out/asan -j "${BUILD_JOBS:-2}" --target "$name"

binary=$(find out/asan -path out/asan/CMakeFiles -prune -o -type f -name "$name" -perm -u+x -print | head -1)
[[ -n $binary ]] || { echo "fuzz.sh: no fuzz target '$name'" >&2; exit 2; }
corpus=out/asan/fuzz-corpus/$name
mkdir -p "$corpus" out/asan/fuzz-artifacts
# Crashing inputs are kept as out/asan/fuzz-artifacts/crash-*.
artifacts=-artifact_prefix=$PWD/out/asan/fuzz-artifacts/
if [[ $jobs -gt 1 ]]; then
  # Worker logs (fuzz-N.log) go to out/asan.
  cd out/asan
  exec "../../$binary" -max_total_time="$seconds" -print_final_stats=1 "$artifacts" \
    -jobs="$jobs" -workers="$jobs" "fuzz-corpus/$name"
fi
exec "$binary" -max_total_time="$seconds" -print_final_stats=1 "$artifacts" "$corpus"
