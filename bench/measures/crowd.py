"""What a great many idle connections cost, in memory and for those who work meanwhile."""

from loads import Crowd, hammer
from table import BEST, high, low


def metrics(sizes):
    crowd = f"{sizes.crowd} idle connections"
    return [
        high("crowd_rate", f"4 KiB files beside {crowd} [1/s]", 1.0, BEST),
        high("crowd_share", "of what it is without them [%]"),
        low("crowd_p50", f"small GET beside {crowd}, p50 [us]"),
        low("crowd_p99", "the same, p99 [us]"),
        low("crowd_p99_without", "p99 without them [us]"),
        low("crowd_memory", "resident per idle connection of these [KiB]"),
    ]


def measure(bench, name):
    with bench.serve(name, connections=bench.sizes.crowd + 500) as server:
        alone = hammer(server.url + "small.bin", 32, bench.sizes.seconds)
        single = hammer(server.url + "small.bin", 1, bench.sizes.seconds)
        bench.note("crowd_p99_without", name, single.p99)
        memory = server.memory_kib()
        with Crowd(server, "/small.bin", bench.sizes.crowd):
            bench.note("crowd_memory", name, (server.memory_kib() - memory) / bench.sizes.crowd)
            beside = hammer(server.url + "small.bin", 32, bench.sizes.seconds)
            single = hammer(server.url + "small.bin", 1, bench.sizes.seconds)
    bench.note("crowd_rate", name, beside.per_second)
    bench.note("crowd_share", name, 100 * beside.per_second / alone.per_second)
    bench.note("crowd_p50", name, single.p50)
    bench.note("crowd_p99", name, single.p99)
