#!/usr/bin/env bash
# Holds the functions that the header declares, those that the list for the linker names and those
# that the library exports against each other; and sees that it imports nothing but the system.
set -euo pipefail
library=$1 list=$2 header=$3

tables=$(x86_64-w64-mingw32-objdump -p "$library")
declared=$(sed -nE 's/^TEMZ_API .*\b(temz_[a-z_]+)\(.*/\1/p' "$header" | sort)
listed=$(sed -nE 's/^ +(\w+)$/\1/p' "$list" | sort)
exported=$(sed -nE 's/^\s*\[ *[0-9]+\] ([A-Za-z_]\w*)$/\1/p' <<<"$tables" | sort)
imported=$(sed -nE 's/^\s*DLL Name: (.*)$/\L\1/p' <<<"$tables" | sort)
system=$(printf '%s\n' advapi32.dll kernel32.dll msvcrt.dll ole32.dll shell32.dll user32.dll version.dll)

[ -n "$declared" ]
echo "The list for the linker, against the header:"
diff <(echo "$declared") <(echo "$listed")
echo "The exports, against the header:"
diff <(echo "$declared") <(echo "$exported")
echo "The imports, against the libraries of every system:"
[ -n "$imported" ]
! comm -23 <(echo "$imported") <(echo "$system") | grep .
