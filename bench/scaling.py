#!/usr/bin/env python3
"""Has visitors and programs use three servers of one folder behind HAProxy, and kills one half way.

usage: bench/scaling.py [MINUTES [path|cookie]]
It takes a release build, haproxy and what tests/clients/clients.py takes, and ends after 10 minutes
or as many as are said. HAProxy chooses the server by the first folder of the path, which stands in
for the address of a visitor here, or by a cookie. Each visitor and program has a folder of its own
and compares what it finds with what it did. Exit status 1 when anything was lost or wrong, or broke
without the kill.
"""

import contextlib
import hashlib
import http.client
import random
import re
import shutil
import sys
import tempfile
import threading
import time
import unittest
from pathlib import Path

sys.dont_write_bytecode = True  # beside what it imports
sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tests/clients"))

import clients  # noqa: E402
from servers import PATH, ROOT, Server, free_port  # noqa: E402

INSTANCES = 3
VISITORS = 12
FILES = 20  # names that a visitor uses
PROGRAMS = (clients.Curl, clients.Cadaver, clients.Rclone)
DOWN = 20  # seconds until who was killed is started again
SETTLED = 5  # seconds until HAProxy has seen it
BROKEN = (502, 503, 504)
STICK = {"path": "balance uri depth 1\n    hash-type consistent",
         "cookie": "cookie AT insert indirect nocache"}
CONFIG = """
defaults
    mode http
    option redispatch
    timeout connect 2s
    timeout client 60s
    timeout server 60s
frontend outside
    bind 127.0.0.1:{front}
    option forwardfor
    http-request set-header X-Forwarded-Host %[req.hdr(Host)]
    default_backend inside
backend inside
    {stick}
    option httpchk
    http-check send meth OPTIONS uri /
    http-check expect status 200,401
    default-server check inter 1s fall 2 rise 2 on-marked-down shutdown-sessions
"""


class Fleet:
    """The servers and what stands in front."""

    def __init__(self, folder, by):
        self.folder, self.share = folder, folder / "share"
        self.share.mkdir()
        self.ports = [free_port() for _ in range(INSTANCES)]
        self.front = free_port()
        self.by = by
        self.killed = float("inf")
        self.running = []

    def begin(self):
        for number in range(INSTANCES):
            self.running.append(self.start(number))
        config = self.folder / "haproxy.cfg"
        lines = (f"    server s{number} 127.0.0.1:{port}"
                 + (f" cookie s{number}\n" if self.by == "cookie" else "\n")
                 for number, port in enumerate(self.ports))
        config.write_text(CONFIG.format(front=self.front, stick=STICK[self.by]) + "".join(lines))
        self.running.append(Server("haproxy", self.front, False, ["haproxy", "-db", "-f", config],
                                   self.folder / "haproxy.log", {"PATH": PATH}).wait_listening())
        time.sleep(SETTLED)

    def close(self):
        for server in self.running:
            server.end()

    def start(self, number):
        home = self.folder / f"home{number}"
        home.mkdir(exist_ok=True)
        command = [ROOT / "build/bin/quillon-serve", "--mode", "standard", "--address", "127.0.0.1",
                   "--trust-proxy", "127.0.0.1", "--port", str(self.ports[number]), self.share]
        return Server(f"s{number}", self.ports[number], False, command,
                      self.folder / f"s{number}.log",
                      {"HOME": str(home), "QUILLON_RESDIR": str(ROOT / "build/res")}
                      ).wait_listening()

    def kill(self):
        self.killed = time.monotonic()
        self.running[0].process.kill()
        self.running[0].process.wait()
        time.sleep(DOWN)
        self.running[0] = self.start(0)

    def is_excused(self, begin):
        """Whether what began then, and ends now, may have been broken off."""
        return begin < self.killed + SETTLED and time.monotonic() > self.killed


def digest(content):
    return hashlib.sha256(content).digest()


NOTHING = digest(b"")


class Visitor(threading.Thread):
    """Sends one request after another. `known` has what each of its files may hold: one digest, or
    None where there is none; more of them once a request broke off that may have been heeded."""

    def __init__(self, fleet, number, end):
        super().__init__(daemon=True)
        self.fleet, self.end = fleet, end
        self.folder = f"/visitor{number}/"
        self.known = {f"{name}.bin": {None} for name in range(FILES)}
        self.uncertain = set()  # files that may have stayed locked, by a server that it left
        self.random = random.Random(number)
        self.cookie = None
        self.connection = None
        self.count, self.slowest, self.broken, self.unlocked, self.wrong = 0, 0, 0, 0, []

    def run(self):
        self.request("MKCOL", "")
        while time.monotonic() < self.end:
            verb = self.random.choice((self.put, self.put, self.get, self.get, self.propfind,
                                       self.move, self.delete, self.put_locked))
            verb(self.random.choice(list(self.known)))

    def request(self, method, name, body=None, **fields):
        """Status, fields and body; the status is 0 when it broke off."""
        begin = time.monotonic()
        fields = {key.replace("_", "-"): value for key, value in fields.items()}
        if self.cookie:
            fields["Cookie"] = self.cookie
        try:
            self.connection = self.connection or http.client.HTTPConnection(
                "127.0.0.1", self.fleet.front, timeout=60)
            self.connection.request(method, self.folder + name, body, fields)
            reply = self.connection.getresponse()
            content, status = reply.read(), reply.status
            self.cookie = (reply.getheader("Set-Cookie") or self.cookie or "").split(";")[0]
        except (OSError, http.client.HTTPException):
            self.connection = reply = None
            content, status = b"", 0
        self.count += 1
        self.slowest = max(self.slowest, time.monotonic() - begin)
        if status == 0 or status in BROKEN:
            self.broken += 1
            self.check(self.fleet.is_excused(begin), f"{method} {name} broke off: {status}")
            status = 0
        return status, reply, content

    def check(self, good, what):
        if not good:
            self.wrong.append(f"{time.strftime('%T')} {self.folder}{what}")

    def put(self, name, token=None):
        content = self.random.randbytes(int(100 * 20_000 ** self.random.random()))
        fields = {"If": f"({token})"} if token else {}
        status, *_ = self.request("PUT", name, content, **fields)
        if status in (201, 204):
            self.known[name] = {digest(content)}
        elif status == 0:
            self.known[name] = self.known[name] | {digest(content)}
        elif status == 412 and token or status == 423 and name in self.uncertain:
            self.meet_lost_lock(name)
        else:
            self.check(False, f"{name}: PUT got {status}")

    def get(self, name):
        status, _, content = self.request("GET", name)
        if status == 0:
            return
        found = digest(content) if status == 200 else None
        self.check(status in (200, 404) and found in self.known[name], f"{name}: GET got {status}")
        self.known[name] = {found}

    def propfind(self, _):
        status, _, content = self.request("PROPFIND", "", Depth="1")
        if status == 0:
            return
        found = {name.decode() for name in re.findall(rb"/(\d+\.bin)</D:href>", content)}
        for name, states in self.known.items():
            self.check(len(states) > 1 or (name in found) == (None not in states),
                       f"{name}: PROPFIND got {status}")

    def delete(self, name):
        status, *_ = self.request("DELETE", name)
        self.goes(name, status, (204,))

    def move(self, name):
        other = self.random.choice([each for each in self.known if each != name])
        target = f"http://127.0.0.1:{self.fleet.front}{self.folder}{other}"
        before = self.known[name]
        status, *_ = self.request("MOVE", name, Destination=target)
        if self.goes(name, status, (201, 204), other):
            self.known[other] = before - {None}
        elif status == 0:
            self.known[other] = self.known[other] | before

    def goes(self, name, status, good, target=None):
        """Whether what was asked to leave this name did."""
        if status in good:
            self.check(self.known[name] != {None}, f"{name}: it was not there, and went")
            self.known[name] = {None}
        elif status == 0:
            self.known[name] = self.known[name] | {None}
        elif status == 404:
            self.check(None in self.known[name], f"{name} is lost")
            self.known[name] = {None}
        else:
            self.check(status == 423 and self.uncertain & {name, target},
                       f"{name}: refused by {status}")
        return status in good

    def put_locked(self, name):
        status, reply, _ = self.request("LOCK", name, clients.WISH_FOR_A_LOCK, Timeout="Second-180")
        if status == 0:
            self.uncertain.add(name)
            self.known[name] = {NOTHING if each is None else each for each in self.known[name]} \
                | self.known[name]
        if status not in (200, 201):
            return self.check(status in (0, 423) and name in self.uncertain,
                              f"{name}: LOCK got {status}")
        self.known[name] = {NOTHING} if status == 201 else self.known[name] - {None}
        token = reply.getheader("Lock-Token")
        self.put(name, token)
        status, *_ = self.request("UNLOCK", name, Lock_Token=token)
        if status == 0:
            self.uncertain.add(name)
        elif status == 409:
            self.meet_lost_lock(name)
        else:
            self.check(status == 204, f"{name}: UNLOCK got {status}")

    def meet_lost_lock(self, name):
        self.unlocked += 1
        self.uncertain.add(name)
        self.check(time.monotonic() > self.fleet.killed, f"{name}: its lock is not there")

    def look(self, share):
        """Compares what is on the disk at the end."""
        for name, states in self.known.items():
            file = share / self.folder.strip("/") / name
            found = digest(file.read_bytes()) if file.exists() else None
            self.check(found in states, f"{name} is not what it was")


class Program(threading.Thread):
    """Has a program do a day's work, again and again."""

    def __init__(self, fleet, kind, end):
        super().__init__(daemon=True)
        self.fleet, self.end = fleet, end
        self.rounds, self.broken, self.wrong = 0, 0, []
        self.kind = type(kind.__name__, (kind,),
                         {"serve": lambda client, **_: self.serve_to(client)})

    def serve_to(self, client):
        """In the place of a server of its own."""
        name = f"{self.kind.__name__}{self.rounds}"
        client.login = False
        client.share = self.fleet.share / name
        client.share.mkdir()
        client.url = f"http://127.0.0.1:{self.fleet.front}/{name}/"

    def run(self):
        while time.monotonic() < self.end:
            begin = time.monotonic()
            result = unittest.TestResult()
            self.kind("test_everyday").run(result)
            self.rounds += 1
            shutil.rmtree(self.fleet.share / f"{self.kind.__name__}{self.rounds - 1}", True)
            if result.wasSuccessful() and not result.skipped:
                continue
            self.broken += 1
            if not self.fleet.is_excused(begin):
                told = (*result.failures, *result.errors, *result.skipped)
                self.wrong.append(f"{time.strftime('%T')} {told[0][0]} {told[0][1]}")


def main(minutes="10", by="path"):
    with tempfile.TemporaryDirectory(prefix="quillon-scaling-") as top, \
            contextlib.closing(Fleet(Path(top), by)) as fleet:
        fleet.begin()
        end = time.monotonic() + float(minutes) * 60
        visitors = [Visitor(fleet, number, end) for number in range(VISITORS)]
        programs = [Program(fleet, kind, end) for kind in PROGRAMS]
        for each in (*visitors, *programs):
            each.start()
        time.sleep(float(minutes) * 30)
        fleet.kill()
        for each in (*visitors, *programs):
            each.join()
        for visitor in visitors:
            visitor.look(fleet.share)
        hidden = [str(path) for path in fleet.share.rglob(".*")]
        wrong = sum((each.wrong for each in (*visitors, *programs)), hidden)
        print(f"{minutes} min by {by}: {sum(each.count for each in visitors)} requests,"
              f" slowest {max(each.slowest for each in visitors):.1f} s,"
              f" {sum(each.broken for each in visitors)} broken off by the kill,"
              f" {sum(each.unlocked for each in visitors)} met a lock that was gone, or stayed")
        for each in programs:
            print(f"{each.kind.__name__}: {each.rounds} rounds, {each.broken} broken by the kill")
        print(*(wrong or ["Nothing was wrong, lost or left half."]), sep="\n")
        return 1 if wrong else 0


if __name__ == "__main__":
    if len(sys.argv) > 3 or sys.argv[1:2] == ["--help"] or not set(sys.argv[2:]) <= set(STICK):
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
