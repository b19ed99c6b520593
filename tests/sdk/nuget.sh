#!/usr/bin/env bash
# Takes the package for NuGet in the folder $1 as its users do: a client installs it, and a project that
# imports its targets builds the host of its README, which installs and removes the example product.
set -euo pipefail
packages=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
here=$root/tests/sdk
work=$packages/by-nuget
rm -rf "$work"
mkdir -p "$work/home" "$work/packages"
cd "$work"
# The tools write there.
export HOME=$work/home LC_ALL=C.UTF-8
unzip -q "$packages"/temz-*-win64.zip '*/examples/*'
sdk=$(echo "$work"/temz-*-win64)
. "$here/lives.sh"
cp "$packages"/temz.*.nupkg packages

echo "== what is inside"
"$here/nuget/package.py" parts packages/*.nupkg
# block LANGUAGE: the README's block of it.
block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" "$root/packaging/nuget/README.md"; }
block sh >commands
bash -eux commands
package=$(echo "$work"/installed/temz.*)

echo "== the manifest by the client's schema"
# It is older than two of the elements, which it reads over where it installs.
mkdir written
block c | tee main.c >written/main.c
unzip -p packages/*.nupkg temz.nuspec |
    sed 's|<license .*</license>||; s|<readme>.*</readme>||
        s|</package>|<files><file src="main.c"/></files></package>|' >written/temz.nuspec
nuget pack written/temz.nuspec -NonInteractive -OutputDirectory written

echo "== a build by the targets"
"$here/nuget/package.py" definitions "$package/build/native"
cp "$here/nuget/host.proj" .
project() { xbuild /nologo /verbosity:quiet "/p:Package=$package" /p:Compiler=x86_64-w64-mingw32-gcc "$@" host.proj; }
project >built || { cat built; exit 1; }
cmp out/TEMZC.dll "$package/build/native/bin/x64/TEMZC.dll"
lives out/host.exe out/TEMZC.dll '^Done'
run_host uninstall
project /t:Clean
[ ! -e out/TEMZC.dll ]
if project /p:Platform=Win32 >refused; then
    echo "A build for x86 is accepted."
    exit 1
fi
grep -q 'temz is for the platform x64, and this is Win32' refused
