#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Hunts tests that fail now and then: runs each test program again and again and prints a table.
#   scripts/soak.sh NAME-REGEX RUNS [--load]
#   scripts/soak.sh --in-one SECONDS           all kinds of work in one process, by the clock: tests/soak
# Runs of all programs are shuffled. --load keeps every core busy beside them. The programs come from BUILD
# (build/debug), and work in TMPDIR. As root, SOAK_USER=65534 makes the runs as that plain user; each user and place
# gets a copy of the programs of its own, since tests write beside their program. RUNS may be "auto": 200 for a
# program that takes less than 0.3 s, 50 for less than 2 s, 10 otherwise, and with --load a quarter of it. Ctrl-C
# ends the hunt with the table of what has been run.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

[ $# -ge 2 ] || { sed -n '4,12s/^# \{0,1\}//p' "$0"; exit 2; }
if [ "$1" = --in-one ]; then
    QUENZO_SOAK_SECONDS=$2 exec "${BUILD:-build/debug}/tests/soak/soak/bin/tst_soak"
fi
regex=$1 runs=$2 load=${3-}
build=$(realpath "${BUILD:-build/debug}")
place=$(mktemp -d -p "${TMPDIR:-/tmp}" soak.XXXXXX)
chmod 755 "$place"
burners=()
tidy() {
    [ ${#burners[@]} -eq 0 ] || kill "${burners[@]}" 2>/dev/null || true
    [ -n "${SOAK_KEEP-}" ] || rm -rf "$place"
}
trap tidy EXIT
export TMPDIR="$place/tmp"
mkdir -m 1777 "$TMPDIR"

as_user=()
if [ -n "${SOAK_USER-}" ]; then
    as_user=(setpriv --reuid="$SOAK_USER" --regid="$SOAK_USER" --clear-groups env HOME="$TMPDIR")
fi

# Each program with its root, and the words that its test hands it.
declare -A command
while IFS=$'\t' read -r name program arguments; do
    command[$name]="$program $arguments"
    [[ $program == "$build"/* ]] || continue
    cp -r "$(dirname "$(dirname "$program")")" "$place/$name"
    command[$name]="$place/$name/bin/${program##*/} $arguments"
done < <(ctest --test-dir "$build" -N -R "$regex" -E '^consumer$' --show-only=json-v1 | python3 -c '
import json, sys
for test in json.load(sys.stdin)["tests"]:
    if "command" in test:
        print(test["name"], test["command"][0], " ".join(test["command"][1:]), sep="\t")
    else:
        print(test["name"], "is not built and left out", file=sys.stderr)')
[ ${#command[@]} -gt 0 ] || { echo "no test program is called like $regex" >&2; exit 2; }
[ -z "${SOAK_USER-}" ] || chown -R "$SOAK_USER:$SOAK_USER" "$place"

# run NAME: the exit code; the output goes to a file of the name.
run() {
    # shellcheck disable=SC2086 # a command is words
    (cd "$place" && timeout 600 "${as_user[@]}" ${command[$1]} >"$place/$1.log" 2>&1 </dev/null)
}

declare -A wanted
for name in "${!command[@]}"; do
    wanted[$name]=$runs
    [ "$runs" = auto ] || continue
    begin=$(date +%s%N)
    run "$name" || true
    took=$((($(date +%s%N) - begin) / 1000000))
    wanted[$name]=$((took < 300 ? 200 : took < 2000 ? 50 : 10))
    [ -z "$load" ] || wanted[$name]=$(((wanted[$name] + 3) / 4))
done
if [ -n "$load" ]; then
    for _ in $(seq "$(nproc)"); do
        (while :; do :; done) &
        burners+=($!)
    done
fi

declare -A ran failed reasons spent
table() {
    local total=0 name
    printf '%-20s %5s %9s %-10s %-6s %-5s %s\n' program runs 'ms a run' place user load failures
    for name in $(printf '%s\n' "${!ran[@]}" | sort); do
        printf '%-20s %5d %9d %-10s %-6s %-5s %d\n' "$name" "${ran[$name]}" $((${spent[$name]} / ${ran[$name]})) \
            "$(stat -f -c %T "$place")" "${SOAK_USER:-$(id -u)}" "${load:+yes}" "${failed[$name]-0}"
        [ -z "${reasons[$name]-}" ] || sort <<<"${reasons[$name]}" | uniq -c | sed -n '/[A-Z]/s/^/    /p'
        total=$((total + ${failed[$name]-0}))
    done
    [ "$total" = 0 ]
}
trap 'table; exit 130' INT TERM

for name in $(for name in "${!command[@]}"; do yes "$name" | head -n "${wanted[$name]}"; done | shuf); do
    begin=$(date +%s%N)
    if ! run "$name"; then
        failed[$name]=$((${failed[$name]-0} + 1))
        reasons[$name]+=$(grep -aE '^(FAIL!|QFATAL)|terminate|ERROR: ' "$place/$name.log" | cut -c1-150 || true)$'\n'
    fi
    spent[$name]=$((${spent[$name]-0} + ($(date +%s%N) - begin) / 1000000))
    ran[$name]=$((${ran[$name]-0} + 1))
done
table
