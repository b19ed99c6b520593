#!/usr/bin/env bash
# Makes hostile scripts for so many seconds, from the seed's case on, and judges each where undefined
# behaviour, misuse of the library and a damaged heap stop the program. A finding is minimised and put into
# tests/corpus, whose test then wants a line that says what is wrong with it.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

seconds=${1:?usage: scripts/fuzz.sh SECONDS [SEED]}
next=${2:-$(date +%s)}
cd "$root"
[ -e build/checked/build.ninja ] || cmake --preset checked
cmake --build --preset checked --target temz_fuzz
corpus=$root/tests/corpus
fuzz() { "$root/scripts/wine-run.sh" "$root/build/checked/tests/hostile/temz_fuzz.exe" "$corpus" "$@"; }

mkdir -p build/fuzz
cd build/fuzz
rm -f finding-*.xml
findings=0
end=$((SECONDS + seconds))
while [ "$SECONDS" -lt "$end" ]; do
    fuzz run "$next" 500 || true
    next=$((next + 500))
    for finding in finding-*.xml; do
        [ -e "$finding" ] || continue
        fuzz minimise "$finding" || true
        mv "$finding" "$corpus/found-${finding#finding-}"
        findings=$((findings + 1))
    done
done
echo "$findings findings; the next case would be $next"
[ "$findings" = 0 ]
