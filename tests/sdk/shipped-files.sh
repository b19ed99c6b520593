#!/usr/bin/env bash
# Looks by the binary reader $1 at the programs and libraries in the installation $2: what could be dropped
# beside them, that builds can be told apart, and that nothing tells when or where they were built. The place
# of the sources is $3; it isn't in the files behind it either, from which debuggers learn of these.
set -euo pipefail
objdump=$1 installed=$2 sources=$3
shift 3

failures=0
expect() {
    local what=$1
    shift
    "$@" || { echo "$file: $what"; failures=$((failures + 1)); }
}

# Windows takes these from its own directory, and others from the program's folder first.
imports_what_is_safe() {
    ! sed -n 's/.*DLL Name: //p' <<<"$headers" |
        grep -ivxE '(advapi32|kernel32|msvcrt|ole32|shell32|user32|temz|temzc)\.dll'
}

# The record in which a debugger looks for what names a build.
has_build_id() { grep -E '^\(format RSDS signature [0-9a-f]{32} ' <<<"$headers" | grep -qvE ' 0{32} '; }

tells_no_time() { grep -q '^Time/Date.*1970$' <<<"$headers"; }
tells_no_place() { ! grep -qaF "$sources" "$file"; }

for file in "$installed"/bin/*.exe "$installed"/bin/*.dll; do
    headers=$("$objdump" -p "$file")
    expect "imports a library that could be dropped beside it" imports_what_is_safe
    expect "has no build id" has_build_id
    expect "tells when it was built" tells_no_time
done
for file in "$installed"/bin/*.exe "$installed"/bin/*.dll "$@"; do
    expect "tells where it was built" tells_no_place
done
for file in "$installed"/LICENSE "$installed"/THIRD-PARTY-NOTICES; do
    expect "isn't shipped" test -s "$file"
done
exit $((failures > 0))
