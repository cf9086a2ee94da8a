#!/usr/bin/env bash
# Installs Debian packages; runs as root, called by packages.sh. A web server among them is only
# wanted as a program to measure against: its service is neither started now nor at the next boot.
set -euo pipefail

policy=/usr/sbin/policy-rc.d
services=()

# A service that was here before is its owner's business.
note_new_services() {
    local name
    for name in "$@"; do
        case $name in
        nginx | lighttpd | haproxy) [[ -e /etc/init.d/$name ]] || services+=("$name") ;;
        esac
    done
}

keep_services_down() {
    ((${#services[@]})) || return 0
    [[ -e $policy ]] && return
    trap 'rm -f "$policy"' EXIT
    printf '#!/bin/sh\nexit 101\n' >"$policy"
    chmod 755 "$policy"
}

disable_services() {
    ((${#services[@]})) || return 0
    command -v systemctl >/dev/null || return 0
    systemctl disable --quiet "${services[@]}" || true
}

note_new_services "$@"
keep_services_down
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq || echo "apt-install.sh: no fresh package lists, trying with the old ones" >&2
apt-get install -y -qq --no-install-recommends -o DPkg::Lock::Timeout=300 "$@"
disable_services
