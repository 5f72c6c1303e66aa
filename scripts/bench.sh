#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds the benchmarks and prints one table: each row's medians side by side, and ours in relation to its peers.
#   scripts/bench.sh [--repetitions N] [NAME...]     NAME: scripts, records, ... (all of them by default)
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

repetitions=5
if [ "${1:-}" = --repetitions ]; then
    repetitions=$2
    shift 2
fi
scripts/dependencies.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench -j"$(nproc)" >&2

names=("$@")
[ ${#names[@]} -gt 0 ] || mapfile -t names < <(cd build/bench/benchmarks && for d in */bin; do echo "${d%/bin}"; done)
results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT
for name in "${names[@]}"; do
    program=build/bench/benchmarks/$name/bin/bench_$name
    [ -x "$program" ] || { echo "bench: there is no benchmark '$name'" >&2; exit 2; }
    echo "bench: $name" >&2
    "$program" --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true --benchmark_out_format=json \
        --benchmark_out="$results/$name.json" >/dev/null
done
python3 scripts/bench_table.py "$results"/*.json
