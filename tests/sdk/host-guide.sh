#!/usr/bin/env bash
# Carries out the commands by which the host guide builds hosts, as they stand there, with the SDK installed
# in $1 and the sources $2, and runs what comes of them. In $3 lies the example product.
set -euo pipefail
installed=$1 sources=$2 product=$3

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
ln -s "$installed" dist
ln -s "$sources/host" "$sources/examples" .
cp "$sources/examples/c/main.c" "$installed"/bin/TEMZ*.dll "$product/install.xml" .
cp -r "$product/payload" .

# A command goes on behind a backslash.
sed -nE 's/^    (x86_64-w64-mingw32-(gcc|g\+\+|windres).*)/\1/p; s/^        (-.*)/\1/p' "$sources/docs/host-guide.md" >commands
if [ "$(grep -c ^x86_64 commands)" != 3 ]; then
    echo "The guide's commands aren't those that this test was written for:"
    cat commands
    exit 1
fi
bash -eux commands

# Tells a host's last line.
last_line() { "$sources/scripts/wine-run.sh" "$@" </dev/null | tr -d '\r' | tail -n 1; }

failures=0
expect() {
    if [ "$1" != "$2" ]; then
        echo "\"$1\" isn't \"$2\"."
        failures=$((failures + 1))
    fi
}
expect "$(last_line main.exe)" "Installed and removed."
printf '%s' '<Script><Product><InstallExecuteSequence><Fragment><Caution Title="Hello"/></Fragment>' \
    '</InstallExecuteSequence></Product></Script>' >install.xml
expect "$(last_line minimal.exe)" "  0%  Hello"
cmp "$installed/lib/TEMZC.lib" "$product/../../capi/TEMZC.lib" || failures=$((failures + 1))
exit $((failures > 0))
