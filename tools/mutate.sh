#!/usr/bin/env bash
# Mutation run: how many one-line faults in the engine does the test suite
# catch?  Each fault of the list (tools/mutations.txt) is applied alone to a
# scratch copy of the repository, the copy is rebuilt incrementally and the
# suite runs against it; a failing suite catches the fault.  The repository
# itself is never changed.
#
#   tools/mutate.sh [--root DIR] [--list FILE] [--only REGEX] [--work DIR]
#                   [--timeout SECONDS] [--check]
#
#   --root DIR       the checkout to mutate (default the one holding this script)
#   --list FILE      the faults (default tools/mutations.txt of the checkout)
#   --only REGEX     only the faults whose file or line matches REGEX
#   --work DIR       scratch copy and build (default $TMPDIR/lfmutate.$UID);
#                    kept between runs, so that a second run rebuilds little
#   --timeout SEC    limit of each test program (default 120; a hang counts as
#                    caught)
#   --check          only tell which faults no longer find their line
#
# A fault whose line no longer stands in its file, or stands there more than
# once, is reported and left out of the score; so is one that does not build.
# The run ends with the score and the faults that survived.  It takes long
# (a build and a suite run for each fault): start it niced in the background.
set -uo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
list=
only=
work=${TMPDIR:-/tmp}/lfmutate.$(id -u)
per_prog=120
check=
while [ $# -gt 0 ]; do
  case $1 in
    --root) root=$(cd "$2" && pwd); shift 2 ;;
    --list) list=$2; shift 2 ;;
    --only) only=$2; shift 2 ;;
    --work) work=$2; shift 2 ;;
    --timeout) per_prog=$2; shift 2 ;;
    --check) check=1; shift ;;
    -h | --help) sed -n '2,23p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "mutate.sh: unknown argument '$1' (see --help)" >&2; exit 2 ;;
  esac
done
list=${list:-$root/tools/mutations.txt}
[ -r "$list" ] || { echo "mutate.sh: cannot read $list" >&2; exit 2; }
mkdir -p "$work"

# The list: "@ file", "- line as it stands", "+ line with the fault"; '#'
# starts a comment line.  Prints one record a line, fields split by \x1f,
# the last field the record's line number in the list.
records() {
  awk '
    /^[ \t]*(#|$)/ { next }
    /^@ / { file = substr($0, 3); next }
    /^- / { old = substr($0, 3); next }
    /^\+ / { printf "%s\x1f%s\x1f%s\x1f%d\n", file, old, substr($0, 3), NR; next }
    { printf "bad\x1f\x1f\x1f%d\n", NR }
  ' "$list"
}

# Writes $work/mutant: FILE with each line equal to OLD (indent and trailing
# blanks aside) replaced by NEW at the same indent.  Prints how many lines
# matched.
apply() {
  OLD=$2 NEW=$3 awk '
    BEGIN { old = ENVIRON["OLD"]; new = ENVIRON["NEW"]; sub(/^[ \t]+/, "", old); sub(/[ \t]+$/, "", old) }
    {
      t = $0; sub(/^[ \t]+/, "", t); sub(/[ \t\r]+$/, "", t)
      if (t == old) { n++; match($0, /^[ \t]*/); print substr($0, 1, RLENGTH) new }
      else print
    }
    END { print n + 0 > "/dev/stderr" }
  ' "$1" 2>"$work/count" >"$work/mutant"
  cat "$work/count"
}

selected() {  # file line
  [ -z "$only" ] || printf '%s\n%s\n' "$1" "$2" | grep -Eq -- "$only"
}

if [ -n "$check" ]; then
  bad=0 total=0
  while IFS=$'\x1f' read -r file old new line; do
    [ "$file" = bad ] && { echo "$list:$line: not a record line" >&2; bad=$((bad + 1)); continue; }
    selected "$file" "$old" || continue
    total=$((total + 1))
    n=0
    [ -f "$root/$file" ] && n=$(apply "$root/$file" "$old" "$new")
    [ "$n" = 1 ] || { echo "$file (list line $line): found $n times: $old"; bad=$((bad + 1)); }
  done < <(records)
  echo "mutate.sh: $total faults, $bad to update"
  [ "$bad" = 0 ]
  exit
fi

tree=$work/tree
build=$work/build
log=$work/log
mkdir -p "$tree" "$build" "$log"

# The scratch copy follows the repository's tracked and new files, links
# copied as the files they point to (a relative link would dangle in the
# copy).  Only files whose content differs are written, so unchanged files
# keep their times and the build stays incremental.
sync_tree() {
  local stage=$work/stage
  rm -rf "$stage" && mkdir -p "$stage"
  (cd "$root" && git ls-files -co --exclude-standard -z) >"$work/files"
  tar -C "$root" --null -T "$work/files" -chf - | tar -C "$stage" -xf -
  (cd "$stage" && find . -type f) | while IFS= read -r f; do
    if ! cmp -s "$stage/$f" "$tree/$f"; then
      mkdir -p "$(dirname "$tree/$f")" && cp "$stage/$f" "$tree/$f"
    fi
  done
  (cd "$tree" && find . -type f) | while IFS= read -r f; do
    [ -e "$stage/$f" ] || rm -f "$tree/$f"
  done
  rm -rf "$stage"
}

build_all() {
  nice -n 10 cmake --build "$build" -j2 </dev/null >"$log/build.txt" 2>&1
}

# The suite: every test program once, two at a time, those of the folder
# named first (the fault's) and the whole-case validation before the rest,
# stopping at the first program that fails; a program that runs past its
# limit fails.  The failing programs are named in $log/failed.
run_suite() {  # [folder]
  local progs=() p
  for p in "$build/tests/test_${1:-}" "$build/tests/test_validation" "$build"/tests/test_*; do
    [ -x "$p" ] && [[ " ${progs[*]} " != *" $p "* ]] && progs+=("$p")
  done
  rm -f "$log/failed"
  printf '%s\0' "${progs[@]}" | nice -n 10 xargs -0 -P2 -n1 sh -c '
    timeout "$1" "$3" --gtest_brief=1 </dev/null >"$2/${3##*/}.txt" 2>&1 ||
      { echo "${3##*/}" >>"$2/failed"; exit 255; }' sh "$per_prog" "$log" 2>/dev/null
}

echo "mutate.sh: scratch copy and build in $work"
sync_tree
gen=()
command -v ninja >/dev/null && gen=(-G Ninja)
[ -f "$build/CMakeCache.txt" ] && gen=()
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
# Assertions stay on, as in the sanitizer build of CI, so that an index past
# the end of an array fails the test that makes it; a fault that makes the
# compiler warn must still build.
opts=(-DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O2 -DLF_BUILD_BENCH=OFF)
werror=$(grep -ho 'option(LF_[A-Z_]*WERROR[A-Z_]*' "$root/CMakeLists.txt" | head -1 | cut -c8-)
[ -n "$werror" ] && opts+=("-D$werror=OFF")
cmake -S "$tree" -B "$build" "${gen[@]}" "${launcher[@]}" "${opts[@]}" >"$log/configure.txt" 2>&1 ||
  { echo "mutate.sh: configuring failed, see $log/configure.txt" >&2; exit 1; }
build_all || { echo "mutate.sh: the unchanged engine does not build, see $log/build.txt" >&2; exit 1; }
start=$SECONDS
run_suite || { echo "mutate.sh: $(cat "$log/failed") fails without any fault, see $log" >&2; exit 1; }
echo "mutate.sh: the unchanged suite passes in $((SECONDS - start)) s"

caught=0 survived=0 skipped=0 total=0
survivors=() unmatched=()
while IFS=$'\x1f' read -r file old new line; do
  if [ "$file" = bad ]; then
    echo "mutate.sh: $list:$line is not a record line ('@ file', '- line', '+ line')" >&2
    exit 2
  fi
  selected "$file" "$old" || continue
  total=$((total + 1))
  what="$file (list line $line): $old  =>  $new"
  target=$tree/$file
  n=0
  [ -f "$target" ] && n=$(apply "$target" "$old" "$new")
  if [ "$n" != 1 ]; then
    skipped=$((skipped + 1))
    unmatched+=("$what")
    printf '%-9s %s\n' "FOUND $n" "$what"
    continue
  fi
  cp "$target" "$work/original"
  cp "$work/mutant" "$target"
  t0=$SECONDS
  by=
  if ! build_all; then
    verdict="NOT BUILT"
    skipped=$((skipped + 1))
    cp "$log/build.txt" "$log/notbuilt-$line.txt"
  elif folder=${file#src/} && run_suite "${folder%%/*}"; then
    verdict=SURVIVED
    survived=$((survived + 1))
    survivors+=("$what")
  else
    verdict=CAUGHT
    caught=$((caught + 1))
    by=$(head -1 "$log/failed" 2>/dev/null)
  fi
  # Back to the original, with a new time so that the next build compiles it.
  cp "$work/original" "$target"
  printf '%-9s %s  (%d s)%s\n' "$verdict" "$what" $((SECONDS - t0)) "${by:+ by $by}"
done < <(records)
build_all

scored=$((caught + survived))
echo
echo "faults listed: $total; applied and built: $scored; left out: $skipped"
[ "$scored" -gt 0 ] && echo "score: $caught of $scored caught ($((100 * caught / scored))%)"
if [ ${#survivors[@]} -gt 0 ]; then
  echo "survivors:"
  printf '  %s\n' "${survivors[@]}"
fi
if [ ${#unmatched[@]} -gt 0 ]; then
  echo "lines no longer found (update the list):"
  printf '  %s\n' "${unmatched[@]}"
fi
