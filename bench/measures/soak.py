"""A long mixed load on the build with the sanitizers: its memory must stay where it is."""

import asyncio
import contextlib
import itertools
import random
import socket
import struct
import time
from pathlib import Path

from servers import ROOT, Failure
from table import high, low

ROUNDS = 1
CONNECTIONS = 500
LASTS = 300  # seconds at most
LONGEST = 30  # seconds that an action may take
UPLOAD = b"x" * 65536
PIPELINED = 8
REPORTS = ("Sanitizer", "runtime error")
SANITIZERS = {
    "ASAN_OPTIONS": "quarantine_size_mb=16:detect_leaks=1",
    "LSAN_OPTIONS": f"suppressions={ROOT}/tests/support/lsan.supp:print_suppressions=0",
    "UBSAN_OPTIONS": "print_stacktrace=1",
}


def metrics(sizes):
    return [
        high("soak", f"mixed requests on {CONNECTIONS} connections, done", sizes.soak),
        low("soak_refused", "of them refused or broken", 0),
        low("soak_time", "seconds for it"),
        low("soak_quarter", "resident after a quarter [MiB]"),
        low("soak_end", "resident at the end [MiB]"),
        low("soak_growth", "growth between [%]", 10),
        low("soak_reports", "lines of the sanitizers", 0),
        low("soak_status", "exit status", 0),
    ]


def measure(bench, name):
    if name != "quillon":
        return
    (bench.share / "soak").mkdir(exist_ok=True)
    began = time.perf_counter()
    with bench.serve("sanitized", **SANITIZERS) as server:
        load = Load(server, bench.sizes.soak)
        asyncio.run(load.run())
        status = server.end()
    reports = [line for line in Path(server.log).read_text(errors="replace").splitlines()
               if any(mark in line for mark in REPORTS)]
    quarter, end = load.resident(0.25), load.resident(1)
    for key, value in (("soak", load.done), ("soak_refused", load.refused),
                       ("soak_time", time.perf_counter() - began),
                       ("soak_quarter", quarter / 1024), ("soak_end", end / 1024),
                       ("soak_growth", 100 * (end / quarter - 1)),
                       ("soak_reports", len(reports)), ("soak_status", abs(status))):
        bench.note(key, name, value)
    if reports or load.problems:
        raise Failure("; ".join(reports[:3] + load.problems[:3]))


class Load:
    """Visitors who do one thing after another until `wanted` requests were made or the time is up."""

    def __init__(self, server, wanted, visitors=CONNECTIONS, seconds=LASTS, pause=0):
        self.server, self.wanted = server, wanted
        self.visitors, self.seconds = visitors, seconds
        self.pause = pause  # seconds between two actions of one visitor, at most
        self.done = self.refused = 0
        self.samples = []  # (requests done, KiB resident)
        self.problems = []
        self.names = itertools.count()

    async def run(self):
        with contextlib.suppress(TimeoutError):
            async with asyncio.timeout(self.seconds):
                sampler = asyncio.create_task(self.sample())
                await asyncio.gather(*(self.visit(seed) for seed in range(self.visitors)))
                sampler.cancel()

    async def sample(self):
        while True:
            self.samples.append((self.done, self.server.memory_kib()))
            await asyncio.sleep(0.1)

    def resident(self, part):
        """The most that was resident shortly before that part of the requests was done."""
        end = part * self.done
        return max((kib for done, kib in self.samples if 0.9 * end <= done <= end),
                   default=self.samples[-1][1])

    async def visit(self, seed):
        chance = random.Random(seed)
        visitor = Visitor(self.server.address)
        actions, weights = zip(*ACTIONS)
        while self.done < self.wanted:
            action = chance.choices(actions, weights)[0]
            try:
                async with asyncio.timeout(LONGEST):
                    made = await action(visitor, f"/soak/{next(self.names)}")
                self.done += made  # not in one: the others go on during the wait
                if self.pause:
                    await asyncio.sleep(chance.uniform(0, self.pause))
            except (OSError, EOFError, Failure) as problem:
                self.refused += 1
                self.problems.append(f"{action.__name__}: {problem or type(problem).__name__}")
                visitor.leave()
        visitor.leave()


class Visitor:
    """One connection at a time. Each action gives how many requests it made."""

    def __init__(self, address):
        self.address = address
        self.writer = None

    async def send(self, requests):
        if self.writer is None:
            self.reader, self.writer = await asyncio.open_connection(*self.address)
        self.writer.write(requests)
        await self.writer.drain()

    async def reply(self):
        head = (await self.reader.readuntil(b"\r\n\r\n")).decode("latin-1")
        if head.split()[1][0] != "2":
            raise Failure(head.splitlines()[0])
        fields = dict(line.lower().split(": ", 1) for line in head.splitlines()[1:] if line)
        if "transfer-encoding" in fields:
            raise Failure("a reply of unknown size")
        await self.reader.readexactly(int(fields.get("content-length", 0)))

    def leave(self, reset=False):
        if self.writer is None:
            return
        if reset:
            self.writer.get_extra_info("socket").setsockopt(
                socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self.writer.transport.abort()
        self.writer = None

    async def small(self, _):
        await self.send(request("GET", "/small.bin"))
        await self.reply()
        return 1

    async def propfind(self, _):
        await self.send(request("PROPFIND", "/", ["Depth: 1"]))
        await self.reply()
        return 1

    async def put_and_delete(self, name):
        await self.send(request("PUT", name, [f"Content-Length: {len(UPLOAD)}"]) + UPLOAD)
        await self.reply()
        await self.send(request("DELETE", name))
        await self.reply()
        return 2

    async def pipelined(self, _):
        await self.send(request("GET", "/small.bin") * PIPELINED)
        for _ in range(PIPELINED):
            await self.reply()
        return PIPELINED

    async def aborted(self, _):
        await self.send(request("GET", "/big.bin"))
        await self.reader.readexactly(65536)
        self.leave(reset=True)
        return 1

    async def half_closed(self, _):
        self.leave()
        await self.send(request("GET", "/small.bin"))
        self.writer.write_eof()
        await self.reply()
        if await self.reader.read(1):
            raise Failure("more than one reply")
        self.leave()
        return 1


ACTIONS = [  # and how often each is chosen
    (Visitor.small, 50),
    (Visitor.propfind, 10),
    (Visitor.put_and_delete, 10),
    (Visitor.pipelined, 5),
    (Visitor.aborted, 5),
    (Visitor.half_closed, 5),
]


def request(method, path, fields=()):
    return "\r\n".join((f"{method} {path} HTTP/1.1", "Host: localhost", *fields, "", "")).encode()
