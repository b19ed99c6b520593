#!/usr/bin/env bash
# Compares what the checker says of the whole population of generated scripts with what running them
# does; the tests take a part of it. Takes some minutes.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
cmake --build --preset release --target temz_check_tests
TEMZ_WHOLE_POPULATION=1 scripts/wine-run.sh build/release/tests/check/temz_check_tests.exe \
    --gtest_brief=1 --gtest_filter='PopulationTest.*'
