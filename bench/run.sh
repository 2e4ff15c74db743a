#!/usr/bin/env bash
# Converts MATPOWER cases, joins copies of case2383wp into large grids and
# times their calculation stage by stage, with MATPOWER's own times where
# they are known.
#
#   bench/run.sh [--repeat N] [--qlim] [--methods "1 2 3 4"] [--small] [--json FILE]
#                [--cases DIR] [CASE.m ...]
#
# Without cases it takes the MATPOWER cases of tests/data/matpower, or of
# DIR, and grids of about 9,500, 31,000 and 100,000 buses made by gridgen from 4,
# 13 and 42 copies of case2383wp (--small leaves out the two largest); the
# grids are made in build/bench-grids.  Prints one row per case and method:
# iterations, the median processor time of each stage, the staged total, the
# median whole LFCal, the median whole lfrun process and its peak resident
# memory, MATPOWER's runpf time and its ratio to LFCal.  MATPOWER's times
# come from the timing.csv beside the cases when there is one.  --json FILE
# writes the rows as JSON too.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
repeat=7
qlim=0
src=$root/tests/data/matpower
methods="1 2 3 4"
small=0
json=()
cases=()
while [ $# -gt 0 ]; do
  case "$1" in
    --repeat) repeat=$2; shift 2 ;;
    --qlim) qlim=1; shift ;;
    --methods) methods=$2; shift 2 ;;
    --small) small=1; shift ;;
    --json) json=(--json "$(realpath -m "$2")"); shift 2 ;;
    --cases) src=$(cd "$2" && pwd); shift 2 ;;
    -h|--help) sed -n '2,17p' "$0"; exit 0 ;;
    *) cases+=("$(realpath "$1")"); shift ;;
  esac
done
timing=$src/timing.csv
grids=()
if [ ${#cases[@]} -eq 0 ]; then
  for c in case9 case14 case30 case57 case118 case300 case2383wp; do
    [ -f "$src/$c.m" ] && cases+=("$src/$c.m")
  done
  [ -f "$src/case2383wp.m" ] && grids=(4 13 42)
  [ $small = 1 ] && [ ${#grids[@]} -gt 0 ] && grids=(4)
fi

build=$root/build
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2 --target lfbench mp2lf lfrun gridgen >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
variant=base
[ $qlim = 1 ] && variant=qlim
opts_for() { # method
  local o=(--method "$1" --tolerance 1e-8 --iterations 50)
  [ $qlim = 1 ] && o+=(--qlim)
  echo "${o[@]}"
}
# The grids: copies of case2383wp converted once, joined once per method.
gdir=$build/bench-grids
if [ ${#grids[@]} -gt 0 ]; then
  mkdir -p "$gdir/case2383wp"
  # shellcheck disable=SC2046
  "$build/mp2lf" "$src/case2383wp.m" "$gdir/case2383wp/LF" $(opts_for 1) --force >/dev/null
fi
dirs=()
for method in $methods; do
  for m in "${cases[@]}"; do
    name=$(basename "$m" .m)
    d=$work/m$method/$name
    mkdir -p "$d"
    # shellcheck disable=SC2046
    "$build/mp2lf" "$m" "$d/LF" $(opts_for "$method") >/dev/null
    dirs+=("$d")
  done
  for n in "${grids[@]}"; do
    d=$work/m$method/case2383wp-x$n
    mkdir -p "$d"
    "$build/gridgen" "$gdir/case2383wp/LF" "$d/LF" --copies "$n" >/dev/null
    awk -v m="$method" 'NR == 2 { $5 = m } { print }' "$d/LF.L0" >"$d/L0" && mv "$d/L0" "$d/LF.L0"
    dirs+=("$d")
  done
done
[ -f "$timing" ] && topt=(--timing "$timing") || topt=()
"$build/bench/lfbench" --repeat "$repeat" --variant "$variant" --lfrun "$build/lfrun" \
  "${topt[@]}" "${json[@]}" "${dirs[@]}"
