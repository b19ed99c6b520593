#!/usr/bin/env bash
# Runs clang-tidy over the library and the host, as the clang preset compiles them.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cd "$root"
[ -e build/clang/build.ninja ] || cmake --preset clang
report=build/clang/lint.txt
run-clang-tidy -quiet -p build/clang "$root/(src|trace|author|capi|host)/.*\.cpp$" >"$report" 2>&1 || {
    grep -E -A3 '(error|warning):' "$report" >&2 || tail "$report" >&2
    exit 1
}
