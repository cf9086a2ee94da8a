#!/usr/bin/env python3
"""Has the WebDAV clients that people use do a day's work with the console program.

usage: clients.py PATH/TO/quillon-serve PATH/TO/make_profile
Whatever a client does to the share is done to a folder beside, too, and both must be alike after
each step. Everything happens below one temporary folder, home included.
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.parse
from functools import partialmethod
from pathlib import Path

SERVE = MAKE_PROFILE = ""
CLIENT_TIMEOUT = 60  # seconds
USER, PASSWORD = "ann", "pass word%"
NAMES = ["Umläute äöüß €, hash #1?.txt", "percent 100% %41 + & =.txt", "quote ' and; [b] (1)!.txt"]

# What is tried: a sentence, the verb and its arguments. What is put comes from `material`.
EVERYDAY = [
    ("list the empty share", "names", ""),
    ("upload a file", "put", "small", "a.txt"),
    ("download it", "get", "a.txt", "a"),
    ("replace it by a longer one", "put", "big", "a.txt"),
    ("download what was replaced", "get", "a.txt", "longer"),
    ("replace it by a shorter one", "put", "small", "a.txt"),
    ("replace it by an empty one", "put", "empty", "a.txt"),
    ("download an empty file", "get", "a.txt", "shorter"),
    ("upload 6 MB", "put", "big", "big.bin"),
    ("download 6 MB", "get", "big.bin", "big"),
    ("make a folder", "mkdir", "one"),
    ("make a folder in it", "mkdir", "one/in ner"),
    ("list an empty folder", "names", "one/in ner"),
    ("upload into a folder", "put", "small", "one/in ner/b.txt"),
    ("download from a folder", "get", "one/in ner/b.txt", "b"),
    ("rename a file", "move", "a.txt", "renamed.txt"),
    ("rename it in its case alone", "move", "renamed.txt", "Renamed.TXT"),
    ("move a file into a folder", "move", "Renamed.TXT", "one/Renamed.TXT"),
    ("move it out under another name", "move", "one/Renamed.TXT", "a.txt"),
    ("rename a folder", "move", "one", "two"),
    ("list a renamed folder", "names", "two"),
    ("make another folder", "mkdir", "three"),
    ("move a folder into a folder", "move", "two", "three/two"),
    ("copy a file", "copy", "big.bin", "copy.bin"),
    ("copy a file into a folder", "copy", "big.bin", "three/copy.bin"),
    ("copy onto a file", "copy", "a.txt", "copy.bin"),
    ("move onto a file", "move", "a.txt", "copy.bin"),
    ("copy a tree", "copy_tree", "three", "four"),
    ("list what came of it", "names", ""),
    ("delete a file", "delete", "copy.bin"),
    ("delete a tree", "delete_tree", "three"),
    ("upload a tree", "put_tree", "tree", "tree"),
    ("list what was uploaded", "names", "tree"),
    ("download a tree", "get_tree", "tree", "tree"),
    ("make a folder for many files", "mkdir", "many"),
    ("upload 500 files", "put_many", "many", "many"),
    ("list 500 files", "names", "many"),
    ("delete 500 files", "delete_tree", "many"),
]
TELLING_NAMES = [
    ("make a folder of a telling name", "mkdir", "ü #%+ (&)"),
    *((f"{what} '{name}'", verb, *(each.format(name) for each in arguments))
      for name in NAMES for what, verb, *arguments in [
          ("upload", "put", "small", "ü #%+ (&)/{}"),
          ("download", "get", "ü #%+ (&)/{}", "{}"),
          ("rename", "move", "ü #%+ (&)/{}", "ü #%+ (&)/moved {}")]),
    ("replace a telling name", "put", "big", "ü #%+ (&)/moved " + NAMES[1]),
    ("copy a telling name", "copy", "ü #%+ (&)/moved " + NAMES[1], "ü #%+ (&)/copied"),
    ("list telling names", "names", "ü #%+ (&)"),
    ("delete a telling name", "delete", "ü #%+ (&)/moved " + NAMES[0]),
    ("delete telling names", "delete_tree", "ü #%+ (&)"),
]
WITH_LOGIN = EVERYDAY[:8]
EVERYDAY += TELLING_NAMES
WISH_FOR_A_LOCK = "<lockinfo xmlns='DAV:'><lockscope><exclusive/></lockscope>" \
                  "<locktype><write/></locktype></lockinfo>"


def digests(folder):
    """The files of a tree by relative path, each with its SHA-256; folders map to None."""
    return {
        str(entry.relative_to(folder)):
            None if entry.is_dir() else hashlib.sha256(entry.read_bytes()).hexdigest()
        for entry in Path(folder).rglob("*")
    }


def make_material(folder):
    """What is uploaded: single files, a tree under telling names, and many small files."""
    sizes = {"empty": 0, "small": 12, "big": 6_000_000}
    sizes.update({f"many/{number}.txt": number for number in range(1, 501)})
    sizes.update({f"tree/{number % 2} {NAMES[number % 3][:-4]}/in ner/{number} {NAMES[number % 3]}":
                  number * 997 for number in range(12)})
    for name, size in sizes.items():
        Path(folder, name).parent.mkdir(parents=True, exist_ok=True)
        Path(folder, name).write_bytes(os.urandom(size))


class Folder:
    """The verbs done to a folder of this machine; a mounted share is one, too."""

    def __init__(self, root, material, got):
        self.root, self.material, self.got = root, material, got

    def names(self, path):
        return sorted(set(os.listdir(self.root / path)) - {"lost+found"})  # one client adds it

    def put(self, source, path):
        shutil.copyfile(self.material / source, self.root / path)

    def get(self, path, target):
        shutil.copyfile(self.root / path, self.got / target)

    def mkdir(self, path):
        (self.root / path).mkdir()

    def delete(self, path):
        (self.root / path).unlink()

    def delete_tree(self, path):
        shutil.rmtree(self.root / path)

    def move(self, path, to):
        os.rename(self.root / path, self.root / to)

    def copy(self, path, to):
        shutil.copyfile(self.root / path, self.root / to)

    def copy_tree(self, path, to):
        shutil.copytree(self.root / path, self.root / to, copy_function=shutil.copyfile)

    def put_tree(self, source, path):
        shutil.copytree(self.material / source, self.root / path, dirs_exist_ok=True,
                        copy_function=shutil.copyfile)

    put_many = put_tree

    def get_tree(self, path, target):
        shutil.copytree(self.root / path, self.got / target, copy_function=shutil.copyfile)


class Client(unittest.TestCase):
    """A server of its own for each test: self.url, and self.share behind it."""

    mode = "auto"
    needs = ()  # programs
    patience = 0  # seconds until a change has arrived
    cannot = {}  # operations of the table, each with the reason

    def setUp(self):
        missing = [program for program in self.needs if not shutil.which(program)]
        if missing:
            self.skipTest(f"not installed: {', '.join(missing)}")
        self.top = Path(tempfile.mkdtemp(prefix="quillon-clients-"))
        self.addCleanup(shutil.rmtree, self.top)
        self.top.chmod(0o755)  # one client leaves its rights behind
        self.share, self.got, self.material, self.runtime = map(
            self.folder, ("share", "got", "material", "runtime"))
        self.runtime.chmod(0o700)
        self.beside = Folder(self.folder("beside"), self.material, self.folder("beside-got"))
        self.environment = dict(
            os.environ, HOME=str(self.folder("home")), LC_ALL="C.UTF-8",
            QT_QPA_PLATFORM="offscreen", XDG_RUNTIME_DIR=str(self.runtime),
            QUILLON_RESDIR=str(self.folder("resources")))
        make_material(self.material)

    def folder(self, name):
        made = self.top / name
        made.mkdir()
        return made

    def serve(self, login=False, tls=False):
        self.login = login
        self.make_profile(login, tls)
        with open(self.top / "server.log", "wb") as log:
            self.server = subprocess.Popen(
                [SERVE, "--profile", "clients", "--mode", self.mode,
                 "--address", "127.0.0.1", "--port", "0", str(self.share)],
                cwd=self.top, env=self.environment, text=True, stdout=subprocess.PIPE, stderr=log)
        self.addCleanup(self.stop_server)
        line = self.server.stdout.readline()
        found = re.fullmatch(r"Serving .* at (https?://\S+/)\n", line)
        self.assertTrue(found, f"no address in {line!r}")
        self.url = found.group(1)

    def make_profile(self, login, tls):
        account = [f"{USER}:{PASSWORD}"] if login else []
        keys = [str(self.top / "key"), str(self.top / "certificate")] if tls else []
        if tls:
            self.run_client("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days",
                            "2", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                            "-keyout", keys[0], "-out", keys[1])
        self.run_client(MAKE_PROFILE, "clients", *account, *keys)

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
        # Helpers that stay would keep a pipe open.
        with tempfile.TemporaryFile("w+", errors="replace") as output:
            done = subprocess.run(command, input=text, env=self.environment, cwd=self.top,
                                  text=True, stdout=output, stderr=subprocess.STDOUT,
                                  timeout=CLIENT_TIMEOUT)
            output.seek(0)
            said = output.read()
        self.assertEqual(done.returncode, 0, f"{command}\n{said}")
        return said

    def address(self, path):
        return self.url + urllib.parse.quote(path)

    def connect(self):
        """What comes before all else; gives whoever has the verbs."""
        return self

    def work(self, operations, **how):
        self.serve(**how)
        client = self.connect()
        for sentence, verb, *arguments in operations:
            if sentence in self.cannot:
                print(f"{type(self).__name__} can't {sentence}: {self.cannot[sentence]}",
                      file=sys.stderr)
                continue
            with self.subTest(sentence):
                wanted = getattr(self.beside, verb)(*arguments)
                found = getattr(client, verb)(*arguments)
                if verb == "names":
                    self.assertEqual(found, wanted)
                self.assert_alike()

    # One by one, for programs that know no trees.
    def put_tree(self, source, path):
        self.mkdir(path)
        top = self.material / source
        for each in sorted(top.rglob("*")):
            there = f"{path}/{each.relative_to(top)}"
            self.mkdir(there) if each.is_dir() else self.put(each, there)

    def get_tree(self, path, target):
        top = self.share / path
        for each in (top, *sorted(top.rglob("*"))):
            here = self.got / target / each.relative_to(top)
            here.mkdir() if each.is_dir() else self.get(str(each.relative_to(self.share)), here)

    def assert_alike(self):
        until = time.monotonic() + self.patience
        pairs = ((self.share, self.beside.root), (self.got, self.beside.got))
        for one, other in pairs:
            wanted = digests(other)
            while (found := digests(one)) != wanted and time.monotonic() < until:
                time.sleep(0.02)
            self.assertEqual(found, wanted)


class Everyday:
    """What each client is asked to do."""

    def test_everyday(self):
        self.work(EVERYDAY)

    def test_login(self):
        self.work(WITH_LOGIN, login=True)


class Curl(Everyday, Client):
    mode = "standard"
    needs = ("curl",)
    options = ()

    def curl(self, path, *options):
        login = ("--digest", "-u", f"{USER}:{PASSWORD}") if self.login else ()
        return self.run_client("curl", "-sSf", *login, *self.options, *options, self.address(path))

    def names(self, path):
        document = self.curl(path, "-X", "PROPFIND", "-H", "Depth: 1")
        hrefs = re.findall(r"<D:href>([^<]*)</D:href>", document)[1:]
        return sorted(Path(urllib.parse.unquote(href)).name for href in hrefs)

    def put(self, source, path):
        self.curl(path, "-g", "-T", str(self.material / source))

    def get(self, path, target):
        self.curl(path, "-o", str(self.got / target))

    def mkdir(self, path):
        self.curl(path, "-X", "MKCOL")

    def delete(self, path):
        self.curl(path, "-X", "DELETE")

    delete_tree = delete

    def move(self, path, to, method="MOVE"):
        self.curl(path, "-X", method, "-H", "Destination: " + self.address(to))

    def copy(self, path, to):
        self.move(path, to, "COPY")

    copy_tree = copy

    def put_many(self, source, path):
        self.curl(path + "/", "-T", f"{self.material}/{source}/[1-500].txt")

    def test_tls(self):
        self.options = ("--cacert", str(self.top / "certificate"))
        self.work(WITH_LOGIN + TELLING_NAMES, login=True, tls=True)

    def test_locks_and_times(self):
        self.serve()
        said = self.curl("a", "-i", "-X", "LOCK", "-d", WISH_FOR_A_LOCK)
        token = re.search(r"(?m)^Lock-Token: (.*)$", said).group(1)
        upload = ("-T", str(self.material / "small"), "-H", "X-OC-Mtime: 1000000000")
        with self.assertRaisesRegex(AssertionError, "423"):
            self.curl("a", *upload)
        self.curl("a", *upload, "-H", f"If: ({token})")
        self.assertEqual((self.share / "a").stat().st_mtime, 1_000_000_000)


class Cadaver(Everyday, Client):
    needs = ("cadaver",)

    def connect(self):
        (self.top / "home/.netrc").write_text(
            f'machine 127.0.0.1 login {USER} password "{PASSWORD}"\n' if self.login else "")
        return self

    def cadaver(self, *words, before=()):
        command = " ".join(f'"{word}"' if number else word for number, word in enumerate(words))
        said = self.run_client("cadaver", self.url, text="\n".join([*before, command, "quit\n"]))
        self.assertRegex(said, r"succeeded\.|is empty")
        self.assertNotIn("failed", said)
        return said

    def names(self, path):
        lines = self.cadaver("ls", path).splitlines()
        return sorted(re.sub(r"^(Coll: *|\*? +)(.*?) +\d+  \w{3} .*$", r"\2", line)
                      for line in lines if re.search(r" \d+  \w{3} [ \d]\d", line))

    def put(self, source, path):
        self.cadaver("put", str(self.material / source), path)

    def get(self, path, target):
        self.cadaver("get", path, str(self.got / target))

    mkdir = partialmethod(cadaver, "mkcol")
    delete = partialmethod(cadaver, "delete")
    delete_tree = partialmethod(cadaver, "rmcol")
    move = partialmethod(cadaver, "move")
    copy = partialmethod(cadaver, "copy")
    copy_tree = copy

    def put_many(self, source, path):
        self.cadaver("mput", "*", before=(f'cd "{path}"', f'lcd "{self.material / source}"'))

    def test_locks(self):
        self.serve()
        self.put("small", "a")
        said = self.run_client("cadaver", self.url, text="\n".join(
            ["lock a", "discover a", f'put "{self.material / "big"}" a', "propset a c red",
             "propget a c", "unlock a", "quit\n"]))
        self.assertEqual(said.count("succeeded"), 4, said)
        self.assertIn("red", said)


class Rclone(Everyday, Client):
    needs = ("rclone",)

    def rclone(self, *arguments):
        password = self.login and self.run_client("rclone", "obscure", PASSWORD).strip()
        login = ("--webdav-user", USER, "--webdav-pass", password) if self.login else ()
        return self.run_client(
            "rclone", "--config", os.devnull, "--retries", "1", "--low-level-retries", "1",
            "--webdav-vendor", "owncloud", "--webdav-url", self.url, *login, *arguments)

    @staticmethod
    def remote(path):
        return ":webdav:" + path

    def names(self, path):
        return sorted(name.rstrip("/") for name in
                      self.rclone("lsf", self.remote(path)).splitlines())

    def put(self, source, path):
        self.rclone("copyto", "-I", str(self.material / source), self.remote(path))

    def get(self, path, target):
        self.rclone("copyto", self.remote(path), str(self.got / target))

    def rclone_there(self, verb, *paths, options=()):
        self.rclone(verb, *options, *map(self.remote, paths))

    mkdir = partialmethod(rclone_there, "mkdir")
    delete = partialmethod(rclone_there, "deletefile")
    delete_tree = partialmethod(rclone_there, "purge")
    move = partialmethod(rclone_there, "moveto")
    copy_tree = partialmethod(rclone_there, "copyto")

    # It forbids the server to replace a file, and then wonders.
    def copy(self, path, to):
        by_client = ("--disable", "copy") if (self.share / to).exists() else ()
        self.rclone_there("copyto", path, to, options=by_client)

    def put_tree(self, source, path):
        self.rclone("copy", str(self.material / source), self.remote(path))

    put_many = put_tree

    def get_tree(self, path, target):
        self.rclone("copy", self.remote(path), str(self.got / target))

    def test_synchronises(self):
        self.serve()
        old = self.material / "tree" / "old"
        old.write_text("old")
        os.utime(old, (1_000_000_000, 1_000_000_000))
        self.rclone("sync", str(old.parent), self.remote("tree"))
        self.assertEqual((self.share / "tree/old").stat().st_mtime, 1_000_000_000)
        self.rclone("check", str(old.parent), self.remote("tree"))
        self.rclone("check", "--download", str(old.parent), self.remote("tree"))
        said = self.rclone("sync", "-v", "--stats-one-line", str(old.parent), self.remote("tree"))
        self.assertIn("There was nothing to transfer", said)
        old.unlink()
        self.rclone("sync", str(old.parent), self.remote("tree"))
        self.assertEqual(digests(self.share / "tree"), digests(old.parent))
        self.assertRegex(self.rclone("about", self.remote("")), r"Free: +\d")


class Mounted(Client):
    """Clients whose share is a folder of this machine."""

    patience = 10

    def setUp(self):
        if not os.access("/dev/fuse", os.R_OK | os.W_OK):
            self.skipTest("this machine or this user may not mount")
        super().setUp()
        self.mounted = self.folder("mounted")

    def unmount(self, *command):
        self.run_client(*command, str(self.mounted))
        self.assert_alike()


class RcloneMount(Everyday, Mounted):
    needs = ("rclone", "fusermount3")
    patience = 40  # for the pauses that it makes
    rclone = Rclone.rclone

    def connect(self):
        self.rclone("mount", "--daemon", "--vfs-cache-mode", "writes", "--vfs-write-back", "0",
                    ":webdav:", str(self.mounted))
        self.addCleanup(self.unmount, "fusermount3", "-u")
        return Folder(self.mounted, self.material, self.got)


class Davfs(Everyday, Mounted):
    needs = ("mount.davfs",)

    def setUp(self):
        if os.geteuid() != 0:
            self.skipTest("only root mounts with davfs2")
        super().setUp()

    def connect(self):
        cache = self.folder("cache")
        cache.chmod(0o777)
        secrets = self.top / "secrets"
        secrets.write_text(f'{self.mounted} {USER} "{PASSWORD}"\n')
        secrets.chmod(0o600)
        settings = self.top / "davfs2.conf"
        settings.write_text(f"cache_dir {cache}\nsecrets {secrets}\nask_auth 0\nbuf_size 64\n"
                            "delay_upload 0\n")
        self.run_client("mount.davfs", "-o", f"conf={settings}", self.url, str(self.mounted))
        self.addCleanup(self.unmount, "umount")
        return Folder(self.mounted, self.material, self.got)


class Desktop(Client):
    """Clients that need a message bus; it starts what they need and nothing else."""

    scheme = ""
    BUS = """<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>
      <servicedir>{}</servicedir><policy context="default"><allow send_destination="*"/>
      <allow eavesdrop="true"/><allow own="*"/></policy></busconfig>"""
    SERVICE = "[D-BUS Service]\nName=org.gtk.vfs.Daemon\nExec=/usr/libexec/gvfsd --no-fuse\n"

    def connect(self):
        services = self.folder("services")
        (services / "vfs.service").write_text(self.SERVICE)
        (self.top / "bus.conf").write_text(self.BUS.format(services))
        with open(self.top / "bus.log", "wb") as log:
            bus = subprocess.Popen(
                ["dbus-daemon", f"--config-file={self.top}/bus.conf", "--nofork",
                 "--print-address"], env=self.environment, text=True, stdout=subprocess.PIPE,
                stderr=log)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.terminate)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        bus.stdout.close()
        return self

    def address(self, path):
        return super().address(path).replace("http", self.scheme, 1)


class Gvfs(Everyday, Desktop):
    needs = ("gio", "dbus-daemon", "/usr/libexec/gvfsd-dav")
    cannot = {"copy a tree": "gio copies no folders"}
    scheme = "dav"

    def connect(self):
        super().connect()
        self.gio("mount", "", text=f"{USER}\n{PASSWORD}\n" if self.login else None)
        return self

    def gio(self, verb, *paths, local=(), text=None):
        return self.run_client("gio", verb, *local, *map(self.address, paths), text=text)

    def names(self, path):
        return sorted(self.gio("list", path).splitlines())

    def put(self, source, path):
        self.gio("copy", path, local=[str(self.material / source)])

    def get(self, path, target):
        self.run_client("gio", "copy", self.address(path), str(self.got / target))

    mkdir = partialmethod(gio, "mkdir")
    delete = partialmethod(gio, "remove")
    move = partialmethod(gio, "move")
    copy = partialmethod(gio, "copy")

    def delete_tree(self, path):
        inside = sorted((self.share / path).rglob("*"), reverse=True)
        self.gio("remove", *(str(each.relative_to(self.share)) for each in inside), path)

    def put_many(self, source, path):
        self.gio("copy", path, local=map(str, (self.material / source).iterdir()))

    def test_everyday(self):
        super().test_everyday()
        self.gio("save", "saved", text="saved")
        self.gio("save", "saved", text="saved twice in a second")
        self.assertEqual((self.share / "saved").read_text(), "saved twice in a second")
        self.assertRegex(self.gio("info", "", local=["-f"]), r"filesystem::free: \d+")


class Kio(Everyday, Desktop):
    needs = ("kioclient5", "dbus-daemon")
    cannot = {"move onto a file": "it forbids the server to replace one, whatever it is told"}
    scheme = "webdav"

    def address(self, path):
        login = f"//{USER}:{urllib.parse.quote(PASSWORD)}@" if self.login else "//"
        return super().address(path).replace("//", login, 1)

    def kio(self, verb, *addresses):
        return self.run_client("kioclient5", "--noninteractive", "--overwrite", verb, *addresses)

    def names(self, path):
        lines = self.kio("ls", self.address(path)).splitlines()
        return sorted(line for line in lines if line not in ("", ".") and "kcookiejar" not in line)

    def put(self, source, path):
        self.kio("copy", str(self.material / source), self.address(path))

    put_tree = put

    def get(self, path, target):
        self.kio("copy", self.address(path), str(self.got / target))

    get_tree = get

    def mkdir(self, path):
        (self.top / "empty").mkdir(exist_ok=True)
        self.kio("copy", str(self.top / "empty"), self.address(path))

    def delete(self, path):
        self.kio("remove", self.address(path))

    delete_tree = delete

    def move(self, path, to, verb="move"):
        self.kio(verb, self.address(path), self.address(to))

    def copy(self, path, to):
        self.move(path, to, "copy")

    copy_tree = copy

    def put_many(self, source, path):
        self.kio("copy", *map(str, (self.material / source).iterdir()), self.address(path))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    SERVE, MAKE_PROFILE = map(os.path.abspath, (sys.argv.pop(1), sys.argv.pop(1)))
    unittest.main(verbosity=2)
