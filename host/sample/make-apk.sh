#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Makes the sample game's APK from game/:  make-apk.sh [OUTPUT]  (skyharbour.apk beside this file when not given)
#
# Needs aapt, a C compiler for x86_64 and Python 2.7, which scripts/dependencies.sh installs. aapt wants to be told
# the platform's attributes; framework/ names the few that the manifest uses, so no Android kit is needed.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
output=$(realpath -m "${1:-$here/skyharbour.apk}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
[ "$(uname -m)" = x86_64 ] || { printf 'make-apk: the native part is built on x86_64 only\n' >&2; exit 1; }

cd "$here"
aapt package -f -x -M framework/AndroidManifest.xml -S framework/res -F "$work/framework.apk"
aapt package -f --no-crunch -M game/AndroidManifest.xml -S game/res -A game/assets -I "$work/framework.apk" \
    -F "$work/plain.apk"

mkdir -p "$work/add/lib/x86_64"
cc -shared -nostdlib -fPIC -O2 -fvisibility=hidden -fno-asynchronous-unwind-tables -s \
    -Wl,-soname,libskyharbour.so -Wl,--build-id=none -Wl,--hash-style=both -Wl,-z,max-page-size=16384 \
    -Wl,-z,noseparate-code -o "$work/add/lib/x86_64/libskyharbour.so" game/native/skyharbour.c

# aapt neither aligns entries nor fixes their times; the host's own packer does.
PYTHONPATH="$here/../Script" /usr/bin/python2.7 -B - "$work" "$output" <<'PYTHON'
import sys
import pytoolForQt
work, output = sys.argv[1:]
pytoolForQt.unZip(work + "/plain.apk", work + "/add", "NULL")
pytoolForQt.zip(work + "/add", output, "")
PYTHON
