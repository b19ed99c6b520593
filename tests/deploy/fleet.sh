#!/usr/bin/env bash
# Rolls a product out to 30 machines, each a Wine prefix, of which some are broken on purpose; then
# mends what can be mended, and rolls it out again. What Ansible tells of each machine is compared with
# what that machine holds. Needs temz.exe ($1), its library ($2) and the program that holds files ($3).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../../scripts/common.sh"
program=$1 library=$2 holder=$3
work=$(dirname "$holder")/work
fleet=$wine_home/fleet

# The machines, by what is wrong with them.
declare -A machines=(
    [fine]=$(printf 'fine%02d ' {1..18})
    [full]="full01 full02"           # there is no room for tool.exe
    [held]="held01"                  # tool.exe runs
    [stuck]="stuck01"                # so it does, and isn't ended
    [tried]="tried01"                # so it does, and the run is begun all the same
    [refused]="refused01 refused02"  # the product's folder is not this user's to write to
    [late]="late01 late02"           # late.exe runs, and is replaced at the restart
    [busy]="busy01 busy02"           # another run goes on
    [lacking]="lacking01"            # the product comes without a file
)

# What each kind is expected to come to: the recap, the content of the files first.txt, tool.exe and
# late.exe, the value in the registry, and what the failure says.
outcomes_when_broken() {
    cat <<'END'
fine    changed 2.0 2.0    2.0    2.0
full    failed  2.0 full   absent absent Copying tool.exe failed: the disk is full. [error 112]
held    failed  1.0 holder absent ?      Copying tool.exe would fail: the file is in use by
stuck   failed  1.0 holder absent ?      Copying tool.exe would fail: the file is in use by
tried   failed  2.0 holder absent ?      Copying tool.exe failed: the file is in use by
late    restart 2.0 2.0    holder ?
busy    failed  1.0 absent absent ?      Another run
lacking failed  1.0 absent absent absent Copying tool.exe would fail: the file to copy isn't there
END
    # Files that are there can be written to, and no others made. To root nothing is forbidden.
    if [ "$(id -u)" = 0 ]; then
        echo "refused changed 2.0 2.0 2.0 2.0"
    else
        echo "refused failed 2.0 absent absent absent Copying tool.exe failed: access is denied. [error 5]"
    fi
}

outcomes_when_mended() {
    local kind
    for kind in full held tried busy lacking; do echo "$kind changed 2.0 2.0 2.0 2.0"; done
    for kind in fine late; do echo "$kind ok 2.0 2.0 2.0 2.0"; done
    if [ "$(id -u)" = 0 ]; then echo "refused ok 2.0 2.0 2.0 2.0"; else echo "refused changed 2.0 2.0 2.0 2.0"; fi
    outcomes_when_broken | grep '^stuck'
}

each() { # KIND COMMAND...
    local machine
    for machine in ${machines[$1]}; do "${@:2}" "$machine"; done
}
folder() { echo "$fleet/$1/drive_c/Fleet"; }

make_machine() {
    # What Windows itself consists of is never written to, and is most of it.
    cp -al "$wine_home/template" "$fleet/$1"
    cp --remove-destination "$wine_home/template"/*.reg "$fleet/$1"
    mkdir "$(folder "$1")"
    echo "first 1.0" >"$(folder "$1")/first.txt"
}

# Starts a program on the machine $1, where it stays, and waits until it says the word $2.
start() {
    local said line
    mkfifo "$fleet/$1/input"
    exec {said}< <("$here/machine.sh" "$fleet/$1" "${@:3}" <>"$fleet/$1/input" 2>/dev/null)
    while read -r line <&"$said"; do
        case $line in *"$2"*) return ;; esac
    done
    echo "$1: ${*:3} has ended before it said $2." >&2
    exit 1
}

fill() { ln -s /dev/full "$(folder "$1")/tool.exe"; }
make_room() { rm "$(folder "$1")/tool.exe"; }
hold() { # FILE MACHINE
    cp "$holder" "$(folder "$2")/$1"
    start "$2" running "C:\\Fleet\\$1"
}
refuse() { chmod a-w "$(folder "$1")"; }
permit() { chmod u+w "$(folder "$1")"; }
# It comes to a file that isn't there, and waits before it tries again.
begin_another_run() {
    (cd "$work/other" && start "$1" '"failure"' temz.exe install other.xml --json --on-error retry:999,60)
}
restart() { stop_prefix "$fleet/$1"; }

stop_fleet() {
    local prefix
    for prefix in "$fleet"/*/; do stop_prefix "$prefix"; done
    chmod -R u+w "$fleet"
    rm -rf "$fleet"
}

write_inventory() {
    local kind machine
    echo "[fleet]"
    for kind in "${!machines[@]}"; do
        for machine in ${machines[$kind]}; do
            echo "$machine temz_product_source=$work/$([ -e "$work/$kind" ] && echo "$kind" || echo product)" \
                "temz_product_try_anyway=$([ "$kind" = tried ] && echo true || echo false)"
        done
    done | sort
    cat <<END
[fleet:vars]
ansible_connection=local
ansible_python_interpreter=/usr/bin/python3
temz_product_folder=$fleet/{{ inventory_hostname }}/drive_c/Setup
temz_product_launcher=["$here/machine.sh", "$fleet/{{ inventory_hostname }}"]
END
}

# roll_out RESULT OPTION...: writes down what Ansible tells.
roll_out() {
    ansible-playbook -i "$work/inventory" --forks 2 "$here/fleet.yml" "${@:2}" \
        >"$work/$1.json" 2>"$work/$1.err" </dev/null || [ $? = 2 ] || { cat "$work/$1".*; exit 1; }
}

# What a machine has in its registry is written down when nothing runs there any more.
wait_until_written() { (wine_environment "$fleet/$1" && wineserver -w); }

# expect RESULT: what Ansible tells, and what the machines hold, by the lines of the standard input,
# each of which begins with a kind or a machine.
expect() {
    local kind outcome machine
    while read -r kind outcome; do
        for machine in ${machines[$kind]:-$kind}; do
            case $outcome in *'?'*) ;; *) wait_until_written "$machine" ;; esac
            echo "$machine $outcome"
        done
    done | "$here/recap.py" "$work/$1.json" "$fleet" "$holder"
}

rm -rf "$work"
mkdir -p "$work/home"
export ANSIBLE_ROLES_PATH=$root/deploy/ansible/roles ANSIBLE_STDOUT_CALLBACK=ansible.posix.json
export ANSIBLE_HOME=$work/home ANSIBLE_REMOTE_TMP=$work/home/tmp ANSIBLE_PIPELINING=1
export ANSIBLE_HOST_PATTERN_MISMATCH=error ANSIBLE_RETRY_FILES_ENABLED=0 ANSIBLE_LOCALHOST_WARNING=0
export LC_ALL=C.UTF-8
for product in product lacking; do
    cp -r "$here/product" "$work/$product"
    cp "$program" "$library" "$work/$product"
done
rm "$work/lacking/payload/tool.exe"
mkdir "$work/other"
cp "$program" "$library" "$work/other"
cat >"$work/other/other.xml" <<'END'
<Script><Product><Directory Path="C:\Other"><Component Id="C"><File Name="a" Source="nowhere"/></Component>
</Directory><InstallExecuteSequence><Feature><ComponentRef Id="C"/></Feature></InstallExecuteSequence>
</Product></Script>
END

make_template
[ ! -e "$fleet" ] || stop_fleet
mkdir -p "$fleet"
trap stop_fleet EXIT
for kind in "${!machines[@]}"; do each "$kind" make_machine; done
write_inventory >"$work/inventory"

each full fill
for kind in held stuck tried; do each "$kind" hold tool.exe; done
each late hold late.exe
each refused refuse
each busy begin_another_run

roll_out checked --check --diff --limit fine01,held01
expect checked <<'END'
fine01 changed 1.0 absent absent absent
held01 failed  1.0 holder absent ?      Copying tool.exe would fail: the file is in use
END
for line in '~ C:\\Fleet\\first.txt  10 bytes' '+ C:\\Fleet\\tool.exe  14 bytes' 'Fleet\\Version  2.0'; do
    grep -qF "$line" "$work/checked.json" || { echo "A check doesn't show: $line" >&2; exit 1; }
done
if compgen -G "$fleet/*/drive_c/Setup*"; then
    echo "A check has left that behind." >&2
    exit 1
fi

roll_out broken
outcomes_when_broken | expect broken

each full make_room
for kind in held tried late busy; do each "$kind" restart; done
each refused permit
cp -r "$here/product/payload" "$work/lacking"
roll_out mended
outcomes_when_mended | expect mended

for outcome in changed ok; do
    roll_out "removed-$outcome" --limit fine01 -e temz_product_mode=uninstall
    expect "removed-$outcome" <<<"fine01 $outcome absent absent absent absent"
done

# The batch of which more than the share fails is the last one: who stands behind it isn't asked. Where no
# more fail, the next batch has its turn.
take_away() { # SHARE RESULT
    roll_out "$2" --limit late02,stuck01,tried01 -e "{batch: 2, share: $1, temz_product_mode: uninstall}"
}
take_away 49 stopped
expect stopped <<'END'
late02  changed absent absent absent absent
stuck01 failed  1.0    holder absent ?      Deleting tool.exe would fail
tried01 unasked 2.0    2.0    2.0    2.0
END
take_away 50 gone-on
expect gone-on <<'END'
late02  ok      absent absent absent absent
stuck01 failed  1.0    holder absent ?      Deleting tool.exe would fail
tried01 changed absent absent absent absent
END
