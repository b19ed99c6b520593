#!/usr/bin/env bash
# Sets up, builds, checks the format and runs all tests.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/setup.sh"
"$root/scripts/format.sh" --check
"$root/scripts/build.sh"

cd "$root"
slots=$(nproc)
stop_slots() {
    for ((i = 0; i < slots; i++)); do stop_prefix "$wine_home/slot$i"; done
}
trap stop_slots EXIT
stop_slots
for ((i = 0; i < slots; i++)); do start_prefix "$wine_home/slot$i"; done

ctest --test-dir build/release --output-on-failure --no-tests=error -j "$slots"
