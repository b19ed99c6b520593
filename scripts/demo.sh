#!/usr/bin/env bash
# Sets up, builds, and takes the example product from install through upgrade to uninstall, in a
# Wine prefix of its own.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/setup.sh"
"$root/scripts/build.sh"

stage=$root/build/demo
prefix=$wine_home/demo
drive=$prefix/drive_c

title() { printf '\n=== %s ===\n' "$1"; }

tree_of_product() {
    echo "--- the product on the disk:"
    (cd "$drive" && find 'Program Files/Example Works' 2>/dev/null | sort) || echo "(nothing)"
}

# Lays a version's setup program out as it would be shipped, and runs it in a mode.
run_setup() {
    local version=$1 mode=$2 setup=$stage/v$1 status=0
    rm -rf "$setup"
    mkdir -p "$setup"
    cp "$root"/dist/bin/* "$root/examples/product/install.xml" "$setup"
    cp -r "$root/examples/product/v$version/payload" "$setup"
    title "temz $mode install.xml (version $version)"
    (
        wine_environment "$prefix"
        cd "$setup"
        wine temz.exe "$mode" install.xml
    ) || status=$?
    echo "--- exit status $status"
    tree_of_product
    return "$status"
}

stop_prefix "$prefix"
rm -rf "$prefix"
start_prefix "$prefix"
trap 'stop_prefix "$prefix"' EXIT
mkdir -p "$drive/InstallLog"

run_setup 1 install
cat "$drive/Program Files/Example Works/Greeter/greeter.txt"
run_setup 2 upgrade
cat "$drive/Program Files/Example Works/Greeter/greeter.txt"
run_setup 2 uninstall

title "The log, C:\\InstallLog\\temz.log"
cat "$drive/InstallLog/temz.log"
