#!/usr/bin/env bash
# Tells where in the sources $1 another version stands than $2, the project's. Nothing else writes it there.
set -euo pipefail
cd "$1"
version=$2
IFS=. read -r major minor patch <<<"$version"

failures=0
while IFS='|' read -r file text; do
    grep -qF -- "$text" "$file" || { echo "$file has no: $text"; failures=$((failures + 1)); }
done <<PLACES
CHANGELOG.md|## $version,
README.md|find_package(TEMZ $major.$minor
docs/host-guide.md|temz-$version-win64-debug/
docs/temz.md|temz $version:
bindings/csharp/Native.cs|VersionMajor = $major, VersionMinor = $minor, VersionPatch = $patch;
bindings/go/constants.go|const HeaderVersion = Version($major<<24 | $minor<<12 | $patch)
bindings/rust/Cargo.toml|version = "$version"
bindings/rust/Cargo.lock|version = "$version"
PLACES
exit $((failures > 0))
