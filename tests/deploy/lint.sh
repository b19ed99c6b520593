#!/usr/bin/env bash
# Has ansible-lint look at the folder $1: at a copy in $2, since it writes beside what it looks at.
set -euo pipefail
rm -rf "$2"
mkdir -p "$2/home"
cp -r "$1" "$2/files"
cd "$2/files"
export HOME=$2/home ANSIBLE_HOME=$2/home LC_ALL=C.UTF-8
# It finds no files by itself where git ignores them.
mapfile -t files < <(find . -name '*.yml' -printf '%P\n' | sort)
exec ansible-lint --offline --strict --profile production --nocolor "${files[@]}"
