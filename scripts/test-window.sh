#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Runs tests of the window on a real platform, with a screen of its own; scripts/test.sh runs all of them without a screen.
# Only those are among them that pass on a screen where nothing manages windows.
#   scripts/test-window.sh [PRESET]     release by default, as scripts/test.sh has built it
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

preset=${1:-release}
scripts/dependencies.sh window
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j"$(nproc)" >/dev/null
failed=0
for name in mainwindow jobfiles logpage windowforall buildpage treespage devicesadb devicespage recordspage closing journey; do
    QT_QPA_PLATFORM=xcb xvfb-run -a -s '-screen 0 2400x1600x24' timeout 300 \
        "build/$preset/tests/window/$name/bin/tst_$name" -silent >build/test-window.log 2>&1 && continue
    cat build/test-window.log
    failed=1
done
[ "$failed" = 0 ] && echo 'test-window: all passed'
