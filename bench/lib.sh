# shellcheck shell=bash
# What the measuring scripts share. A script sources it and calls bench_begin; after that:
#
#   $BENCH_DIR                    a folder on disk for files to serve; goes at the end, together with
#                                 every process that was started through `background`
#   serve SERVER SHARE [tls]      starts quillon, nginx or lighttpd (one worker, loopback only) on
#                                 SHARE; sets $URL (ends with "/"), $PORT and $SERVER_PID
#   stop_server                   ends it
#   background COMMAND...         starts a helper process; its id is in $BACKGROUND_PID
#   stop PID...                   ends processes by their id
#   rss_kib PID                   resident memory
#   metric KEY BETTER TARGET TITLE   declares a line of the table; BETTER is high or low, TARGET a
#                                 number or "-"
#   note KEY SERVER VALUE         fills in one figure; of several the best one stays
#   print_table                   figures, ratios to the other servers, and whether the target is met

# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

# The program measured; another build can be given to compare two.
QUILLON_SERVE=${QUILLON_SERVE:-$ROOT/build/bin/quillon-serve}

BENCH_PIDS=()
BENCH_METRICS=()
declare -A BENCH_VALUE BENCH_BETTER BENCH_TARGET BENCH_TITLE

bench_begin() {
    "$ROOT/scripts/packages.sh" build bench
    [[ $QUILLON_SERVE != "$ROOT"/build/* ]] || build release quillon-serve
    # Not /tmp: that may be memory, and the files are meant to lie on a disk.
    BENCH_DIR=$(mktemp -d "${BENCH_TMP:-/var/tmp}/quillon-bench.XXXXXX")
    trap bench_end EXIT
    trap 'exit 130' INT TERM
    mkdir -p "$BENCH_DIR/home/.quillon" "$BENCH_DIR/tmp"
    chmod 755 "$BENCH_DIR"
    make_tls_profile
}

bench_end() {
    stop "${BENCH_PIDS[@]}"
    rm -rf "$BENCH_DIR"
}

make_tls_profile() {
    "$ROOT/scripts/make-keys.sh" "$BENCH_DIR" >/dev/null
    cat "$BENCH_DIR/server.crt" "$BENCH_DIR/server.key" >"$BENCH_DIR/server.pem"
    build release make-profile
    HOME=$BENCH_DIR/home "$ROOT/build/bin/make-profile" tls tls "$BENCH_DIR/server.key" "$BENCH_DIR/server.crt"
}

background() {
    "$@" &
    BACKGROUND_PID=$!
    BENCH_PIDS+=("$BACKGROUND_PID")
}

stop() {
    local pid
    for pid in "$@"; do
        kill "$pid" 2>/dev/null || continue
        wait "$pid" 2>/dev/null || true
    done
}

stop_server() { stop "$SERVER_PID"; }

free_port() {
    python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

# The command of SERVER for SHARE on PORT, a word per line; it stays in the foreground.
server_command() {
    local server=$1 share=$2 port=$3 tls=${4:-}
    local config=$BENCH_DIR/$server.$port.conf
    case $server in
    quillon | before)
        printf '%s\n' env HOME="$BENCH_DIR/home" QUILLON_RESDIR="$ROOT/build/res" \
            "$([[ $server == before ]] && echo "$QUILLON_BEFORE" || echo "$QUILLON_SERVE")" --address 127.0.0.1 --port "$port" ${tls:+--profile tls} "$share"
        ;;
    nginx)
        nginx_config "$share" "$port" "$tls" >"$config"
        printf '%s\n' "$(server_program nginx)" -p "$BENCH_DIR" -e "$BENCH_DIR/nginx.log" -c "$config"
        ;;
    lighttpd)
        lighttpd_config "$share" "$port" "$tls" >"$config"
        printf '%s\n' "$(server_program lighttpd)" -D -f "$config"
        ;;
    *) die "no such server: $server" ;;
    esac
}

# Debian keeps servers where ordinary users' PATH does not look.
server_program() { PATH=$PATH:/usr/sbin command -v "$1"; }

serve() {
    local server=$1 share=$2 tls=${3:-} command
    PORT=$(free_port)
    mapfile -t command < <(server_command "$server" "$share" "$PORT" "$tls")
    background "${command[@]}" >"$BENCH_DIR/$server.out" 2>&1
    SERVER_PID=$BACKGROUND_PID
    # shellcheck disable=SC2034 # for the callers
    URL=http${tls:+s}://127.0.0.1:$PORT/
    wait_listening "$PORT" || die "$server does not listen: $(tail -n 5 "$BENCH_DIR/$server.out")"
}

wait_listening() {
    local try
    for ((try = 0; try < 500; try++)); do
        (: <"/dev/tcp/127.0.0.1/$1") 2>/dev/null && return
        sleep 0.01
    done
    return 1
}

# One process each, sized so that neither its limits nor its log are what is measured.
nginx_config() {
    local share=$1 port=$2 tls=${3:+ssl}
    cat <<END
daemon off; master_process off; worker_processes 1; pid $BENCH_DIR/nginx.$port.pid;
events { worker_connections 4096; }
http {
    access_log off; sendfile on; tcp_nopush on; server_tokens off;
    keepalive_timeout 300; keepalive_requests 1000000000;
    client_max_body_size 0; client_body_temp_path $BENCH_DIR/tmp;
    proxy_temp_path $BENCH_DIR/tmp; fastcgi_temp_path $BENCH_DIR/tmp;
    uwsgi_temp_path $BENCH_DIR/tmp; scgi_temp_path $BENCH_DIR/tmp;
    ssl_certificate $BENCH_DIR/server.crt; ssl_certificate_key $BENCH_DIR/server.key;
    server {
        listen 127.0.0.1:$port $tls backlog=1024; root $share; autoindex on;
        location / { dav_methods PUT DELETE MKCOL COPY MOVE; }
    }
}
END
}

lighttpd_config() {
    local share=$1 port=$2 tls=${3:-}
    cat <<END
server.document-root = "$share"
server.bind = "127.0.0.1"
server.port = $port
server.modules = ( "mod_webdav", "mod_dirlisting"${tls:+, \"mod_openssl\"} )
server.upload-dirs = ( "$BENCH_DIR/tmp" )
server.max-fds = 4096
server.max-connections = 2048
server.max-keep-alive-requests = 60000
server.max-keep-alive-idle = 300
server.listen-backlog = 1024
dir-listing.activate = "enable"
webdav.activate = "enable"
${tls:+ssl.engine = \"enable\"}
${tls:+ssl.pemfile = \"$BENCH_DIR/server.pem\"}
END
}

rss_kib() { awk '/^VmRSS:/ { print $2 }' "/proc/$1/status"; }

# calc EXPRESSION: arithmetic with fractions.
calc() { awk "BEGIN { printf \"%.4g\n\", $1 }"; }

metric() {
    BENCH_METRICS+=("$1")
    BENCH_BETTER[$1]=$2
    BENCH_TARGET[$1]=$3
    BENCH_TITLE[$1]=$4
}

# Other work on the machine only ever makes a figure worse.
note() {
    BENCH_VALUE[$1.$2]=$(awk -v new="$3" -v old="${BENCH_VALUE[$1.$2]:-$3}" -v better="${BENCH_BETTER[$1]}" \
        'BEGIN { print (better == "high") == (new + 0 > old + 0) ? new : old }')
}

print_table() {
    local key format='%-44s %9s %9s %9s %9s %8s %8s %8s %9s  %s\n'
    # shellcheck disable=SC2059
    printf "$format" "" quillon before nginx lighttpd "/before" "/nginx" "/lighttpd" wanted ""
    for key in "${BENCH_METRICS[@]}"; do
        # shellcheck disable=SC2059
        printf "$format" "${BENCH_TITLE[$key]}" "$(figure "$key" quillon)" "$(figure "$key" before)" \
            "$(figure "$key" nginx)" "$(figure "$key" lighttpd)" "$(ratio "$key" before)" \
            "$(ratio "$key" nginx)" "$(ratio "$key" lighttpd)" "$(wanted "$key")" "$(verdict "$key")"
    done
}

figure() { echo "${BENCH_VALUE[$1.$2]:--}"; }

# Quillon's figure as a multiple of the other server's.
ratio() {
    local ours theirs
    ours=$(figure "$1" quillon) theirs=$(figure "$1" "$2")
    [[ $ours == - || $theirs == - ]] && echo - && return
    awk -v a="$ours" -v b="$theirs" 'BEGIN { if (b > 0) printf "%.2f\n", a / b; else print "-" }'
}

wanted() {
    local target=${BENCH_TARGET[$1]}
    [[ $target == - ]] && echo - && return
    [[ ${BENCH_BETTER[$1]} == high ]] && echo ">= $target" || echo "< $target"
}

verdict() {
    local ours=${BENCH_VALUE[$1.quillon]:--} target=${BENCH_TARGET[$1]}
    [[ $ours == - || $target == - ]] && return
    awk -v a="$ours" -v t="$target" -v better="${BENCH_BETTER[$1]}" \
        'BEGIN { print (better == "high" ? a >= t : a < t) ? "met" : "MISSED" }'
}
