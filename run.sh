#!/usr/bin/env bash
# Installs what is missing, builds Quillon and starts it.
#   ./run.sh                     with a display: the window; without one: serves ~/Public
#   ./run.sh PATH                the same with this file or folder
#   ./run.sh [PATH] OPTIONS      always the console program, with its options, for example --port 8081
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

usage() {
    sed -n '3,5s/^# *//p' "${BASH_SOURCE[0]}"
    echo "The options are those of build/bin/quillon-serve --help."
}

# Sorts the arguments: `path` is the file or folder, `options` is everything else.
read_arguments() {
    path='' options=()
    while (($#)); do
        case $1 in
        -h | --help) usage && exit ;;
        --address | --port | --mode | --trust-proxy | --name | --path-prefix | --profile)
            (($# > 1)) || die "$1 needs a value"
            options+=("$1" "$2")
            shift
            ;;
        -*) options+=("$1") ;;
        *)
            [[ -z $path ]] || die "one file or folder at a time: $path, $1"
            path=$1
            ;;
        esac
        shift
    done
}

wants_window() {
    [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} && ${#options[@]} -eq 0 && -x $ROOT/build/bin/quillon ]]
}

start_window() {
    say "Starting the window"
    exec "$ROOT/build/bin/quillon" ${path:+-- "$(realpath -ms -- "$path")"}
}

start_console() {
    if [[ -z $path ]]; then
        path=$HOME/Public
        [[ -d $path ]] || say "Making $path"
        mkdir -p "$path"
    fi
    say "Starting the console program on $path; Ctrl+C ends it"
    exec "$ROOT/build/bin/quillon-serve" "${options[@]}" -- "$path"
}

read_arguments "$@"
"$ROOT/scripts/packages.sh" build
build release app/all res/all

export QUILLON_RESDIR=${QUILLON_RESDIR:-$ROOT/build/res}
"$ROOT/scripts/make-keys.sh" "$QUILLON_RESDIR" || warn "TLS profiles won't work without a key"

if wants_window; then
    start_window
else
    start_console
fi
