#!/usr/bin/env bash
# Verifies a product by temz.exe ($1), which needs the library $2, with --json, and has every line that
# it writes checked against the schema $3 by a validator that has nothing to do with the program.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
wine_run=$here/../../scripts/wine-run.sh
schema=$3
work=$(dirname "$1")/verify-lines
rm -rf "$work"
mkdir "$work"
cp "$1" "$2" "$work"
cd "$work"
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
"$wine_run" "$work/temz.exe" uninstall lost.xml >/dev/null

status=0
# check SCRIPT EVENT...: the lines of a verification, and what must stand among them.
check() {
    local code=0
    "$wine_run" "$work/temz.exe" verify "$1" --on-this-machine --json </dev/null >"$1.out" || code=$?
    "$here/verify-lines.py" "$schema" "$1.out" "$code" "${@:2}" || {
        echo "$1: see $work/$1.out" >&2
        status=1
    }
}
check absent.xml
check left.xml run:install run:uninstall installed difference:left
check lost.xml run:install run:uninstall installed difference:lost
check lost.xml run:install run:uninstall installed
exit $status
