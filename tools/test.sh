#!/usr/bin/env bash
# Builds Tamblin twice and runs every test in both builds:
#   out/test  g++, warnings as errors
#   out/asan  clang with AddressSanitizer + UndefinedBehaviorSanitizer, plus
#             short runs of the fuzz targets
set -euo pipefail
cd "$(dirname "$0")/.."
tools/setup.sh

jobs=${JOBS:-$(nproc)}

echo "== normal build (out/test)"
cmake -S . -B out/test -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTAMBLIN_WERROR=ON -DTAMBLIN_UI=ON -DTAMBLIN_SANITIZE=OFF -DTAMBLIN_FUZZ=OFF >/dev/null
cmake --build out/test -j "$jobs"
(cd out/test && ctest --output-on-failure -j "$jobs")

echo "== sanitizer build (out/asan)"
cmake -S . -B out/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DTAMBLIN_SANITIZE=ON -DTAMBLIN_FUZZ=ON -DTAMBLIN_WERROR=ON -DTAMBLIN_UI=ON -DTAMBLIN_BENCH=OFF >/dev/null
cmake --build out/asan -j "$jobs"
(cd out/asan && ctest --output-on-failure -j "$jobs")
