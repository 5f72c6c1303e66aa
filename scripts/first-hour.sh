#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# A newcomer's first job, on the sample: three channels of a foreign APK, each with its icons, SDK and channel file in a
# signed and checked package in build/first-hour. Needs the release build, which scripts/quickstart.sh makes.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8
scripts/dependencies.sh android

# What a team has before it begins: a folder for each channel, a keystore, and its password in a file.
sample=$PWD/host/sample
rm -rf build/first-hour
for channel in harbor meadow nimbus; do
    mkdir -p "build/first-hour/$channel/assets"
    printf '{"channel": "%s"}\n' "$channel" >"build/first-hour/$channel/assets/channel.json"
done
PATH="$PWD/build/release/bin:$PATH"
cd build/first-hour
(umask 077 && printf 'only-for-the-sample\n' >password)
keytool -genkeypair -keystore keys -alias game -keyalg RSA -keysize 2048 -validity 10000 -dname CN=sample \
    -storepass:file password -keypass:file password 2>/dev/null
printf '[{"folder":"harbor","mark":"harbor"},{"folder":"meadow","mark":"meadow"},{"folder":"nimbus","mark":"nimbus"}]\n' \
    >channels.json

quenzo icons --layout android-res --onto "$sample/skyharbour.apk" --icon "$sample/icons/icon.png" \
    --marks "$sample/icons/marks" --out . channels.json
for channel in harbor meadow nimbus; do
    quenzo import "$sample/packages/harbourpay.zip" "$channel" --sdk-id 7
    quenzo pack "$channel" "$channel.apk" --onto "$sample/skyharbour.apk"
    quenzo sign "$channel.apk" --keystore keys --pass-file password
    quenzo check "$channel.apk"
done
