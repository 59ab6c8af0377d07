#!/usr/bin/env bash
# Runs one fuzz target for a while:  tools/fuzz.sh NAME SECONDS [JOBS]
# Builds the clang sanitizer build (out/asan, configured as tools/test.sh
# does) and runs NAME from its seeds (fuzz/NAME beside its source, read
# only) and its corpus in out/asan/fuzz-corpus/NAME, with the limits per
# input that ctest uses.  With JOBS above 1, that many fuzzing processes
# share the corpus.  A finding is kept as out/asan/fuzz-artifacts/*; once it
# is fixed, copy it into the seed folder, where ctest runs it every time.
set -euo pipefail
cd "$(dirname "$0")/.."
if [[ $# -lt 2 ]]; then
  echo "usage: tools/fuzz.sh NAME SECONDS [JOBS]" >&2
  exit 2
fi
name=$1 seconds=$2 jobs=${3:-1}
limits=(-timeout=2 -rss_limit_mb=512)
# AddressSanitizer's quarantine of freed memory would count against the
# memory limit, which is meant for the target's own (as under ctest).
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=64}

cmake -S . -B out/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DTAMBLIN_SANITIZE=ON -DTAMBLIN_FUZZ=ON -DTAMBLIN_WERROR=ON -DTAMBLIN_BENCH=OFF >/dev/null
cmake --build out/asan -j "${BUILD_JOBS:-2}" --target "$name"

binary=$(find out/asan -path out/asan/CMakeFiles -prune -o -type f -name "$name" -perm -u+x -print | head -1)
[[ -n $binary ]] || { echo "fuzz.sh: no fuzz target '$name'" >&2; exit 2; }
seeds=$(find . -path ./out -prune -o -type d -path "*/fuzz/$name" -print | head -1)
[[ -n $seeds ]] || { echo "fuzz.sh: no seed folder fuzz/$name" >&2; exit 2; }
dict=()
# The words of the format, when the target's source has them beside it.
source=$(grep -rl --exclude-dir=out --include=CMakeLists.txt "tamblin_fuzzer($name " . | head -1)
if [[ -n $source ]]; then
  base=$(sed -n "s/.*tamblin_fuzzer($name \([^ )]*\)\.c++.*/\1/p" "$source")
  if [[ -f $(dirname "$source")/$base.dict ]]; then
    dict=(-dict="$PWD/$(dirname "$source")/$base.dict")
  fi
fi
corpus=out/asan/fuzz-corpus/$name
mkdir -p "$corpus" out/asan/fuzz-artifacts
artifacts=-artifact_prefix=$PWD/out/asan/fuzz-artifacts/
if [[ $jobs -gt 1 ]]; then
  # Worker logs (fuzz-N.log) go to out/asan.
  cd out/asan
  exec "../../$binary" "${limits[@]}" "${dict[@]}" -max_total_time="$seconds" -print_final_stats=1 "$artifacts" \
    -jobs="$jobs" -workers="$jobs" "fuzz-corpus/$name" "../../$seeds"
fi
exec "$binary" "${limits[@]}" "${dict[@]}" -max_total_time="$seconds" -print_final_stats=1 \
  "$artifacts" "$corpus" "$seeds"
