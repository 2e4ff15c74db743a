#!/usr/bin/env bash
# Builds the engine with warnings as errors and runs the whole test suite
# through CTest.
#   tools/test.sh             default build in build/
#   tools/test.sh --sanitize  AddressSanitizer + UndefinedBehaviorSanitizer build in build-asan/
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh --tests
dir=build
opts=(-DCMAKE_BUILD_TYPE=Release -DLF_WERROR=ON)
if [ "${1:-}" = "--sanitize" ]; then
  dir=build-asan
  opts=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DLF_SANITIZE=ON -DLF_BUILD_BENCH=OFF -DLF_WERROR=ON)
fi
cmake -S . -B "$dir" "${opts[@]}"
cmake --build "$dir" -j "$(nproc)"
ctest --test-dir "$dir" --output-on-failure -j "$(nproc)"
