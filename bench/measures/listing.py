"""The desktop client's listing, and what other clients notice of it."""

import subprocess
import time

import share
from loads import NOTHING_REPLIED, connect, curl, waits
from servers import CLASSIC, Failure
from table import low

RUNS = 5  # a round
# The reply has no head, and its end is the connection's.
CLIENT = ["-X", "PROPFIND", "-A", "mc", "-H", "Connection: close", "--http0.9"]


def metrics(sizes):
    files, tree = sizes.entries, sizes.listed_tree
    return [
        low("list", f"{files} files listed for the client [ms]", 80),
        low("list_filtered", "filtered by pattern and time [ms]"),
        low("list_first", f"{files} pictures, previews queued [ms]", 400),
        low("list_again", "again [ms]"),
        low("list_tree", f"{tree} files, recursive [ms]"),
        low("list_p50", "another client's small GET meanwhile, p50 [ms]"),
        low("list_p99", "the same, p99 [ms]"),
        low("list_worst", "the same, longest [ms]", 100),
        low("list_memory", "most resident for it, more than before [MiB]"),
    ]


def prepare(bench):
    folder, files = bench.folder / "listed", bench.sizes.entries
    share.empty_files(folder / "flat", files, "Some file %05d.txt")
    share.empty_files(folder / "pictures", files, "Some picture %05d.jpg", 20000)
    for branch in range(100):
        share.linked_files(folder / f"tree/{branch}", bench.sizes.listed_tree // 100,
                         "Some file %05d.txt")
    share.random_file(folder / "small.bin", 5)


def measure(bench, name):
    if name not in CLASSIC:
        return
    files = bench.sizes.entries
    with bench.serve(name, bench.folder / "listed") as server:
        switch_previews(server, 0)
        note_listings(bench, server, "list", "flat/", files)
        note_listings(bench, server, "list_filtered",
                      "flat/?p=*9.txt&t=200001010000&to=>", files // 10)
        measure_tree(bench, server)
        switch_previews(server, 1)
        note_listings(bench, server, "list_first", "pictures/", files, runs=1)
        note_listings(bench, server, "list_again", "pictures/", files)


def switch_previews(server, on):
    curl(f"{server.url}?i={on}", *CLIENT, may_end_with=NOTHING_REPLIED)


def note_listings(bench, server, key, target, wanted, runs=RUNS):
    lines = bench.folder / "lines"
    for _ in range(runs):
        seconds, _, _ = curl(server.url + target, *CLIENT, into=lines)
        check_lines(target, lines, wanted)
        bench.note(key, server.name, seconds * 1e3)


def check_lines(target, lines, wanted):
    """Four a file, and one at the end."""
    listed = lines.read_bytes().count(b"\r\n")
    if listed != 4 * wanted + 1:
        raise Failure(f"{target}: {listed} lines for {wanted} files")


def measure_tree(bench, server):
    lines = bench.folder / "lines"
    memory = server.memory_kib()
    with connect(server.address) as peer:
        began = time.perf_counter()
        command = ["curl", "-sS", *CLIENT, "-o", lines, f"{server.url}tree/?r=1"]
        with subprocess.Popen(command) as client:
            taken = waits(peer, "/small.bin", lambda: client.poll() is None, pause=0)
    bench.note("list_tree", server.name, (time.perf_counter() - began) * 1e3)
    check_lines("tree", lines, bench.sizes.listed_tree)
    bench.note("list_memory", server.name, (server.memory_kib("VmHWM") - memory) / 1024)
    for key, wait in (("p50", taken[len(taken) // 2]), ("p99", taken[len(taken) * 99 // 100]),
                      ("worst", taken[-1])):
        bench.note(f"list_{key}", server.name, wait * 1e3)
