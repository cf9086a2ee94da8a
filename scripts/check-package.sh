#!/usr/bin/env bash
# Makes the Debian package of the release build, judges what is in it, and does with it what its
# users do: installs, starts, upgrades, removes and purges it. This happens in a root of its own,
# made of the machine's package sources with just what the package depends on, and kept in the build
# folder for the next time. Where none can be made, --or-here takes the machine itself, where dpkg then
# installs, removes and purges the package.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$(build_folder release)/package
stranger=65534 # nobody

# --- the package --------------------------------------------------------------------------------

make_package() {
    build release app/all res/all
    rm -rf "$work"/*.deb "$work/older"
    mkdir -p "$work"
    (cd "$work" && cpack --config ../CPackConfig.cmake -G DEB >cpack.log) || die "see $work/cpack.log"
    newer=$(echo "$work"/quillon_*.deb)
}

# The same under a lower version number.
make_older() {
    older=$work/older.deb
    dpkg-deb -R "$newer" "$work/older"
    sed -i 's/^Version: .*/Version: 0.1-1/' "$work/older/DEBIAN/control"
    dpkg-deb --root-owner-group -b "$work/older" "$older" >/dev/null
}

judge_package() {
    local files=$work/older/usr allow=()
    ((EUID != 0)) || allow=(--allow-root)
    lintian "${allow[@]}" --fail-on error "$newer"
    [[ $(dpkg-parsechangelog -l "$ROOT/packaging/debian/changelog" -S Version) == \
        $(dpkg-deb -f "$newer" Version) ]] || die "packaging/debian/changelog is of another version"
    desktop-file-validate "$files"/share/applications/*.desktop
    appstreamcli validate --no-net "$files"/share/metainfo/*.xml
    python3 -m py_compile "$files"/share/nautilus-python/extensions/*.py
    judge_units "$work/older/usr/lib/systemd/user"
}

# A word of the tool is enough: it passes what it doesn't know. The program is not installed here.
judge_units() {
    local said
    has systemd-analyze || return 0
    sed -i "s|=/opt/quillon/bin|=$work/../bin|" "$1/quillon.service"
    said=$(XDG_RUNTIME_DIR=$work SYSTEMD_UNIT_PATH=$1: systemd-analyze --user verify --man=no \
        "$1"/quillon.{service,socket} 2>&1) || die "$said"
    [[ -z $said ]] || die "$said"
}

# --- options ------------------------------------------------------------------------------------

# What --help, the manual and the completion of program $1 know must be the same.
compare_options() {
    local program=$work/../bin/$1 told manual completed
    told=$("$program" --help | sed -nE 's/^ +(-[a-z], )?(--[a-z-]+).*/\2/p' | sort)
    manual=$(grep -oE '\\-[a-z][a-z-]+' "$ROOT/packaging/man/$1.1" | sed 's/^\\-/--/' | sort -u)
    completed=$(completions "$program" -- | sort)
    [[ $manual == "$told" ]] || die "$1.1 lacks options or has too many:" \
        "$(diff <(echo "$manual") <(echo "$told") | grep '^[<>]')"
    [[ $completed == "$told" ]] || die "completion of $1: $completed"
}

# How the last of the words $@ may go on.
completions() {
    # shellcheck source=packaging/completion/quillon-serve.bash
    source "$ROOT/packaging/completion/quillon-serve.bash"
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    _quillon_serve "$1"
    printf '%s\n' "${COMPREPLY[@]}"
}

# --- the root -----------------------------------------------------------------------------------

# Makes the archive $root; fails where the machine's sources can't be reached.
make_root() {
    local needed sources=()
    needed=$(dpkg-deb -f "$newer" Depends | sed -E 's/ *(\([^)]*\)|\|[^,]*)//g; s/, */,/g')
    root=$work/root-$(md5sum <<<"$needed" | cut -c1-8).tar
    [[ ! -e $root ]] || return 0
    has mmdebstrap || return
    rm -f "$work"/root-*.tar
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
        [[ ! -s $file ]] || sources+=("$file")
    done
    say "Making a root with what the package depends on"
    # shellcheck source=/dev/null
    mmdebstrap --quiet --variant=essential --include="$needed" \
        "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$work/new.tar" "${sources[@]}" \
        2>"$work/root.log" && mv "$work/new.tar" "$root"
}

# --- as the superuser ----------------------------------------------------------------------------

use() {
    older=$2 newer=$3 root=$1
    if [[ $root == / ]]; then
        [[ ! -e /opt/quillon ]] || die "Quillon is installed here, and is left alone"
        trap 'end_server; dpkg -P quillon >/dev/null 2>&1 || true; rm -rf "$place"' EXIT
    else
        root=$(mktemp -d)
        trap 'end_server; umount "$root/proc" || true; rm -rf --one-file-system "$root"' EXIT
        tar -C "$root" -xf "$1"
        mount -t proc proc "$root/proc"
    fi
    place=$(mktemp -d "${root%/}/tmp/package.XXXXXX")
    chmod 755 "$place"
    cp "$older" "$newer" "$place"
    mkdir -p "$place/home/share"
    echo hello >"$place/home/share/a.txt"
    chown -R $stranger:$stranger "$place/home"
    live_with_it
}

inside() { chroot "$root" "$@"; }
manage() { inside dpkg "$@" >"$place/dpkg.log" 2>&1 || die "dpkg $*: $(cat "$place/dpkg.log")"; }

# A user's own command; "exec" in a subshell leaves its process with the number that is known.
as_user() {
    exec chroot --userspec=$stranger:$stranger --groups="${groups-}" "$root" /usr/bin/env -i \
        HOME="${place#"${root%/}"}/home" LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen "$@"
}

live_with_it() {
    local deb=${place#"${root%/}"} keys=$root/opt/quillon/server before
    say "Installing"
    manage -i "$deb/${older##*/}"
    [[ $(openssl pkey -in "$keys.key" -pubout) == $(openssl x509 -in "$keys.crt" -noout -pubkey) ]] ||
        die "key and certificate don't belong together"
    ! (as_user cat /opt/quillon/server.key) 2>/dev/null || die "everyone can read the key"
    (groups=$(inside getent group quillon | cut -d: -f3) && as_user cat /opt/quillon/server.key) >/dev/null ||
        die "the group can't read the key"
    start_it
    before=$(stored)

    say "Upgrading"
    manage -i "$deb/${newer##*/}"
    [[ $(stored) == "$before" ]] || die "the upgrade changed keys or profiles"
    start_it

    say "Removing"
    manage -r quillon
    dpkg-deb -c "$newer" | sed -nE '/^d/! s|^.* \.(/[^ ]*)( -> .*)?$|\1|p' | while read -r file; do
        [[ ! -e $root$file && ! -L $root$file ]] || die "$file is left"
    done
    [[ $(stored) == "$before" ]] || die "the removal took keys or profiles along"
    manage -P quillon
    [[ ! -e $root/opt/quillon ]] || die "the purge left /opt/quillon"
    ! inside getent group quillon >/dev/null || die "the purge left the group"
    [[ -e $place/home/.quillon/Global.conf ]] || die "the purge took the user's profile along"
}

end_server() { [[ -z ${process:-} ]] || kill "$process" || true; }

# What must outlive an upgrade.
stored() { (cd "$root" && cat opt/quillon/{server,authority}.* "$place"/home/.quillon/*.conf | md5sum); }

# Both programs, as a user finds them.
start_it() {
    local url='' i
    (as_user quillon --version) | grep -q '^Quillon [0-9]' || die "quillon --version"
    i=0
    (as_user timeout 2 quillon) 2>"$place/window.log" || i=$?
    [[ $i == 124 ]] || die "quillon ended with $i: $(cat "$place/window.log")"
    as_user quillon-serve --address 127.0.0.1 --port 0 --mode standard \
        "${place#"${root%/}"}/home/share" >"$place/serve.log" 2>&1 &
    process=$!
    for ((i = 0; i < 100 && ${#url} == 0; i++)); do
        sleep 0.1
        url=$(sed -n 's/^Serving .* at //p' "$place/serve.log")
    done
    [[ $(curl -sf --max-time 10 "${url}a.txt") == hello ]] || die "quillon-serve: $(cat "$place/serve.log")"
    kill "$process"
    i=0
    wait "$process" || i=$?
    process=''
    [[ $i == 0 ]] || die "quillon-serve ended with $i"
}

if [[ ${1:-} == --use ]]; then
    shift
    use "$@"
    exit
fi

make_package
make_older
judge_package
compare_options quillon-serve
compare_options quillon
as_root=()
((EUID == 0)) || as_root=(sudo)
alone=(unshare --mount)
if ! "${as_root[@]}" "${alone[@]}" true || ! make_root; then
    [[ ${1:-} == --or-here ]] || die "no root of its own can be made: see $work/root.log, or --or-here"
    warn "no root of its own, so the machine's is used: $(tail -n 1 "$work/root.log" 2>/dev/null)"
    root=/ alone=()
fi
"${as_root[@]}" "${alone[@]}" "${BASH_SOURCE[0]}" --use "$root" "$older" "$newer"
say "The package is installed, started, upgraded and removed"
