#!/usr/bin/env bash
# Packages the project once more, in the folder $1, each program and library signed by a certificate that
# is made for that, and has the signatures looked at.
set -euo pipefail
work=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
rm -rf "$work"
mkdir -p "$work"
cd "$work"
openssl req -x509 -newkey rsa:2048 -nodes -keyout key.pem -out certificate.pem -days 2 \
    -subj '/CN=A test' -addext extendedKeyUsage=codeSigning 2>openssl.log || { cat openssl.log; exit 1; }
cat >sign <<END
#!/bin/sh -e
osslsigncode sign -certs '$work/certificate.pem' -key '$work/key.pem' -h sha256 -in "\$1" -out "\$1.signed" >/dev/null
mv "\$1.signed" "\$1"
END
chmod +x sign
TEMZ_SIGN=$work/sign "$root/scripts/package.sh" "$work/packages"

cd packages/temz-*-win64
signed=0
while read -r file; do
    osslsigncode verify -in "$file" -CAfile "$work/certificate.pem" >"$work/verify.log" 2>&1 ||
        { echo "$file: the signature isn't right."; cat "$work/verify.log"; exit 1; }
    signed=$((signed + 1))
done < <(find . -name '*.exe' -o -name '*.dll')
sha256sum --quiet -c SHA256SUMS
# The libraries, the console host, and what either version of the example product installs.
[ "$signed" = 7 ] || { echo "$signed files are signed, not 7."; exit 1; }
# A file that was changed after it was signed is told.
printf x | dd of=bin/temz.exe bs=1 seek=4096 conv=notrunc 2>/dev/null
! osslsigncode verify -in bin/temz.exe -CAfile "$work/certificate.pem" >/dev/null 2>&1
