#!/usr/bin/env bash
# Installs what building, the demo and the daily round of tests need, and brings in the sources of
# TinyXML; with --tests, what only the other tests need, too, and with --bench, what is measured beside
# the engine. Does nothing where all of it is there.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# What each package is for stands in the README.
packages=(g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 cmake ninja-build wine wine64
    googletest clang lld llvm dpkg-dev ca-certificates locales util-linux git)
sources=(tinyxml-2.6.2)
measured=(benchmark-1.7.1 muparser-2.3.3)
case ${1:-} in
    '') ;;
    --bench)
        packages+=(nsis wixl)
        sources+=("${measured[@]}")
        ;;
    --tests)
        packages+=(clang-format clang-tidy liblnk-utils python3-jsonschema python3-yaml libxml2-utils chromium
            golang-go cargo rustc libstd-rust-dev-windows rustfmt rust-clippy mono-mcs mono-xbuild nuget
            mkdocs mkdocs-material pkg-config osslsigncode unzip
            ansible-core ansible ansible-lint)
        sources+=("${measured[@]}")
        ;;
    *) echo "usage: scripts/setup.sh [--tests|--bench]" >&2; exit 2 ;;
esac

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    quietly as_root apt-get update
    quietly as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
fi

# These come as Debian's patched source packages. Their archive is the one that this machine's apt
# already uses: a copy of its configuration asks for sources in place of binaries.
missing=()
for source in "${sources[@]}"; do
    [ -e "$deps/$source/debian" ] || missing+=("$source")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Fetching the sources: ${missing[*]}"
    rm -rf "$deps/apt" "${missing[@]/#/$deps/}"
    mkdir -p "$deps/apt/lists/partial" "$deps/apt/parts"
    cp /etc/apt/sources.list "$deps/apt/sources.list" 2>/dev/null || : >"$deps/apt/sources.list"
    cp /etc/apt/sources.list.d/*.{list,sources} "$deps/apt/parts" 2>/dev/null || true
    find "$deps/apt" -name '*.list' -exec sed -i -E '/^deb-src/d; s/^deb([[:space:]])/deb-src\1/' {} +
    find "$deps/apt" -name '*.sources' -exec sed -i -E 's/^Types:.*/Types: deb-src/' {} +
    apt_source=(-o "Dir::Etc::sourcelist=$deps/apt/sources.list" -o "Dir::Etc::sourceparts=$deps/apt/parts"
        -o "Dir::State::Lists=$deps/apt/lists" -o APT::Sandbox::User=root)
    apt-get "${apt_source[@]}" -qq update
    (cd "$deps" && apt-get "${apt_source[@]}" -qq source "${missing[@]%-*}" >apt/source.log 2>&1) ||
        { cat "$deps/apt/source.log" >&2; exit 1; }
    rm -rf "$deps/apt/lists"
fi

# Locales of our own, for the tests under the code pages 936 and 932: Wine takes the code page from them.
for locale in zh_CN ja_JP; do
    [ ! -d "$deps/locale/$locale.UTF-8" ] || continue
    mkdir -p "$deps/locale"
    localedef -i "$locale" -f UTF-8 "$deps/locale/$locale.UTF-8"
done

make_prefix "$wine_home/slot0"
