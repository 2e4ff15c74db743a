#!/usr/bin/env bash
# Installs the Debian packages that the build needs and that are missing.
set -euo pipefail
# libfltk1.3-dev: the on-screen progress window; xvfb, xauth and xdotool: its
# tests, on a virtual X server.
pkgs=(cmake g++ make libgtest-dev libgmock-dev libbenchmark-dev libsqlite3-dev
      libfltk1.3-dev xvfb xauth xdotool)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  apt-get update -qq
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"
fi
