#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Draws the window's pages in both languages and palettes, on a screen of its own, and puts those into docs/pictures that the
# documents show. Look at each of them: nobody else does.
#   scripts/screenshots.sh [PRESET]     release by default; all pictures are left in build/pictures
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

preset=${1:-release}
scripts/dependencies.sh window
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j"$(nproc)" --target quenzo-window-pictures
rm -rf build/pictures
QT_QPA_PLATFORM=xcb QT_LOGGING_RULES='*.debug=false' \
    xvfb-run -a -s '-screen 0 1280x800x24' "build/$preset/bin/quenzo-window-pictures" build/pictures
mkdir -p docs/pictures
for picture in start-en channels-en report-en channels-zh_CN-dark; do
    cp "build/pictures/$picture.png" docs/pictures
done
find docs/pictures -size +160k -exec printf 'screenshots: larger than a document should load: %s\n' {} \; -exec false {} +
