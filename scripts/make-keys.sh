#!/usr/bin/env bash
# Makes the key and the certificate for TLS on the machine itself, and renews the certificate:
#   make-keys.sh FOLDER [NAME [ADDRESS...]]
# FOLDER/NAME.key (for the owner alone) and FOLDER/NAME.crt, "server" when no NAME is given. It is signed
# by an authority of this machine, FOLDER/authority.key and authority.crt, made the first time: who trusts
# that once trusts what it signs later. It can sign for private addresses and this machine's names alone.
# The certificate names this machine and its private addresses, or the ones given. One that the
# authority has signed is renewed, for the same key, when it ends soon (within QUILLON_RENEWAL_DAYS days, 30
# without) or lacks one of them; nothing else that is there already is ever overwritten. An authority.crt that
# is missing comes back from a certificate that holds it.
# The package installs it as it is, and the programs start it: it needs nothing beside it.
set -euo pipefail

# Phones refuse certificates of their users' own authorities that are valid for longer.
days=825
authority_days=3650
renewal_seconds=$((${QUILLON_RENEWAL_DAYS:-30} * 24 * 3600)) # before the end

die() {
    echo "make-keys.sh: $*" >&2
    exit 1
}

# Those that the authority may sign for (RFC 1918, 3927, 4193) and that browsers can ask for.
private_addresses() {
    grep -E '^(10\.|127\.|192\.168\.|169\.254\.|172\.(1[6-9]|2[0-9]|3[01])\.|f[cd][0-9a-f]{2}:|::1$)' || true
}

addresses() {
    echo 127.0.0.1
    echo ::1
    if ((${#given[@]})); then
        printf '%s\n' "${given[@]}"
    else
        { ip -o address show || hostname -I | tr ' ' '\n'; } 2>/dev/null |
            sed -nE 's|.* inet6? ([0-9a-f.:]+)/.*|\1|p; s|^([0-9a-f]+[.:][0-9a-f.:]+)$|\1|p'
    fi
}

may_sign_for() {
    openssl x509 -in "$authority.crt" -noout -text | grep -qixF "                  DNS:$1"
}

# All that visitors may type for this machine, a line each.
alternative_names() {
    echo DNS:localhost
    [[ $host == localhost ]] || ! may_sign_for "$host" || echo "DNS:$host"
    [[ $host == *.* || $host == localhost ]] || echo "DNS:$host.local"
    addresses | private_addresses | sort -u | sed 's/^/IP:/'
}

make_key() {
    openssl genpkey -quiet -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out "$1" 2>/dev/null ||
        openssl genrsa -out "$1" 2048 2>/dev/null
}

authority_settings() {
    cat <<END
[req]
prompt = no
distinguished_name = name
x509_extensions = extensions
[name]
O = Quillon
CN = Quillon on ${host:0:50}
[extensions]
basicConstraints = critical,CA:TRUE,pathlen:0
keyUsage = critical,keyCertSign
extendedKeyUsage = serverAuth
subjectKeyIdentifier = hash
nameConstraints = critical,@constraints
[constraints]
permitted;DNS.1 = local
permitted;DNS.2 = localhost
permitted;DNS.3 = $host
permitted;IP.1 = 10.0.0.0/255.0.0.0
permitted;IP.2 = 172.16.0.0/255.240.0.0
permitted;IP.3 = 192.168.0.0/255.255.0.0
permitted;IP.4 = 169.254.0.0/255.255.0.0
permitted;IP.5 = 127.0.0.0/255.0.0.0
permitted;IP.6 = fc00::/fe00::
permitted;IP.7 = fe80::/ffc0::
permitted;IP.8 = ::1/ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff
END
}

make_authority() {
    [[ ! -e $authority.crt ]] ||
        die "$authority.key is gone; move $authority.crt away to get a new authority"
    echo "==> Making an authority for $host in $folder"
    [[ -e $authority.key ]] || { make_key "$new/authority.key" && mv "$new/authority.key" "$authority.key"; }
    openssl req -x509 -new -sha256 -key "$authority.key" -out "$new/authority.crt" -days "$authority_days" \
        -config <(authority_settings)
    chmod 644 "$new/authority.crt"
    mv "$new/authority.crt" "$authority.crt"
}

certificate_settings() {
    echo basicConstraints = critical,CA:FALSE
    echo keyUsage = critical,digitalSignature,keyEncipherment
    echo extendedKeyUsage = serverAuth
    echo authorityKeyIdentifier = keyid
    echo "subjectAltName = $(alternative_names | paste -sd,)"
}

# The authority's own follows, so that the file tells visitors whom to trust.
make_certificate() {
    openssl req -new -key "$key" -config <(authority_settings) -subj "/CN=$host" -passin pass: |
        openssl x509 -req -sha256 -days "$days" -CA "$authority.crt" -CAkey "$authority.key" \
            -set_serial "0x$(openssl rand -hex 16)" -extfile <(certificate_settings) -out "$new/crt" 2>/dev/null
    openssl verify -trusted "$authority.crt" "$new/crt" >/dev/null ||
        die "$authority.crt can't be used; move it and its key away to get a new authority"
    cat "$authority.crt" >>"$new/crt"
    chmod 644 "$new/crt"
    mv "$new/crt" "$certificate"
}

# With a new one for the same key, devices that trust the old one would have to trust again.
restore_authority() {
    local held
    [[ -r $authority.key && ! -e $authority.crt ]] || return 0
    held=$(sed '1,/^-----END CERTIFICATE-----$/d' "$certificate")
    [[ $(openssl x509 -noout -pubkey <<<"$held" 2>/dev/null) == \
        $(openssl pkey -in "$authority.key" -passin pass: -pubout) ]] || return 0
    echo "==> Taking $authority.crt from $certificate"
    echo "$held" >"$authority.crt.$$"
    chmod 644 "$authority.crt.$$"
    mv "$authority.crt.$$" "$authority.crt"
}

is_authority() {
    openssl x509 -in "$1" -noout -ext basicConstraints 2>/dev/null | grep -q CA:TRUE
}

# Whether the authority has signed it, for the key beside it; whatever else the system trusts has no say.
is_ours() {
    [[ -r $authority.key && -r $authority.crt ]] && ! is_authority "$certificate" &&
        openssl verify -no_check_time -trusted "$authority.crt" "$certificate" &>/dev/null &&
        [[ $(openssl x509 -in "$certificate" -noout -pubkey) == "$(openssl pkey -in "$key" -passin pass: -pubout)" ]]
}

is_current() {
    local name option
    openssl x509 -in "$certificate" -noout -checkend "$renewal_seconds" >/dev/null || return 1
    while read -r name; do
        [[ $name == IP:* ]] && option=-checkip || option=-checkhost
        openssl x509 -in "$certificate" -noout "$option" "${name#*:}" | grep -q 'does match' || return 1
    done < <(alternative_names)
}

(($# >= 1)) || die "usage: make-keys.sh FOLDER [NAME [ADDRESS...]]"
folder=$1 name=${2:-server} given=("${@:3}")
key=$folder/$name.key certificate=$folder/$name.crt authority=$folder/authority
[[ $name != authority ]] || die "authority.key and authority.crt are those of the authority"
host=$(uname -n)
[[ $host =~ ^[[:alnum:]._-]+$ ]] || host=localhost
command -v openssl >/dev/null || die "openssl is missing"
if [[ -e $certificate ]]; then
    [[ -e $key ]] || die "$certificate has no key beside it ($key); move it away to get a new pair"
    restore_authority
    is_ours && ! is_current || exit 0
fi

mkdir -p "$folder"
umask 077
new=$(mktemp -d "$folder/.new-keys.XXXXXX")
trap 'rm -rf "$new"' EXIT

[[ -e $authority.key && -e $authority.crt ]] || make_authority
echo "==> Making a certificate for $host in $folder"
[[ -e $key ]] || { make_key "$new/key" && mv "$new/key" "$key"; }
make_certificate
