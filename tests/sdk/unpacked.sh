#!/usr/bin/env bash
# Uses the SDK as whoever has unpacked its archive, which stands in $1, in an empty folder: by CMake, by
# pkg-config, by plain command lines and at run time. Each host installs and removes the example product.
set -euo pipefail
packages=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
here=$root/tests/sdk
gcc=x86_64-w64-mingw32-gcc-posix gxx=x86_64-w64-mingw32-g++-posix
work=$packages/unpacked
rm -rf "$work"
mkdir "$work"
cd "$work"
unzip -q "$packages"/temz-*-win64.zip
unzip -q "$packages"/temz-*-win64-debug.zip
sdk=$(echo "$work"/temz-*-win64)
version=${sdk##*/temz-} version=${version%-win64}
. "$here/lives.sh"

echo "== what is inside"
(cd "$sdk" && sha256sum --quiet -c SHA256SUMS)
diff <(cd "$sdk" && find . -type f ! -name SHA256SUMS -printf '%P\n' | sort) \
    <(cut -c67- "$sdk/SHA256SUMS" | sort)
python3 - "$sdk" <<'END'
import hashlib, json, pathlib, sys
sdk = pathlib.Path(sys.argv[1])
document = json.loads((sdk / "temz.spdx.json").read_text())
for file in document["files"]:
    digest = hashlib.sha256((sdk / file["fileName"]).read_bytes()).hexdigest()
    assert digest in [sum["checksumValue"] for sum in file["checksums"]], file["fileName"]
known = {item["SPDXID"] for part in ("files", "packages") for item in document[part]} | {"SPDXRef-DOCUMENT"}
for relation in document["relationships"]:
    assert {relation["spdxElementId"], relation["relatedSpdxElement"]} <= known, relation
for package in document["packages"]:
    assert package["versionInfo"] and package["licenseDeclared"], package["name"]
END
"$root/tests/docs/documents.py" links "$sdk"

echo "== find_package"
cmake -S "$here/find-package" -B cmake -G Ninja -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_C_COMPILER=$gcc \
    -DCMAKE_CXX_COMPILER=$gxx -DTEMZ_DIR="$sdk/lib/cmake/TEMZ" -DSOURCES="$sdk" >cmake.log || { cat cmake.log; exit 1; }
cmake --build cmake >cmake.log || { cat cmake.log; exit 1; }
lives cmake/cpp_host.exe "$sdk/bin/TEMZ.dll" 'greeter.txt'
lives cmake/c_host.exe "$sdk/bin/TEMZC.dll" 'Installed and removed'

echo "== pkg-config"
export PKG_CONFIG_PATH=$sdk/lib/pkgconfig
[ "$(pkg-config --modversion temzc)" = "$version" ]
$gcc "$sdk/examples/c/main.c" $(pkg-config --cflags --libs temzc) -o by-pkg-config.exe
lives by-pkg-config.exe "$sdk/bin/TEMZC.dll" 'Installed and removed'
$gxx -static "$sdk/examples/minimal/main.cpp" "$sdk/host/SafeStart.cpp" -I"$sdk/host" \
    $(pkg-config --cflags --libs temz) -o cpp-by-pkg-config.exe
lives cpp-by-pkg-config.exe "$sdk/bin/TEMZ.dll" 'greeter.txt'

echo "== plain command lines"
$gcc "$sdk/examples/c/main.c" -I"$sdk/include" "$sdk/lib/libTEMZC.dll.a" -o plain.exe
lives plain.exe "$sdk/bin/TEMZC.dll" 'Installed and removed'

echo "== at run time"
$gcc -Wall -Wextra -Werror "$here/explicit.c" -I"$sdk/include" -o explicit.exe
lives explicit.exe "$sdk/bin/TEMZC.dll" 'Installed and removed'

echo "== the console host"
lives "$sdk/bin/temz.exe" "$sdk/bin/TEMZC.dll" "temz $version" --version
lives "$sdk/bin/temz.exe" "$sdk/bin/TEMZC.dll" '^Done: ' install install.xml --passive
lives "$sdk/bin/temz.exe" "$sdk/bin/TEMZC.dll" '^Done: ' uninstall install.xml --passive

echo "== an address in a crash report"
# Where a function of the interface begins, as the library itself tells, and what debuggers make of it.
address=$(x86_64-w64-mingw32-objdump -p "$sdk/bin/TEMZC.dll" | python3 -c '
import re, sys
text = sys.stdin.read()
base = int(re.search(r"^ImageBase\s+([0-9a-f]+)", text, re.M).group(1), 16)
names = re.findall(r"^\s*\[\s*\d+\](?:\s+\+base\[\s*\d+\]\s+[0-9a-f]+)?\s+(\w+)$", text, re.M)
places = re.findall(r"^\s*\[\s*\d+\] \+base\[\s*\d+\] ([0-9a-f]{4,}) Export RVA$", text, re.M)
print(hex(base + int(places[names.index("temz_version")], 16)))')
x86_64-w64-mingw32-addr2line -f -e "$sdk-debug/bin/TEMZC.dll.debug" "$address" | tee told
grep -q temz_version told
grep -q 'capi/temz.cpp' told
