#!/usr/bin/env bash
# The share of test code in the repository: lines of test code against lines
# of product code, both counted over the files git tracks.
#   test code:    every file under tests/ except the data (tests/data/), the
#                 fuzz corpora (tests/fuzz/corpus/) and npm's package files
#                 (package.json, package-lock.json)
#   product code: C++, shell and CMake files under src/ and tools/
# bench/ is measurement tooling and counts on neither side; docs and examples
# neither.  Prints both counts and the ratio; with --max PERCENT exits 1 when
# the ratio is above it.
set -euo pipefail
cd "$(dirname "$0")/../.."
max=
if [ "${1:-}" = --max ]; then max=$2; fi

lines() { xargs -0 -r cat -- | wc -l; }

tests=$(git ls-files -z tests |
  grep -zv -e '^tests/data/' -e '^tests/fuzz/corpus/' -e '/package\.json$' -e '/package-lock\.json$' |
  lines)
product=$(git ls-files -z src tools |
  grep -zE -e '\.(c|cc|cpp|h|hpp|sh|cmake|in)$' -e '(^|/)CMakeLists\.txt$' |
  lines)
ratio=$(awk -v t="$tests" -v p="$product" 'BEGIN { printf "%.1f", 100 * t / p }')
echo "test code:    $tests lines"
echo "product code: $product lines"
echo "test share:   $ratio%"
if [ -n "$max" ] && awk -v r="$ratio" -v m="$max" 'BEGIN { exit !(r > m) }'; then
  echo "test-share.sh: the test share $ratio% is above $max%" >&2
  exit 1
fi
