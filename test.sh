#!/usr/bin/env bash
# Installs what the tests need, builds everything and runs every test.
#   ./test.sh [OPTIONS]      OPTIONS go to ctest, for example -R upload or -L unit
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

# What a folder of tests needs from npm, unless it is there already.
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

"$ROOT/scripts/packages.sh" build test
install_node_modules
build release
say "Running the tests"
cd "$ROOT"
exec ctest --preset release "$@"
