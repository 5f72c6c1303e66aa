#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Installs what is missing (Debian 12), builds, and runs every test.
#   scripts/test.sh [PRESET]     release by default; debug, asan and tsan are the others
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

preset=${1:-release}
scripts/dependencies.sh
cmake --preset "$preset"
cmake --build --preset "$preset" -j"$(nproc)"
ctest --preset "$preset" -j"$(($(nproc) + 1))" # one more: tests wait now and then
