"""The page of a large folder, beside the plain listings of the others."""

from loads import curl
from servers import CLASSIC
from table import BEST, PEERS, low

REQUESTS = 10  # a round


def metrics(sizes):
    return [
        low("page", f"page of {sizes.entries} entries, 24 shown [ms]", 40),
        low("page_by_time", "the same by time [ms]"),
        low("page_full", f"page of {sizes.entries} entries, all shown [ms]", 1.0, BEST),
    ]


def measure(bench, name):
    if name not in CLASSIC + PEERS:
        return
    with bench.serve(name, bench.share / "entries") as server:
        if name in PEERS:
            measure_page(bench, server, "page_full", 1)
            return
        measure_page(bench, server, "page", 1)
        measure_page(bench, server, "page_by_time", 2, "a=t")
        measure_page(bench, server, "page_full", 3, f"a=c&cv={bench.sizes.entries}")


def measure_page(bench, server, key, session, *actions):
    """What a visitor chose by a form holds for the rest of the session."""
    for action in actions or [None]:
        page(server, session, *(["-d", action] if action else []))
    for _ in range(REQUESTS):
        bench.note(key, server.name, page(server, session) * 1e3)


def page(server, session, *options):
    return curl(server.url, "-b", f"ID={session}", *options)[0]
