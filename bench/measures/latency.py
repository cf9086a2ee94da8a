"""How long a small request waits, alone and beside others; and a starting server."""

import statistics
import time

from loads import Crowd, Downloads, connect, for_seconds, hammer, waits
from table import low

DOWNLOADS = 4
STALLED = 200
STARTS = 5


def metrics(_):
    return [
        low("calm_p50", "small GET alone, p50 [us]"),
        low("calm_p99", "the same, p99 [us]"),
        low("busy_p50", f"beside {DOWNLOADS} downloads, p50 [us]", 1.0, "nginx"),
        low("busy_p99", "the same, p99 [us]", 1.0, "nginx"),
        low("coming", f"while {STALLED} downloads come that stall, worst [ms]", 1.0, "nginx"),
        low("stalled_p50", f"beside {STALLED} stalled downloads, p50 [us]", 1.0, "nginx"),
        low("stalled_p99", "the same, p99 [us]", 1.0, "nginx"),
        low("start", f"accepting after start, median of {STARTS} [ms]", 10),
    ]


def measure(bench, name):
    with bench.serve(name) as server:
        measure_waits(bench, server, "calm")
        with Downloads(server.url + "big.bin", DOWNLOADS):
            measure_waits(bench, server, "busy")
    with bench.serve(name) as server, connect(server.address) as peer:
        with Crowd(server, "/big.bin", STALLED, stalls=True):
            # Until the crowd's buffers are full for sure.
            bench.note("coming", name, waits(peer, "/small.bin", for_seconds(2))[-1] * 1e3)
            measure_waits(bench, server, "stalled")
    bench.note("start", name, statistics.median(start_once(bench, name) for _ in range(STARTS)))


def measure_waits(bench, server, key):
    replies = hammer(server.url + "small.bin", 1, bench.sizes.seconds)
    bench.note(f"{key}_p50", server.name, replies.p50)
    bench.note(f"{key}_p99", server.name, replies.p99)


def start_once(bench, name):
    """Milliseconds from starting the process to the first connection that it accepts."""
    began = time.perf_counter()
    with bench.launcher.start(name, bench.share).wait_listening(pause=0.0005):
        return (time.perf_counter() - began) * 1e3
