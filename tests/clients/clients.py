#!/usr/bin/env python3
"""Drives WebDAV clients that people use against the console program.

usage: clients.py PATH/TO/quillon-serve
Needs curl, cadaver and rclone. Everything happens below one temporary folder, home included.
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import urllib.parse
from pathlib import Path

SERVE = ""
CLIENT_TIMEOUT = 60  # seconds
NAMES = [
    "plain.txt",
    "with blanks in it.txt",
    "Umläute äöüß €.txt",
    "hash #1.txt",
    "percent 100% %41.txt",
    "plus + and & and =.txt",
    "quote ' and; comma,.txt",
]


def digests(folder):
    """The files of a tree by relative path, each with its SHA-256; folders map to None."""
    return {
        str(entry.relative_to(folder)):
            None if entry.is_dir() else hashlib.sha256(entry.read_bytes()).hexdigest()
        for entry in Path(folder).rglob("*")
    }


def make_tree(folder, files=200):
    """Folders two deep under telling names, files from empty to some 100 KB."""
    for number in range(files):
        stem = NAMES[number % len(NAMES)]
        place = Path(folder, f"{number % 8} {stem[:-4]}", f"in ner {number % 3}")
        place.mkdir(parents=True, exist_ok=True)
        Path(place, f"{number} {stem}").write_bytes(os.urandom(number * number * 3))


class Served(unittest.TestCase):
    """A server of its own for each test: self.url, and self.share behind it."""

    def setUp(self):
        self.top = Path(tempfile.mkdtemp(prefix="quillon-clients-"))
        self.addCleanup(shutil.rmtree, self.top)
        self.share = self.folder("share")
        self.local = self.folder("local")
        self.environment = dict(os.environ, HOME=str(self.folder("home")), LC_ALL="C.UTF-8",
                                QUILLON_RESDIR=str(self.folder("resources")))
        self.start_server()

    def folder(self, name):
        made = self.top / name
        made.mkdir()
        return made

    def start_server(self):
        with open(self.top / "server.log", "wb") as log:
            self.server = subprocess.Popen(
                [SERVE, "--address", "127.0.0.1", "--port", "0", str(self.share)],
                cwd=self.folder("working"), env=self.environment, text=True,
                stdout=subprocess.PIPE, stderr=log)
        self.addCleanup(self.stop_server)
        line = self.server.stdout.readline()
        found = re.fullmatch(r"Serving .* at (http://\S+/)\n", line)
        self.assertTrue(found, f"no address in {line!r}")
        self.url = found.group(1)

    def stop_server(self):
        self.server.terminate()
        try:
            status = self.server.wait(10)
        except subprocess.TimeoutExpired:
            self.server.kill()
            status = self.server.wait()
        self.server.stdout.close()
        self.assertEqual(status, 0, "the server ends in order")

    def run_client(self, *command, text=None):
        done = subprocess.run(command, input=text, env=self.environment, cwd=self.local, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=CLIENT_TIMEOUT)
        self.assertEqual(done.returncode, 0, f"{command}\n{done.stdout}")
        return done.stdout

    def address(self, path):
        return self.url + urllib.parse.quote(path)


class Curl(Served):
    def curl(self, path, *options):
        """Gives the status of the last reply and its body."""
        out = self.run_client("curl", "-sS", "-w", "\n%{http_code}", *options, self.address(path))
        body, _, status = out.rpartition("\n")
        return int(status), body

    def listed(self, path):
        status, document = self.curl(path, "-X", "PROPFIND", "-H", "Depth: 1")
        self.assertEqual(status, 207)
        hrefs = re.findall(r"<href>([^<]*)</href>", document)
        return [urllib.parse.unquote(urllib.parse.urlsplit(href).path) for href in hrefs]

    def test_names(self):
        self.assertEqual(self.curl("a b/ü #%+", "-X", "MKCOL")[0], 201)
        for name in NAMES:
            path = "a b/ü #%+/" + name
            (self.local / "file").write_text(name)
            self.assertEqual(self.curl(path, "-T", "file")[0], 201)
            self.assertEqual(self.curl(path), (200, name))
            self.assertEqual(self.curl(path, "-T", "file")[0], 412, "replaces nothing")
        self.assertEqual(self.listed("a b/ü #%+"), ["/a b/ü #%+/" + name for name in sorted(NAMES)])

        for name in NAMES:
            to = "Destination: " + self.address("moved " + name)
            self.assertEqual(self.curl("a b/ü #%+/" + name, "-X", "MOVE", "-H", to)[0], 201)
            self.assertEqual((self.share / ("moved " + name)).read_text(), name)
            self.assertEqual(self.curl("moved " + name, "-X", "DELETE")[0], 200)
        self.assertEqual(self.listed(""), ["/a b"])
        self.assertEqual(self.curl("a b", "-X", "DELETE")[0], 200)
        self.assertEqual(digests(self.share), {})


class Cadaver(Served):
    def cadaver(self, *commands):
        return self.run_client("cadaver", self.url, text="\n".join(commands) + "\nquit\n")

    def test_session(self):
        for name in NAMES:
            (self.local / name).write_text(name)
        said = self.cadaver("mkcol new", *(f'put "{name}" "new/{name}"' for name in NAMES),
                            "ls new", *(f'move "new/{name}" "moved {name}"' for name in NAMES),
                            *(f'get "moved {name}" "back {name}"' for name in NAMES))
        self.assertEqual(said.count("succeeded."), 2 + 3 * len(NAMES), said)
        for name in NAMES:
            self.assertRegex(said, rf"(?m)^ +{re.escape(name)} +\d+ ")
            self.assertEqual((self.local / ("back " + name)).read_text(), name)

        said = self.cadaver("rmcol new", *(f'delete "moved {name}"' for name in NAMES), "ls")
        self.assertEqual(said.count("succeeded."), 1 + len(NAMES), said)
        self.assertIn("collection is empty", said)
        self.assertEqual(digests(self.share), {})


class Rclone(Served):
    def rclone(self, *arguments, below):
        return self.run_client("rclone", "--config", os.devnull, "--retries", "1",
                               "--low-level-retries", "1", "--webdav-vendor", "other",
                               "--webdav-url", self.address(below), *arguments)

    def test_tree(self):
        tree = self.folder("tree")
        make_tree(tree)
        self.rclone("mkdir", ":webdav:ü #%+", below="")
        self.rclone("copy", str(tree), ":webdav:", below="ü #%+/")
        self.assertEqual(digests(self.share / "ü #%+"), digests(tree))

        self.rclone("check", "--download", str(tree), ":webdav:", below="ü #%+/")
        self.rclone("copy", ":webdav:", "back", below="ü #%+/")
        self.assertEqual(digests(self.local / "back"), digests(tree))

        self.rclone("purge", ":webdav:", below="ü #%+/")
        self.assertEqual(digests(self.share), {})


def setUpModule():
    missing = [client for client in ("curl", "cadaver", "rclone") if not shutil.which(client)]
    if missing:
        raise RuntimeError("not installed: " + ", ".join(missing))


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    SERVE = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
