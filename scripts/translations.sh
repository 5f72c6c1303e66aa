#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Brings the sheets of translated texts up to date with the sources: new texts stand there unfinished, and those that no
# source has any more go. Needs lupdate of Qt 5; LUPDATE names another one than the system's.
#   scripts/translations.sh [DIR]     DIR holds the sheets, instead of translations/
set -euo pipefail
sheets=$(realpath "${1-$(dirname "$0")/../translations}")
cd "$(dirname "$0")/.."
lupdate=${LUPDATE-/usr/lib/qt5/bin/lupdate}

# refresh NAME FOLDER...: the program that writes the manual speaks English only.
refresh() {
    local name=$1 sheet sources
    shift
    mapfile -t sources < <(find "$@" -path host/program/manual -prune -o \( -name '*.h' -o -name '*.cpp' \) -print | LC_ALL=C sort)
    for sheet in "$sheets/$name"_*.ts; do
        "$lupdate" -silent -no-obsolete -locations none -source-language en -I. "${@/#/-I}" "${sources[@]}" -ts "$sheet"
    done
}
refresh quenzotool QuenzoTool/source QuenzoTool/include
refresh quenzo host/program
refresh quenzo-window window
