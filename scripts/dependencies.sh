#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Installs what is missing on Debian 12: what builds, runs and tests the project, and with the names of
# further groups (checks, bench, package) also what these need; with the one word "python" the Python 2.7 that the
# packages need, and nothing else. Touches nothing, and needs neither network nor root, when everything is there.
#   scripts/dependencies.sh [--show] [GROUP...]     --show tells what would be installed and how much, and installs nothing
set -euo pipefail

build=(g++ make cmake pkg-config qtbase5-dev qttools5-dev-tools libqt5sql5-sqlite libsqlite3-dev libdeflate-dev zlib1g-dev openssl adb aapt
        pngcheck unzip zsh mandoc groff-base qt5-qmake meson python3-jsonschema fonts-dejavu-core fonts-wqy-microhei)
checks=(clang clang-format clang-tidy clangd python3 abigail-tools reuse)
package=(lintian dpkg-dev)
window=(xvfb xauth)
bench=(libbenchmark-dev python3-minimal python3-pil rsync strace sqlite3 imagemagick libvips-dev zip p7zip-full time
        default-jdk-headless libandroid-zipflinger-java)
android=(apksigner zipalign apktool default-jre-headless)
farm=(slurmctld slurmd slurm-client munge)
# Python 2.7 left Debian with release 11. These packages, and nothing else, come from there.
python=(libpython2.7-dev libpython2.7 libpython2.7-stdlib libpython2.7-minimal python2.7 python2.7-minimal
        libssl1.1 libffi7)

die() { printf 'dependencies: %s\n' "$*" >&2; exit 1; }

missing() {
    local name
    for name in "$@"; do
        # Debian's own packages are asked for: an interpreter under a version manager is not the same thing.
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || printf '%s\n' "$name"
    done
}

show=
if [ "${1-}" = --show ]; then
    show=1
    shift
fi
packages=("${build[@]}")
if [ "$*" = python ]; then
    packages=()
    python=(libpython2.7 libpython2.7-stdlib libpython2.7-minimal libssl1.1 libffi7)
    shift
fi
for group in "$@"; do
    case $group in
        checks) packages+=("${checks[@]}") ;;
        bench) packages+=("${bench[@]}") ;;
        android) packages+=("${android[@]}") ;;
        farm) packages+=("${farm[@]}") ;;
        window) packages+=("${window[@]}") ;;
        package) packages+=("${package[@]}") ;;
        *) die "unknown group '$group' (known: checks, bench, package, window, android, farm; python only by itself)" ;;
    esac
done

command -v dpkg-query >/dev/null || die "this is not Debian 12; see README.md for what to install by hand"
wanted=($(missing "${packages[@]}"))
wanted_python=($(missing "${python[@]}"))
[ $((${#wanted[@]} + ${#wanted_python[@]})) -gt 0 ] || {
    [ -z "$show" ] || echo 'dependencies: nothing is missing'
    exit 0
}

release=$(. /etc/os-release && printf '%s %s' "${ID:-}" "${VERSION_ID:-}")
[ "$release" = "debian 12" ] || die "missing: ${wanted[*]} ${wanted_python[*]}; they are installed by this script on \
Debian 12 only, and this is '$release'"

as_root=(env)
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "installing ${wanted[*]} ${wanted_python[*]} needs root or sudo"
    as_root=(sudo env)
fi
verb=${show:+would be installed}
printf 'dependencies: %s from the configured Debian mirror: %s\n' "${verb:-installing}" "${wanted[*]} ${wanted_python[*]}"
[ "${as_root[0]}" = env ] || sudo -v || die "sudo was refused"

apt_options=(-q -y -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 -o Dpkg::Use-Pty=0)
apt() { "${as_root[@]}" DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 apt-get "${apt_options[@]}" "$@"; }

# Its exit code says nothing: 0 without a network, 100 for somebody else's broken source.
apt update || true
if [ ${#wanted[@]} -gt 0 ]; then
    for name in "${wanted[@]}"; do
        policy=$(LC_ALL=C apt-cache policy "$name")
        [[ $policy == *Candidate:* && $policy != *"Candidate: (none)"* ]] ||
            die "no mirror offers '$name': is the network reachable, and is Debian 12 main among the apt sources?"
    done
    if [ -n "$show" ]; then
        # It is asked and answers no itself; only its figures are wanted.
        apt install --no-install-recommends -o APT::Get::Assume-Yes=false --assume-no "${wanted[@]}" | grep -E '^(Need to get|After this)' || true
    else
        apt install --no-install-recommends "${wanted[@]}" || die "apt-get could not install ${wanted[*]}"
    fi
fi
[ ${#wanted_python[@]} -gt 0 ] || exit 0

# The URI of the configured mirror for one label and release.
mirror() {
    local uris
    uris=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' "Label: $1" \
        "Codename: $2" 'Component: main')
    [ -n "$uris" ] || die "the apt sources name no mirror for $2 (is the network reachable?)"
    printf '%s\n' "${uris%%$'\n'*}"
}
main_uri=$(mirror Debian bookworm)
security_uri=$(mirror Debian-Security bookworm-security)

# A private apt folder, so that the older release never enters the machine's own configuration.
private=$(mktemp -d)
trap 'rm -rf "$private"' EXIT
chmod 755 "$private"
mkdir -p "$private/lists/partial" "$private/cache/archives/partial" "$private/packages"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
[ -r "$keyring" ] || die "$keyring is missing: install debian-archive-keyring"
printf 'deb [signed-by=%s] %s %s main\n' "$keyring" "$main_uri" bullseye \
    "$keyring" "$security_uri" bullseye-security >"$private/sources.list"
private_options=("${apt_options[@]}" -o Dir::Etc::SourceList="$private/sources.list" -o Dir::Etc::SourceParts=/dev/null
    -o Dir::Etc::Preferences=/dev/null -o Dir::Etc::PreferencesParts=/dev/null
    -o Dir::State::Lists="$private/lists" -o Dir::Cache="$private/cache" -o APT::Sandbox::User="$(id -un)")
LC_ALL=C.UTF-8 apt-get "${private_options[@]}" -o APT::Update::Error-Mode=any update ||
    die "the mirror's lists of the previous Debian release could not be fetched"
if [ -n "$show" ]; then
    printf 'and of the previous release, %s:\n' "${wanted_python[*]}"
    apt-get "${private_options[@]}" --print-uris download "${wanted_python[@]}" |
        awk '$3 ~ /^[0-9]+$/ { sum += $3 } END { printf "Need to get %.1f MB of archives.\n", sum / 1e6 }'
    exit 0
fi
(cd "$private/packages" && LC_ALL=C.UTF-8 apt-get "${private_options[@]}" download "${wanted_python[@]}") ||
    die "the mirror does not offer Python 2.7 of the previous Debian release"
apt install --no-install-recommends "$private"/packages/*.deb || die "apt-get could not install Python 2.7"
