#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Checks the format of every C++ file, and with clang-tidy every source of the libraries and the host.
# Uses the release build, which scripts/test.sh makes.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh checks
git ls-files -z -- '*.h' '*.cpp' | xargs -0 clang-format --dry-run --Werror
echo "check: format is clean"
git ls-files -z -- 'QuenzoBase/*_linux.cpp' 'QuenzoBase/**/quenzo*.cpp' 'QuenzoTool/*.cpp' 'host/*.cpp' |
    grep -zv '_other\.cpp$' | xargs -0 -n1 -P"$(nproc)" clang-tidy --quiet -p build/release
echo "check: clang-tidy is clean"
