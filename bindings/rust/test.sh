#!/usr/bin/env bash
# Does one thing with the crate, as a programmer would, by the cargo, tools and linker of this machine,
# and with all that they write below the folder $TEMZ_RUST_BUILD: test, example, lint, or refused, which
# shows that the compiler refuses what is misuse.
set -euo pipefail
crate=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
target=x86_64-pc-windows-gnu
built=$TEMZ_RUST_BUILD/target/$target/debug

export CARGO_HOME=$TEMZ_RUST_BUILD/home CARGO_TARGET_DIR=$TEMZ_RUST_BUILD/target CARGO_NET_OFFLINE=true
export CARGO_BUILD_TARGET=$target CARGO_PROFILE_DEV_DEBUG=0 CARGO_INCREMENTAL=0
export CARGO_TARGET_X86_64_PC_WINDOWS_GNU_LINKER=$TEMZ_LINKER
export CARGO_TARGET_X86_64_PC_WINDOWS_GNU_RUNNER=$crate/../../scripts/wine-run.sh
# Debian's own tools, whatever else stands first in the path.
export PATH=/usr/bin:/bin
unset RUSTC RUSTDOC RUSTFLAGS RUST_BACKTRACE

# What a program needs beside itself.
lay_out() {
    mkdir -p "$1"
    cp -R "$TEMZ_NEIGHBOURS"/{TEMZC.dll,temz_test_actions.dll,install.xml,payload} "$1"
}

cd "$crate"
case $1 in
    test)
        lay_out "$built/deps"
        # A library that says TEMZ_VERSION_MISMATCH, which is 15, to everything.
        mkdir -p "$built/deps/other-version"
        sed -n 's/^ *\(temz_[a-z_]*\).*/__declspec(dllexport) int \1(void) { return 15; }/p' \
            "$crate/../../capi/TEMZC.def" |
            "$TEMZ_LINKER" -shared -x c - -o "$built/deps/other-version/TEMZC.dll"
        cargo test --locked --test temz_rust_tests
        ;;
    example)
        lay_out "$built/examples"
        cargo build --locked --examples
        cd "$built/examples"
        "$CARGO_TARGET_X86_64_PC_WINDOWS_GNU_RUNNER" install.exe
        ;;
    lint)
        cargo fmt -- --check
        rustfmt --check --edition 2021 refused/*.rs
        cargo clippy --locked --all-targets -- -D warnings
        RUSTDOCFLAGS='-D warnings' cargo doc --locked --no-deps
        ;;
    refused)
        cargo build --locked
        for program in refused/*.rs; do
            code=$(sed -n '1s|^// ||p' "$program")
            if said=$(rustc --edition 2021 --target $target --emit metadata --crate-type bin \
                --extern temz="$built/libtemz.rlib" -o "$TEMZ_RUST_BUILD/refused.rmeta" "$program" 2>&1); then
                echo "$program is compiled." >&2
                exit 1
            fi
            if ! grep -qF "$code" <<<"$said" || [ "$(grep -c '^error' <<<"$said")" != 2 ]; then
                echo "$program is refused for another reason than $code: $said" >&2
                exit 1
            fi
        done
        ;;
esac
