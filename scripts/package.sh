#!/usr/bin/env bash
# Makes what is published in the folder $1, build/package if there is none: the SDK temz-VERSION-win64.zip,
# beside it temz-VERSION-win64-debug.zip, from which debuggers read, the package temz.VERSION.nupkg for NuGet,
# and temz-VERSION-vcpkg.zip, a port for vcpkg. The same sources and tools give the same bytes.
#
# With TEMZ_SIGN=COMMAND in the environment, the command is run for each program and library, its file as the
# last argument, and signs it in place. TEMZ_URL is where the SDK can be fetched, for the port.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

packages=$(realpath -m "${1:-$root/build/package}")
binutils=x86_64-w64-mingw32
umask 022
# The binary tools write the time into what they make unless they are told of one.
export LC_ALL=C.UTF-8 SOURCE_DATE_EPOCH=0

echo "Building what is shipped"
cd "$root"
[ -e build/release/build.ninja ] || cmake --preset release >"$root/build/configure.log"
cmake --build --preset product >"$root/build/product.log" || { cat "$root/build/product.log" >&2; exit 1; }
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' build/release/CMakeCache.txt)
sdk=$packages/temz-$version-win64
debug=$sdk-debug
nuget=$packages/nuget
port=$packages/temz-$version-vcpkg

echo "Laying out the SDK"
rm -rf "$packages"
mkdir -p "$packages"
# What debuggers read is kept beside the SDK, under the name of the file that it belongs to.
cmake --install build/release --prefix "$debug" >/dev/null
cmake --install build/release --prefix "$sdk" --strip >/dev/null
find "$debug" -type f ! -path "$debug/bin/*" -delete
for file in "$debug"/bin/*; do
    "$binutils-objcopy" --only-keep-debug "$file" "$file.debug"
    rm "$file"
done
find "$debug" -type d -empty -delete
cp "$root/LICENSE" "$debug"

if [ -n "${TEMZ_SIGN:-}" ]; then
    echo "Signing"
    find "$sdk" \( -name '*.exe' -o -name '*.dll' \) -print0 | sort -z | xargs -0 -n 1 $TEMZ_SIGN
fi

echo "Building the documents"
"$root/scripts/docs.sh" "$sdk/share/doc"

echo "Packing"
python3 "$root/packaging/spdx.py" "$sdk" "$version" >"$packages/spdx.json"
mv "$packages/spdx.json" "$sdk/temz.spdx.json"
(cd "$sdk" && find . -type f ! -name SHA256SUMS -printf '%P\0' | sort -z | xargs -0 sha256sum >SHA256SUMS)
pack() { python3 "$root/packaging/zip.py" "$1" "$1.zip" "$(basename "$1")"; }
pack "$sdk"
pack "$debug"

# For Visual C++, so there is the C interface alone.
cp -r "$root/packaging/nuget" "$nuget"
native=$nuget/build/native
install -D -m 644 -t "$native/include/temz" "$sdk"/include/temz/{temz,CustomAction}.h
install -D -m 644 -t "$native/lib/x64" "$sdk/lib/TEMZC.lib"
install -D -m 644 -t "$native/bin/x64" "$sdk"/bin/{TEMZC.dll,temz.exe}
for text in LICENSE THIRD-PARTY-NOTICES; do cp "$sdk/$text" "$nuget/$text.txt"; done
sed -i "s/@version@/$version/" "$nuget/temz.nuspec"
python3 "$root/packaging/zip.py" "$nuget" "$packages/temz.$version.nupkg"
rm -r "$nuget"

cp -r "$root/packaging/vcpkg" "$port"
sha512=$(sha512sum "$sdk.zip" | cut -d' ' -f1)
sed -i "s|@version@|$version|; s|@sha512@|$sha512|; s|@url@|${TEMZ_URL:-https://www.example.com/temz}|" \
    "$port"/temz/*
pack "$port"
(cd "$packages" && sha256sum -- *.zip *.nupkg)
