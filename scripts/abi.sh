#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Holds what hosts were built against: the libraries' symbols, and sizes, members, virtual functions and values of what the public
# headers declare, as abi/ lists them.
#   scripts/abi.sh [--renew]     --renew writes abi/ anew, when the interface is to change; CHANGELOG.md tells hosts then
# Reads the libraries in BUILD (build/release).
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh checks
build=${BUILD:-build/release}
renew=()
[ "${1-}" != --renew ] || renew=(--renew)
for library in QuenzoBase QuenzoTool; do
    file=("$build"/lib*/"lib$library.so")
    python2.7 -B tests/abi/check.py "${renew[@]}" "abi/lib$library.symbols" "${file[0]}" $library/include/*.h
done

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
# shellcheck disable=SC2046 # flags are words
g++ -std=c++17 -g -O0 -femit-class-debug-always -fPIC -shared -IQuenzoTool/include -IQuenzoBase/include \
    -I"$build/QuenzoTool/include" -I"$build/QuenzoBase/include" $(pkg-config --cflags Qt5Core Qt5Gui Qt5Sql) \
    tests/abi/interface.cpp -o "$place/interface.so"
abidw --no-corpus-path --no-show-locs --no-comp-dir-path --no-elf-needed --no-write-default-sizes --drop-undefined-syms \
    --type-id-style hash --out-file "$place/whole.abi" "$place/interface.so"
types=$(grep -ohE '^(class \w+_EXPORT \w+|(struct|enum) \w+ [:{])' Quenzo*/include/*.h | sed -E 's/ [:{]$//; s/.* //' | sort | paste -sd,)
python3 tests/abi/prune.py "$types" "$place/whole.abi" "$place/interface.abi"
if [ ${#renew[@]} -gt 0 ]; then
    cp "$place/interface.abi" abi/interface.abi
    echo "abi: the lists are written"
    exit 0
fi
abidiff abi/interface.abi "$place/interface.abi" ||
    { echo "abi: is that wanted? scripts/abi.sh --renew writes the lists anew; CHANGELOG.md tells hosts"; exit 1; }
echo "abi: layouts are as listed"
