#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Prints the table of channel packages in docs/performance.md: COUNT (100) packages of one APK of 200 MB with new icons, an SDK
# and a channel file each, RUNS (3) times, in a folder of TMPDIR. Ten packages are kept, each replaces the one ten before it. Who
# takes seconds for one makes COUNT / 20 of them.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench -j"$(nproc)" --target make_packages quenzo runtime_folders >/dev/null
sources=$PWD/benchmarks/packages
export PATH="$PWD/build/bench/bin:$PWD/build/bench/benchmarks:$PATH"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
count=${COUNT:-100}
few=$(((count + 19) / 20))
zipflinger=/usr/share/java/zipflinger.jar:/usr/share/java/com.android.tools.annotations.jar

python3 "$sources/make_base.py" game channel
quenzo pack -q game base.apk
# The same with another program's headers, unaligned.
(cd game && zip -q -r -n .ogg:.mp4:.so:.png:.arsc ../foreign.apk .)
javac -cp "$zipflinger" -d . "$sources/Flinger.java"
mkdir out tree

# each COUNT COMMAND: the command for each number up to COUNT, with the name of its package in $package.
each() {
    local number package
    for ((number = 0; number < $1; ++number)); do
        package=$PWD/out/$((number % 10)).apk
        rm -f "$package"
        printf '{"channel": %d}\n' "$number" >channel.json
        eval "$2"
    done
}
with_channel='mkdir -p own/assets && cp -r channel/. own && cp channel.json own/assets'
export -f each
export with_channel

rows=(
    "quenzo|$count|make_packages base.apk channel out $count 10"
    "quenzo, base of another program|$count|make_packages foreign.apk channel out $count 10"
    "cp|$count|each $count 'cp base.apk \$package'"
    "cp, and sync of the file|$count|each $count 'cp base.apk \$package && sync \$package'"
    "zipflinger on a copy|$count|java -cp $zipflinger:. Flinger base.apk channel out $count"
    "zip -6 on a copy|$few|each $few \"\$with_channel; cp base.apk \\\$package; (cd own && zip -q -6 -r \\\$package .)\""
    "7z u on a copy|$few|each $few \"\$with_channel; cp base.apk \\\$package; 7z u -bd -tzip -mx=5 \\\$package ./own/*\""
    "python3 zipfile|$few|/usr/bin/python3 $sources/python_zipfile.py base.apk channel out $few"
    "quenzo pack --onto|$few|each $few \"\$with_channel; quenzo pack -q own \\\$package --onto base.apk\""
    "quenzo unpack, quenzo pack|$few|each $few \"\$with_channel; rm -rf tree; quenzo unpack -q base.apk tree; cp -r own/. tree; quenzo pack -q tree \\\$package\""
)
for _ in $(seq "${RUNS:-3}"); do
    for number in "${!rows[@]}"; do
        IFS='|' read -r _ times command <<<"${rows[$number]}"
        rm -rf out/* own
        sync
        /usr/bin/time -a -o times -f "$number $times %e %U %S %M" bash -c "$command" >/dev/null
    done
done
median() { awk -v n="$1" -v c="$2" '$1 == n { print c == "M" ? $6 / 1024 : 1000 * (c == "e" ? $3 : $4 + $5) / $2 }' times | sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }
printf 'base of %s bytes, packages of %s\n\n' "$(stat -c %s base.apk)" "$(make_packages base.apk channel out 1 1 && stat -c %s out/0.apk)"
printf '| who | packages | each | processor each | peak memory | ours / theirs |\n| --- | --- | --- | --- | --- | --- |\n'
ours=$(median 0 e)
for number in "${!rows[@]}"; do
    IFS='|' read -r who times _ <<<"${rows[$number]}"
    printf '| %s | %d | %.0f ms | %.0f ms | %.0f MB | %s |\n' "$who" "$times" "$(median "$number" e)" "$(median "$number" p)" \
        "$(median "$number" M)" "$([ "$number" = 0 ] || awk "BEGIN { printf \"%.2f\", $ours / $(median "$number" e) }")"
done
