#!/usr/bin/env python3
"""Shows that the console program keeps its files whole and to itself, whatever fails around it.

usage: proof.py PATH/TO/quillon-serve PATH/TO/faults.so Faults|Memory|Shortage|Kills|Swaps [TIMES]
Memory fails at TIMES calls of each operation, in even steps; all of them when it is -1.
Everything happens below one temporary folder, home included.
"""

import base64
import ctypes
import http.client
import mmap
import multiprocessing
import os
import random
import re
import resource
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from pathlib import Path

SERVE = FAULTS = ""
TIMES = 0  # rounds; 0: as many as take seconds
MANY = 2_000_000_000  # more calls than there are
KINDS = ["write", "sync", "rename", "link", "openat2", "accept4"]  # as the library has it
MEMORY = len(KINDS) + 1  # the kind behind them, with a proof of its own
PROFILE, SUM = "Global.conf", "Global.conf.sum"
PATIENCE = 10  # seconds for an answer
DAYS = 2 * 24 * 3600  # seconds: what is left behind then has grown old
KNOWN = {"User-Agent": "gvfs/1"}  # the standard face's
NEW = b"new" * 30_000
FORM = b'--B\r\nContent-Disposition: form-data; name="f"; filename="form"\r\n\r\n' + NEW + \
       b"\r\n--B--\r\n"
PROPERTIES = " has properties"  # behind the name of a file
PATCH = b'<propertyupdate xmlns="DAV:"><set><prop><c xmlns="x">red</c></prop></set></propertyupdate>'

BEFORE = {name: name.encode() * 9_000
          for name in ("over", "source", "moved", "onto", "gone/a", "gone/b", "tree/a", "tree/b/c",
                       "patched")}
# What is asked for, and what is there in place of what was: a name's content, None for nothing.
OPERATIONS = [
    ("PUT", "/put", KNOWN, NEW, {"put": NEW}),
    ("PUT", "/over", KNOWN, NEW, {"over": NEW}),
    ("PUT", "/classic", {}, NEW, {"classic": NEW}),
    ("POST", "/?a=up", {"Content-Type": "multipart/form-data; boundary=B"}, FORM, {"form": NEW}),
    ("COPY", "/source", {**KNOWN, "Destination": "/copy"}, None, {"copy": BEFORE["source"]}),
    ("COPY", "/tree", {**KNOWN, "Destination": "/copied"}, None,
     {"copied/a": BEFORE["tree/a"], "copied/b/c": BEFORE["tree/b/c"]}),
    ("MOVE", "/moved", {**KNOWN, "Destination": "/onto"}, None,
     {"moved": None, "onto": BEFORE["moved"]}),
    ("DELETE", "/gone", KNOWN, None, {"gone/a": None, "gone/b": None}),
    ("PROPPATCH", "/patched", KNOWN, PATCH, {"patched" + PROPERTIES: b""}),
    ("resumed", "/.quillon/tus/", {**KNOWN, "Tus-Resumable": "1.0.0"}, NEW, {"resumed": NEW}),
]


class Proof(unittest.TestCase):
    options = ("--mode", "auto")

    def setUp(self):
        self.top = Path(tempfile.mkdtemp(prefix="quillon-proof-"))
        self.addCleanup(shutil.rmtree, self.top)
        for name in ("share", "home", "resources"):
            (self.top / name).mkdir()
        self.share = self.top / "share"
        (self.top / "plan").write_bytes(bytes(16))
        with open(self.top / "plan", "r+b") as file:
            self.plan = mmap.mmap(file.fileno(), 16)
        self.environment = dict(
            os.environ, HOME=str(self.top / "home"), LC_ALL="C.UTF-8", LD_PRELOAD=FAULTS,
            XDG_CACHE_HOME=str(self.top / "home/cache"), FAULTS=str(self.top / "plan"),
            QT_NO_GLIB="1", QUILLON_RESDIR=str(self.top / "resources"),
            ASAN_OPTIONS="verify_asan_link_order=0")
        self.server = None
        self.addCleanup(self.kill)

    def start(self, **environment):
        self.server = subprocess.Popen(
            [SERVE, *self.options, "--address", "127.0.0.1", "--port", "0", str(self.share)],
            env={**self.environment, **environment}, text=True, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE)

    def wait_until_it_serves(self):
        line = self.server.stdout.readline()
        found = re.search(r" at http://127.0.0.1:(\d+)/\n", line)
        self.assertTrue(found, line or self.server.stderr.read())
        self.port = int(found.group(1))

    def kill(self):
        if self.server:
            self.server.kill()
            self.server.communicate()

    def end_in_order(self):
        self.server.terminate()
        said = self.server.communicate(timeout=PATIENCE)[1]
        self.assertEqual(self.server.returncode, 0, said)
        return said

    def request(self, method, target, headers, body=None):
        """The status, 0 when there is none; the reply's fields and body."""
        client = http.client.HTTPConnection("127.0.0.1", self.port, timeout=PATIENCE)
        try:
            client.request(method, target, body, {**headers, "Connection": "close"})
            with client.getresponse() as reply:
                return reply.status, reply.headers, reply.read()
        except (OSError, http.client.HTTPException):
            return 0, {}, b""
        finally:
            client.close()

    def ask(self, method, target, headers, body, *_):
        """The status; 0 when there is none."""
        if method == "resumed":
            return self.upload(target, headers, body)
        status, _, told = self.request(method, target, headers, body)
        if method == "PROPPATCH":
            return 200 if b" 200 " in told and self.has_attributes() else 0
        # What a form has stored is seen in the page that answers it.
        return status if method != "POST" or b"/form\"" in told else 0

    def has_attributes(self):
        """Whether this file system has; else properties stay in the server's memory."""
        try:
            os.setxattr(self.share, "user.tried", b"")
            return True
        except OSError:
            return False

    def upload(self, target, headers, body):
        """In two pieces, each as often as it takes, from where the server says it is."""
        name = base64.b64encode(b"resumed").decode()
        status, fields, _ = self.request("POST", target, {
            **headers, "Upload-Length": str(len(body)), "Upload-Metadata": f"filename {name}"})
        if status != 201:
            return 0
        place, offset = fields["Location"], 0
        for _ in range(6):
            end = len(body) // 2 if offset < len(body) // 2 else len(body)
            status = self.request("PATCH", place, {
                **headers, "Upload-Offset": str(offset),
                "Content-Type": "application/offset+octet-stream"}, body[offset:end])[0]
            if status == 204 and end == len(body):
                return status
            known, fields, _ = self.request("HEAD", place, headers)
            if known != 200:
                break
            offset = int(fields["Upload-Offset"])
        self.request("DELETE", place, headers)
        return 0

    def fill_share(self, kept="none"):
        for path in self.share.iterdir():
            if not path.name.startswith(kept):
                shutil.rmtree(path) if path.is_dir() else path.unlink()
        for name, content in BEFORE.items():
            (self.share / name).parent.mkdir(parents=True, exist_ok=True)
            (self.share / name).write_bytes(content)

    def hidden(self):
        return [path.name for path in self.share.iterdir() if path.name.startswith(".")]

    def wait_for(self, condition):
        until = time.monotonic() + PATIENCE
        while not condition() and time.monotonic() < until:
            time.sleep(0.005)
        self.assertTrue(condition(), f"something is left over: {self.hidden()}")

    def files(self):
        """And those of them that have properties."""
        paths = {str(path.relative_to(self.share)): path
                 for path in self.share.rglob("*") if path.is_file()}
        return {**{name: path.read_bytes() for name, path in paths.items()},
                **{name + PROPERTIES: b"" for name, path in paths.items()
                   if "user.quillon.dav" in os.listxattr(path)}}

    def check(self, statuses, kept=None):
        """What was is there, or what was asked for in its place; that alone if success was told.
        `statuses` are those of the operations that were tried, by their number."""
        found = {name: content for name, content in self.files().items()
                 if not kept or not name.startswith(kept)}
        unchanged = dict(BEFORE)
        self.assertIn(BEFORE["moved"], found.values())
        for number, status in statuses.items():
            for name, after in OPERATIONS[number][-1].items():
                before = unchanged.pop(name, None)
                now = found.pop(name, None)
                if now != after and (now != before or status in (200, 201, 204)):
                    self.fail(f"{name} is {now and (now[:9], len(now))}, told {status}")
        self.assertEqual(found.keys(), unchanged.keys())
        self.assertEqual(found, unchanged)


class Faults(Proof):
    """Each call of each kind fails once during each operation."""

    def plan_failure(self, kind, number, times=1):
        self.plan[:] = struct.pack("4i", kind, number, times, 0)

    def end_of_plan(self):
        """How many calls there were less than planned, and how many of them failed."""
        _, left, _, failed = struct.unpack("4i", self.plan[:])
        self.plan_failure(0, 0)
        return left, failed

    def descriptors(self):
        return len(os.listdir(f"/proc/{self.server.pid}/fd"))

    def fail_each(self, kind, operation):
        """Fails the first call, then the second, until there are no more; gives their number."""
        for number in range(1, 1000):
            self.fill_share()
            self.plan_failure(kind, number)
            status = self.ask(*OPERATIONS[operation])
            _, failed = self.end_of_plan()
            with self.subTest(kind=KINDS[kind - 1], number=number, status=status,
                              operation=OPERATIONS[operation][:2]):
                self.wait_for(lambda: self.descriptors() <= self.idle and not self.hidden())
                self.check({operation: status})
            if not failed:
                return number - 1

    def profile(self):
        """Every file beside it too, but for the marks of who runs."""
        return {path.name: path.read_bytes() for path in (self.top / "home/.quillon").iterdir()
                if path.is_file()}

    def learn_profile(self):
        """As it is while the program serves, and when that has ended."""
        self.told = 0  # how often it could not be saved
        self.start()
        self.wait_until_it_serves()
        self.wait_for(lambda: {PROFILE, SUM} <= self.profile().keys())
        self.serving = self.profile()
        self.end_in_order()
        self.ended = self.profile()
        self.assertNotEqual(self.serving, self.ended)

    def check_profile(self, said):
        """It is whole, and the old one only if the program said so."""
        failed = "could not be saved" in said
        self.told += failed
        found = self.profile()
        # While it is saved, the old sum and the new one count.
        self.assertEqual({*found.pop(SUM).split()}, {*self.ended[SUM].split()})
        self.assertIn(found[PROFILE], [self.ended[PROFILE]] + [self.serving[PROFILE]] * failed)
        self.assertEqual([*found], [PROFILE])

    def test_operations(self):
        for kind, name in enumerate(KINDS, 1):
            self.start()
            self.wait_until_it_serves()
            self.ask("PUT", "/any", KNOWN, NEW)  # what comes but once has come
            self.idle = self.descriptors()
            calls = [self.fail_each(kind, number) for number in range(len(OPERATIONS))]
            print(name, "failed so many times during each operation:", *calls)
            self.assertGreater(sum(calls), 0)
            self.end_in_order()

    def test_saving_the_profile(self):
        self.learn_profile()
        for kind, name in enumerate(KINDS, 1):
            for number in range(1, 100):
                self.start()
                self.wait_until_it_serves()
                self.plan_failure(kind, number)
                self.server.terminate()
                said = self.server.communicate(timeout=PATIENCE)[1]
                _, failed = self.end_of_plan()
                with self.subTest(kind=name, number=number):
                    self.assertEqual(self.server.returncode, 0, said)
                    self.check_profile(said)
                if not failed:
                    break
        self.assertGreater(self.told, 0)


class Memory(Faults):
    """Calls for memory fail during each operation, alone or several in a row: what is kept for
    that takes their place, so that nobody notices."""

    RUNS = (1, 3, 8)  # calls in a row; for a large request the reserve has as many pieces

    def calls_of(self, work):
        self.plan_failure(MEMORY, MANY)
        work()
        return MANY - self.end_of_plan()[0]

    def each_failure(self, calls, usually):
        steps = calls if TIMES < 0 else TIMES or usually
        for number in range(1, calls + 1, max(1, calls // steps)):
            yield from ((number, run) for run in self.RUNS)

    def kilobytes(self):
        status = Path(f"/proc/{self.server.pid}/status").read_text()
        return int(re.search(r"VmData:\s+(\d+)", status).group(1))

    def kilobytes_used(self):
        """Without the stacks of threads, of which some begin late."""
        stack = resource.getrlimit(resource.RLIMIT_STACK)[0] // 1024
        return self.kilobytes() - stack * len(os.listdir(f"/proc/{self.server.pid}/task"))

    def fail_at(self, operation, number, run):
        self.fill_share()
        self.plan_failure(MEMORY, number, run)
        status = self.ask(*OPERATIONS[operation])
        _, failed = self.end_of_plan()
        self.assertIsNone(self.server.poll(), "it ended")
        self.assertGreater(status, 0)
        self.wait_for(lambda: self.descriptors() <= self.idle and not self.hidden())
        self.check({operation: status})
        return failed

    def test_operations(self):
        self.start()
        self.wait_until_it_serves()
        calls = []
        for operation in OPERATIONS * 2:  # what comes but once has come
            self.fill_share()
            calls.append(self.calls_of(lambda: self.ask(*operation)))
        self.idle = self.descriptors()
        calls = calls[len(OPERATIONS):]
        before = self.kilobytes_used()
        failed = [0] * len(OPERATIONS)
        for operation, count in enumerate(calls):
            for number, run in self.each_failure(count, 20):
                with self.subTest(number=number, run=run, operation=OPERATIONS[operation][:2]):
                    failed[operation] += self.fail_at(operation, number, run)
        print("calls for memory of each operation:", *calls, "of which failed:", *failed)
        self.assertTrue(all(failed))
        self.assertLess(self.kilobytes_used(), before + 4096)
        self.end_in_order()

    def test_saving_the_profile(self):
        self.learn_profile()
        self.start()
        self.wait_until_it_serves()
        for number, run in self.each_failure(self.calls_of(self.end_in_order), 12):
            self.start()
            self.wait_until_it_serves()
            self.plan_failure(MEMORY, number, run)
            with self.subTest(number=number, run=run):
                self.check_profile(self.end_in_order())
            self.end_of_plan()


class Shortage(Memory):
    """There is less memory than many clients together ask for: some may be turned away, but the
    program goes on, and serves all once they are gone."""

    MEBIBYTES = 4  # beyond what the program has at rest
    CLIENTS = 60
    FORM = b"x=" + b"y" * 500_000
    TASKS = [
        ("PROPFIND", "/many/", {**KNOWN, "Depth": "1"}, None),
        ("GET", "/many/", {}, None),
        ("POST", "/", {"Content-Type": "application/x-www-form-urlencoded"}, FORM),
    ]

    def limit(self, size):
        resource.prlimit(self.server.pid, resource.RLIMIT_DATA, (size, resource.RLIM_INFINITY))

    def test_operations(self):
        (self.share / "many").mkdir()
        for number in range(5000):
            (self.share / "many" / f"one of many files {number}").touch()
        self.start()
        self.wait_until_it_serves()
        wanted = [self.request(*task)[0] for task in self.TASKS]  # threads, caches
        self.limit((self.kilobytes() + self.MEBIBYTES * 1024) * 1024)
        told = []
        clients = [threading.Thread(target=lambda task: told.append(self.request(*task)[0]),
                                    args=(self.TASKS[number % len(self.TASKS)],))
                   for number in range(self.CLIENTS)]
        for client in clients:
            client.start()
        for client in clients:
            client.join()
        self.assertIsNone(self.server.poll(), "it ended")
        print("told under a shortage:", {status: told.count(status) for status in sorted(told)})
        self.assertLessEqual(set(told), {0, 503, *wanted})
        self.wait_for(lambda: [self.request(*task)[0] for task in self.TASKS] == wanted)
        self.end_in_order()

    test_saving_the_profile = None


class Kills(Proof):
    """The program is killed at any moment, and goes on with what it finds."""

    def work(self, statuses, order):
        try:
            self.wait_until_it_serves()
        except AssertionError:
            return
        for number in order:
            statuses[number] = 0
            statuses[number] = self.ask(*OPERATIONS[number])

    def test_any_moment(self):
        chance = random.Random(1)
        longest = 0.5  # seconds; from the first round on as long as it takes
        for number in range(TIMES or 200):
            self.fill_share(kept=".receiving-")
            statuses = {}
            begin = time.monotonic()
            self.start()
            worker = threading.Thread(target=self.work, args=(
                statuses, chance.sample(range(len(OPERATIONS)), len(OPERATIONS))))
            worker.start()
            worker.join(chance.uniform(0, longest) if number else None)
            longest = longest if number else time.monotonic() - begin
            if chance.random() < 0.2:
                self.server.terminate()  # it saves its profile
                time.sleep(chance.uniform(0, 0.005))
            self.server.kill()
            worker.join()
            self.server.communicate()
            with self.subTest(round=number, statuses=statuses):
                self.check(statuses, kept=".receiving-")
        self.check_litter()

    def check_litter(self):
        self.start(FAULTS_LATER=str(DAYS))
        self.wait_until_it_serves()
        self.fill_share(kept=".receiving-")
        self.assertEqual(self.ask(*OPERATIONS[4]), 201)
        self.wait_for(lambda: not self.hidden())
        self.end_in_order()
        home = self.top / "home"
        self.assertEqual([*home.glob("cache/quillon/*"), *home.glob(".quillon/running/*"),
                          *home.glob(".quillon/*.bad"), *home.glob(".thumbnails/*")], [])


class Swaps(Proof):
    """Somebody swaps a folder of the share for a link that leads out of it, over and over."""

    options = ("--mode", "standard")
    OPERATIONS = [
        ("PUT", "/folder/f", {}, b"inside"),
        ("GET", "/folder/f", {}, None),
        ("PROPPATCH", "/folder/f", {}, PATCH),
        ("PUT", "/folder/new", {}, b"new"),
        ("DELETE", "/folder/new", {}, None),
        ("MKCOL", "/folder/made", {}, None),
        ("DELETE", "/folder/made", {}, None),
        ("COPY", "/folder/f", {"Destination": "/copy"}, None),
        ("COPY", "/folder", {"Destination": "/tree"}, None),
        ("MOVE", "/folder/f", {"Destination": "/moved"}, None),
        ("COPY", "/copy", {"Destination": "/folder/f"}, None),
        ("MOVE", "/copy", {"Destination": "/folder/moved"}, None),
        ("POST", "/folder/", {"Content-Type": "multipart/form-data; boundary=B"}, FORM),
        ("GET", "/folder/?archive=zip", {}, None),
        ("PROPFIND", "/folder/?contains=f", {"Depth": "infinity"}, None),
        ("DELETE", "/folder", {"Quillon-Undo": "?1"}, None),
        ("DELETE", "/folder", {}, None),
    ]

    def ask(self, *operation):
        return self.request(*operation)[0]

    def swap(self):
        exchange = 2
        paths = [os.fsencode(self.share / name) for name in ("folder", "link")]
        libc = ctypes.CDLL(None)
        while True:
            libc.renameat2(-1, paths[0], -1, paths[1], exchange)

    def put_back(self):
        """What was deleted of the two."""
        for name in ("folder", "link"):
            if not os.path.lexists(self.share / name):
                if any(path.is_symlink() for path in self.share.iterdir()):
                    (self.share / name).mkdir()
                else:
                    (self.share / name).symlink_to(self.outside)

    def state(self):
        return [(path, path.read_bytes() if path.is_file() else b"", path.stat().st_ctime_ns)
                for path in (self.outside, *sorted(self.outside.rglob("*")))]

    def test_nothing_outside_is_touched(self):
        self.outside = self.top / "outside"
        (self.outside / "sub").mkdir(parents=True)
        for name in ("f", "moved", "new", "sub/g"):
            (self.outside / name).write_bytes(b"secret")
        before = self.state()
        (self.share / "folder").mkdir()
        self.put_back()
        self.start()
        self.wait_until_it_serves()
        swapping = multiprocessing.Process(target=self.swap)
        swapping.start()
        self.addCleanup(swapping.kill)
        succeeded = [0] * len(self.OPERATIONS)
        rounds = TIMES or 1000
        for number in range(rounds):
            status = self.ask(*self.OPERATIONS[number % len(succeeded)])
            # An archive ends where what it holds is gone.
            self.assertIsNone(self.server.poll())
            succeeded[number % len(succeeded)] += status in (200, 201, 204, 207, 303)
            self.put_back()
        swapping.kill()
        swapping.join()
        print("succeeded", succeeded, "of", rounds // len(succeeded))
        self.assertTrue(all(succeeded) and sum(succeeded) < rounds)
        self.assertEqual(self.state(), before)
        for path in self.share.rglob("*"):
            if not path.is_symlink() and path.is_file():
                self.assertNotIn(b"secret", path.read_bytes(), path)


if __name__ == "__main__":
    SERVE, FAULTS, which, *times = sys.argv[1:]
    TIMES = int(times[0]) if times else 0
    unittest.main(argv=[sys.argv[0], which])
