#!/usr/bin/env bash
# Checks that the folders of src/ include each other one way only: derives
# the folder graph from the #include lines and sorts it topologically;
# tsort reports any cycle.  Prints the folders from the bottom layer up.
set -euo pipefail
src=${1:-"$(dirname "$0")/../../src"}
edges=$(cd "$src" && grep -rHo --include='*.cpp' --include='*.hpp' --include='*.h' \
          '^#include "[a-z_]*/' . |
        sed -E 's@^\./([a-z_]+)/[^:]*:#include "([a-z_]+)/$@\2 \1@' |
        awk '$1 != $2' | sort -u)
if ! order=$(printf '%s\n' "$edges" | tsort 2>&1); then
  echo "$order" >&2
  exit 1
fi
if grep -q 'input contains a loop' <<<"$order"; then
  echo "the include graph of src/ has a cycle:" >&2
  echo "$order" >&2
  exit 1
fi
echo "$order"
