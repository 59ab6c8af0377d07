#!/usr/bin/env bash
# Builds Tamblin and runs it.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/setup.sh
cmake -S . -B out/run -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build out/run -j "$(nproc)" --target tamblin-cli
exec out/run/cli/tamblin-cli --help
