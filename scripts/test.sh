#!/usr/bin/env bash
# Sets up, checks format and code, builds with both compilers, and runs all tests: on what is shipped,
# and again where undefined behaviour and library misuse stop the program.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/setup.sh"
"$root/scripts/format.sh" --check
"$root/scripts/build.sh"
cd "$root"
for preset in checked clang; do
    [ -e "build/$preset/build.ninja" ] || cmake --preset "$preset"
    cmake --build --preset "$preset"
done

"$root/scripts/lint.sh"

slots=$(nproc)
stop_slots() {
    for ((i = 0; i < slots; i++)); do stop_prefix "$wine_home/slot$i"; done
}
trap stop_slots EXIT
stop_slots
for ((i = 0; i < slots; i++)); do start_prefix "$wine_home/slot$i"; done

for preset in release checked; do
    ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j "$slots"
done
