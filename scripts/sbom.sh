#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Prints which components the packages are made of and need, as an SPDX 2.3 document in JSON, when it has been checked.
#   scripts/sbom.sh [BUILD]     build/release unless named
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

build=${1:-build/release}
version=$(sed -n 's/^project(QuenzoTool VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
: "${SOURCE_DATE_EPOCH:=$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CHANGELOG.md)}"
export SOURCE_DATE_EPOCH
mapfile -t files < <(find "$build" -type f \( -name 'libQuenzo*.so.*' -o -path '*/bin/quenzo' -o -path '*/bin/quenzo-window' \) \
    -not -path '*/tests/*' | sort)
[ ${#files[@]} -ge 2 ] || { printf 'sbom: %s holds no built libraries\n' "$build" >&2; exit 1; }
document=$(python3 scripts/sbom.py "$version" "${files[@]}")
python3 tests/packages/checksbom.py - "${files[@]}" <<<"$document" >&2
printf '%s\n' "$document"
