#!/usr/bin/env bash
# Runs scripts by temz.exe ($1), which needs the library $2, with --json, and has every line that it
# writes checked against the schema $3 by a validator that has nothing to do with the program.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../support/temz.sh"
schema=$3
echo content >there.txt

# A script whose component holds the elements.
script() {
    printf '%s' "<Script><Product><Directory Path='$folder\\app'><Component Id='C'>$2</Component>" \
        "</Directory><InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>" \
        "</InstallExecuteSequence></Product></Script>" >"$1"
}

# check NAME EXIT-CODE ARGUMENTS -- EVENT...: a run, and what must stand among its lines.
check() {
    local name=$1 expected=$2 code=0 arguments others
    split "${@:3}"
    temz --json "${arguments[@]}" >"$name.out" 2>"$name.err" || code=$?
    expect_code "$name" $code "$expected"
    "$here/json-lines.py" "$schema" "$name.out" "end:$expected" "${others[@]}" ||
        fail "$name: see $work/$name.out"
}

# Texts with all that JSON must escape, and more than ASCII.
caution='<Caution Title="&quot;quoted&quot; \ ä 安 &#9; &#x1F4BE;"/>'
fine="<File Name='fine.txt' Source='there.txt'/>"
missing="<File Name='missing.txt' Source='nowhere.txt'/>"
optional="<File Name='optional.txt' Source='nowhere.txt' Vital='no'/>"

script good.xml "$caution$fine"
script bad.xml "$fine$missing"
script optional.xml "$optional$fine"
printf '<Script>' >broken.xml

check success 0 install good.xml -- action action-end:done
check verbose 0 install good.xml --verbose -- call:file action-end:done
check uninstall 0 uninstall good.xml --verbose -- call:log call:file action-end:done
check failure 1603 install bad.xml -- action-end:done action-end:failed failure:2
check retry 1603 install bad.xml --on-error retry:1,0 -- action-end:failed failure:2
check ignored 1603 install bad.xml --on-error ignore -- action-end:ignored failure:2
check accepted 0 install bad.xml --on-error ignore --accept-ignored -- action-end:ignored
check not-vital 0 install optional.xml -- action-end:not-vital failure:2 action-end:done
check command-line 1639 instal good.xml --
check topic 1639 explain nonsense --
check log 1622 install good.xml --log nowhere/run.log --
check absent 1619 install absent.xml --
check broken 1620 install broken.xml --
printf '<!--\344-->%s' "$(cat good.xml)" >latin.xml
check misread 0 install latin.xml -- warning
exit $status
