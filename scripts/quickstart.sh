#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Installs what is missing (Debian 12), builds the host, and does the main job on the sample game: makes every channel's
# package, with its icons, its SDK and a description of it. Then it shows the single steps: imports an SDK package, unpacks
# the game's APK, encrypts it, packs it again, exports developer information. Everything it makes is in build/quickstart,
# afresh at each run.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh
cmake --preset release >/dev/null
cmake --build --preset release -j"$(nproc)" --target quenzo runtime_folders

out=build/quickstart
sample=host/sample
rm -rf "$out"
mkdir -p "$out"
PATH="$PWD/build/release/bin:$PATH"
export XDG_DATA_HOME="$PWD/$out/data"  # the key of this sample does not belong among the person's own

run() {
    printf '\n$ %s\n' "$*"
    "$@"
}

run quenzo --version
run quenzo init "$out/job"
run quenzo build "$out/job/job.json"
run quenzo check "$out/job/output/harbor/harbor.apk"

printf '\nThe steps one by one:\n'
run quenzo import "$sample/packages/harbourpay.zip" "$out/sdk" --sdk-id 7
run quenzo unpack "$sample/skyharbour.apk" "$out/game"
run cp "$sample/skyharbour.apk" "$out/skyharbour.apk"
run quenzo encrypt "$out/skyharbour.apk"
run quenzo unpack "$out/skyharbour.apk" "$out/encrypted"
run quenzo pack "$out/encrypted" "$out/skyharbour-packed.apk"
run quenzo export 101 "$out/develop"
run quenzo package-name "$out/skyharbour-packed.apk"

printf '\nThe results are in %s; %s shows the channels.\n' "$out" "$out/job/output/report.html"
find "$out" "$out/job/output" -maxdepth 1 -mindepth 1 | LC_ALL=C sort
printf 'The same job in a window: cmake --build --preset release --target quenzo-window && build/release/bin/quenzo-window %s\n' \
    "$out/job/job.json"
