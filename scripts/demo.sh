#!/usr/bin/env bash
# Sets up, builds, and shows the example product being installed, upgraded and removed.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/setup.sh"
"$root/scripts/build.sh"
"$root/scripts/example.sh"
