#!/usr/bin/env bash
# Sets up, checks format and code, builds with both compilers, and runs all tests: on what is shipped,
# where undefined behaviour and library misuse stop the program, as if there were no Wine, and as an
# ordinary user. With --quick it builds what is shipped, and runs the tests that need no further tools.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

case ${1:-} in
    '' | --quick) ;;
    *) echo "usage: scripts/test.sh [--quick]" >&2; exit 2 ;;
esac

cd "$root"
if [ "${1:-}" = --quick ]; then
    scripts/setup.sh
    scripts/build.sh
    cmake --build --preset release
    exec scripts/ctest.sh release -LE 'tools|long'
fi

scripts/setup.sh --tests
scripts/format.sh --check
scripts/build.sh
for preset in release checked clang; do
    [ -e "build/$preset/build.ninja" ] || cmake --preset "$preset"
    cmake --build --preset "$preset"
done

scripts/lint.sh

scripts/ctest.sh release
# What looks at the sources and the files that were built (label "build") has done so: in the passes
# behind, it would see the same. The checked build's own files are shipped to nobody, to other
# languages and tools (label "tools") least of all, and these don't look at whose machine it is. What takes
# long (label "long") is done with once.
scripts/ctest.sh checked -LE 'build|tools|long'
# The other compiler's code takes another part of the stack: its libraries under the same test program.
cp build/release/tests/stack/temz_stack_tests.exe build/clang/capi/TEMZC.dll build/clang/src
scripts/wine-run.sh build/clang/src/temz_stack_tests.exe --gtest_brief=1
# What needs Wine without saying so fails here.
TEMZ_TESTS_WITHOUT_WINE=1 scripts/ctest.sh release -LE 'wine|build|tools|long'
# To root nothing is forbidden, which hides what an ordinary user can't do.
if [ "$(id -u)" = 0 ]; then
    scripts/ctest-as-user.sh release -LE 'build|tools|long'
fi
