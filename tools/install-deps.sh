#!/usr/bin/env bash
# Installs the Debian packages that the build needs and that are missing.
#   tools/install-deps.sh          the build, the tests and the benchmarks
#   tools/install-deps.sh --fuzz   also clang and its fuzzing runtime (tools/fuzz.sh)
set -euo pipefail
pkgs=(cmake g++ make libgtest-dev libgmock-dev libbenchmark-dev libsqlite3-dev)
if [ "${1:-}" = "--fuzz" ]; then
  pkgs+=(clang libclang-rt-14-dev)
fi
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  apt-get update -qq
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"
fi
