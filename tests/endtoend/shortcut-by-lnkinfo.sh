#!/usr/bin/env bash
# Installs links by the console host $1 with its library $2, and has them read by a program that
# knows their format and has nothing to do with the shell that wrote them.
set -euo pipefail
# The links lie outside of the prefix, which another program may have when they are read.
. "$(dirname "${BASH_SOURCE[0]}")/../support/temz.sh"
target='C:\Program Files\App\app.exe'
echo icon >app.ico

cat >script.xml <<SCRIPT
<Script><Product>
  <Directory Path="$folder\\menu">
    <Component Id="Links">
      <Shortcut Name="Full" Description="" Target="$target" WorkingDirectory="C:\\work here"
                IcoFile="$folder\\app.ico"/>
      <Shortcut Name="Plain" Description="" Target="$target"/>
      <Shortcut Name="Absent icon" Description="" Target="$target" IcoFile="C:\\none\\app.ico"/>
    </Component>
  </Directory>
  <InstallExecuteSequence><Feature><ComponentRef Id="Links"/></Feature></InstallExecuteSequence>
</Product></Script>
SCRIPT

expect() { [ "$2" = "$3" ] || fail "$1 is '$2', not '$3'."; }

field() {
    lnkinfo "menu/$1.lnk" | sed -n "s/^[[:space:]]*$2[[:space:]]*: //p"
}

expect_link() {
    expect "The target of $1" "$(field "$1" 'Local path')" "$target"
    expect "The working directory of $1" "$(field "$1" 'Working directory')" "$2"
    expect "The icon of $1" "$(field "$1" 'Icon location')" "$3"
}

temz install script.xml
copy=$(echo app[0-9]*.ico) # under a name with a time stamp
expect 'The copy of the icon' "$(cat "$copy")" icon
expect_link Full 'C:\work here' "$folder\\$copy"
expect_link Plain 'C:\Program Files\App' "$target"
expect_link 'Absent icon' 'C:\Program Files\App' 'C:\none\app.ico'
temz uninstall script.xml
expect 'What uninstall leaves' "$(echo menu/* "$copy")" "menu/* $copy"
expect 'The copy of the icon' "$(cat "$copy")" icon
exit "$status"
