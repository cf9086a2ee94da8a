#!/usr/bin/env bash
# Installs what the tests need, builds everything and runs every test.
#   ./test.sh [OPTIONS]      OPTIONS go to ctest, for example -R upload or -L unit
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

"$ROOT/scripts/packages.sh" build test
install_node_modules
build release
say "Running the tests"
cd "$ROOT"
exec ctest --preset release "$@"
