"""What is resident, of all processes of a server together."""

import time

from loads import Crowd, curl, download_together, hammer, upload
from measures import dav
from table import low

IDLE = 500
STALLED = 200


def metrics(_):
    return [
        low("rest", "resident at rest [MiB]", 12),
        low("per_idle", f"resident per idle connection, {IDLE} [KiB]", 2),
        low("stalled", f"resident with {STALLED} stalled downloads [MiB]", 16),
        low("after", "resident after all kinds of load [MiB]", 20),
    ]


def measure(bench, name):
    with bench.serve(name) as server:
        time.sleep(0.5)
        bench.note("rest", name, server.memory_kib() / 1024)
        curl(server.url + "small.bin")  # what the first one needs stays
        served_one = server.memory_kib()
        with Crowd(server, "/small.bin", IDLE):
            bench.note("per_idle", name, (server.memory_kib() - served_one) / IDLE)
    with bench.serve(name) as server:
        with Crowd(server, "/big.bin", STALLED, stalls=True):
            time.sleep(2)
            bench.note("stalled", name, server.memory_kib() / 1024)
        every_load(bench, server)
        time.sleep(bench.sizes.settle)
        bench.note("after", name, server.memory_kib() / 1024)


def every_load(bench, server):
    size = bench.sizes.big
    download_together(server.url + "big.bin", size, 4)
    for options in [], ["-H", "Connection: close"]:
        hammer(server.url + "small.bin", 32, bench.sizes.seconds, *options)
    upload(server.url + "put.bin", bench.share / "put.bin", size, "-T", bench.share / "big.bin")
    dav.propfind(server)
    curl(server.url + "entries/")
