#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Runs in a bare Debian 12 as root, for scripts/test-packages.sh: installs the packages from /packages as a person would,
# uses them, and purges them. /checks has the scripts for it, /var/cache/apt/archives may keep what was fetched before.
set -euo pipefail
export LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive HOME=/tmp/home
mkdir -p "$HOME"

die() { printf 'inside: %s\n' "$*" >&2; exit 1; }
step() { printf '== %s (%d s so far)\n' "$1" "$SECONDS"; }
quietly() { "$@" >/tmp/step.log 2>&1 || { cat /tmp/step.log >&2; die "failed: $*"; }; }
get() { quietly apt-get -q -y -o Dpkg::Use-Pty=0 install --no-install-recommends "$@"; }
ours() { find / -xdev \( -path /packages -o -path /checks -o -path /tmp -o -path /proc -o -path /var/log \) -prune \
    -o -iname '*quenzo*' -print; }

quietly apt-get -q update
[ -z "$(ours)" ] || die "the root is not bare: $(ours)"

step "without Python 2.7 the packages are refused, and say how to get it"
if apt-get -q -y install --no-install-recommends /packages/*.deb >/tmp/refused.log 2>&1; then
    die "installed without Python 2.7"
fi
grep -q 'Depends: libpython2.7' /tmp/refused.log || { cat /tmp/refused.log; die "refused for another reason"; }
description=$(dpkg-deb -f /packages/quenzo_*.deb Description)
[[ $description == *'"dependencies.sh python"'* ]] || die "the description does not say how"

step "Python 2.7 by its script, then the packages"
quietly /packages/dependencies.sh python
get /packages/*.deb

step "the sample job, as a plain user"
useradd -m person
cp -r /usr/share/quenzo/sample /home/person/sample
chown -R person /home/person
runuser -u person -- env -u XDG_STATE_HOME HOME=/home/person bash -eu <<'JOB' || die "the sample job failed"
cd "$HOME"
quenzo --version
quenzo import sample/packages/harbourpay.zip sdk --sdk-id 7
quenzo unpack sample/skyharbour.apk game
cp sample/skyharbour.apk own.apk
quenzo encrypt own.apk
quenzo decrypt own.apk
quenzo pack game packed.apk
quenzo export 101 develop
quenzo icons --icon sample/icons/icon.png --marks sample/icons/marks --out icons --platform android \
    sample/icons/channels.json
[ "$(quenzo package-name packed.apk)" = com.quenzo.skyharbour ]
[[ $(LC_ALL=zh_CN.UTF-8 quenzo help) == 用法* ]]
mkdir -p full/a source
touch source/a
! quenzo output source full # a folder is where the file should go, which is logged
[ -s .local/state/quenzo/quenzotool.log ] || { echo "there is no log"; find .local; exit 1; }
JOB

step "the window, without a screen"
[[ $(dpkg-deb -f /packages/quenzo_*.deb Depends) == *libqt5widgets5* ]] || die "nothing brings what the window needs"
[ -s /usr/share/applications/quenzo-window.desktop ] && [ -s /usr/share/icons/hicolor/scalable/apps/quenzo-window.svg ] ||
    die "no menu will show the window"
# It stays open until it is told to end.
runuser -u person -- env HOME=/home/person QT_QPA_PLATFORM=offscreen timeout 5 quenzo-window >/tmp/step.log 2>&1 && code=0 || code=$?
[ "$code" = 124 ] || { cat /tmp/step.log; die "the window ended with $code"; }

step "the README's host: CMake, the compiler alone, qmake, Meson"
get g++ make cmake pkg-config qt5-qmake meson
quietly runuser -u person -- /checks/readme-host.sh /usr/share/doc/quenzo/README.md \
    /usr/share/quenzo/sample/packages/harbourpay.zip /home/person/hosts /usr
cat /tmp/step.log

step "as root, too; then everything goes"
quietly quenzo import /usr/share/quenzo/sample/packages/harbourpay.zip /tmp/sdk
quietly apt-get -q -y purge quenzo libquenzotool-dev libquenzotool1
rm -rf /home/person
left=$(ours)
[ -z "$left" ] || die "left behind: $left"
[ -z "$(dpkg-query -W '*quenzo*' 2>/dev/null)" ] || die "dpkg still knows of them"
step "nothing is left"
