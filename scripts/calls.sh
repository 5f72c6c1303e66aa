#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Prints how many system calls a small file takes in a copy: ours, and those of cp -r.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench -j"$(nproc)" --target bench_trees >&2

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work"/none "$work"/many/folder{00..99}
for folder in "$work"/many/*; do
    for file in {00..99}; do echo "$file" >"$folder/file$file"; done
done

# calls WORD... SOURCE TARGET: of the whole process with its threads
calls() {
    strace -f -c -U calls,name -o "$work/counts" "$@"
    awk '$2 == "total" {print $1}' "$work/counts"
}
# per_file NAME WORD...: without the process's start and end
per_file() {
    local name=$1 with without
    shift
    with=$(calls "$@" "$work/many" "$work/$name-many")
    without=$(calls "$@" "$work/none" "$work/$name-none")
    awk -v name="$name" -v calls=$((with - without)) \
        'BEGIN {printf "%-8s %.2f system calls a file\n", name, calls / 10000}'
}
per_file quenzo build/bench/benchmarks/trees/bin/bench_trees copy
per_file cp cp -r
