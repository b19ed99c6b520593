#!/usr/bin/env bash
# Builds everything and lays the SDK out in dist/.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release
cmake --install build/release --prefix "$root/dist" --strip >/dev/null
