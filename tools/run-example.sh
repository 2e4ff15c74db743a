#!/usr/bin/env bash
# Builds the engine and its host and solves a bundled example case.
#   tools/run-example.sh                      the IEEE 14-bus system
#   tools/run-example.sh examples/dclink/DCLINK [lfrun options]
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh
echo "building the engine and its programs in build/ (the first build takes a few minutes)"
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j "$(nproc)" --target lfrun mp2lf lfdb lfstatus lfreport
case_stem=${1:-examples/ieee14/IEEE14}
shift || true
build/lfrun "$@" "$case_stem"
