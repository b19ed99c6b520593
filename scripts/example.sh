#!/usr/bin/env bash
# Takes the built example product from install through upgrade to uninstall, in a Wine prefix of its
# own, and compares the machine before and after: fails when anything but the script's own leavings
# is left.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build=${1:-$root/build/release}
stage=$build/example
product=$stage/examples/product
prefix=$wine_home/example
drive=$prefix/drive_c

# Lays both versions' setup programs out as they would be shipped.
lay_out() {
    rm -rf "$stage"
    cmake --install "$build" --component product --prefix "$stage" --strip >/dev/null
    local version
    for version in "$product"/v1 "$product"/v2; do
        cp "$build/capi/TEMZC.dll" "$build/host/temz.exe" "$version"
    done
}

verify() {
    (
        wine_environment "$prefix"
        cd "$product/v2"
        wine temz.exe verify install.xml --upgrade-from '..\v1\install.xml' --on-this-machine </dev/null
    )
}

# What the script leaves behind: the user's notes with the folders around them, the copies of the
# icon that the shortcut was made with, and the key that the company's products share.
leavings() {
    cat <<'END'
file      C:\Program Files\Example Works\Greeter\doc\notes.txt
file      C:\Program Files\Example Works\Greeter\greeter(stamp).ico
directory C:\Program Files\Example Works
directory C:\Program Files\Example Works\Greeter
directory C:\Program Files\Example Works\Greeter\doc
key       HKEY_LOCAL_MACHINE\Software\Example Works
END
}

# The findings of the report $1, with the stamps of the run made alike.
findings() {
    sed -n '/^--- the machine/,$p' "$1" | tr -d '\r' |
        sed -nE -e 's/greeter[0-9]+\.ico/greeter(stamp).ico/' -e 's/^    (.*)  \(.*\)$/\1/p' | uniq
}

lay_out
stop_prefix "$prefix"
rm -rf "$prefix"
start_prefix "$prefix"
trap 'stop_prefix "$prefix"' EXIT
mkdir -p "$drive/InstallLog"

verify | tee "$stage/report" || status=$?
printf '\nThe log, C:\\InstallLog\\temz.log:\n'
cat "$drive/InstallLog/temz.log"
echo
# 1 is the code of a machine that isn't as it was.
if [ "${status:-0}" != 1 ] || ! diff <(leavings) <(findings "$stage/report"); then
    echo "This isn't what the script is meant to leave behind." >&2
    exit 1
fi
echo "That is what the script is meant to leave behind, and nothing else."
