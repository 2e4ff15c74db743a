#!/usr/bin/env bash
# Converts MATPOWER cases and times their calculation with each Newton-type
# method, stage by stage, against MATPOWER's own times.
#
#   bench/run.sh [--repeat N] [--qlim] [--cases DIR] [CASE.m ...]
#
# Without cases it takes the cases of tests/data/matpower, or of DIR (which
# may hold a timing.csv of MATPOWER's own times).  Prints one table row per case and
# method: iterations, the median processor time of each stage, the staged
# total, the median whole LFCal, the median whole lfrun process, MATPOWER's
# runpf time and the ratio of that to LFCal.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
repeat=7
qlim=0
src=$root/tests/data/matpower
cases=()
while [ $# -gt 0 ]; do
  case "$1" in
    --repeat) repeat=$2; shift 2 ;;
    --qlim) qlim=1; shift ;;
    --cases) src=$(cd "$2" && pwd); shift 2 ;;
    -h|--help) sed -n '2,12p' "$0"; exit 0 ;;
    *) cases+=("$1"); shift ;;
  esac
done
timing=$src/timing.csv
if [ ${#cases[@]} -eq 0 ]; then
  for c in case9 case14 case30 case57 case118 case300 case2383wp; do
    [ -f "$src/$c.m" ] && cases+=("$src/$c.m")
  done
fi

build=$root/build
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2 --target lfbench mp2lf lfrun >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
variant=base
[ $qlim = 1 ] && variant=qlim
dirs=()
for method in 1 2 3 4; do
  for m in "${cases[@]}"; do
    name=$(basename "$m" .m)
    d=$work/m$method/$name
    mkdir -p "$d"
    opts=(--method "$method" --tolerance 1e-8 --iterations 50)
    [ $qlim = 1 ] && opts+=(--qlim)
    "$build/mp2lf" "$m" "$d/LF" "${opts[@]}" >/dev/null
    dirs+=("$d")
  done
done
[ -f "$timing" ] && topt=(--timing "$timing") || topt=()
"$build/bench/lfbench" --repeat "$repeat" --variant "$variant" --lfrun "$build/lfrun" "${topt[@]}" "${dirs[@]}"
