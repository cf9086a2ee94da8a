#!/usr/bin/env bash
# Measures quillon-serve beside nginx, lighttpd and Apache over loopback: installs and builds what that
# takes, then hands its arguments to main.py, which explains them (--help).
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

"$ROOT/scripts/packages.sh" build bench
install_node_modules
build release quillon-serve quillon-preview make-profile
[[ $* != *soak* ]] || build asan quillon-serve
exec python3 -B "$ROOT/bench/main.py" "$@"
