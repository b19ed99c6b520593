#!/usr/bin/env bash
# Holds the schema of scripts against a validator: it accepts every script of the tree and harmless
# changes of them, and refuses each of these faults in the example product.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
schema=$root/author/schema/install.xsd
script=$root/examples/product/install.xml
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

fail() {
    echo "$*" >&2
    failed=1
}

validate() { xmllint --nonet --noout --schema "$schema" "$@" 2>&1; }

# The example product with the first line that holds $1 changed there to $2.
change() {
    FROM=$1 TO=$2 perl -0pe 's/\Q$ENV{FROM}\E/$ENV{TO}/ or die "There is no $ENV{FROM}.\n"' \
        "$script" >"$work/changed.xml"
}

refused() {
    local what=$1 from=$2 to=$3 expected=$4 told
    change "$from" "$to"
    if told=$(validate "$work/changed.xml"); then
        fail "accepted: $what"
    elif ! grep -qF -- "$expected" <<<"$told"; then
        fail "$what: refused with other words than \"$expected\": $told"
    fi
}

accepted() {
    local what=$1 from=$2 to=$3 told
    change "$from" "$to"
    told=$(validate "$work/changed.xml") || fail "refused: $what: $told"
}

for good in "$root"/examples/*/*.xml; do
    told=$(validate "$good") || fail "$told"
done

refused 'an unknown element' '<File Name="greeter.txt"' '<Fille Name="greeter.txt"' \
    "Element 'Fille': This element is not expected."
refused 'an element in another case' '<File Name="greeter.txt"' '<file Name="greeter.txt"' \
    "Element 'file': This element is not expected."
refused 'a correctly spelt ShellExcute' '<ShellExcute File' '<ShellExecute File' \
    "Element 'ShellExecute': This element is not expected."
refused 'text in an element' '<Feature Id="Main">' '<Feature Id="Main">text' \
    'Character content other than whitespace is not allowed'
refused 'a second product' '</Product>' '</Product><Product/>' "Element 'Product'"
refused 'no product' '<Product Id="Greeter">' '<Produkt/><Product Id="Greeter">' "Element 'Produkt'"
refused 'a second sequence' '</InstallExecuteSequence>' \
    '</InstallExecuteSequence><InstallExecuteSequence/>' "Element 'InstallExecuteSequence'"
refused 'a variable below the product' '<InstallExecuteSequence>' \
    '<Variable Id="V" Type="int" Value="1"/><InstallExecuteSequence>' "Element 'Variable'"
refused 'a condition around a definition' '<Component Id="Settings"' \
    '<Condition Expression="A"/><Component Id="Settings"' "Element 'Condition'"
refused 'a file in a directory' '<Component Id="Program">' \
    '<File Name="a" Source="a"/><Component Id="Program">' "Element 'File'"
refused 'a file in a fragment' '<ServiceControl Name="#SERVICE" Action="stop"' \
    '<File Name="a" Source="a"/><ServiceControl Name="#SERVICE" Action="stop"' "Element 'File'"
refused 'a file in a component outside every directory' \
    '<RegistryKey Action="create" Root="HKEY_LOCAL_MACHINE" Key="Software\#COMPANY">' \
    '<File Name="a" Source="a"/><RegistryKey Action="create" Root="HKEY_LOCAL_MACHINE" Key="K">' \
    "Element 'File'"
refused 'a shortcut there, in a condition' \
    '<RegistryKey Action="create" Root="HKEY_LOCAL_MACHINE" Key="Software\#COMPANY">' \
    '<Condition Expression="A"><Shortcut Name="a" Description="" Target="a"/></Condition>
     <RegistryKey Action="create" Root="HKEY_LOCAL_MACHINE" Key="K">' "Element 'Shortcut'"
refused 'a file in a condition of the sequence' '<Fragment Id="Survey">' \
    '<Condition Expression="A"><File Name="a" Source="a"/></Condition><Fragment Id="Survey">' \
    "Element 'File'"
refused 'a value outside every key' '<File Name="greeter.txt"' \
    '<RegistryValue Name="a" Type="REG_SZ" Value="a"/><File Name="greeter.txt"' \
    "Element 'RegistryValue'"
refused 'a component right in the sequence' '<Fragment Id="Survey">' \
    '<ComponentRef Id="Menu"/><Fragment Id="Survey">' "Element 'ComponentRef'"
refused 'a feature by reference in a feature' '<ComponentRef Id="Program"/>' \
    '<FeatureRef Id="Main"/>' "Element 'FeatureRef'"
refused 'a directory in the sequence' '<Fragment Id="Survey">' \
    '<Directory Id="D"/><Fragment Id="Survey">' "Element 'Directory'"
refused 'children of a reference' '<ComponentRef Id="Program"/>' \
    '<ComponentRef Id="Program"><File Name="a" Source="a"/></ComponentRef>' "Element 'ComponentRef'"
refused 'attributes of a reference' '<ComponentRef Id="Program"/>' \
    '<ComponentRef Id="Program" On="install"/>' "attribute 'On'"
refused 'a reference without an Id' '<ComponentRef Id="Program"/>' '<ComponentRef/>' \
    "The attribute 'Id' is required but missing."
refused 'a variable without an Id' '<Variable Id="MODERN"' '<Variable' \
    "The attribute 'Id' is required but missing."
refused 'a variable without a type' '<Variable Id="MODERN" Type="int"' '<Variable Id="MODERN"' \
    "The attribute 'Type' is required but missing."
refused 'a file without a source' ' Source="payload\greeter.txt"' '' \
    "The attribute 'Source' is required but missing."
refused 'a shortcut without a description' ' Description="The greeter"' '' \
    "The attribute 'Description' is required but missing."
refused 'a condition without an expression' ' Expression="OS_BIT E 64"' '' \
    "The attribute 'Expression' is required but missing."
refused 'an outermost key without a root' '<RegistryKey Action="remove" Root="HKEY_LOCAL_MACHINE"' \
    '<RegistryKey Action="remove"' "The attribute 'Root' is required but missing."
refused 'an On that is never read' '<File Name="greeter.txt"' \
    '<File On="install" Name="greeter.txt"' "The attribute 'On' is not allowed."
refused 'a Vital that is never read' '<Shortcut ' '<Shortcut Vital="no" ' \
    "The attribute 'Vital' is not allowed."
refused 'a Path on a component' '<Component Id="Menu"' '<Component Id="Menu" Path="x"' \
    "The attribute 'Path' is not allowed."
refused 'an attribute in another case' 'KillProcess="yes"' 'killprocess="yes"' \
    "The attribute 'killprocess' is not allowed."
for value in Install 'install ' all '' 'install,upgrade'; do
    refused "\"$value\" as a mode" 'On="install"' "On=\"$value\"" "attribute 'On'"
done
for value in Yes true 1 ''; do
    refused "KillProcess of \"$value\"" 'KillProcess="yes"' "KillProcess=\"$value\"" \
        "attribute 'KillProcess'"
done
refused 'a Wait in another case' 'Wait="yes"' 'Wait="YES"' "attribute 'Wait'"
refused 'a Return of another element' 'Return="check"' 'Return="sync"' "attribute 'Return'"
refused 'a Return in another case' 'Return="sync"' 'Return="Sync"' "attribute 'Return'"
refused 'an action of another element' 'Action="stop"' 'Action="create"' "attribute 'Action'"
refused 'an unknown action of a key' 'Action="create"' 'Action="make"' "attribute 'Action'"
refused 'a root by its short name' 'Root="HKEY_LOCAL_MACHINE"' 'Root="HKLM"' "attribute 'Root'"
refused 'an unknown type of a value' 'Type="REG_DWORD"' 'Type="REG_QWORD"' "attribute 'Type'"
refused 'an unknown type of a variable' 'Type="int"' 'Type="integer"' "attribute 'Type'"
refused 'a reference as the type of a variable' 'Type="int"' 'Type="#TYPE"' "attribute 'Type'"

accepted 'a reference for a keyword' 'On="install"' 'On="#MODE"'
accepted 'a directory for a keyword' 'Root="HKEY_LOCAL_MACHINE"' 'Root="[ROOT]"'
accepted 'variables behind the product' '</Product>' \
    '</Product><Variable Id="V" Type="int" Value="1"/>'
accepted 'a component in the place of a directory by reference' '<InstallExecuteSequence>' \
    '<DirectoryRef Id="DOC"><Component Id="C"><File Name="a" Source="a"/></Component></DirectoryRef>
     <InstallExecuteSequence>'
accepted 'a key in a condition in a key' '<RegistryKey Action="create" Key="#PRODUCT">' \
    '<Condition Expression="A"><RegistryKey Action="create" Key="K"/></Condition>
     <RegistryKey Action="create" Key="#PRODUCT">'
accepted 'a file in a condition in a component' '<File Name="greeter.txt"' \
    '<Condition Expression="A"><File Name="a" Source="a"/></Condition><File Name="greeter.txt"'
accepted 'the place of the schema' '<Script>' \
    '<Script xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
             xsi:noNamespaceSchemaLocation="install.xsd">'

[ "$failed" = 0 ]
