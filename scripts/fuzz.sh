#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Fuzzes the readers of what strangers hand over, and prints a table.
#   scripts/fuzz.sh SECONDS [TARGET...]     the targets, all by default, share the seconds; SEED chooses their random numbers
# TARGET is a tests/fuzz/fuzz_TARGET.cpp, or one of tests/fuzz/scripts.py. Each begins with its corpus, tests/fuzz/corpus/TARGET,
# and with what earlier runs have found, build/fuzz/found/TARGET. An input that breaks a promise is kept in
# build/fuzz/findings, named at the end, and the script fails; copied to the corpus, it is a test.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

[ $# -ge 1 ] || { sed -n '4,9s/^# \{0,1\}//p' "$0"; exit 2; }
seconds=$1
shift
targets=("$@")
if [ $# -eq 0 ]; then
    targets=($(sed -n 's/^quenzo_fuzz_target(\([a-z]*\).*/\1/p' tests/fuzz/CMakeLists.txt) apkeditor channellist jobfile jsonrow
        script_archive script_config)
fi
scripts/dependencies.sh
scripts/dependencies.sh checks

build=build/fuzz
cmake -S . -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=None -DQUENZO_BUILD_HOST=OFF -DQUENZO_BUILD_FUZZERS=ON \
    -DCMAKE_CXX_FLAGS="-O1 -g1 -fno-omit-frame-pointer -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined" \
    >/dev/null
programs=($(printf 'tst_fuzz_%s\n' "${targets[@]}" | grep -v script_ || true))
[ ${#programs[@]} -eq 0 ] || cmake --build "$build" -j"$(nproc)" --target "${programs[@]}" >/dev/null

mkdir -p "$build/findings"
[ -n "${TMPDIR-}" ] || [ ! -w /dev/shm ] || export TMPDIR=/dev/shm
export LSAN_OPTIONS=suppressions=$PWD/tests/sanitizers/lsan.supp:print_suppressions=0
share=$(((seconds + ${#targets[@]} - 1) / ${#targets[@]}))

# fuzz TARGET: false when an input broke a promise. Leaks are looked for at the end: between inputs that takes most of the time.
fuzz() {
    local corpus=tests/fuzz/corpus/$1 found=$build/found/$1
    mkdir -p "$found"
    if [[ $1 == script_* ]]; then
        python2.7 -B tests/fuzz/scripts.py "$1" "$share" "$build"
        return
    fi
    local options=(-seed="${SEED:-0}" -max_total_time="$share" -timeout=60 -print_funcs=0 -detect_leaks=0 -artifact_prefix="$build/findings/$1-")
    [ ! -f "tests/fuzz/$1.dict" ] || options+=(-dict="tests/fuzz/$1.dict")
    "$build/tests/fuzz/$1/bin/tst_fuzz_$1" "${options[@]}" "$found" "$corpus"
}

failed=()
printf '%-15s %12s %8s %9s %8s %s\n' target executions edges features corpus findings
for target in "${targets[@]}"; do
    log=$build/$target.log
    findings=0
    fuzz "$target" >"$log" 2>&1 || { findings=1; failed+=("$target"); }
    read -r executions edges features corpus < <(sed -n \
        's/^#\([0-9]*\).*cov: \([0-9]*\) ft: \([0-9]*\) corp: \([0-9]*\)\/.*/\1 \2 \3 \4/p' "$log" | tail -1) || true
    printf '%-15s %12s %8s %9s %8s %s\n' "$target" "${executions-}" "${edges-}" "${features-}" "${corpus-}" "$findings"
done
[ ${#failed[@]} -eq 0 ] && exit
for target in "${failed[@]}"; do
    printf '\nfuzz: %s, whose whole output is %s:\n' "$target" "$build/$target.log"
    grep -aE "broken: |ERROR: |runtime error|Error: |$build/findings" "$build/$target.log" | head -5 || true
done
exit 1
