#!/usr/bin/env bash
# Runs the tests of the built preset $1, as many at once as there are processors, each in a Wine prefix
# of its own. Whatever follows is for ctest.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

preset=$1
shift
slots=$(nproc)
stop_slots() {
    local prefix
    for prefix in "$wine_home"/slot*/; do stop_prefix "${prefix%/}"; done
}
trap stop_slots EXIT
stop_slots
for ((i = 0; i < slots; i++)); do start_prefix "$wine_home/slot$i"; done
ctest --test-dir "$root/build/$preset" --output-on-failure --no-tests=error -j "$slots" "$@"
