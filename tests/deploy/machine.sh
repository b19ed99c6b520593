#!/usr/bin/env bash
# Starts a program of Windows ($2 and on) on a machine of the fleet ($1, its prefix).
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"
wine_environment "$1"
# Whatever the machine starts first inherits the output, and whoever reads it waits for that.
wine cmd /c exit >/dev/null 2>&1 </dev/null
wine "${@:2}"
