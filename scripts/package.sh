#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds the Debian packages libquenzotool1, libquenzotool-dev and quenzo, and checks them with lintian.
#   scripts/package.sh [OUT]     the folder for them, build/packages unless named; it is made anew
# The same sources give the same files, bytes and all: their time is that of the last commit, or SOURCE_DATE_EPOCH.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8
umask 022

scripts/dependencies.sh package
out=$(realpath -m "${1:-build/packages}")
[ ! -e "$out" ] || [ -z "$(find "$out" -mindepth 1 -maxdepth 1 ! -name '*.deb' ! -name dependencies.sh)" ] ||
    { printf 'package: %s holds other files than packages\n' "$out" >&2; exit 1; }
if [ -z "${SOURCE_DATE_EPOCH-}" ]; then
    SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CHANGELOG.md)
fi
export SOURCE_DATE_EPOCH
build=${BUILD:-build/package}

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DBUILD_TESTING=OFF \
    -DCMAKE_INSTALL_LIBDIR="lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)" -DQUENZO_HOST_ROOT=lib/quenzo \
    -DCMAKE_BUILD_RPATH_USE_ORIGIN=ON >/dev/null
cmake --build "$build" -j"$(nproc)"
scripts/sbom.sh "$build" >"$build/debian/quenzotool.spdx.json"
rm -rf "$out"
mkdir -p "$out"
(cd "$build" && cpack -G DEB -B "$out/work" >"$out/cpack.log" 2>&1) || { cat "$out/cpack.log" >&2; exit 1; }
mv "$out"/work/*.deb "$out"
rm -rf "$out/work" "$out/cpack.log"
cp scripts/dependencies.sh "$out"
# What is shipped is hardened, whatever has been built with.
unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
for package in "$out"/*.deb; do
    dpkg-deb -x "$package" "$unpacked"
done
binaries=()
while IFS= read -r file; do
    if readelf -h "$file" >/dev/null 2>&1; then binaries+=("$file"); fi
done < <(find "$unpacked" -type f)
python2.7 -B tests/hardening/check.py "${binaries[@]}"
lintian --fail-on error --allow-root --tag-display-limit 0 "$out"/*.deb
printf 'package: in %s:\n' "$out"
(cd "$out" && sha256sum -- *.deb)
