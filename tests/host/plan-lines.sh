#!/usr/bin/env bash
# Plans scripts by temz.exe ($1), which needs the library $2, and has what it writes looked at by what
# has nothing to do with the program: each line of --json by a validator with the schema $3, the page
# of --html by a browser.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../support/temz.sh"
schema=$3
echo content >there.txt

printf '%s' "<Script><Product><Directory Path='$folder\\app'><Component Id='C'>" \
    "<File Name='a.txt' Source='there.txt'/><Condition Expression='OS_BIT E 32'>" \
    "<File Name='b.txt' Source='there.txt'/></Condition>" \
    "<FileSearch Name='there.txt' Path='$folder' Expression='OS_BIT E 64'/>" \
    "<File Name='missing.txt' Source='nowhere.txt'/>" \
    "<RegistryKey Action='create' Root='HKEY_CURRENT_USER' Key='Software\\temz &lt;b&gt;'/>" \
    "<Caution Title='&quot;quoted&quot; \\ ä 安 &#9; &#x1F4BE; &lt;script&gt;'/></Component></Directory>" \
    "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>" \
    "<Fragment On='uninstall'/></InstallExecuteSequence></Product></Script>" >install.xml

# check SCRIPT EXIT-CODE ARGUMENTS -- KIND...: a plan, and what must stand among its lines.
check() {
    local script=$1 expected=$2 code=0 arguments others
    split "${@:3}"
    temz plan "$script" --json "${arguments[@]}" >plan.out || code=$?
    expect_code "$script ${arguments[*]}" $code "$expected"
    "$here/plan-lines.py" "$schema" plan.out "end:$expected" "${others[@]}" ||
        fail "$script ${arguments[*]}: see $work/plan.out"
}

check install.xml 1 --html plan.html -- group element condition search action failure left-out \
    change:file-added change:directory-added change:key-added
check install.xml 0 --mode uninstall -- group condition
printf '<Script>' >broken.xml
check absent.xml 1619 --
check broken.xml 1620 --
check install.xml 1639 --assume NONE=1 --
check install.xml 1639 --nonsense --
check install.xml 2 --out nowhere/a.plan -- group element

# lines FRAGMENT: what the page shows when it is opened with this search and these filters. The
# browser's own files stay here, and its sandbox would want what root and a container don't give.
lines() {
    HOME=$work/browser chromium --headless --no-sandbox --disable-gpu --user-data-dir=browser \
        --dump-dom "file://$work/plan.html#$1" >page.out 2>browser.err || {
        echo "The browser fails, which scripts/setup.sh installs: $(tail -3 browser.err)" >&2
        exit 1
    }
    grep '^<li' page.out | grep -v ' hidden' || true
}

mkdir browser
all=$(lines '')
files=$(lines 'show=file')
found=$(lines 'show=file,condition,registry&search=KEY+new')
none=$(lines 'search=nothing-of-it')
[ "$(wc -l <<<"$all")" -ge 9 ] || fail "Lines are missing on the page: $all"
grep -q 'missing.txt' <<<"$all" || fail "The page lacks the failure."
grep -q 'a\.txt' <<<"$files" || fail "The page lacks files when they are chosen."
! grep -q 'data-area="failure"' <<<"$files" || fail "The page shows what isn't chosen."
grep -q 'data-area="group"' <<<"$files" || fail "The page hides what is around a line."
grep -q 'temz &lt;b&gt;' <<<"$found" || fail "The page doesn't find a key."
! grep -q 'a\.txt' <<<"$found" || fail "The page shows what isn't searched."
[ -z "$none" ] || fail "The page shows lines when nothing is found."
exit $status
