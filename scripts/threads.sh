#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds the test programs in which threads of the libraries meet, and runs them under the thread sanitizer.
#   scripts/threads.sh [TEST...]     other tests, by name; scripts/test.sh tsan runs all
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

tests=("$@")
if [ $# -eq 0 ]; then
    tests=(quenzobase quenzotool codec
        pythonthreads pythontoolthread pythontasks pythonexit
        directories treeremoval treemoves threadcommon outputtrees
        dblists dbworker dbkept dbbursts dbreentry dbprocess
        iconfiles iconfaults threadgenerateicon
        installapk)
fi
scripts/dependencies.sh
cmake --preset tsan >/dev/null
cmake --build --preset tsan -j"$(nproc)" --target "${tests[@]/#/tst_}" >/dev/null
ctest --preset tsan -j"$(($(nproc) + 1))" --no-tests=error -R "^($(IFS='|'; echo "${tests[*]}"))\$"
