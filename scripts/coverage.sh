#!/usr/bin/env bash
# Prints how many lines and branches of the product the tests run, and fails when one isn't run that
# tests/coverage/uncovered.txt doesn't list with its reason, or is run that it lists. With --report
# it looks again at what the last run has counted; names of rooms (src, trace, ...) limit what is checked.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
build=$root/build/coverage
status=0
if [ "${1:-}" = --report ]; then
    shift
else
    scripts/setup.sh
    [ -e "$build/build.ninja" ] || cmake --preset coverage
    cmake --build --preset coverage
    find "$build" -name '*.gcda' -delete
    # So that the counts are written here whatever a program's current drive is. A test that fails where
    # nothing is optimised takes nothing from what has been counted, but is told.
    GCOV_PREFIX=Z: scripts/ctest.sh coverage -R '_tests$|temz_host_gcc_c$' -E interruption -LE 'build|tools' ||
        status=1
fi
python3 -B tests/coverage/coverage.py "$build" "$@" || status=1
exit "$status"
