#!/bin/sh
# Runs a command on a session bus of its own and in a network of its own, where this machine is
# 192.0.2.5. Ends with 77 where it can't be had.
if [ "$1" = inside ]; then
    shift
    ip link set lo up
    ip link add near type veth peer name far && ip addr add 192.0.2.5/24 broadcast + dev near &&
        ip link set near up && ip link set far up || exit 77
    exec dbus-run-session -- "$@"
fi
for tool in unshare ip dbus-run-session Xvfb xdotool; do
    command -v $tool >/dev/null || { echo "SKIP: there is no $tool" && exit 77; }
done
unshare -rn true || { echo "SKIP: no network of its own to be had" && exit 77; }
exec unshare -rn "$0" inside "$@"
