#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Proves the Debian packages in a bare Debian 12: installs them as a person would, does the sample job, builds the README's
# host in each of its ways, purges them, and looks for what is left.
#   scripts/test-packages.sh [PACKAGES]     the folder that scripts/package.sh filled, build/packages unless named
# Needs root, debootstrap and this machine's Debian mirror, and says which of them is missing (exit code 77: not run).
# The bare root and what was fetched are kept in build/bare.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C
umask 022

not_run() { printf 'test-packages: not run: %s\n' "$*"; exit 77; }
die() { printf 'test-packages: %s\n' "$*" >&2; exit 1; }

if [ "${1-}" = --inside ]; then
    # The first process of its own namespaces: the mounts end with it.
    root=$2
    mount -t proc proc "$root/proc"
    mount -t tmpfs tmpfs "$root/tmp"
    mount --bind /dev "$root/dev"
    mount --bind "$3" "$root/packages"
    mount --bind "$4" "$root/var/cache/apt/archives"
    exec chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb ${http_proxy+"http_proxy=$http_proxy"} \
        /checks/inside.sh
fi

[ "$(id -u)" = 0 ] || not_run "this needs root"
for tool in debootstrap unshare; do
    command -v "$tool" >/dev/null || not_run "$tool is missing"
done
packages=$(realpath "${1:-build/packages}")
ls "$packages"/quenzo_*.deb >/dev/null 2>&1 || die "no packages in $packages: scripts/package.sh makes them"

# The mirror that this machine's own apt has.
targets=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian')
mirror=$(awk '$2 == "bookworm" && $3 == "main" { print $1; exit }' <<<"$targets")
security=$(awk '$2 == "bookworm-security" && $3 == "main" { print $1; exit }' <<<"$targets")
[ -n "$mirror" ] && [ -n "$security" ] || not_run "apt has no mirror for Debian 12 and its security"
settings=$(apt-config dump | grep -E '^Acquire::(http|https|Retries|Check-Valid-Until|Check-Date)\b' | grep -vi detect || true)

mkdir -p build/bare/archives/partial
bare=$PWD/build/bare
if [ ! -s "$bare/root.tar" ]; then
    rm -rf "$bare/new"
    debootstrap --variant=minbase --include=ca-certificates bookworm "$bare/new" "${mirror%/}" >"$bare/debootstrap.log" 2>&1 ||
        { rm -rf "$bare/new"; not_run "the mirror cannot be reached: $(tail -n1 "$bare/debootstrap.log")"; }
    rm -f "$bare"/new/var/cache/apt/archives/*.deb
    tar --numeric-owner -C "$bare/new" -cf "$bare/root.tar.new" .
    mv "$bare/root.tar.new" "$bare/root.tar"
    rm -rf "$bare/new"
fi

root=$(mktemp -d "$bare/run.XXXXXX")
trap 'rm -rf --one-file-system "$root"' EXIT
chmod 755 "$root"
tar --numeric-owner -C "$root" -xf "$bare/root.tar"
mkdir "$root/packages" "$root/checks"
cp tests/packages/inside.sh tests/consumer/readme-host.sh "$root/checks"
cp -L /etc/resolv.conf /etc/hosts "$root/etc"
rm -rf "$root"/etc/apt/sources.list*
printf 'deb %s bookworm main\ndeb %s bookworm-security main\n' "$mirror" "$security" >"$root/etc/apt/sources.list"
printf '%s\n' "$settings" 'Binary::apt-get::APT::Keep-Downloaded-Packages "true";' 'APT::Sandbox::User "root";' \
    >"$root/etc/apt/apt.conf.d/99machine"
rm -f "$root/etc/apt/apt.conf.d/docker-clean"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
chmod 755 "$root/usr/sbin/policy-rc.d"
unshare --mount --propagation private --pid --fork --kill-child -- bash scripts/test-packages.sh --inside "$root" "$packages" "$bare/archives"
