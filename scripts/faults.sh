#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Lets every call that touches a job's files fail once, with each error number that the manual has for it, and prints a table of
# what became of the jobs: the failure told, the work right nevertheless, or a fault, which is told in full.
#   scripts/faults.sh [SECONDS [JOB...]]     600 unless given; the jobs are the classes of tests/attack/jobs.py, and build
# What does not fit in the time is left out at random; QUENZO_ATTACK_SEED makes another choice. The program and the library that lets
# calls fail come from BUILD (build/debug).
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

seconds=${1:-600}
shift $(($# > 0))
build=$(realpath "${BUILD:-build/debug}")
library=("$build"/lib*/onefault.so)
table=$(mktemp)
trap 'rm -f "$table"' EXIT
status=0
QUENZO="$build/bin/quenzo" QUENZO_FAULT_LIBRARY="${library[0]}" QUENZO_FAULT_SECONDS="$seconds" QUENZO_FAULT_JOBS="$*" \
    QUENZO_FAULT_TABLE="$table" python2.7 -B tests/attack/test_faults.py || status=$?
cat "$table"
exit $status
