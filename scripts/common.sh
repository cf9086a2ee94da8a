# shellcheck shell=bash
# What every script here shares. Source it after `set -euo pipefail`.

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '==> %s\n' "$*"; }
warn() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }
die() {
    warn "$@"
    exit 1
}

has() { command -v "$1" >/dev/null 2>&1; }

# Configures the preset $1 on its first use; from then on the build looks after itself.
configure() {
    local folder
    folder=$(build_folder "$1")
    [[ -e $folder/build.ninja ]] && return
    say "Configuring $1"
    (cd "$ROOT" && cmake --preset "$1")
}

# Builds the targets $2... of the preset $1; everything without targets.
build() {
    local preset=$1
    shift
    configure "$preset"
    say "Building $preset${*:+: $*}"
    cmake --build "$(build_folder "$preset")" ${1:+--target "$@"}
}

# What the folders of tests need from npm, unless it is there already.
install_node_modules() {
    local lock folder
    for lock in "$ROOT"/tests/*/package-lock.json; do
        folder=${lock%/*}
        [[ -e $lock && ! $folder/node_modules/.package-lock.json -nt $lock ]] || continue
        say "Installing what ${folder#"$ROOT"/} needs"
        (cd "$folder" && npm ci --no-audit --no-fund) </dev/null
        touch "$folder/node_modules/.package-lock.json"
    done
}

build_folder() {
    case $1 in
    release) echo "$ROOT/build" ;;
    *) echo "$ROOT/build-$1" ;;
    esac
}
