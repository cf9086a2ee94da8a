#!/usr/bin/env bash
# Measures quillon-serve beside nginx and lighttpd, one worker each, on the same files over loopback,
# and prints one table of the best figures of three rounds; then what the other measuring scripts of
# this folder print.
#   bench/run.sh [--quick] [--against BUILD]
#       --quick: smaller files, shorter runs and this table alone, to see that everything works
#       --against BUILD: beside another build of ours, such as /tmp/old/build
set -euo pipefail
# shellcheck source=bench/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

size_mib=1024
seconds=4
rounds=3
read -r -a servers <<<"${BENCH_SERVERS:-quillon nginx lighttpd}"
load_before=$(cut -d' ' -f1 /proc/loadavg)
others=(dav.sh filemanager.sh mfind.sh)

declare_metrics() {
    metric download high 1.2 "download, 1 client [GB/s]"
    metric tls high 0.5 "download over TLS, 1 client [GB/s]"
    metric alive high 20000 "4 KiB files, kept-alive [1/s]"
    metric fresh high 8000 "4 KiB files, new connections [1/s]"
    metric form high 1.0 "upload by a form, 1 client [GB/s]"
    metric put high 1.0 "upload by PUT, 1 client [GB/s]"
    metric rest low 14 "resident at rest [MiB]"
    metric idle low 24 "resident per idle connection [KiB]"
    metric start low 60 "accepting after start [ms]"
    metric crowd low - "small GET while 200 clients stall, worst [ms]"
    metric calm low - "small GET on an idle server, p99 [ms]"
    metric busy50 low - "small GET under load, p50 [ms]"
    metric busy99 low 10 "small GET under load, p99 [ms]"
}

make_share() {
    share=$BENCH_DIR/share
    mkdir -p "$share/uploads"
    say "Making files: one of $size_mib MiB, one of 4 KiB"
    head -c "${size_mib}M" /dev/urandom >"$share/big.bin"
    head -c 4K /dev/urandom >"$share/small.bin"
    cat "$share/big.bin" >/dev/null
}

gigabytes_per_second() { awk '{ printf "%.3f\n", $1 / 1e9 }'; }

download_once() {
    curl -sSk -m 120 --fail -o /dev/null -w '%{speed_download}\n' "$1" | gigabytes_per_second
}

# A speed counts only when the whole file arrived. A server without pages of its own ends a form's
# connection without a word: that is curl's status 52.
upload_once() {
    local target=$1 status=0 speed
    shift
    rm -f "$target"
    speed=$(curl -sS -m 120 --fail -H 'Expect:' -o /dev/null -w '%{speed_upload}\n' "$@" 2>/dev/null) || status=$?
    ((status == 0 || status == 52)) || die "upload failed: curl ended with $status"
    [[ $(stat -c %s "$target") == $((size_mib << 20)) ]] || die "upload incomplete: $target"
    gigabytes_per_second <<<"$speed"
}

form_upload() {
    upload_once "$share/uploads/form.bin" -F "f=@$share/big.bin;filename=form.bin" "${URL}$1"
}

put_upload() { upload_once "$share/put.bin" -T "$share/big.bin" "${URL}put.bin"; }

requests_per_second() { wrk -t1 "$@" | awk '/^Requests\/sec/ { printf "%d\n", $2 }'; }

# wrk's "50% 123.00us" lines in milliseconds.
percentile() {
    awk -v wanted="$1%" '$1 == wanted {
        value = $2 + 0
        factor = $2 ~ /us$/ ? 0.001 : $2 ~ /ms$/ ? 1 : 1000
        printf "%.3g\n", value * factor
    }'
}

latency() { wrk -t1 -c1 -d"${seconds}s" --latency "${URL}small.bin"; }

can_put() {
    rm -f "$share/put.bin"
    curl -sS --fail -o /dev/null -T "$share/small.bin" "${URL}put.bin" 2>/dev/null
}

# Before the file manager's pages exist, forms go to a fixed folder.
form_target() {
    local probe=$share/uploads/probe
    echo probe >"$BENCH_DIR/probe"
    curl -s -o /dev/null -F "f=@$BENCH_DIR/probe" "${URL}uploads" || true
    [[ -e $probe ]] && echo uploads || echo '?a=up'
    rm -f "$probe"
}

measure_speed() {
    serve "$1" "$share"
    note "download" "$1" "$(download_once "${URL}big.bin")"
    note "alive" "$1" "$(requests_per_second -c32 -d"${seconds}s" "${URL}small.bin")"
    note "fresh" "$1" "$(requests_per_second -c32 -d"${seconds}s" -H 'Connection: close' "${URL}small.bin")"
    measure_uploads "$1"
    stop_server

    serve "$1" "$share" tls
    note "tls" "$1" "$(download_once "${URL}big.bin")"
    stop_server
}

# Twice in a row: the first upload also pays for memory that the machine has not touched for long.
measure_uploads() {
    local target
    target=$(form_target)
    for _ in 1 2; do
        [[ $1 != quillon && $1 != before ]] || note form "$1" "$(form_upload "$target")"
        ! can_put || note put "$1" "$(put_upload)"
    done
    rm -f "$share/uploads/form.bin" "$share/put.bin"
}

# Starts the clients of load.py ACTION on the server and waits until they hang on; their remark is in
# $remark.
hang_on() {
    local ready=$BENCH_DIR/ready
    rm -f "$ready"
    background python3 "$ROOT/bench/load.py" "$1" "127.0.0.1:$PORT" "${@:2}" >"$ready"
    until grep -qs ready "$ready"; do
        kill -0 "$BACKGROUND_PID" 2>/dev/null || die "no load: $1"
        sleep 0.05
    done
    read -r _ remark <"$ready"
}

measure_memory() {
    local at_rest
    serve "$1" "$share"
    at_rest=$(rss_kib "$SERVER_PID")
    note rest "$1" "$(calc "$at_rest / 1024")"
    hang_on idle 500 /small.bin
    note idle "$1" "$(calc "($(rss_kib "$SERVER_PID") - $at_rest) / 500")"
    stop "$BACKGROUND_PID"
    stop_server
}

measure_latency() {
    local result load
    serve "$1" "$share"
    note calm "$1" "$(latency | percentile 99)"
    hang_on stall 200 /big.bin /small.bin
    note crowd "$1" "$remark"
    load=("$BACKGROUND_PID")
    for _ in 1 2; do
        background curl -sS -o /dev/null "${URL}big.bin?[1-1000]"
        load+=("$BACKGROUND_PID")
    done
    result=$(latency)
    note busy50 "$1" "$(percentile 50 <<<"$result")"
    note busy99 "$1" "$(percentile 99 <<<"$result")"
    stop "${load[@]}"
    stop_server
}

start_once() {
    local command port
    port=$(free_port)
    mapfile -t command < <(server_command "$1" "$share" "$port")
    python3 "$ROOT/bench/load.py" start "127.0.0.1:$port" "${command[@]}"
}

measure() {
    measure_speed "$1"
    measure_memory "$1"
    measure_latency "$1"
    note start "$1" "$(start_once "$1")"
}

read_arguments() {
    while (($#)); do
        case $1 in
        --quick) size_mib=128 seconds=2 rounds=1 others=() ;;
        --against)
            QUILLON_BEFORE=${2:-}/bin/quillon-serve
            [[ -x $QUILLON_BEFORE ]] || die "no program: $QUILLON_BEFORE"
            servers+=(before)
            shift
            ;;
        *) die "usage: bench/run.sh [--quick] [--against BUILD]" ;;
        esac
        shift
    done
}

main() {
    read_arguments "$@"
    bench_begin
    declare_metrics
    make_share
    local round server
    for ((round = 1; round <= rounds; round++)); do
        for server in "${servers[@]}"; do
            say "Round $round: $server"
            measure "$server"
        done
    done
    describe_machine
    print_table
    run_others
}

describe_machine() {
    printf '\n%s, %s cores, %s; load average before the run: %s\n\n' \
        "$(awk -F': ' '/^model name/ { print $2; exit }' /proc/cpuinfo)" "$(nproc)" "$(uname -sr)" \
        "$load_before"
}

run_others() {
    local script
    for script in "${others[@]}"; do
        [[ -x $ROOT/bench/$script ]] || continue
        printf '\n'
        say "bench/$script"
        (cd "$ROOT" && "bench/$script")
    done
}

main "$@"
