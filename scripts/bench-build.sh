#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Prints the tables of whole runs in docs/performance.md, in a folder of TMPDIR that has room for 2 * COUNT * 200 MB: "quenzo build"
# of COUNT (20) channels of an APK of 200 MB beside cp of as many files, RUNS (3) times in turn, and of SAMPLES ("100 300") channels of the
# sample; below each where the time of a channel goes.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench -j"$(nproc)" --target quenzo runtime_folders >/dev/null
sources=$PWD/benchmarks/packages
sample=$PWD/host/sample
export PATH="$PWD/build/bench/bin:$PATH"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
count=${COUNT:-20}

# The generated content around the sample's manifest, resources and icons, and the SDK in the form of a package.
python3 "$sources/make_base.py" game channel
rm -r game/AndroidManifest.xml game/resources.arsc game/res/mipmap-* channel/res
quenzo unpack -q "$sample/skyharbour.apk" own
cp -r own/. game
mv channel/classes5.dex channel/classes.dex
echo '<sdk id="7" name="Pay" version="1"><files><file>classes.dex</file></files></sdk>' >channel/config.xml
mkdir large small copies
quenzo pack -q game large/base.apk
quenzo pack -q channel large/sdk.zip
cp "$sample/skyharbour.apk" small/base.apk
cp "$sample/packages/harbourpay.zip" small/sdk.zip
cp -r "$sample/icons/icon.png" "$sample/icons/marks" large
cp -r "$sample/icons/icon.png" "$sample/icons/marks" small

# timed FOLDER NAME COMMAND: runs it in a folder where nothing is built, and notes its times.
timed() {
    rm -rf "$1/work" "$1/output" copies/*
    sync
    (cd "$1" && /usr/bin/time -a -o "$work/times" -f "$2 %e %U %S %M" bash -c "$3" >/dev/null)
}
copy="for ((i = 0; i < $count; ++i)); do cp base.apk ../copies/\$i.apk; done"
python3 "$sources/make_job.py" large "$count"
for _ in $(seq "${RUNS:-3}"); do
    timed large cp "$copy"
    timed large cp-sync "$copy; sync -f ../copies"
    timed large build-2 'quenzo build -q --jobs 2 job.json'
    timed large build 'quenzo build -q job.json'
done
cp large/output/report.json large.json
for number in ${SAMPLES:-100 300}; do
    python3 "$sources/make_job.py" small "$number"
    timed small "sample-$number" 'quenzo build -q job.json'
    cp small/output/report.json "sample-$number.json"
done
printf 'base of %s bytes, packages of %s\n\n' "$(stat -c %s large/base.apk)" "$(stat -c %s large/output/channel0000/channel0000.apk)"
python3 "$sources/build_tables.py" times "$count" large.json sample-*.json
