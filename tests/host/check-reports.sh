#!/usr/bin/env bash
# Checks scripts by temz.exe ($1), which needs the library $2, and has what it reports as JSON and as
# SARIF looked at by a validator that has nothing to do with the program; $3 is the schema of the
# lines. Where SARIF_SCHEMA names the standard's own schema, the documents are held against that, too.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../support/temz.sh"
schema=$3

# check NAME EXIT-CODE FINDINGS ARGUMENTS: a check, and the codes of what it finds.
check() {
    local name=$1 expected=$2 findings=$3 code=0
    shift 3
    temz check "$@" --json --sarif "$name.sarif" >"$name.out" || code=$?
    expect_code "$name" $code "$expected"
    "$here/valid-json.py" "$schema" "$name.out" lines || fail "$name: see $work/$name.out"
    [ "$(sed -n 's/.*"event":"finding".*"code":"\([^"]*\)".*/\1/p' "$name.out" | tr '\n' ' ')" = "$findings" ] ||
        fail "$name: other findings than \"$findings\": see $work/$name.out"
    [ "$code" -le 1 ] || return 0
    for sarif in "$here/sarif.schema.json" ${SARIF_SCHEMA:+"$SARIF_SCHEMA"}; do
        "$here/valid-json.py" "$sarif" "$name.sarif" || fail "$name: see $work/$name.sarif"
    done
    [ "$(grep -o '"ruleId":"[^"]*"' "$name.sarif" | cut -d'"' -f4 | tr '\n' ' ')" = "$findings" ] ||
        fail "$name: other results than \"$findings\": see $work/$name.sarif"
}

printf '<?xml version="1.0" encoding="UTF-8"?>
<Script><Product><InstallExecuteSequence><Fragment On="install"><Caution Title="%s"/></Fragment>
</InstallExecuteSequence></Product></Script>' '&quot;fine&quot; \ ä 安' >good.xml
sed 's/Caution/Cautoin/' good.xml >'mäßig gut.xml'
printf '<Script>' >broken.xml

check good 0 '' good.xml
check faulty 1 'TZ203 ' 'mäßig gut.xml'
check whole-path 1 'TZ203 ' "$folder\\mäßig gut.xml"
check ignored 0 '' 'mäßig gut.xml' --ignore TZ203
check broken 1 'TZ101 ' broken.xml
check absent 2 '' absent.xml

# A payload with a link to itself, which Wine's own calls can't make.
mkdir -p payload/in
ln -s .. payload/in/around
touch payload/in/extra.txt
check around 0 'TZ522 ' good.xml --payload payload
check no-payload 2 '' good.xml --payload nowhere
grep -q 'nowhere can.t be read: .*\[error 3\]' no-payload.out || fail "no-payload: the folder isn't named."
check command-line $((1639 % 256)) '' good.xml --frobnicate
grep -q '"uri":"m%C3%A4%C3%9Fig%20gut.xml"' faulty.sarif || fail "faulty: the address is wrong."
grep -q '"uri":"file:///Z:/.*/m%C3%A4%C3%9Fig%20gut.xml"' whole-path.sarif || fail "whole-path: the address is wrong."
exit $status
