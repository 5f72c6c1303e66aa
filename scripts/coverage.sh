#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds the library with its own tests for gcov, runs each test program by itself, and prints which lines and branches of the
# library they reach, and which not. Fails where a test does, or below 97 % of the lines or 90 % of the branches.
#   scripts/coverage.sh [TEST-REGEX]     with an expression only these tests are run, and no figure is too low
# What each program reaches stays in build/coverage/reached.json, which scripts/mutate.py reads.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh
cmake --preset coverage
cmake --build --preset coverage -j"${JOBS:-$(nproc)}"
exec python3 scripts/coverage.py build/coverage "$@"
