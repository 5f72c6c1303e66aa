#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Does what the README says of a host of one's own, block by block: each way to build it, each in a folder of its own, and
# each program imports an SDK package.
#   readme-host.sh README PACKAGE WORK P [WAY...]       P is where the library is installed; the ways are those of the README
set -euo pipefail
readme=$(realpath "$1") package=$(realpath "$2") work=$3 P=$4
shift 4
export P

# block TITLE: the indented block whose first line is the title as a comment, without both.
block() {
    awk -v title="$1" '
        inside && /^    (\/\/|#) [a-zA-Z.]+/ { exit }
        $0 == "    // " title || $0 == "    # " title { inside = 1; next }
        inside && /^$/ { ++blank; next }
        inside && !/^    / { exit }
        inside { for (; blank > 0; --blank) print ""; sub(/^    /, ""); print }
    ' "$readme"
}

# file NAME: writes a file of the README into the working folder.
file() {
    block "$1" >"$1"
    [ -s "$1" ] || { printf 'the README has no %s\n' "$1" >&2; exit 1; }
}

build() {
    rm -rf "${work:?}/$1"
    mkdir -p "$work/$1"
    cd "$work/$1"
    file main.cpp
    [ -z "$3" ] || file "$3"
    block "with $2" >commands.sh
    [ -s commands.sh ] || { printf 'the README does not say how to build with %s\n' "$2" >&2; exit 1; }
    block run >run.sh
    cp "$package" sdk.zip
    bash -eu commands.sh >build.log 2>&1 || { cat build.log >&2; printf 'with %s: failed\n' "$2" >&2; exit 1; }
    ! grep -i 'warning' build.log || { printf 'with %s: warnings\n' "$2" >&2; exit 1; }
    printed=$(bash -eu run.sh)
    [ "$printed" = imported ] && [ -s sdk/config.xml ] ||
        { printf 'with %s: the host printed "%s" and imported nothing\n' "$2" "$printed" >&2; exit 1; }
    printf 'with %s: imported\n' "$2"
}

[ $# -gt 0 ] || set -- cmake compiler qmake meson
for way; do
    case $way in
        cmake) build cmake CMake CMakeLists.txt ;;
        compiler) build compiler "the compiler alone" "" ;;
        qmake) build qmake qmake host.pro ;;
        meson) build meson Meson meson.build ;;
        *) printf 'unknown way %s\n' "$way" >&2; exit 2 ;;
    esac
done
