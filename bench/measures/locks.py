"""Locks that come and go, and what others notice of a listing of a whole tree."""

import re
import subprocess
import time

import share
from loads import connect, waits
from measures.dav import PROPERTIES
from servers import Failure
from table import BEST, low

LOCK = """<?xml version="1.0"?><D:lockinfo xmlns:D="DAV:"><D:lockscope><D:exclusive/></D:lockscope>
<D:locktype><D:write/></D:locktype><D:owner>bench</D:owner></D:lockinfo>"""
LOCKERS = ("standard", "lighttpd", "apache")
LISTERS = ("quillon", "standard")


def metrics(sizes):
    return [
        low("locks", f"{sizes.entries} pairs of LOCK and UNLOCK [s]", 1.0, BEST),
        low("find_large", f"PROPFIND of {sizes.listed_tree} entries [ms]"),
        low("find_worst", "another client's small GET meanwhile, longest [ms]", 20),
    ]


def prepare(bench):
    share.linked_files(bench.folder / "large/all", bench.sizes.listed_tree, "Some file %06d.txt")
    share.random_file(bench.folder / "large/small.bin", 5)


def measure(bench, name):
    if name in LOCKERS:
        with bench.serve(name) as server:
            bench.note("locks", name, lock_and_unlock(server, bench.sizes.entries))
    if name in LISTERS:
        with bench.serve(name, bench.folder / "large") as server:
            measure_large(bench, server)


def lock_and_unlock(server, pairs):
    with connect(server.address) as peer:
        began = time.perf_counter()
        for _ in range(pairs):
            head = exchange(peer, "LOCK", "Timeout: Second-600\r\nContent-Type: text/xml\r\n", LOCK)
            token = re.search(rb"lock-token: *(<[^>]+>)", head, re.IGNORECASE)
            if not token:
                raise Failure(f"LOCK gave no token: {head[:200]!r}")
            exchange(peer, "UNLOCK", f"Lock-Token: {token[1].decode()}\r\n")
        return time.perf_counter() - began


def exchange(peer, method, fields, body=""):
    """One request on the small file; gives the head of its reply."""
    peer.sendall(f"{method} /small.bin HTTP/1.1\r\nHost: localhost\r\n{fields}"
                 f"Content-Length: {len(body)}\r\n\r\n{body}".encode())
    reply = b""
    while not is_whole(reply):
        piece = peer.recv(65536)
        if not piece:
            raise Failure(f"{method}: the connection ended")
        reply += piece
    if not re.match(rb"HTTP/1.1 20\d", reply):
        raise Failure(f"{method}: {reply[:100]!r}")
    return reply.partition(b"\r\n\r\n")[0]


def is_whole(reply):
    head, found, body = reply.partition(b"\r\n\r\n")
    if re.search(rb"transfer-encoding: *chunked", head, re.IGNORECASE):
        return body.endswith(b"0\r\n\r\n")
    length = re.search(rb"content-length: *(\d+)", head, re.IGNORECASE)
    return found and len(body) >= (int(length[1]) if length else 0)


def measure_large(bench, server):
    reply = bench.folder / "reply.xml"
    command = ["curl", "-sS", "-o", reply, "-X", "PROPFIND", "-H", "Depth: 1",
               "-H", "Content-Type: text/xml", "--data", PROPERTIES, server.url + "all/"]
    with connect(server.address) as peer:
        began = time.perf_counter()
        with subprocess.Popen(command) as client:
            taken = waits(peer, "/small.bin", lambda: client.poll() is None, pause=0)
    bench.note("find_large", server.name, (time.perf_counter() - began) * 1e3)
    bench.note("find_worst", server.name, taken[-1] * 1e3)
    if reply.read_bytes().count(b"Some%20file") < bench.sizes.listed_tree:
        raise Failure("PROPFIND left entries out")
