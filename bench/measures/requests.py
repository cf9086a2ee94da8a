"""Small files, as many as possible."""

from loads import hammer
from table import BEST, high, low


def metrics(_):
    return [
        high("alive", "4 KiB files, 32 clients, kept-alive [1/s]", 1.0, BEST),
        low("alive_cpu", "server's CPU time for one [us]"),
        high("fresh", "4 KiB files on new connections [1/s]", 1.0, BEST),
        low("fresh_cpu", "server's CPU time for one [us]"),
    ]


def measure(bench, name):
    with bench.serve(name) as server:
        measure_requests(bench, server, "alive")
        measure_requests(bench, server, "fresh", "-H", "Connection: close")


def measure_requests(bench, server, key, *options):
    before = server.cpu_seconds()
    replies = hammer(server.url + "small.bin", 32, bench.sizes.seconds, *options)
    bench.note(f"{key}_cpu", server.name, (server.cpu_seconds() - before) / replies.count * 1e6)
    bench.note(key, server.name, replies.per_second)
