#!/usr/bin/env bash
# Installs the Debian packages that the build needs and that are missing;
# with --tests also what the tests need, with --fuzz clang and its fuzzing
# runtime (tools/fuzz.sh).
#   tools/install-deps.sh [--tests | --fuzz]
set -euo pipefail
# libfltk1.3-dev: the on-screen progress window.
pkgs=(cmake g++ make libgtest-dev libgmock-dev libbenchmark-dev libsqlite3-dev libfltk1.3-dev)
tests=0
if [ "${1:-}" = "--tests" ]; then
  tests=1
  # xvfb, xauth and xdotool: the window's tests on a virtual X server;
  # chromium (and npm for its driver): the test of lfreport's page;
  # sqlite3: the bad-input table damages databases with it.
  pkgs+=(xvfb xauth xdotool chromium sqlite3)
  command -v npm >/dev/null || pkgs+=(npm)
fi
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

# The page test drives Chromium with puppeteer-core, installed from the
# lock file into tests/browser/node_modules.
browser=$(cd "$(dirname "$0")/../tests/browser" && pwd)
if [ $tests = 1 ] && [ ! -d "$browser/node_modules/puppeteer-core" ]; then
  echo "installing the browser test's npm packages into $browser/node_modules"
  (cd "$browser" && npm ci --no-audit --no-fund --loglevel=error)
fi
