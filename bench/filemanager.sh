#!/usr/bin/env bash
# Measures the pages of the file manager: listings of a folder of 10 000 entries, beside the plain
# listings of nginx and lighttpd, and previews of camera pictures with the server pinned to one core.
#   bench/filemanager.sh [--quick]      --quick: fewer pictures, to see that everything works
set -euo pipefail
# shellcheck source=bench/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

entries=10000
pictures=300
motifs=4 # different pictures; the others are links to them
rounds=3
requests=10 # per round
[[ ${1:-} != --quick ]] || pictures=40 motifs=1 rounds=1

metric page low 40 "listing of $entries entries, 24 shown [ms]"
metric full low 80 "listing of $entries entries, all shown [ms]"
metric time low - "the same by time, 24 shown [ms]"
metric previews high 15 "previews of 12 MP pictures, 1 core [1/s]"
metric get99 low 20 "small GET meanwhile, p99 [ms]"

# Names, kinds and times as they come together over the years.
make_folder() {
    folder=$BENCH_DIR/folder
    mkdir "$folder"
    python3 - "$folder" "$entries" <<'END'
import os, sys
folder, count = sys.argv[1], int(sys.argv[2])
kinds = ["jpg", "txt", "mp3", "pdf", "unknown"]
for i in range(count):
    path = f"{folder}/Holiday picture {i * 7919 % count:05}.{kinds[i % len(kinds)]}"
    if i % 100 == 0:
        os.mkdir(path)
    else:
        with open(path, "wb") as file:
            file.write(b"x" * (i % 5000))
    os.utime(path, (1500000000 + i * 5003,) * 2)
END
}

make_pictures() {
    local i album=$BENCH_DIR/album
    mkdir "$album"
    say "Making pictures of 12 MP"
    for ((i = 0; i < motifs; i++)); do
        gm convert -size 4000x3000 plasma:fractal -quality 92 "$album/IMG_$i.jpg"
    done
    for ((i = motifs; i < pictures; i++)); do
        ln "$album/IMG_$((i % motifs)).jpg" "$album/IMG_$i.jpg"
    done
    head -c 4K /dev/urandom >"$album/small.bin"
}

milliseconds() { awk '{ printf "%.1f\n", $1 * 1000 }'; }

# ask SESSION [CURL OPTIONS]: the time of one page in milliseconds.
ask() {
    local session=$1
    shift
    curl -sS -m 60 --fail -b "ID=$session" -o /dev/null -w '%{time_total}\n' "$@" "$URL" | milliseconds
}

# measure METRIC SERVER SESSION
measure() {
    local i
    for ((i = 0; i < requests; i++)); do
        note "$1" "$2" "$(ask "$3")"
    done
}

measure_listings() {
    local round server
    for ((round = 0; round < rounds; round++)); do
        serve quillon "$folder"
        ask 1 >/dev/null
        measure page quillon 1
        ask 2 -d "a=c&cv=$entries" >/dev/null
        measure full quillon 2
        ask 3 -d a=t >/dev/null
        measure time quillon 3
        stop_server
        for server in nginx lighttpd; do
            serve "$server" "$folder"
            ask 1 >/dev/null
            measure full "$server" 1
            stop_server
        done
    done
}

previews_made() { find "$BENCH_DIR/home/.thumbnails" -type f 2>/dev/null | wc -l; }

measure_previews() {
    local began times=$BENCH_DIR/times
    serve quillon "$BENCH_DIR/album"
    taskset -acp 0 "$SERVER_PID" >/dev/null
    began=$EPOCHREALTIME
    ask 1 -d "a=c&cv=$pictures" >/dev/null
    while (($(previews_made) < pictures)); do
        kill -0 "$SERVER_PID" || die "the server is gone"
        curl -sS -m 60 --fail -o /dev/null -w '%{time_total}\n' "${URL}small.bin"
    done | milliseconds | sort -n >"$times"
    note previews quillon "$(calc "$pictures / ($EPOCHREALTIME - $began)")"
    note get99 quillon "$(awk '{ t[NR] = $1 } END { print t[int((NR * 99 + 99) / 100)] }' "$times")"
    stop_server
}

bench_begin
say "Making $entries entries"
make_folder
measure_listings
make_pictures
measure_previews
print_table
