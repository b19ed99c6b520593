#!/usr/bin/env bash
# Takes the built example product from install through upgrade to uninstall, in a Wine prefix of its
# own, and compares the machine before and after: fails when anything but the script's own leavings
# is left.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build=${1:-$root/build/release}
stage=$build/example
prefix=$wine_home/example
drive=$prefix/drive_c

title() { printf '\n=== %s ===\n' "$1"; }

in_wine() {
    (
        wine_environment "$prefix"
        wine "$@" </dev/null
    )
}

tree_of_product() {
    echo "--- the product on the machine:"
    {
        (cd "$drive" && find 'Program Files/Example Works' \
            'ProgramData/Microsoft/Windows/Start Menu/Programs/Example Works' 2>/dev/null) || true
        registry_lines | grep -E 'Example Works|TemzExample' | grep -v '"ImagePath"' || true
    } | sort
}

# Lays a version's setup program out as it would be shipped, and runs it in a mode.
run_setup() {
    local version=$1 mode=$2 setup=$stage/v$1 status=0
    rm -rf "$setup"
    mkdir -p "$setup"
    cp "$build/capi/TEMZC.dll" "$build/host/temz.exe" "$root/examples/product/install.xml" "$setup"
    cp -r "$root/examples/product/payload" "$root/examples/product/v$version/payload" "$setup"
    cp "$build/examples/greeter-action.dll" "$build/examples/greeter-service.exe" "$setup/payload"
    title "temz $mode install.xml (version $version)"
    (cd "$setup" && in_wine temz.exe "$mode" install.xml) || status=$?
    echo "--- exit status $status"
    tree_of_product
    return "$status"
}

# The registry as one line for each key and each value, with the key in front.
registry_lines() {
    in_wine regedit /E 'C:\registry.reg' >/dev/null 2>&1
    iconv -f UTF-16 -t UTF-8 "$drive/registry.reg" | tr -d '\r' |
        sed -e ':join' -e '/\\$/{N;s/\\\n *//;b join' -e '}' |
        awk '/^\[/ { key = $0; print key; next } /./ { print key " " $0 }'
    rm "$drive/registry.reg"
}

# What Wine writes by itself whenever a program needs its desktop or its service manager.
wine_own='^\[HKEY_LOCAL_MACHINE\\(Hardware|System\\CurrentControlSet\\(Hardware Profiles|'
wine_own+='Control\\(Class|DeviceClasses|ServiceCurrent|Video)))[]\\]|\\Temporary System Parameters\\'

# The machine as text: its files with their sizes and times, its services, the replacements that wait
# for a restart, and all the rest of the registry.
take_snapshot() {
    local folder=$stage/$1
    mkdir -p "$folder"
    registry_lines | grep -Ev "$wine_own" | sort >"$folder/all"
    (cd "$drive" && find . \( -type d -printf '%P/\n' \) -o -printf '%P, %s bytes of %t\n') |
        sort >"$folder/files"
    grep -F 'CurrentControlSet\Services\' "$folder/all" >"$folder/services" || true
    grep -F '"PendingFileRenameOperations"' "$folder/all" >"$folder/pending restarts" || true
    grep -Fv -e 'CurrentControlSet\Services\' -e '"PendingFileRenameOperations"' "$folder/all" \
        >"$folder/registry"
    rm "$folder/all"
}

# What is new (+) or gone (-), without sizes and times, and with the stamps of the run made alike.
differences() {
    local kind=$1
    { diff "$stage/before/$kind" "$stage/after/$kind" || true; } | sed -n 's/^> /+ /p; s/^< /- /p' |
        sed -E -e 's/, [0-9]+ bytes of .*//' -e 's/greeter[0-9]+\.ico/greeter(stamp).ico/' |
        LC_ALL=C sort -u
}

compare() {
    local kind
    for kind in files registry services 'pending restarts'; do
        echo "$kind:"
        differences "$kind" | sed 's/^/    /' | grep . || echo "    (the same)"
    done
}

# What the script leaves behind: the user's notes with the folders around them, the copies of the
# icon that the shortcut was made with, the key that the company's products share, and the log.
leavings() {
    cat <<'END'
files:
    + InstallLog/temz.log
    + Program Files/Example Works/
    + Program Files/Example Works/Greeter/
    + Program Files/Example Works/Greeter/doc/
    + Program Files/Example Works/Greeter/doc/notes.txt
    + Program Files/Example Works/Greeter/greeter(stamp).ico
registry:
    + [HKEY_LOCAL_MACHINE\Software\Example Works]
services:
    (the same)
pending restarts:
    (the same)
END
}

rm -rf "$stage"
stop_prefix "$prefix"
rm -rf "$prefix"
start_prefix "$prefix"
trap 'stop_prefix "$prefix"' EXIT
mkdir -p "$drive/InstallLog"
take_snapshot before

run_setup 1 install
cat "$drive/Program Files/Example Works/Greeter/"{greeter,welcome,cache/greeting}.txt
run_setup 2 upgrade
cat "$drive/Program Files/Example Works/Greeter/greeter.txt"
run_setup 2 uninstall

title "The log, C:\\InstallLog\\temz.log"
cat "$drive/InstallLog/temz.log"

title "The machine after the uninstall, compared with before the install"
take_snapshot after
compare | tee "$stage/comparison"
echo
if ! diff <(leavings) "$stage/comparison" >"$stage/unexpected"; then
    echo "This isn't what the script is meant to leave behind:"
    cat "$stage/unexpected"
    exit 1
fi
echo "That is what the script is meant to leave behind, and nothing else."
