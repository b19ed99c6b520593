# Sourced in an empty folder, with the unpacked SDK in $sdk: how a host is shown to work.

# setup HOST LIBRARY: a folder with a host, its engine and the product, from which it is run.
setup() {
    rm -rf setup
    cp -r "$sdk/examples/product/v1" setup
    cp "$1" setup/host.exe
    cp "$2" setup
}

# run_host ARGUMENT...: the host in that folder, with what it tells in the file told.
run_host() {
    (cd setup && "$root/scripts/wine-run.sh" ./host.exe "$@") >told </dev/null || { cat told; exit 1; }
}

# lives HOST LIBRARY TEXT ARGUMENT...: the host ends with success and tells this text.
lives() {
    setup "$1" "$2"
    run_host "${@:4}"
    grep -q "$3" told || { cat told; exit 1; }
    echo "$1: $3"
}
