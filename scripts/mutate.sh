#!/usr/bin/env bash
# Breaks the engine in COUNT places (500), one at a time, chosen by SEED (1), and tells which of these
# mutants no test notices: scripts/mutate.sh [COUNT] [SEED] [--file PATTERN]. Takes hours.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
scripts/setup.sh
[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target temz_unit_tests temz_allocation_tests temz_endtoend_tests
PYTHONDONTWRITEBYTECODE=1 exec python3 tests/mutation/mutate.py "$@"
