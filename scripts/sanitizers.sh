#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds the presets asan and tsan once each, runs the whole suite under both side by side, and prints how long each step took.
#   scripts/sanitizers.sh [PRESET...]     asan and tsan unless named
# What the tests printed is in build/PRESET/tests.log.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh
presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(asan tsan)
cores=$(nproc)
share=$(((cores + ${#presets[@]} - 1) / ${#presets[@]}))
took=()

for preset in "${presets[@]}"; do
    begin=$SECONDS
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j"$cores" >"build/$preset/build.log" 2>&1 ||
        { grep -E 'error|\*\*\*' "build/$preset/build.log" >&2; exit 1; }
    took+=("build of $preset: $((SECONDS - begin)) s")
    printf 'sanitizers: %s\n' "${took[-1]}"
done

# One suite a share of the cores: neither waits for the longest test of the other.
children=()
for preset in "${presets[@]}"; do
    (begin=$SECONDS
    ctest --preset "$preset" -j"$share" >"build/$preset/tests.log" 2>&1 && result=passed || result=failed
    printf 'suite under %s: %d s, %s\n' "$preset" $((SECONDS - begin)) "$result" >"build/$preset/took"
    [ $result = passed ]) &
    children+=($!)
done
failed=0
for child in "${children[@]}"; do
    wait "$child" || failed=1
done
for preset in "${presets[@]}"; do
    took+=("$(cat "build/$preset/took")")
    ! grep -q 'tests failed out of' "build/$preset/tests.log" || sed -n '/tests passed\|tests failed\|Failed\|Timeout\|WARNING: ThreadSanitizer\|ERROR: AddressSanitizer/p' "build/$preset/tests.log"
    printf 'sanitizers: the longest under %s\n' "$preset"
    sed -nE 's/.*Test +#[0-9]+: (\S+) .* ([0-9.]+) sec.*/\2 s  \1/p' "build/$preset/tests.log" | sort -rn | head -5
done
printf 'sanitizers: %s\n' "${took[@]}"
exit $failed
