#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Runs the library's own test programs under valgrind's memcheck, one after the other, and prints a table.
#   scripts/memcheck.sh [NAME-REGEX]     every test of the library by default
# The programs come from BUILD (build/debug). What is not ours is left out by name in tests/sanitizers/memcheck.supp, with the reason.
# A finding is a use of memory that is not there, or of a value that nobody has set; leaks are the address sanitizer's matter.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

command -v valgrind >/dev/null || { echo "memcheck: valgrind is not installed" >&2; exit 2; }
build=$(realpath "${BUILD:-build/debug}")
reports=$build/memcheck
mkdir -p "$reports"
options=(--tool=memcheck --error-exitcode=99 --leak-check=no --num-callers=40 --fair-sched=yes --vgdb=no
    --suppressions="$PWD/tests/sanitizers/memcheck.supp")
status=0
printf '%-20s %9s %9s %s\n' program seconds findings test
while IFS=$'\t' read -r name program arguments; do
    report=$reports/$name.log
    begin=$SECONDS
    result=passes
    # shellcheck disable=SC2086 # a command is words
    (cd "$reports" && valgrind "${options[@]}" --log-file="$report" "$program" $arguments >"$report.out" 2>&1 </dev/null) || result=fails
    findings=$(sed -n 's/.*ERROR SUMMARY: \([0-9,]*\) errors from.*/\1/p' "$report" | tail -1)
    printf '%-20s %9d %9s %s\n' "$name" $((SECONDS - begin)) "${findings:-none}" "$result"
    [ "$result" = passes ] || status=1
done < <(ctest --test-dir "$build" -N -R "${1:-.}" --show-only=json-v1 | python3 -c '
import json, sys
rooms = ["/tests/%s/" % room for room in ("tool", "trees", "records", "icons", "scripts", "devices")]
for test in json.load(sys.stdin)["tests"]:
    command = test.get("command", [""])
    if any(room in command[0] for room in rooms):
        print(test["name"], command[0], " ".join(command[1:]), sep="\t")')
exit $status
