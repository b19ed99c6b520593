#!/usr/bin/env bash
# Links a host, whose sources and options are $5 and all that follows, with the library installed in $1
# by its plain name, by the build's compiler $3 and by clang with the libraries $4 of that compiler, and
# sees by the binary reader $2 that it needs the library.
set -euo pipefail
installed=$1 objdump=$2 compiler=$3 gcc_library=$4
. "$(dirname "${BASH_SOURCE[0]}")/compilers.sh"
shift 4

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

link() {
    local host=$scratch/host.exe
    rm -f "$host"
    if ! "$@" -o "$host" >"$scratch/messages" 2>&1; then
        echo "Not linked: $*"
        sed 's/^/    /' "$scratch/messages"
        failures=$((failures + 1))
    elif ! grep -q 'DLL Name: TEMZ.dll' <<<"$("$objdump" -p "$host")"; then
        echo "Needs no TEMZ.dll: $*"
        failures=$((failures + 1))
    fi
}

sdk=(-I"$installed/include" "$@" -L"$installed/lib" -lTEMZ -lole32)
link "${gcc[@]}" "${sdk[@]}"
link "${gcc[@]}" "${sdk[@]}" -static
link "${clang_for_mingw[@]}" "${sdk[@]}" -lpthread
link "${clang_for_mingw[@]}" "${sdk[@]}" -lpthread -static
exit $((failures > 0))
