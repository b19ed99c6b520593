# Sourced by tests that run temz.exe ($1), which needs the library $2, in a folder of their own, named as
# the test is; what it writes is then looked at by something that has nothing to do with it.
here=$(cd "$(dirname "$0")" && pwd)
work=$(dirname "$1")/$(basename "$0" .sh)
rm -rf "$work"
mkdir "$work"
cp "$1" "$2" "$work"
cd "$work"
export PYTHONPATH=$here/../support PYTHONDONTWRITEBYTECODE=1
folder="Z:${work//\//\\}" # as programs see it

status=0
fail() {
    echo "$*" >&2
    status=1
}

temz() { "$here/../../scripts/wine-run.sh" "$work/temz.exe" "$@" </dev/null; }

# split ARGUMENT... -- OTHER...: the arguments in front of the dashes, and the others.
split() {
    arguments=()
    while [ "$1" != -- ]; do
        arguments+=("$1")
        shift
    done
    others=("${@:2}")
}

# expect_code WHAT CODE EXPECTED: the shell keeps eight bits of an exit code.
expect_code() { [ "$2" = $(($3 % 256)) ] || fail "$1: exit code $2, not $(($3 % 256))."; }
