#!/usr/bin/env bash
# Carries out what the README tells, as it stands there, in a folder $1 beside what looks like an SDK, whose
# library is $2, and runs what comes of it with the example product, which lies beside the library.
set -euo pipefail
scratch=$1 library=$2
sources=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

rm -rf "$scratch"
mkdir -p "$scratch/sdk/bin" "$scratch/sdk/bindings" "$scratch/host"
ln -s "$sources" "$scratch/sdk/bindings/go"
cp "$library" "$scratch/sdk/bin"
cd "$scratch/host"
block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" "$sources/README.md"; }
block go >main.go
test -z "$(gofmt -l .)"
block sh >commands
bash -eux commands

cp -r "$(dirname "$library")"/{install.xml,payload} .
"$sources/../../scripts/wine-run.sh" cmd /c 'host.exe && host.exe uninstall' | tr -d '\r' >told
cat told
[ "$(grep -c '^Done\.$' told)" = 2 ]
