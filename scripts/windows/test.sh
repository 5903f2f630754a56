#!/bin/bash
# Builds the tests as Windows programs and runs them under Wine, on a machine that is made for the run. Prints what the
# programs print, and what is not judged with the reason (not-judged.txt).
#
#   scripts/windows/test.sh [PROGRAM...]    all of them, or those that are named
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here/../.."

KITWRIGHT_WINDOWS_PREFIX=$(scripts/windows/dependencies.sh)
export KITWRIGHT_WINDOWS_PREFIX
cmake --preset windows > /dev/null
build=build-windows-x64
cmake --build --preset windows --target kitwright_unit_tests > "$build/tests-build.txt" || {
  tail -n 50 "$build/tests-build.txt"
  exit 1
}
# took WHAT: says how long it took since the last was said.
said_at=0
took() {
  echo "== $1 took $((SECONDS - said_at)) s"
  said_at=$SECONDS
}
took "building the tests"
programs=("$@")
if [[ ${#programs[@]} -eq 0 ]]; then
  while read -r program; do programs+=("$program"); done < <(cd "$build/tests" && printf '%s\n' *_test.exe)
fi

source "$here/wine-session.sh"
start_wine
manage_windows
# Some tests write beside their program.
cp -r "$build/tests" "$wine_home/tests"
give_to_user "$wine_home/tests"
cd "$wine_home/tests"
status=0

# names PROGRAM: the tests of it that Wine cannot judge, with ":" between them; prints them with their reasons.
not_judged() {
  local program=$1 name test reason filter=
  local count=0 lines=
  while IFS=$'\t' read -r name test reason; do
    [[ $name == "$program" ]] || continue
    filter+=":$test"
    lines+="[  SKIPPED ] $test: $reason"$'\n'
    count=$((count + 1))
  done < <(grep -v '^#' "$here/not-judged.txt" | sed 's/  */\t/; s/  */\t/')
  if ((count > 0)); then printf '[  SKIPPED ] %d tests, listed below:\n%s' "$count" "$lines" >&2; fi
  echo "-${filter#:}"
}

for program in "${programs[@]}"; do
  name=${program%.exe}
  echo "== $name"
  filter=$(not_judged "$name" 2> "$wine_home/skipped.txt")
  cat "$wine_home/skipped.txt"
  run_wine 180 "./$name.exe" --gtest_brief=1 --gtest_color=no --gtest_filter="$filter" 2>&1 | tr -d '\r' || {
    echo "$name ended with a failure"
    status=1
  }
done
took "running them"
if [[ $# -eq 0 ]]; then
  echo "== script runs"
  "$here/run-scripts.sh" || status=1
  took "all of the script runs"
fi
exit "$status"
