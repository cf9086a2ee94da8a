"""Visitors who work among many who trickle or take nothing: none of them is refused or waits long."""

import asyncio
import contextlib
import random
import time

from loads import Crowd, hammer
from measures.soak import Load
from servers import Failure
from table import OURS, low

ROUNDS = 1
TRICKLING, SILENT, WORKING = 500, 200, 300
PAUSE = 0.2  # seconds between what one does and the next, at most: people, not machines


def metrics(sizes):
    return [
        low("strain_refused", f"{WORKING} who work {sizes.strain} s among {TRICKLING} who trickle and "
                              f"{SILENT} who read nothing: refused or broken", 0),
        low("strain_p99", "small GET meanwhile, p99 [ms]", 20),
        low("strain_memory", "more resident after it than before [MiB]", 8),
    ]


def measure(bench, name):
    if name not in OURS:
        return
    (bench.share / "soak").mkdir(exist_ok=True)
    with bench.serve(name) as server:
        before = server.memory_kib()
        with Crowd(server, "/big.bin", SILENT, stalls=True):
            load, single = asyncio.run(everybody(server, bench.sizes.strain))
        time.sleep(bench.sizes.settle)
        bench.note("strain_memory", name, (server.memory_kib() - before) / 1024)
    bench.note("strain_refused", name, load.refused)
    bench.note("strain_p99", name, single.p99 / 1e3)
    if load.problems:
        raise Failure("; ".join(load.problems[:3]))


async def everybody(server, seconds):
    """What became of those who work, and of one who asks for a small file all the time."""
    load = Load(server, float("inf"), WORKING, seconds, PAUSE)
    slow = [asyncio.create_task(trickle(server, seed)) for seed in range(TRICKLING)]
    single = asyncio.create_task(asyncio.to_thread(hammer, server.url + "small.bin", 1, seconds))
    await load.run()
    for task in slow:
        task.cancel()
    return load, await single


async def trickle(server, seed):
    """Sends a head that never ends, a few bytes a second; comes back when it is cut off."""
    pause = random.Random(seed).uniform(0.1, 1)
    while True:
        with contextlib.suppress(OSError):
            _, writer = await asyncio.open_connection(*server.address)
            writer.write(b"GET /small.bin HTTP/1.1\r\nHost: localhost\r\nX: ")
            while not writer.transport.is_closing():
                writer.write(b"x")
                await writer.drain()
                await asyncio.sleep(pause)
        await asyncio.sleep(pause)
