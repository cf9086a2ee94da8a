#!/bin/sh
# How fast the desktop client's listing is made, and what other clients notice of it.
# Usage: bench/mfind.sh [FOLDER_OF_THE_PROGRAMS]   (default: build/bin)
set -eu

bin=$(cd "${1:-$(dirname "$0")/../build/bin}" && pwd)
work=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server"; rm -rf "$work"' EXIT
trap 'exit 1' INT TERM

mkdir -p "$work/home" "$work/res" "$work/share"
HOME=$work/home QUILLON_RESDIR=$work/res "$bin/quillon-serve" --address 127.0.0.1 --port 0 \
    "$work/share" > "$work/out" &
server=$!
until grep -q '^Serving' "$work/out"; do
    kill -0 "$server"
    sleep 0.05
done
port=$(sed -n 's|^Serving .*:\([0-9]*\)/.*|\1|p' "$work/out" | head -n 1)

python3 - "$port" "$work/share" "$server" <<'PYTHON'
import multiprocessing
import os
import socket
import statistics
import sys
import time

port, share, server = int(sys.argv[1]), sys.argv[2], sys.argv[3]


def connect():
    return socket.create_connection(("127.0.0.1", port), timeout=60)


def listing(target):
    """The lines of one listing and the milliseconds it took, connection included."""
    start = time.perf_counter()
    with connect() as peer:
        peer.sendall(f"PROPFIND {target} HTTP/1.1\r\nUser-Agent: mc\r\nConnection: close\r\n\r\n"
                     .encode())
        chunks = []
        while chunk := peer.recv(1 << 20):
            chunks.append(chunk)
    took = (time.perf_counter() - start) * 1000
    return b"".join(chunks).split(b"\r\n"), took


def timed(target, wanted, runs=5):
    times = []
    for _ in range(runs):
        lines, took = listing(target)
        if len(lines) != wanted + 2:
            sys.exit(f"{target}: {len(lines)} lines instead of {wanted + 2}")
        times.append(took)
    return times


def make_files(folder, count, size, pattern):
    os.makedirs(folder)
    for i in range(count):
        with open(os.path.join(folder, pattern % i), "wb") as file:
            file.truncate(size)


def make_names(folder, count, pattern):
    """Names of one empty file, which are made much faster than as many files."""
    make_files(folder, 1, 0, pattern)
    for i in range(1, count):
        os.link(os.path.join(folder, pattern % 0), os.path.join(folder, pattern % i))


def small_gets(done, waits):
    """A second client that asks for a small file over and over; its waits in milliseconds."""
    with connect() as peer:
        while not done.is_set():
            start = time.perf_counter()
            peer.sendall(b"GET /small HTTP/1.1\r\n\r\n")
            reply = b""
            while not reply.endswith(b"\r\n\r\nhello"):
                reply += peer.recv(4096)
            waits.append((time.perf_counter() - start) * 1000)


def waits_beside(work):
    with multiprocessing.Manager() as manager:
        done, waits = manager.Event(), manager.list()
        other = multiprocessing.Process(target=small_gets, args=(done, waits))
        other.start()
        time.sleep(0.3)
        del waits[:]
        result = work()
        done.set()
        other.join()
        return result, sorted(waits)


def resident(field):
    with open(f"/proc/{server}/status") as status:
        return next(int(line.split()[1]) for line in status if line.startswith(field))


def show(what, figure):
    print(f"{what:<58}{figure:>16}")


with open(os.path.join(share, "small"), "wb") as file:
    file.write(b"hello")
make_files(os.path.join(share, "flat"), 10_000, 0, "Some file %05d.txt")
make_files(os.path.join(share, "pictures"), 10_000, 20_000, "Some picture %05d.jpg")
for folder in range(100):
    make_names(os.path.join(share, "tree", f"folder {folder}"), 1000, "Some file %05d.txt")
listing("/flat/")

listing("/?i=0")
show("10 000 files, previews off (wanted: < 80 ms)",
     f"{statistics.median(timed('/flat/', 40_000)):.0f} ms")
show("10 000 files, filtered by pattern and time",
     f"{statistics.median(timed('/flat/?p=*9.txt&t=200001010000&to=>', 4000)):.0f} ms")

before = resident("VmRSS")
(times, waits) = waits_beside(lambda: timed("/tree/?r=1", 400_000, runs=3))
show("100 000 files, recursive", f"{statistics.median(times):.0f} ms")
show("  another client's small GET meanwhile: median", f"{statistics.median(waits):.1f} ms")
show("  99 of 100", f"{waits[int(len(waits) * 0.99)]:.1f} ms")
show("  longest (wanted: < 100 ms)", f"{waits[-1]:.1f} ms")
show("  most memory resident, more than before", f"{resident('VmHWM') - before} KiB")

listing("/?i=1")
show("10 000 pictures, previews queued (wanted: < 400 ms)",
     f"{timed('/pictures/', 40_000, runs=1)[0]:.0f} ms")
show("  again", f"{statistics.median(timed('/pictures/', 40_000)):.0f} ms")
PYTHON
