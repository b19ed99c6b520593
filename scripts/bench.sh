#!/usr/bin/env bash
# Measures the engine beside programs that make the bare calls, on one processor, in a Wine prefix on a
# tmpfs where there is one, and prints one table. Fails when the engine is over a bound three times.
#
#   --only PATTERN  measures the rows alone whose work has this in it, a regular expression
#   --short         small sizes, once each: only whether everything can be measured, and no bound of a time
#   --write         writes table and plot into docs/performance.md
#   --built FOLDER  measures what a preset has built there, and builds and sets up nothing
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

usage() {
    echo "usage: scripts/bench.sh [--only PATTERN] [--short] [--write] [--built FOLDER]" >&2
    exit 2
}

built=
options=()
while [ $# -gt 0 ]; do
    case $1 in
        --short | --write) options+=("$1") ;;
        --only) options+=("$1" "${2?$(usage)}"); shift ;;
        --built) built=${2?$(usage)}; shift ;;
        *) usage ;;
    esac
    shift
done

if [ -z "$built" ]; then
    built=$root/build/release
    "$root/scripts/setup.sh" --bench
    cd "$root"
    cmake --preset release >/dev/null
    cmake --build --preset release --target temz_bench temz_bench_host temz_bench_bare \
        temz_allocation_tests >/dev/null
fi

# A prefix takes 0.7 GB, and the largest payload three times 0.2.
home=$wine_home/bench
for folder in /dev/shm /tmp; do
    if [ -w "$folder" ] && [ "$(stat -f -c %T "$folder")" = tmpfs ] &&
        [ "$(df --output=avail -k "$folder" | tail -1)" -gt 2000000 ]; then
        home=$(mktemp -d "$folder/temz-bench.XXXXXX")
        break
    fi
done
prefix=$home/slot0
leave() {
    stop_prefix "$prefix"
    rm -rf "$home"
}
trap leave EXIT
mkdir -p "$home"
make_prefix "$prefix"

folder=$prefix/drive_c/temz-bench
mkdir "$folder"
for program in benchmarks/temz_bench{,_host,_bare}.exe src/TEMZ.dll \
    tests/allocation/temz_allocation_tests.exe tests/allocation/temz_test_actions.dll; do
    x86_64-w64-mingw32-strip -o "$folder/$(basename "$program")" "$built/$program"
done

# All that follows is started from here, the server of the prefix too.
processor=$(taskset -cp $$ | sed 's/.*[ ,-]//')
taskset -cp "$processor" $$ >/dev/null
export TEMZ_WINE_HOME=$home TEMZ_WINE_SLOTS=1 PYTHONDONTWRITEBYTECODE=1
python3 "$root/benchmarks/bench.py" "$folder" --runner "$root/scripts/wine-run.sh" "${options[@]}"
