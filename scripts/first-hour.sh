#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# A newcomer's first job, on the sample: its six channels, each with its icons, SDK and channel file in a signed and
# checked package in build/first-hour. Needs the release build, which scripts/quickstart.sh makes.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8
scripts/dependencies.sh android

PATH="$PWD/build/release/bin:$PATH"
rm -rf build/first-hour
quenzo init build/first-hour
cd build/first-hour

# What a team has before it begins: a keystore, and its password in a file.
(umask 077 && printf 'only-for-the-sample\n' >password)
keytool -genkeypair -keystore keys -alias game -keyalg RSA -keysize 2048 -validity 10000 -dname CN=sample \
    -storepass:file password -keypass:file password 2>/dev/null

# The job begins with a brace on a line of its own; the signing goes behind it, as an editor would put it.
sed -i '1a\  "signing": {"keystore": "keys", "alias": "game", "password": {"file": "password"}},' job.json
quenzo build job.json
for package in output/*/*.apk; do
    quenzo check "$package"
done
