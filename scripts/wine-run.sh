#!/usr/bin/env bash
# Runs one Windows program under Wine in a prefix that it has to itself while it runs; as TEMZ_WINDOWS
# 10.0, if that says so, and under the TEMZ_CODE_PAGE 932 or 936.
# CTest starts several of these at once: each takes the first free slot.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

mkdir -p "$wine_home"
slots=${TEMZ_WINE_SLOTS:-$(nproc)}
slot=
while [ -z "$slot" ]; do
    for ((i = 0; i < slots; i++)); do
        exec {lock}>"$wine_home/slot$i.lock"
        if flock -n "$lock"; then
            slot=$i
            break
        fi
        exec {lock}>&-
    done
    [ -n "$slot" ] || sleep 0.02
done

prefix=$wine_home/slot$slot
case ${TEMZ_WINDOWS:-6.1} in 6.1) ;; *) prefix=$prefix-$TEMZ_WINDOWS ;; esac
make_prefix "$prefix"
wine_environment "$prefix"
# The lock belongs to this shell alone: a service that Wine starts must not inherit and keep it.
# A server that is not there yet is started here, with nothing to inherit but /dev/null.
if ! wineserver -p 2>/dev/null </dev/null {lock}>&-; then :; fi
wine cmd /c exit >/dev/null 2>&1 </dev/null {lock}>&-
# A test program that ends before its tests do leaves this file, whatever its exit status says: some
# crashes end in 0.
unfinished=$prefix/drive_c/unfinished
rm -f "$unfinished"
status=0
TEST_PREMATURE_EXIT_FILE='C:\unfinished' wine "$@" {lock}>&- || status=$?
if [ "$status" = 0 ] && [ -e "$unfinished" ]; then
    echo "$1 ended before its tests did." >&2
    status=1
fi
exit "$status"
