#!/usr/bin/env bash
# Measures WebDAV side by side with nginx, lighttpd and Apache, one process each, on loopback:
# PROPFIND of a large folder, PUT of a large file, DELETE of a large tree. Prints a table.
#
# usage: bench/dav.sh [PATH/TO/quillon-serve]
# Debian packages: curl, nginx-light, libnginx-mod-http-dav-ext, lighttpd-mod-webdav, apache2.
# A server that is not installed is left out. The files lie below TMPDIR (about 6 GiB for a while).
set -euo pipefail

ENTRIES=${ENTRIES:-10000}
MEBIBYTES=${MEBIBYTES:-1024}
ROUNDS=${ROUNDS:-5}
SERVE=$(realpath "${1:-build/bin/quillon-serve}")

top=$(mktemp -d "${TMPDIR:-/tmp}/quillon-bench-XXXXXX")
chmod 755 "$top" # Apache serves as another user
results=$top/results
declare -A pid port
servers=()

cleanup() {
    for server in "${!pid[@]}"; do
        kill "${pid[$server]}" 2>/dev/null || true
    done
    wait
    rm -rf "$top"
}
trap cleanup EXIT

die() {
    echo "$*" >&2
    exit 1
}

free_port() {
    python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

share() {
    echo "$top/$1/share"
}

# --- the servers ---

start_quillon() {
    HOME=$top/quillon QUILLON_RESDIR=$top/quillon "$SERVE" --address 127.0.0.1 \
        --port "${port[quillon]}" "$(share quillon)" >/dev/null 2>&1 &
}

start_nginx() {
    local modules=/usr/lib/nginx/modules
    cat >"$top/nginx/conf" <<END
load_module $modules/ngx_http_dav_ext_module.so;
worker_processes 1;
daemon off;
pid $top/nginx/pid;
error_log $top/nginx/error.log;
$([ "$(id -u)" = 0 ] && echo "user root;")
events { worker_connections 256; }
http {
    access_log off;
    client_max_body_size 0;
    client_body_temp_path $top/nginx/temp;
    server {
        listen 127.0.0.1:${port[nginx]};
        root $(share nginx);
        dav_methods PUT DELETE MKCOL COPY MOVE;
        dav_ext_methods PROPFIND OPTIONS;
    }
}
END
    nginx -p "$top/nginx" -c "$top/nginx/conf" -e "$top/nginx/error.log" 2>/dev/null &
}

start_lighttpd() {
    mkdir "$top/lighttpd/temp"
    cat >"$top/lighttpd/conf" <<END
server.modules = ( "mod_webdav" )
server.document-root = "$(share lighttpd)"
server.bind = "127.0.0.1"
server.port = ${port[lighttpd]}
server.errorlog = "$top/lighttpd/error.log"
server.upload-dirs = ( "$top/lighttpd/temp" )
server.max-request-size = 0
webdav.activate = "enable"
END
    lighttpd -D -f "$top/lighttpd/conf" 2>/dev/null &
}

start_apache() {
    local modules=/usr/lib/apache2/modules
    cat >"$top/apache/conf" <<END
LoadModule mpm_event_module $modules/mod_mpm_event.so
LoadModule authz_core_module $modules/mod_authz_core.so
LoadModule dav_module $modules/mod_dav.so
LoadModule dav_fs_module $modules/mod_dav_fs.so
ServerRoot $top/apache
ServerName localhost
Listen 127.0.0.1:${port[apache]}
PidFile $top/apache/pid
DefaultRuntimeDir $top/apache
ErrorLog $top/apache/error.log
DavLockDB $top/apache/lock
LimitRequestBody 0
DocumentRoot $(share apache)
$([ "$(id -u)" = 0 ] && printf 'User www-data\nGroup www-data')
<Directory $(share apache)>
    Dav On
    Require all granted
</Directory>
END
    chmod 777 "$top/apache"
    apache2 -X -f "$top/apache/conf" 2>/dev/null &
}

start() {
    local server=$1
    mkdir -p "$(share "$server")"
    port[$server]=$(free_port)
    "start_$server"
    pid[$server]=$!
    for _ in $(seq 100); do
        curl -s -o /dev/null "http://127.0.0.1:${port[$server]}/" && servers+=("$server") && return
        sleep 0.05
    done
    die "$server does not start: $(tail -n 3 "$top/$server/error.log" 2>/dev/null)"
}

# --- what is measured; each prints seconds ---

# Status and time of one request; a status other than 2xx ends the run.
request() {
    local server=$1 target=$2
    shift 2
    local out
    out=$(curl -sS -o /dev/null -w '%{http_code} %{time_total}' "$@" \
        "http://127.0.0.1:${port[$server]}/$target")
    [[ $out == 2* ]] || die "$server: $target: $out"
    echo "${out#* }"
}

# The properties that our server always sends.
properties='<?xml version="1.0"?><propfind xmlns="DAV:"><prop><getlastmodified/><resourcetype/><getcontentlength/></prop></propfind>'

propfind() {
    request "$1" entries/ -X PROPFIND -H 'Depth: 1' -H 'Content-Type: text/xml' --data "$properties"
}

put() {
    request "$1" upload -H 'Expect:' -T "$top/upload"
    rm "$(share "$1")/upload"
}

delete() {
    cp -r "$top/tree" "$(share "$1")/tree"
    open_up "$(share "$1")/tree"
    request "$1" tree/ -X DELETE -H 'Depth: infinity'
    [ ! -e "$(share "$1")/tree" ] || die "$1 left the tree"
}

# Apache does not run as root, so it needs leave to write.
open_up() {
    chmod -R a+rwX "$1"
}

make_files() {
    echo "making files in $top"
    head -c "$MEBIBYTES"M /dev/urandom >"$top/upload"
    mkdir "$top/tree" "$top/entries"
    (
        cd "$top/entries" && seq -f 'entry number %05.0f.txt' "$ENTRIES" | tr '\n' '\0' | xargs -0 touch
        cd "$top/tree" && for folder in $(seq 100); do mkdir "$folder"; done
        for folder in $(seq 100); do
            seq -f "$folder/file %.0f" $((ENTRIES / 100)) | tr '\n' '\0' | xargs -0 touch
        done
    )
    for server in "${servers[@]}"; do
        cp -r "$top/entries" "$(share "$server")/entries"
        open_up "$(share "$server")"
    done
}

# In turns, so that whatever else the machine does meets all of them.
measure() {
    for what in propfind put delete; do
        for _ in $(seq "$ROUNDS"); do
            for server in "${servers[@]}"; do
                seconds=$("$what" "$server")
                echo "$what $server $seconds" >>"$results"
            done
        done
    done
}

report() {
    python3 - "$results" "$MEBIBYTES" "$ENTRIES" <<'END'
import collections
import statistics
import sys

times = collections.defaultdict(list)
for line in open(sys.argv[1]):
    what, server, seconds = line.split()
    times[what, server].append(float(seconds))

size = int(sys.argv[2]) * 2**20
entries = sys.argv[3]
rows = {
    "propfind": (f"PROPFIND, {entries} entries", "ms", lambda t: t * 1e3),
    "put": (f"PUT, {sys.argv[2]} MiB", "GB/s", lambda t: size / t / 1e9),
    "delete": (f"DELETE, {entries} files", "ms", lambda t: t * 1e3),
}
print(f"{'':26}{'server':10}{'median':>9}{'worst':>9}{'best':>9} {'unit':5}{'time, ours = 1':>16}")
for (what, server), seconds in times.items():
    label, unit, show = rows[what]
    ours = statistics.median(times[what, "quillon"])
    median = statistics.median(seconds)
    print(f"{label:26}{server:10}{show(median):9.2f}{show(max(seconds)):9.2f}{show(min(seconds)):9.2f}"
          f" {unit:5}{median / ours:16.2f}")
END
}

[ -x "$SERVE" ] || die "no program at $SERVE"
for server in quillon nginx lighttpd apache; do
    mkdir "$top/$server"
done
start quillon
[ -e /usr/lib/nginx/modules/ngx_http_dav_ext_module.so ] && start nginx
[ -e /usr/lib/lighttpd/mod_webdav.so ] && start lighttpd
[ -e /usr/lib/apache2/modules/mod_dav_fs.so ] && start apache
make_files
measure
report
