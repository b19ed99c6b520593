#!/usr/bin/env bash
# Builds what is shipped and lays the SDK out in dist/.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset product
cmake --install build/release --prefix "$root/dist" --strip >/dev/null
