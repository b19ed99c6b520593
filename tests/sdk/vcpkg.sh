#!/usr/bin/env bash
# Takes the port for vcpkg in the folder $1 as its users do, but for vcpkg, in whose place run-port.cmake runs
# the port's script: hosts find the package by CMake, and install and remove the example product.
set -euo pipefail
packages=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
here=$root/tests/sdk
work=$packages/by-vcpkg
rm -rf "$work"
mkdir "$work"
cd "$work"
unzip -q "$packages"/temz-*-win64.zip '*/examples/*' '*/host/*'
unzip -q "$packages"/temz-*-vcpkg.zip
sdk=$(echo "$work"/temz-*-win64)
port=$(echo "$work"/temz-*-vcpkg/temz)
. "$here/lives.sh"

echo "== the manifest"
python3 - "$here/vcpkg/vcpkg.schema.json" "$port/vcpkg.json" <<'PYTHON'
import json, sys
from jsonschema import Draft7Validator
schema, manifest = (json.load(open(path)) for path in sys.argv[1:])
Draft7Validator.check_schema(schema)
Draft7Validator(schema).validate(manifest)
PYTHON
if grep -n '@' "$port"/*; then exit 1; fi

install_port() { # TRIPLET DOWNLOADS
    rm -rf "$work/installed"
    cmake -D PORT_FOLDER="$port" -D TARGET_TRIPLET="$1" -D DOWNLOADS="$2" -D PACKAGE="$work/installed/$1" \
        -P "$here/vcpkg/run-port.cmake" >log 2>&1
}

# holds TRIPLET: nothing but the files of the standard input, in all places where vcpkg wants a library's.
holds() {
    diff <(cat; for file in TEMZConfig.cmake TEMZConfigVersion.cmake copyright usage; do echo "share/temz/$file"
            done; printf 'tools/temz/%s\n' TEMZC.dll temz.exe) \
        <(cd "$work/installed/$1" && find . -type f -printf '%P\n' | LC_ALL=C sort)
    [ "$(grep -c '^LICENSE:\|^THIRD-PARTY-NOTICES:' "$work/installed/$1/share/temz/copyright")" = 2 ] ||
        { echo "A licence isn't there."; exit 1; }
    "$root/scripts/wine-run.sh" "$work/installed/$1/tools/temz/temz.exe" --version </dev/null
}

build() { # TRIPLET COMPONENTS
    rm -rf cmake
    cmake -S "$here/find-package" -B cmake -G Ninja -DCMAKE_SYSTEM_NAME=Windows \
        -DCMAKE_C_COMPILER=x86_64-w64-mingw32-gcc-posix -DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix \
        -DCMAKE_FIND_ROOT_PATH="$work/installed/$1" -DSOURCES="$sdk" -DCOMPONENTS="$2" "${@:3}" >log &&
        cmake --build cmake >>log || { cat log; exit 1; }
}

for triplet in x64-windows x64-mingw-dynamic; do
    echo "== $triplet"
    install_port $triplet "$packages" || { cat log; exit 1; }
    case $triplet in
        x64-windows)
            holds $triplet <<'FILES'
bin/TEMZC.dll
debug/bin/TEMZC.dll
debug/lib/TEMZC.lib
include/temz/CustomAction.h
include/temz/temz.h
lib/TEMZC.lib
FILES
            build $triplet temzc -DAS_VISUAL=ON
            ;;
        *)
            holds $triplet <<'FILES'
bin/TEMZ.dll
bin/TEMZC.dll
debug/bin/TEMZ.dll
debug/bin/TEMZC.dll
debug/lib/libTEMZ.dll.a
debug/lib/libTEMZC.dll.a
include/temz/Abi.h
include/temz/CustomAction.h
include/temz/IterfaceContext.h
include/temz/IterfaceObserver.h
include/temz/IterfaceProduct.h
include/temz/temz.h
lib/libTEMZ.dll.a
lib/libTEMZC.dll.a
FILES
            build $triplet 'temz;temzc'
            lives cmake/cpp_host.exe "$work/installed/$triplet/bin/TEMZ.dll" 'greeter.txt'
            ;;
    esac
    lives cmake/c_host.exe "$work/installed/$triplet/bin/TEMZC.dll" 'Installed and removed'
done

echo "== another archive than the published one"
mkdir downloads
for archive in "$packages"/temz-*-win64.zip; do
    cp "$archive" downloads
    printf x >>"downloads/${archive##*/}"
done
if install_port x64-windows "$work/downloads" || ! grep -q "The checksum isn't the port's" log; then
    echo "It is accepted."
    exit 1
fi
