#!/usr/bin/env bash
# Measures what the engine adds to the system calls that it makes.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/setup.sh"
"$root/scripts/build.sh" >/dev/null
"$root/scripts/wine-run.sh" "$root/build/release/benchmarks/temz_benchmarks.exe" </dev/null
