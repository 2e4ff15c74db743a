#!/usr/bin/env bash
# Solves the IEEE 118-bus example, writes its result page with lfreport and
# checks the page in headless Chromium.  Exits 77 (skipped) where Node.js,
# Chromium or the test's packages (tools/install-deps.sh installs them) are
# missing.
#   tests/browser/run.sh BUILD_DIR
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
chromium=${CHROMIUM:-/usr/bin/chromium}
if ! command -v node >/dev/null || [ ! -x "$chromium" ] || [ ! -d "$here/node_modules/puppeteer-core" ]; then
  echo "skipped: needs node, $chromium and tests/browser/node_modules (tools/install-deps.sh)"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$here/../../examples/ieee118/"IEEE118.* "$work/"
"$build/lfrun" --quiet "$work/IEEE118" >/dev/null
"$build/lfreport" "$work/IEEE118" --html "$work/page.html"
cd "$here" && node check_page.mjs "$work/page.html"
