#!/usr/bin/env python3
"""Walks the ways in which servers like this one have failed, against every face of the console
program, and looks after each step whether anything outside the share was touched or told. Those
that take their time are tried all at the same time, with "slowly".

usage: attack.py PATH/TO/quillon-serve PATH/TO/make_profile at_once|slowly
"""

import base64
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

SERVE, MAKE_PROFILE, WHICH = sys.argv[1:4]
SECRET = b"what is outside"
TOLD = re.compile(SECRET + rb"|root:x:0|7777777777777|<img src=x|^Location: //", re.M)
MARKUP = b"<script>alert(1)"
LOGIN = "Authorization: Basic YW5uYTpzZWNyZXQ="
PATIENCE = 10  # seconds
LARGE = 64 << 20  # bytes, more than waits on the way to a peer
PAUSE = 0.3  # seconds after which no further reply is to be expected
FACES = {  # what serves: profile, mode, what is shared
    "c": ("plain", "classic", "share"),
    "S": ("strict", "classic", "share"),
    "s": ("plain", "standard", "share"),
    "1": ("plain", "standard", "share/a.txt"),
    "l": ("locked", "standard", "share"),
    "h": ("homes", "standard", "."),
    "p": ("hashed", "standard", "share"),
}
BULK = {
    "LONG": lambda n: f"GET /a.txt; X: {'x' * n}",
    "FIELDS": lambda n: "GET /a.txt" + "; X: y" * n,
    "RANGES": lambda n: "GET /a.txt; Range: bytes=" + ",".join(["0-1"] * n),
    "PATH": lambda n: "GET /" + "a/" * (n // 2),
    "NESTED": lambda n: "PROPFIND /; Depth: 0;; " + "<a>" * n,
    "PIPELINE": lambda n: "raw:" + r"GET /none HTTP/1.1\r\nHost: {host}:{port}\r\n\r\n" * n
                          + r"GET /a.txt HTTP/1.1\r\nHost: {host}:{port}\r\nConnection: close\r\n\r\n",
    "PART": lambda n: "POST /; Content-Type: multipart/form-data; boundary=b;; --b\r\nX: " + "x" * n,
    "NAMES": lambda n: "POST /?archive=zip; Content-Type: application/x-www-form-urlencoded;; "
                       + "&".join(["name=a.txt"] * n),
    "GUESS": lambda n: "raw:" + (r"GET /a.txt HTTP/1.1\r\nHost: {host}:{port}\r\n"
                                 r"Authorization: Basic YW5uYTp3cm9uZw==\r\n\r\n") * n,
    "IF": lambda n: "PUT /a.txt; If: " + "(<urn:x> [\"y\"])" * n + ";; x",
}


class World:
    """The share, what lies around it, and a server for each face."""

    def __init__(self):
        self.top = Path(tempfile.mkdtemp(prefix="quillon-attack-"))
        self.home = self.top / "share/home"
        self.outside = self.top / "outside"
        self.environment = dict(os.environ, HOME=str(self.home), QUILLON_RESDIR=str(self.top))
        self.environment.pop("XDG_CACHE_HOME", None)
        self.home.mkdir(parents=True)
        for profile in ("plain", "strict"):
            subprocess.run([MAKE_PROFILE, profile], env=self.environment, check=True)
        for profile in ("locked", "homes", "hashed"):
            subprocess.run([MAKE_PROFILE, profile, "anna:secret"], env=self.environment, check=True)
        for profile, line in (("strict", "strict = yes"), ("homes", "account.anna = all; /share"),
                              ("hashed", "password.bert = " + self.hash("other"))):
            with open(self.home / f".quillon/{profile}.cnf.ini", "a", encoding="ascii") as text:
                text.write(line + "\n")
        self.fill()
        self.servers = {}
        self.ports = {}
        self.log = open(self.top / "errors", "wb")
        for face, what in FACES.items():
            self.start(face, *what)
        self.kept = self.around()

    def hash(self, password):
        return subprocess.run([SERVE, "--hash"], env=self.environment, input=password + "\n",
                              text=True, stdout=subprocess.PIPE, check=True).stdout.strip()

    def fill(self):
        """What rows may have taken away."""
        share = self.top / "share"
        self.outside.mkdir(exist_ok=True)
        (self.outside / "secret").write_bytes(SECRET)
        for name in ("a.txt", "away.txt", "away2.txt", "sibling.txt",
                     "markup/<img src=x onerror=alert(1)>.txt", "sub/b.txt"):
            (share / name).parent.mkdir(exist_ok=True)
            if not (share / name).exists():
                (share / name).write_bytes(b"content of " + name.encode())
        for name, target in (("out", "../outside"), ("outfile", "../outside/secret")):
            if not os.path.lexists(share / name):
                (share / name).symlink_to(target)
        with open(share / "large", "ab") as large:
            large.truncate(LARGE)
        # A head that speaks of more pixels than anything can hold.
        (share / "bomb.png").write_bytes(bytes.fromhex(
            "89504e470d0a1a0a0000000d494844520000fa000000fa00080600000000000000"))

    def around(self):
        """All that nobody may change."""
        profile = (self.home / ".quillon/plain.cnf").read_bytes()
        return profile, sorted(os.listdir(self.top)), {
            str(entry): entry.read_bytes() if entry.is_file() else None
            for entry in self.outside.rglob("*")}

    def start(self, face, profile, mode, shared):
        server = subprocess.Popen(
            [SERVE, "--profile", profile, "--mode", mode, "--address", "127.0.0.1", "--port", "0",
             str(self.top / shared)], env=self.environment, stdout=subprocess.PIPE, stderr=self.log)
        self.servers[face] = server
        for line in server.stdout:
            if found := re.search(rb"http://127.0.0.1:(\d+)", line):
                self.ports[face] = int(found[1])
                return
        sys.exit(f"the server of face {face} did not start")

    def stop(self):
        """Whether all end in order."""
        for server in self.servers.values():
            server.terminate()
        codes = [server.wait(PATIENCE) for server in self.servers.values()]
        self.log.close()
        errors = (self.top / "errors").read_text(errors="replace")
        shutil.rmtree(self.top)
        if any(codes) or "Sanitizer" in errors:
            print(f"the servers ended with {codes}\n{errors}")
            return False
        return True


def request(text, port):
    """The bytes of a REQUEST, and whether the connection ends with its reply."""
    word, _, count = text.partition(" ")
    if word in BULK:
        text = BULK[word](int(count))
    text = text.replace("{host}", "127.0.0.1").replace("{port}", str(port))
    if text.startswith("raw:"):
        return text[4:].encode("latin-1").decode("unicode_escape").encode("latin-1"), False
    head, _, body = text.partition(";; ")
    body = body.encode("latin-1").decode("unicode_escape").encode("latin-1")
    first, *fields = head.split("; ")
    # Parameters of a media type belong to its field.
    fields = re.sub("\n(?=boundary=)", "; ", "\n".join(fields)).split("\n") if fields else []
    lines = [first.encode("latin-1").decode("unicode_escape") + " HTTP/1.1",
             f"Host: 127.0.0.1:{port}", "Connection: close", *fields]
    if body:
        lines.append(f"Content-Length: {len(body)}")
    return "\r\n".join(lines + ["", ""]).encode("latin-1") + body, True


def exchange(port, data, ends):
    """All that is answered."""
    answer = b""
    with socket.create_connection(("127.0.0.1", port), PATIENCE) as peer:
        try:
            peer.sendall(data)
            while piece := peer.recv(65536):
                answer += piece
                peer.settimeout(PATIENCE if ends else PAUSE)
        except ConnectionError:
            pass
        except TimeoutError:
            if ends or not answer:
                raise
    return answer


def faults(world, face, allowed, data, ends):
    """What is wrong with how a face takes a request."""
    port = world.ports[face]
    if face == "h":
        data = data.replace(b"\r\nHost:", f"\r\n{LOGIN}\r\nHost:".encode(), 1)
    try:
        answer = exchange(port, data, ends)
    except TimeoutError:
        return ["no answer"]
    found = []
    statuses = re.findall(rb"(?:^|(?<=\n))HTTP/1\.[01] (\d{3})", answer)
    first = statuses[0].decode() if statuses else "-"
    if first not in allowed and not (first == "-" and answer and "200" in allowed):
        found.append(f"answered {first}")
    if "!" in allowed and len(statuses) > 1:
        found.append(f"took it for {len(statuses)} requests")
    if b"\nX-Evil" in answer.partition(b"\r\n\r\n")[0]:
        found.append("took a line of its own")
    if told := TOLD.search(answer):
        found.append(f"told {told[0]!r}")
    # The given not-found page shows its path as it came, where no script may run.
    if MARKUP in answer and (face != "c" or b"Content-Security-Policy: sandbox" not in answer):
        found.append("markup came back")
    if world.around() != world.kept:
        found.append("something outside was changed")
        shutil.rmtree(world.outside)
    world.fill()
    target = "/" if face == "1" else "/a.txt"
    if not exchange(port, *request(f"GET {target}; {LOGIN}", port)
                    ).startswith(b"HTTP/1.1 200"):
        found.append("it serves no more")
    return found


def rows(name):
    table = Path(__file__).with_name(name).read_text(encoding="ascii")
    return [line.split(" | ", 3) for line in table.splitlines() if line and line[0] != "#"]


def walk(world):
    """Every row of the table against every face that it is for: how many were tried and failed."""
    tried = failed = 0
    for what, faces, allowed, text in rows("attacks.txt"):
        for face in faces:
            tried += 1
            wrong = faults(world, face, allowed.split(), *request(text, world.ports[face]))
            if wrong:
                failed += 1
                print(f"{what}, {FACES[face]}: {'; '.join(wrong)}")
    return tried, failed


def race(world, face):
    """Many write one name at once: it holds what one of them sent, whole."""
    bodies = [bytes([65 + i]) * 300_000 for i in range(16)]
    port = world.ports[face]
    head = "PUT /raced HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\nContent-Length: 300000"
    threads = [threading.Thread(target=exchange, args=(port, f"{head}\r\n\r\n".encode() + body, True))
               for body in bodies]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    raced = world.top / "share/raced"
    good = raced.read_bytes() in bodies
    raced.unlink()
    if not good:
        print(f"a file that nobody sent, {FACES[face]}")
    return good


def outlasts(port, seconds, reads, text):
    """Whether the server bears it for so long: bytes, then one a second; or a reply of which
    nothing is read until then, and that is whole."""
    data, _ = request("raw:" + text, port)
    until = time.monotonic() + seconds
    with socket.create_connection(("127.0.0.1", port), PATIENCE) as peer:
        peer.sendall(data)
        try:
            if not reads:
                time.sleep(seconds)
                return sum(len(piece) for piece in iter(lambda: peer.recv(1 << 20), b"")) >= LARGE
            peer.settimeout(1)
            while time.monotonic() < until:
                try:
                    if not peer.recv(65536):
                        return False
                except TimeoutError:
                    peer.sendall(b"x")
        except ConnectionError:
            return False
    return True


def wait_out(world):
    """Every row of the slow ones at the same time: how many were tried and borne."""
    borne = []

    def attempt(what, face, seconds, how, text):
        if outlasts(world.ports[face], int(seconds), how == "sends", text):
            borne.append(1)
            print(f"{what}, {FACES[face]}: goes on after {seconds} s")

    threads = [threading.Thread(target=attempt, args=(what, face, *how.split(), text))
               for what, faces, how, text in rows("slow_attacks.txt") for face in faces]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return len(threads), len(borne)


def tells_by_time(world):
    """Whether wrong passwords are refused sooner for some names than for others."""
    def seconds(name):
        login = base64.b64encode(f"{name}:wrong".encode()).decode()
        data, ends = request(f"GET /a.txt; Authorization: Basic {login}", world.ports["p"])
        begin = time.monotonic()
        exchange(world.ports["p"], data, ends)
        return time.monotonic() - begin

    # The shortest of some: others use the machine, too.
    times = {name: min(seconds(name) for _ in range(5)) for name in ("anna", "bert", "nobody")}
    if max(times.values()) < 3 * min(times.values()):
        return False
    print(f"the time tells who exists: {times}")
    return True


def main():
    world = World()
    if WHICH == "slowly":
        tried, failed = wait_out(world)
    else:
        tried, failed = walk(world)
        failed += sum(not race(world, face) for face in "cs") + tells_by_time(world)
        tried += 3
    print(f"{tried} tried, {failed} failed")
    sys.exit(0 if world.stop() and not failed else 1)


main()
