#!/usr/bin/env bash
# Makes the key and the self-signed certificate for TLS on the machine itself:
#   scripts/make-keys.sh FOLDER      FOLDER/server.key (for the owner alone) and FOLDER/server.crt
# What is there already is never overwritten. The certificate names this machine: its host name and
# its addresses; to have a new one after a move to another network, delete server.crt and run again.
# The package installs it as it is: it needs nothing beside it.
set -euo pipefail

# Phones refuse certificates that are valid for longer.
days=825

die() {
    echo "make-keys.sh: $*" >&2
    exit 1
}

addresses() {
    echo 127.0.0.1
    echo ::1
    { ip -o address show scope global || hostname -I | tr ' ' '\n'; } 2>/dev/null |
        sed -nE 's|.* inet6? ([0-9a-f.:]+)/.*|\1|p; s|^([0-9a-f]+[.:][0-9a-f.:]+)$|\1|p'
}

alternative_names() {
    local name list=DNS:localhost
    name=$(uname -n)
    [[ $name == localhost ]] || list+=",DNS:$name"
    [[ $name == *.* || $name == localhost ]] || list+=",DNS:$name.local"
    printf '%s' "$list"
    addresses | sort -u | sed 's/^/,IP:/' | tr -d '\n'
}

make_key() {
    openssl genpkey -quiet -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out "$1" 2>/dev/null ||
        openssl genrsa -out "$1" 2048 2>/dev/null
}

make_certificate() {
    openssl req -x509 -new -sha256 -key "$1" -out "$2" -days "$days" -subj "/CN=$(uname -n)" \
        -addext "subjectAltName=$(alternative_names)" \
        -addext "keyUsage=digitalSignature,keyEncipherment" \
        -addext "extendedKeyUsage=serverAuth" \
        -addext "basicConstraints=critical,CA:FALSE"
}

(($# == 1)) || die "usage: make-keys.sh FOLDER"
key=$1/server.key certificate=$1/server.crt
[[ -e $key && -e $certificate ]] && exit 0
[[ ! -e $certificate ]] || die "$certificate has no key beside it ($key); move it away to get a new pair"
command -v openssl >/dev/null || die "openssl is missing"

mkdir -p "$1"
umask 077
new=$(mktemp -d "$1/.new-keys.XXXXXX")
trap 'rm -rf "$new"' EXIT

echo "==> Making a key and a self-signed certificate for $(uname -n) in $1"
[[ -e $key ]] || { make_key "$new/server.key" && mv "$new/server.key" "$key"; }
make_certificate "$key" "$new/server.crt"
chmod 644 "$new/server.crt"
mv "$new/server.crt" "$certificate"
