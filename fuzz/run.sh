#!/usr/bin/env bash
# Feeds the parsers and both faces with whatever breaks them:
#   fuzz/run.sh SECONDS [NAME...]   each target, or those named, for so long
# What a run finds new goes into build-fuzz/corpus/ and is not kept with the sources; what breaks
# something stands in build-fuzz/findings/, and the exit status is 1.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

seconds=${1:-}
[[ $seconds =~ ^[0-9]+$ ]] || die "say for how many seconds"
shift
names=("$@")
((${#names[@]})) || names=(classic standard bodies fields stored pictures)

"$ROOT/scripts/packages.sh" build fuzz
build fuzz "${names[@]/#/fuzz-}"
folder=$(build_folder fuzz)
mkdir -p "$folder/findings"
failed=0
for name in "${names[@]}"; do
    say "Fuzzing $name for $seconds s"
    mkdir -p "$folder/corpus/$name"
    # Longer inputs find nothing that shorter ones don't.
    "$folder/bin/fuzz-$name" -max_total_time="$seconds" -max_len=4096 -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -verbosity=0 -artifact_prefix="$folder/findings/$name-" \
        "$folder/corpus/$name" "$ROOT/fuzz/corpus/$name" || failed=1
done
exit $failed
