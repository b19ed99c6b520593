#!/usr/bin/env bash
# Formats all sources; with --check it only tells which are not formatted, and fails.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
options=(-i)
[ "${1:-}" != --check ] || options=(--dry-run --Werror)
find src trace author capi host tests examples benchmarks \( -name '*.cpp' -o -name '*.h' -o -name '*.c' \) -print0 |
    xargs -0 clang-format "${options[@]}"
