#!/usr/bin/env bash
# Builds what is shipped and lays the SDK out in dist/.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
if [ ! -e build/release/build.ninja ]; then
    echo "Configuring the build"
    quietly cmake --preset release
fi
echo "Building what is shipped"
cmake --build --preset product
echo "Laying out the SDK in dist"
cmake --install build/release --prefix "$root/dist" --strip >/dev/null
