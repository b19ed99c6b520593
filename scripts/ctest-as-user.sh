#!/usr/bin/env bash
# Lets root run the tests of the built preset $1 as a user without any rights, in Wine prefixes of that
# user's own. The build folder becomes that user's, since tests write beside their programs.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

preset=$1
as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
if ! "${as_user[@]}" test -r "$root/build/$preset/CTestTestfile.cmake"; then
    echo "NOT TESTED as an ordinary user, who can't read $root: use a folder that everybody can read." >&2
    exit
fi

export TEMZ_WINE_HOME=$root/build/wine-user
rm -rf "$TEMZ_WINE_HOME"
mkdir "$TEMZ_WINE_HOME"
give_back() {
    chown -R "$(id -u):$(id -g)" "$root/build/$preset"
    rm -rf "$TEMZ_WINE_HOME"
}
trap give_back EXIT
chown -R 65534:65534 "$TEMZ_WINE_HOME" "$root/build/$preset"
"${as_user[@]}" "$root/scripts/ctest.sh" "$@"
