#!/usr/bin/env bash
# Runs the tests that go through many cases with all of them, of which the other runs take a part: what
# the checker and the planner say of generated scripts against what running these does, runs that are
# ended at each of their moments and denied each of their allocations, scripts of a megabyte with the
# time that each takes, what stays of ten thousand uses of all kinds of elements together, and the
# end-to-end tests under every code page and version of Windows. Takes an hour.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
tests=build/release/tests
scripts/setup.sh --tests
[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target temz_check_tests temz_plan_tests temz_allocation_tests \
    temz_hostile_tests temz_interruption_tests temz_endurance_tests temz_endtoend_tests \
    temz_endtoend_tests_utf8 temz TEMZC temz_example_action temz_example_service
export TEMZ_WHOLE_SWEEPS=1

# Runs the tests of a room that a pattern names, of which there must be one.
sweep() {
    scripts/wine-run.sh "$tests/$1/temz_$1_tests.exe" "--gtest_filter=$2" | tee >(cat >&2) |
        grep '  PASSED  \] [1-9]' >/dev/null
}

sweep check 'PopulationTest.*'
sweep plan 'EqualityTest.*'
sweep allocation '*SweepTest*'
sweep interruption 'PowerCutTest.*'
sweep hostile '*CostTest.*'
sweep endurance 'EnduranceTest.*'

# The end-to-end tests under every code page of every version of Windows, and the example product, which
# is UTF-8 everywhere, under the later one.
for windows in 6.1 10.0; do
    for page in 1252 932 936 65001; do
        program=temz_endtoend_tests
        [ "$page" != 65001 ] || program+=_utf8
        TEMZ_WINDOWS=$windows TEMZ_CODE_PAGE=$page \
            scripts/wine-run.sh $tests/endtoend/$program.exe --gtest_brief=1
    done
done
TEMZ_WINDOWS=10.0 scripts/example.sh
