#!/usr/bin/env bash
# Builds the fuzz targets with clang's libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer (folder build-fuzz) and runs each on its corpus
# of tests/fuzz/corpus/<target>.  The corpus in the repository is only read;
# new inputs go to build-fuzz/corpus/<target>, anything found to
# build-fuzz/findings/.  Exits non-zero on the first finding.
#   tools/fuzz.sh                      every target for 25 seconds (CI)
#   tools/fuzz.sh --seconds N [T ...]  every (or each named) target for N seconds
#   tools/fuzz.sh --runs N [T ...]     every (or each named) target for N executions
set -euo pipefail
cd "$(dirname "$0")/.."
limit=(-max_total_time=25)
case "${1:-}" in
  --seconds) limit=(-max_total_time="$2"); shift 2 ;;
  --runs) limit=(-runs="$2"); shift 2 ;;
esac
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(freeread casefamily dat l13 matpower rtdb)
bash tools/install-deps.sh --fuzz
cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
  -DCMAKE_CXX_COMPILER=clang++ -DLF_FUZZ=ON -DLF_BUILD_TESTS=OFF -DLF_BUILD_BENCH=OFF
cmake --build build-fuzz -j "$(nproc)" --target "${targets[@]/#/fuzz_}"
mkdir -p build-fuzz/findings
for t in "${targets[@]}"; do
  mkdir -p "build-fuzz/corpus/$t"
  echo "== fuzz_$t"
  log="build-fuzz/fuzz_$t.log"
  status=0
  "build-fuzz/tests/fuzz/fuzz_$t" "${limit[@]}" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="build-fuzz/findings/$t-" "build-fuzz/corpus/$t" "tests/fuzz/corpus/$t" \
    >"$log" 2>&1 || status=$?
  grep -E "^(Done|stat::number_of_executed_units)" "$log" || true
  if [ "$status" -ne 0 ]; then
    tail -n 60 "$log"
    exit "$status"
  fi
done
