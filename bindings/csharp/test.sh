#!/usr/bin/env bash
# Compiles the classes with their examples, and holds the declarations against the project of the
# version $1. What comes of it goes into the folder $2.
set -euo pipefail
room=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
compile=(mcs -langversion:6 -warn:4 -warnaserror "$room/Native.cs" "$room/Context.cs")

mkdir -p "$2"
"${compile[@]}" -target:library -out:"$2/Temz.dll"
"${compile[@]}" "$room/example/Install.cs" -out:"$2/Install.exe"
sed -n '/^```csharp$/,/^```$/{/^```/!p}' "$room/README.md" >"$2/Readme.cs"
"${compile[@]}" "$2/Readme.cs" -out:"$2/Readme.exe"
"${compile[@]}" "$room/tests/Declarations.cs" -out:"$2/Declarations.exe"
mono "$2/Declarations.exe" "$room/../.." "$1"
