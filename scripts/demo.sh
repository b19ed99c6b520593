#!/usr/bin/env bash
# Sets up, builds what the demo takes, and shows the example product being installed, upgraded and removed.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
scripts/setup.sh
echo "Building the console host and the example product"
quietly cmake --preset demo
quietly cmake --build --preset demo
scripts/example.sh "$root/build/demo"
