#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds three channels of packages that others have made, one with PNG icons and one without any icon, and has each
# judged by aapt, unzip, zipalign and apksigner. The packages come from npm, into a folder that goes again; where
# npm or what it asks is missing, the exit code is 77, and the reason is told.
#   scripts/test-real-apks.sh BIN     BIN is the folder of quenzo
set -euo pipefail
bin=$(realpath "$1")
sample=$(realpath "$(dirname "$0")/../host/sample")
export LC_ALL=C.UTF-8 PATH="$bin:$PATH"

skip() { printf 'test-real-apks: skipped: %s\n' "$*"; exit 77; }
die() { printf 'test-real-apks: %s\n' "$*" >&2; exit 1; }
for program in npm apktool apksigner zipalign keytool aapt unzip; do
    command -v "$program" >/dev/null || skip "the program $program is missing"
done
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export XDG_DATA_HOME="$folder/data"

# fetch NAME VERSION APK NEW: takes a package's APK out of what npm delivers.
fetch() {
    timeout 120 npm pack --silent "$1@$2" >packed 2>npm.log || skip "npm delivers no $1@$2: $(grep -m 1 . npm.log || true)"
    tar -xzf "$(tail -n 1 packed)" "package/apks/$3"
    mv "package/apks/$3" "$4"
}
fetch io.appium.settings 8.0.10 settings_apk-debug.apk settings.apk
fetch appium-uiautomator2-server 10.6.6 appium-uiautomator2-server-v10.6.6.apk server.apk

# What the channels bring: an SDK with a wish for the manifest, files of their own, and a key.
mkdir -p sdk/assets sdk/lib/arm64-v8a own/assets
cat >sdk/config.xml <<'XML'
<sdk id="9" name="Pay" version="1.0">
  <manifest xmlns:android="http://schemas.android.com/apk/res/android">
    <uses-permission android:name="android.permission.NFC"/>
    <application>
      <provider android:name="pay.Provider" android:authorities="${applicationId}.pay" android:exported="false"/>
    </application>
  </manifest>
  <files><file>assets/pay.json</file><file>lib/arm64-v8a/libpay.so</file></files>
</sdk>
XML
echo '{"pay": 1}' >sdk/assets/pay.json
head -c 5000 /dev/zero >sdk/lib/arm64-v8a/libpay.so
echo own >own/assets/own.txt
quenzo -q pack sdk pay.zip
(umask 077 && echo only-for-the-test >password)
keytool -genkeypair -keystore keys -alias game -keyalg RSA -keysize 2048 -validity 10000 -dname CN=sample \
    -storepass:file password -keypass:file password 2>/dev/null

write_job() {
    cat <<JSON
{"game": "$1", "base": "$1.apk",
 "icons": {"master": "$sample/icons/icon.png", "marks": "$sample/icons/marks"},
 "sdks": {"harbourpay": {"package": "$sample/packages/harbourpay.zip", "id": 7}, "pay": {"package": "pay.zip", "id": 9}},
 "channels": [
   {"folder": "plain", "mark": "harbor", "sdks": ["harbourpay"], "files": "own", "settings": {"market": "harbor"}},
   {"folder": "renamed", "mark": "meadow", "package": "com.example.renamed"},
   {"folder": "fragment", "mark": "nimbus", "sdks": ["pay"]}],
 "signing": {"keystore": "keys", "alias": "game", "password": {"file": "password"}},
 "work": "work-$1", "output": "output-$1"}
JSON
}

# facts APK: name, version and icons, as aapt tells them.
facts() { aapt dump badging "$1" | grep -oE "^package: name='[^']*' versionCode='[^']*' versionName='[^']*'|^(application-icon-|sdkVersion|targetSdkVersion).*"; }

# sums APK: an entry's checksum and name a line, without what the job changes and what signatures consist of.
sums() {
    unzip -v "$1" | awk 'NF == 8 && length($7) == 8 && $7 != "--------" {print $7, $8}' | LC_ALL=C sort -k 2 |
        grep -vE " (AndroidManifest.xml|META-INF/[^/]*\.(SF|RSA|MF)|assets/(channel|pay|harbourpay)\.json|assets/own.txt|lib/arm64-v8a/libpay.so|res/drawable-[a-z]+-v4/ic_launcher.png)$"
}

# judge GAME CHANNEL NAME: holds one package against its base.
judge() {
    local base=$1.apk apk=output-$1/$2/$2.apk
    apksigner verify "$apk" || die "$apk: its signature does not hold"
    zipalign -c -p 4 "$apk" >/dev/null || die "$apk is not aligned"
    unzip -tqq "$apk" || die "$apk is damaged"
    diff <(facts "$base" | sed "s/name='[^']*'/name='$3'/") <(facts "$apk") || die "$apk: aapt tells something else"
    sums "$base" >base.sums
    [ "$(wc -l <base.sums)" -gt 50 ] || die "$base: no sums"
    diff base.sums <(sums "$apk") || die "$apk: other entries than were to change are not the base's"
    unzip -p "$apk" assets/channel.json | grep -q "\"channel\": \"$2\"" || die "$apk: another channel.json"
}

for game in settings server; do
    write_job "$game" >"$game.json"
    quenzo build "$game.json" 2>"$game.log" || { cat "$game.log" >&2; die "$game was not built"; }
    own=$(aapt dump badging "$game.apk" | sed -n "s/^package: name='\([^']*\)'.*/\1/p")
    judge "$game" plain "$own"
    judge "$game" renamed com.example.renamed
    judge "$game" fragment "$own"
    aapt dump badging "output-$game/fragment/fragment.apk" | grep -q "uses-permission: name='android.permission.NFC'" ||
        die "$game: the SDK's permission is missing"
    aapt dump xmltree "output-$game/fragment/fragment.apk" AndroidManifest.xml | grep -q "\"$own.pay\"" ||
        die "$game: the SDK's provider is missing"
    [ "$(unzip -p "output-$game/plain/plain.apk" assets/own.txt)" = own ] || die "$game: the channel's own file is missing"
done
! aapt dump xmltree output-settings/renamed/renamed.apk AndroidManifest.xml |
    grep -q '"io.appium.settings.DYNAMIC_RECEIVER' || die "settings: a permission still goes by the base's name"
icon=res/drawable-xxhdpi-v4/ic_launcher.png
for channel in plain renamed fragment; do
    unzip -p "output-settings/$channel/$channel.apk" "$icon" | cmp - "output-settings/$channel/icons/android/$icon"
    ! cmp -s <(unzip -p settings.apk "$icon") "output-settings/$channel/icons/android/$icon" || die "$channel shows the old icon"
done
grep -q 'the base shows no icon' server.log || die "server: nothing tells that it has no icon"
echo 'test-real-apks: the six packages are sound'
