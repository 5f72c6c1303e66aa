#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Attacks the program as tests/attack does, with many rounds of each race, and prints a table of the races.
#   scripts/attack.sh [ROUNDS [THEME...]]
# ROUNDS is 20 unless given; the themes are all of tests/attack. QUENZO is the program to attack
# (build/debug/bin/quenzo); BEFORE, if given, another one that meets the same rounds first, for comparison. As root also
# the races that need it are run. What failed is in the files that are named at the end.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

rounds=${1:-20}
shift $(($# > 0))
themes=("$@")
if [ ${#themes[@]} -eq 0 ]; then
    for script in tests/attack/test_*.py; do
        name=${script##*/test_}
        themes+=("${name%.py}")
    done
fi
place=$(mktemp -d)
failed=0

# attack NAME PROGRAM [VARIABLE...]: the program's table is NAME, and what failed is in NAME-THEME.
attack() {
    local theme
    touch "$place/$1"
    for theme in "${themes[@]}"; do
        env "${@:3}" QUENZO="$2" QUENZO_ATTACK_ROUNDS=$rounds QUENZO_ATTACK_TABLE="$place/$1" \
            python2.7 -B "tests/attack/test_$theme.py" >"$place/$1-$theme" 2>&1 && rm "$place/$1-$theme" || failed=1
    done
}

[ -z "${BEFORE-}" ] || attack before "$(realpath "$BEFORE")" QUENZO_ATTACK_EARLIER=1
failed=0
attack now "$(realpath "${QUENZO:-build/debug/bin/quenzo}")"
touch "$place/before"
awk -F'\t' -v OFS=' | ' '
    BEGIN { print "race", "rounds", "failed before", "failed now" }
    FILENAME ~ /before$/ { before[$1 ": " $2] = $4; next }
    { race = $1 ": " $2; print race, $3, race in before ? before[race] : "-", $4 }
' "$place/before" "$place/now"
rm -f "$place/before" "$place/now"
rmdir "$place" 2>/dev/null || printf 'what failed: %s\n' "$place"/*
exit $failed
