#!/usr/bin/env bash
# The one list of what Quillon needs from Debian, and how it gets onto the machine.
#   scripts/packages.sh GROUP...     installs what is missing of the groups; says nothing when
#                                    nothing is. Groups: build test fuzz ci bench
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

packages_of() {
    case $1 in
    build)
        # Compiler and toolkit, then what makes icons and translations.
        echo g++ cmake ninja-build qtbase5-dev qt5-style-plugins qttools5-dev-tools
        echo librsvg2-bin graphicsmagick icoutils
        # The hash in which passwords are kept.
        echo libsodium-dev pkg-config
        # Sums in archives.
        echo libdeflate-dev
        # Addresses as pictures that phones read.
        echo libqrcodegencpp-dev
        # Makes keys, and encrypts by them.
        echo openssl libssl-dev
        # Keeps the program of the previews from calls that it has no need of.
        echo libseccomp-dev
        # The build asks for it on behalf of the tests.
        echo python3
        # Bundle the web application.
        has node || echo nodejs
        has npm || echo npm
        ;;
    test)
        # Clients that are not ours, and a display that nobody looks at.
        echo curl wget cadaver rclone litmus davfs2 fuse3 chromium firefox-esr xvfb
        echo gvfs-backends libglib2.0-bin kde-cli-tools kio dbus
        # Previews of videos and of telephones' pictures, and what makes one of these.
        echo ffmpegthumbnailer libheif1 libheif-examples
        # A hand at the window, and a network for it.
        echo xdotool iproute2
        # Proxies to stand behind, and other file systems, in programs of their own.
        echo nginx haproxy bindfs dosfstools exfat-fuse exfatprogs
        ;;
    # libFuzzer is a part of the compiler.
    fuzz) echo clang ;;
    ci)
        echo clang-format clang-tidy clang-tools qt6-base-dev shellcheck
        # What judges the package, and what it is tried in.
        echo dpkg-dev lintian desktop-file-utils appstream mmdebstrap
        ;;
    bench)
        # Of Apache only the program, which brings no service along.
        echo curl wrk python3 apache2-bin nginx libnginx-mod-http-dav-ext chromium
        echo lighttpd lighttpd-mod-openssl lighttpd-mod-webdav
        ;;
    *) die "unknown group of packages: $1" ;;
    esac
}

# Of the packages given, those that are not installed. Asks nobody but the local database.
missing_of() {
    local installed name
    installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null |
        sed -n 's/ installed$//p') || true
    for name in "$@"; do
        grep -qxF -- "$name" <<<"$installed" || echo "$name"
    done
}

as_root() {
    if ((EUID == 0)); then
        "$@"
    elif has sudo; then
        sudo "$@"
    else
        die "cannot install packages: neither root nor sudo here. Ask an administrator for:" \
            "apt-get install ${missing[*]}"
    fi
}

wanted=()
for group in "$@"; do
    list=$(packages_of "$group")
    read -r -d '' -a names <<<"$list" || true
    wanted+=("${names[@]}")
done
((${#wanted[@]})) || die "usage: scripts/packages.sh build|test|ci|bench ..."

if ! has dpkg-query || ! has apt-get; then
    warn "this system has no apt; please see to the equivalents of: ${wanted[*]}"
    exit 0
fi

mapfile -t missing < <(missing_of "${wanted[@]}")
((${#missing[@]})) || exit 0

say "Installing ${missing[*]}"
as_root "$ROOT/scripts/apt-install.sh" "${missing[@]}" </dev/null ||
    die "could not install: ${missing[*]}"
