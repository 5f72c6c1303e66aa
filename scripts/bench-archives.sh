#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Prints the table of archives in docs/performance.md: medians of RUNS (5) runs of each program in turn, with the release
# build, in a folder of TMPDIR. The tree is 3,800 files of 53 MB, mostly text, from this machine.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh bench
cmake --preset release >/dev/null
cmake --build --preset release -j"$(nproc)" --target quenzo runtime_folders >/dev/null
export PATH="$PWD/build/release/bin:$PATH"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export XDG_DATA_HOME="$work/data"

mkdir -p game/assets sdk
find /usr/include /usr/lib/python3* /usr/share -type f -size +2k -size -80k ! -name '*.pyc' ! -name '*.so*' ! -name '*.gz' |
    sort | sed -n 1,3800p | while IFS= read -r file; do cp --parents "$file" game/assets/ 2>/dev/null || true; done
files=$(find game -type f | wc -l)
bytes=$(find game -type f -printf '%s\n' | awk '{ sum += $1 } END { printf "%.1f", sum / 1e6 }')
cp -rl game/assets/. sdk
first=$(cd sdk && find . -type f -printf '%P\n' | sort | sed -n 1p)
printf '<sdk id="1" name="n" version="1"><files><file>%s</file></files></sdk>\n' "$first" >sdk/config.xml
mkdir -p channel/assets
printf '{}' >channel/assets/channel.json
quenzo pack -q game base.apk
quenzo pack -q sdk sdk.zip
printf 'import sys, zipfile, os\nout = zipfile.ZipFile("py.zip", "w", zipfile.ZIP_DEFLATED)\nfor folder, _, names in os.walk("game"):\n    for name in names:\n        out.write(os.path.join(folder, name))\nout.close()\n' >zipit.py
find game -type f -exec cat {} + >all

rows=(
    "pack|quenzo pack|quenzo pack -q game a.apk"
    "pack|zip -6|cd game && zip -6 -q -r ../z.zip ."
    "pack|7z a -tzip -mx=5|7z a -bd -tzip -mx=5 7.zip ./game/*"
    "pack|python3 zipfile|python3 zipit.py"
    "pack, nothing new|quenzo pack --like|quenzo pack -q game l.apk --like base.apk"
    "pack, one file new|quenzo pack --onto|quenzo pack -q channel o.apk --onto base.apk"
    "pack, one file new|zip updating a copy|cp base.apk u.apk && cd channel && zip -6 -q -r ../u.apk ."
    "unpack|quenzo unpack|quenzo unpack -q base.apk out"
    "unpack|unzip|unzip -q base.apk -d out"
    "import|quenzo import|quenzo import -q sdk.zip out"
    "import|unzip|unzip -q sdk.zip -d out"
    "encrypt|quenzo encrypt|quenzo encrypt -q e.apk"
    "encrypt|openssl, all in one file|openssl enc -aes-256-ctr -pbkdf2 -pass pass:x -in all -out all.enc"
)
quenzo key new -q >/dev/null
for _ in $(seq "${RUNS:-5}"); do
    for number in "${!rows[@]}"; do
        IFS='|' read -r _ _ command <<<"${rows[$number]}"
        rm -rf out [azlou].apk [z7].zip py.zip all.enc
        cp base.apk e.apk
        begin=$(date +%s%N)
        (eval "$command") >/dev/null
        printf '%d %d\n' "$number" $((($(date +%s%N) - begin) / 1000000)) >>times
    done
done
median() { awk -v n="$1" '$1 == n { print $2 }' times | sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }
printf '%s files of %s MB\n\n| work | who | median | ours / theirs |\n| --- | --- | --- | --- |\n' "$files" "$bytes"
for number in "${!rows[@]}"; do
    IFS='|' read -r work_name who _ <<<"${rows[$number]}"
    time=$(median "$number")
    ratio=
    if [[ $who == quenzo* ]]; then ours=$time; else ratio=$(awk "BEGIN { printf \"%.2f\", $ours / $time }"); fi
    printf '| %s | %s | %s ms | %s |\n' "$work_name" "$who" "$time" "$ratio"
done
