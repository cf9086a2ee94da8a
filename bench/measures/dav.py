"""WebDAV: a large folder read, a large tree deleted."""

import share
from loads import curl
from servers import Failure
from table import BEST, low

REQUESTS = 5  # a round
PROPERTIES = """<?xml version="1.0"?><propfind xmlns="DAV:"><prop>
<getlastmodified/><resourcetype/><getcontentlength/><getetag/></prop></propfind>"""


def metrics(sizes):
    return [
        low("propfind", f"PROPFIND of {sizes.entries}, four properties [ms]", 1.0, BEST),
        low("delete", f"DELETE of {sizes.entries} files in 100 folders [ms]", 400),
    ]


def measure(bench, name):
    with bench.serve(name) as server:
        check_reply(bench, server)
        for _ in range(REQUESTS):
            bench.note("propfind", name, propfind(server) * 1e3)
        bench.note("delete", name, delete(bench, server) * 1e3)


def propfind(server, **options):
    return curl(server.url + "entries/", "-X", "PROPFIND", "-H", "Depth: 1",
                "-H", "Content-Type: text/xml", "--data", PROPERTIES, **options)[0]


def check_reply(bench, server):
    reply = bench.folder / "reply.xml"
    propfind(server, into=reply)
    named = reply.read_bytes().count(b"Holiday")
    if named < bench.sizes.entries:
        raise Failure(f"PROPFIND names {named} of {bench.sizes.entries} entries")


def delete(bench, server):
    folder = bench.share / "tree"
    share.tree(folder, bench.sizes.entries)
    seconds, _, _ = curl(server.url + "tree/", "-X", "DELETE", "-H", "Depth: infinity")
    if folder.exists():
        raise Failure("DELETE left the tree")
    return seconds
