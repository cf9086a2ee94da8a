#!/usr/bin/env bash
# Says how many lines of tests stand beside the code and fails when they are more than a third.
# Blank lines don't count.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$ROOT"

limit=33 # per cent

# The lines of the files that match the patterns given, blank ones left out.
lines() {
    git ls-files -z -- "$@" | xargs -0 -r cat -- | grep -c '[^[:space:]]' || true
}

code=$(lines '*.cpp' '*.h' webapp ':!webapp/package*.json' ':!webapp/*.md' ':!tests' ':!bench' ':!fuzz')
tests=$(lines 'tests/*'.{cpp,h,py,sh,mjs,js,txt})
share=$((100 * tests / code))
echo "Tests: $tests lines beside $code of code, $share %"
((share <= limit)) || die "tests are more than $limit % of the code"
