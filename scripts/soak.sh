#!/usr/bin/env bash
# Runs the tests that go through many cases with all of them, of which the other runs take a part: what
# the checker and the planner say of generated scripts against what running these does, a product of
# thousands of files, and runs that are ended at each of their moments. Takes half an hour.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
tests=build/release/tests
cmake --build --preset release --target temz_check_tests temz_plan_tests temz_draft_tests \
    temz_interruption_tests
export TEMZ_WHOLE_SWEEPS=1
scripts/wine-run.sh $tests/check/temz_check_tests.exe --gtest_brief=1 --gtest_filter='PopulationTest.*'
scripts/wine-run.sh $tests/plan/temz_plan_tests.exe --gtest_brief=1 --gtest_filter='EqualityTest.*'
scripts/wine-run.sh $tests/draft/temz_draft_tests.exe --gtest_brief=1 --gtest_filter='*ManyFiles*'
scripts/wine-run.sh $tests/interruption/temz_interruption_tests.exe --gtest_brief=1 --gtest_filter='PowerCutTest.*'
