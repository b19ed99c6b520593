#!/usr/bin/env bash
# Verifies a product by temz.exe ($1), which needs the library $2, with --json, and has every line that
# it writes checked against the schema $3 by a validator that has nothing to do with the program.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../support/temz.sh"
schema=$3
echo content >there.txt

# The first product leaves its directory behind, and the second takes that away.
script() {
    printf '%s' "<Script><Product><Directory Id='D' Path='C:\\verify-lines'><Component Id='C'>" \
        "<File Name='there.txt' Source='there.txt'/></Component></Directory>" \
        "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>$2" \
        "</InstallExecuteSequence></Product></Script>" >"$1"
}
script left.xml ''
script lost.xml "<Fragment On='uninstall'><RemoveDirectory Path='[D]'/></Fragment>"
# All in one prefix.
export TEMZ_WINE_SLOTS=1
temz uninstall lost.xml >/dev/null

# check SCRIPT EVENT...: the lines of a verification, and what must stand among them.
check() {
    local code=0
    temz verify "$1" --json $consent >"$1.out" || code=$?
    "$here/verify-lines.py" "$schema" "$1.out" "$code" "${@:2}" || fail "$1: see $work/$1.out"
}
consent=
check left.xml
consent=--on-this-machine
check absent.xml
check left.xml run:install run:uninstall installed difference:left
check lost.xml run:install run:uninstall installed difference:lost
check lost.xml run:install run:uninstall installed
exit $status
