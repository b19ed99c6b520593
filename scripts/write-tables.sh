#!/usr/bin/env bash
# Writes anew what comes from the engine's tables and stands in the tree all the same: the schema of
# scripts, author/schema/install.xsd, and the tables of docs/script-reference.md.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build=${1:-$root/build/release}
cmake --build "$build" --target temz_table_writer
cd "$root"
scripts/wine-run.sh "$build/tests/schema/temz_table_writer.exe" \
    author/schema/install.xsd docs/script-reference.md
