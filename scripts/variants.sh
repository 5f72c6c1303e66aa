#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Compiles what the usual build leaves out, with gcc and clang and warnings as errors: the libraries without the optional
# parts (libdeflate, SQLite's headers; both, or one), and with the sources that serve other platforms. The bare ones of gcc are
# also tested.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh
scripts/dependencies.sh checks

# variant NAME COMPILER TARGETS OPTIONS...: TARGETS is a list with blanks between them.
variant() {
    local name=$1 compiler=$2 targets=$3 build=build/variants/$1-$2
    shift 3
    printf 'variants: %s with %s\n' "$name" "$compiler"
    cmake -S . -B "$build" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS=-Werror \
        -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DQUENZO_BUILD_HOST=OFF "$@" >/dev/null
    # shellcheck disable=SC2086 # a list
    cmake --build "$build" -j"$(nproc)" --target $targets >/dev/null
}

variant bare g++ "QuenzoTool tst_pngencoder tst_dblists tst_dbfailures tst_dbkept" \
    -DCMAKE_DISABLE_FIND_PACKAGE_Deflate=ON -DCMAKE_DISABLE_FIND_PACKAGE_SQLite3=ON
ctest --test-dir build/variants/bare-g++ --output-on-failure --no-tests=error -R '^(pngencoder|dblists|dbfailures|dbkept)$'
variant bare clang++ QuenzoTool -DBUILD_TESTING=OFF \
    -DCMAKE_DISABLE_FIND_PACKAGE_Deflate=ON -DCMAKE_DISABLE_FIND_PACKAGE_SQLite3=ON
variant no-deflate g++ QuenzoTool -DBUILD_TESTING=OFF -DCMAKE_DISABLE_FIND_PACKAGE_Deflate=ON
variant no-sqlite g++ QuenzoTool -DBUILD_TESTING=OFF -DCMAKE_DISABLE_FIND_PACKAGE_SQLite3=ON
variant portable g++ QuenzoTool -DBUILD_TESTING=OFF -DQUENZO_PORTABLE=ON
variant portable clang++ QuenzoTool -DBUILD_TESTING=OFF -DQUENZO_PORTABLE=ON
variant usual clang++ QuenzoTool -DBUILD_TESTING=OFF
