#!/usr/bin/env bash
# Compiles the public headers in $1 by the build's compiler $2, by clang with the libraries $3 of that
# compiler, and by compilers that would make other classes out of them: these must be refused, and
# told what to build with, but may use the header for custom actions.
set -euo pipefail
include=$1 compiler=$2 gcc_library=$3
. "$(dirname "${BASH_SOURCE[0]}")/compilers.sh"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

# compile HEADER COMMAND...
compile() {
    local header=$1
    shift
    echo "#include <temz/$header>" | "$@" -I"$include" -fsyntax-only -xc++ - >"$scratch/messages" 2>&1
}

fail() {
    echo "$*"
    sed 's/^/    /' "$scratch/messages"
    failures=$((failures + 1))
}

cpp_headers=(IterfaceContext.h IterfaceObserver.h IterfaceProduct.h)

accepted() {
    local header
    for header in "${cpp_headers[@]}" CustomAction.h; do
        compile "$header" "$@" || fail "$header is refused: $*"
    done
}

# The first complaint must be the one that tells the way out.
refused() {
    local header
    for header in "${cpp_headers[@]}"; do
        if compile "$header" "$@"; then
            fail "$header is accepted: $*"
        elif ! grep -m1 'error' "$scratch/messages" |
            grep -q 'Build the host as TEMZ.dll was: mingw-w64 g++ or clang for x86_64, msvcrt, libstdc++'; then
            fail "$header doesn't tell why: $*"
        fi
    done
    compile CustomAction.h "$@" || fail "CustomAction.h is refused: $*"
}

accepted "${gcc[@]}"
accepted "${gcc[@]}" -std=c++20 -D_GLIBCXX_DEBUG -D_GLIBCXX_ASSERTIONS
refused "${gcc[@]}" -D_UCRT
refused "${gcc[@]}" -D_GLIBCXX_USE_CXX11_ABI=0
accepted "${clang_for_mingw[@]}"
refused "${clang_for_mingw[@]}" -D_UCRT

# Another standard library is one whose headers don't name themselves as this one's do.
mkdir "$scratch/library"
echo '#define _LIBCPP_VERSION 14000' >"$scratch/library/string"
refused "${gcc[@]}" -isystem "$scratch/library" -D_GLIBCXX_USE_CXX11_ABI=1

# There are no headers of these compilers here: clang's own serve, with what it lacks.
mkdir "$scratch/runtime"
touch "$scratch/runtime/assert.h"
for target in x86_64-pc-windows-msvc aarch64-w64-mingw32 i686-w64-mingw32; do
    refused "${clang[@]}" --target=$target -ffreestanding -nostdlibinc -isystem "$scratch/runtime"
done

exit $((failures > 0))
