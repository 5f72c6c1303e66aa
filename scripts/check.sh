#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Checks the licence of every file, the format of every C++ file, and with clang-tidy every source of the libraries, the host and the window.
# Uses the release build, which scripts/test.sh makes.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

scripts/dependencies.sh checks
git ls-files -z -- '*.h' '*.cpp' | xargs -0 clang-format --dry-run --Werror
echo "check: format is clean"
reuse lint --quiet || { reuse lint; exit 1; }
echo "check: every file says its licence"
# Each source once: tests compile some of them again, with headers that only gcc reads.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
python3 - build/release/compile_commands.json "$scratch/compile_commands.json" <<'END'
import json, sys
with open(sys.argv[1]) as commands, open(sys.argv[2], "w") as own:
    json.dump([command for command in json.load(commands) if "/build/release/tests/" not in command["directory"] + "/"], own)
END
git ls-files -z -- 'QuenzoBase/*_linux.cpp' 'QuenzoBase/**/quenzo*.cpp' 'QuenzoTool/*.cpp' 'host/*.cpp' 'window/*.cpp' |
    grep -zv '_other\.cpp$' | xargs -0 -n1 -P"$(nproc)" clang-tidy --quiet -p "$scratch"
echo "check: clang-tidy is clean"

# An editor that reads what the README's host was built with sees no error either.
editor=$scratch/editor
mkdir "$editor"
cmake --install build/release --prefix "$editor/prefix" >/dev/null
tests/consumer/readme-host.sh README.md host/sample/packages/harbourpay.zip "$editor" "$editor/prefix" cmake
clangd --check="$editor/cmake/main.cpp" --compile-commands-dir="$editor/cmake/build" >"$editor/clangd.log" 2>&1 ||
    { grep '^E\[' "$editor/clangd.log"; exit 1; }
! grep -E '^E\[.*(error|unknown)' "$editor/clangd.log" || exit 1
echo "check: clangd reads the README's host"
