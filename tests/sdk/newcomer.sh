#!/usr/bin/env bash
# Goes the way of somebody who has unpacked the SDK, whose archive stands in the folder $1, and does what its
# READMEs show, language by language: each host installs the example product, and the product is removed.
set -euo pipefail
packages=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$packages/newcomer
rm -rf "$work"
mkdir -p "$work/home"
cd "$work"
unzip -q "$packages"/temz-*-win64.zip
mv temz-*-win64 sdk
# The tools of the languages write there, fetch nothing, and are Debian's.
export HOME=$work/home CARGO_NET_OFFLINE=true GOPROXY=off GOFLAGS=-buildvcs=false PATH=/usr/bin:/bin
unset CARGO_HOME GOPATH GOCACHE RUSTC RUSTFLAGS PKG_CONFIG_PATH

# begin LANGUAGE PAGE: a folder of one's own, and the page that is followed there.
begin() {
    echo "== $1"
    mkdir -p "$work/$1"
    cd "$work/$1"
    page=$work/sdk/$2
}

# block LANGUAGE [NUMBER]: the page's block of code, the first if no other is asked for.
block() {
    awk -v fence="\`\`\`$1" -v wanted="${2:-1}" '
        $0 == "```" { inside = 0 }
        inside { print }
        $0 == fence { inside = ++count == wanted }' "$page" >block
    [ -s block ] || { echo "$page shows no such $1." >&2; exit 1; }
    cat block
}
carry_out() { bash -euxc "$(block sh "${1:-1}")" >log 2>&1 || { cat log; exit 1; }; }


# runs INSTALL REMOVE: two command lines of Windows, on one machine, where another test may have left the
# product.
runs() {
    cat >life.bat <<BAT
@echo off
set greeter="C:\Program Files\Example Works\Greeter\greeter-service.exe"
if exist %greeter% ..\sdk\bin\temz.exe uninstall install.xml
if exist %greeter% exit /b 1
$1
if errorlevel 1 exit /b 1
if not exist %greeter% exit /b 1
$2
if errorlevel 1 exit /b 1
if exist %greeter% exit /b 1
BAT
    "$root/scripts/wine-run.sh" cmd /c life.bat >log 2>&1 </dev/null || { cat log; exit 1; }
}

begin C++ README.md
cp ../sdk/examples/minimal/main.cpp ../sdk/host/SafeStart.* .
block cmake >CMakeLists.txt
carry_out 1
runs setup.exe '..\sdk\bin\temz.exe uninstall install.xml'

begin C README.md
cp ../sdk/examples/c/main.c .
carry_out 2
"$root/scripts/wine-run.sh" setup.exe >log </dev/null || { cat log; exit 1; }
grep -q '^Installed and removed' log

begin Go bindings/go/README.md
block go >main.go
carry_out
runs host.exe 'host.exe uninstall'

cd "$work"
cargo new --quiet --vcs none host
begin host bindings/rust/README.md
block toml | tail -n +2 >>Cargo.toml
block rust >src/main.rs
carry_out
runs host.exe 'host.exe uninstall'

# There is nothing here that could run it.
begin C# bindings/csharp/README.md
block csharp >Program.cs
carry_out
test -s host.exe
