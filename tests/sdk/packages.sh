#!/usr/bin/env bash
# Packages the project that is built in $1, twice: as it stands, and from a copy of its sources in the
# folder $2, with another umask and other times. Both must have the same bytes. The archives stay in $2.
set -euo pipefail
build=$1 work=$2
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

rm -rf "$work"
mkdir -p "$work/a folder of another name/build"
copy="$work/a folder of another name"
[ "$build" = "$root/build/release" ] || { echo "Only the release build is packaged." >&2; exit 1; }
(
    umask 077
    tar -C "$root" --exclude=./build --exclude=./dist --exclude=./.git -c . | tar -C "$copy" --touch -x
    cp -r "$root/build/deps" "$copy/build"
    cd "$copy"
    scripts/package.sh ../copied
)
rm -rf "$copy"
"$root/scripts/package.sh" "$work/packages"
cd "$work/packages"
archives=$(echo *.zip *.nupkg)
for archive in $archives; do
    cmp "$archive" "../copied/$archive"
done
echo "Twice the same bytes: $archives"
rm -rf ../copied
