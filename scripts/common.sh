# Sourced by the other scripts: where things are, and the environment that every Wine process needs.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=$root/build/deps
wine_home=${TEMZ_WINE_HOME:-$root/build/wine}

# Keeps Wine off the user's home and display: no Mono or Gecko dialog, no menu files, no debugger
# (with it a crash can end in exit status 0), and a locale under which non-ASCII file names work.
wine_environment() {
    export WINEPREFIX=$1 HOME=$wine_home/home WINEDEBUG=-all
    export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d;winedbg.exe=d'
    # Wine takes the code page from the locale, but for UTF-8, for which a program asks by itself.
    local locale=C.UTF-8
    case ${TEMZ_CODE_PAGE:-} in
        932) locale=ja_JP.UTF-8 ;;
        936) locale=zh_CN.UTF-8 ;;
    esac
    # The path comes first, since the shell itself looks for a locale that it is told of.
    [ "$locale" = C.UTF-8 ] || export LOCPATH=$deps/locale
    export LC_ALL=$locale
    unset DISPLAY WAYLAND_DISPLAY LANG TZ
}

# One start of a process in some thousands fails where the kernel happens to lay its heap on the page
# that Wine shares with all processes; so the heap isn't laid at random, where that may be asked for.
in_fixed_places=()
if setarch --addr-no-randomize true 2>/dev/null; then in_fixed_places=(setarch --addr-no-randomize); fi
wine() { command "${in_fixed_places[@]}" wine "$@"; }

# Makes the template of all prefixes if it isn't there yet. Whoever comes second waits for the first.
make_template() {
    local template=$wine_home/template lock
    mkdir -p "$wine_home/home"
    exec {lock}>"$wine_home/template.lock"
    flock "$lock"
    if [ ! -e "$template/ready" ]; then
        rm -rf "$template"
        mkdir -p "$template"
        (
            wine_environment "$template"
            wine wineboot -i && wineserver -w
        ) >"$wine_home/wineboot.log" 2>&1 </dev/null {lock}>&-
        touch "$template/ready"
    fi
    exec {lock}>&-
}

# Makes the prefix $1, a copy of the template, if it isn't there yet. TEMZ_WINDOWS says which version
# of Windows it is: 10.0, or else that of the template, 6.1.
make_prefix() {
    local prefix=$1
    [ ! -e "$prefix/ready" ] || return 0
    make_template
    rm -rf "$prefix" "$prefix.new"
    cp -a "$wine_home/template" "$prefix.new"
    case ${TEMZ_WINDOWS:-6.1} in
        6.1) ;;
        10.0)
            (
                wine_environment "$prefix.new"
                wine winecfg -v win10 && wineserver -w
            ) >"$prefix.log" 2>&1 </dev/null
            ;;
        *) echo "There is no Windows $TEMZ_WINDOWS here." >&2; return 1 ;;
    esac
    mv "$prefix.new" "$prefix"
}

# Starts the server of the prefix $1 so that it outlives its last process: a server that ends and
# starts again is a restart of the machine, which carries out delayed replacements.
start_prefix() {
    make_prefix "$1"
    (
        wine_environment "$1"
        wineserver -p
        wine cmd /c exit
    ) >/dev/null 2>&1 </dev/null
}

stop_prefix() {
    [ -d "$1" ] || return 0
    (
        wine_environment "$1"
        wineserver -k
        wineserver -w
    ) >/dev/null 2>&1 </dev/null || true
}

# Runs a command whose output nobody wants to see unless it fails.
quietly() {
    local output status=0
    output=$(mktemp)
    "$@" >"$output" 2>&1 </dev/null || status=$?
    [ "$status" = 0 ] || { echo "$* has failed:"; cat "$output"; } >&2
    rm -f "$output"
    return "$status"
}
