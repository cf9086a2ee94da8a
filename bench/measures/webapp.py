"""The web application in a real browser: how soon it is there, how it scrolls, and its uploads beside
curl's, and beside what the same browser takes for bare requests."""

import json
import os
import shutil
import subprocess
import time

import share
from loads import upload
from servers import ROOT, Failure
from table import high, low

LONGEST = 600  # seconds
FILES = 1000
FILE_SIZE = 4096
AT_ONCE = 4  # of the small files, as the application does
ROUNDS = 1  # of several turns, since the ratios are those of the best figures


def metrics(sizes):
    size = "1 GiB" if sizes.big_mib == 1024 else f"{sizes.big_mib} MiB"
    return [
        low("app_bytes", "first view of the web application [KB]", 60),
        low("app_paint", "first paint of it [ms]", 200),
        low("app_listing", f"{sizes.entries} entries on screen after the click [ms]", 500),
        high("app_frames", "scrolling through them, fewest frames [1/s]", 30),
        high("app_big", f"upload of {size} by the page [GB/s]"),
        high("app_big_bare", "the same by a bare request of the browser [GB/s]"),
        high("app_big_curl", "the same by curl's PUT [GB/s]"),
        high("app_big_ratio", "speed of the page's, by that of curl's", 0.8),
        low("app_files", f"upload of {FILES} files of 4 KiB by the page [s]"),
        low("app_files_bare", "the same by bare requests of the browser [s]"),
        low("app_files_curl", f"the same by curl, {AT_ONCE} at once [s]"),
        low("app_files_ratio", "time of the page's, by that of curl's", 1.5),
    ]


def prepare(bench):
    many = bench.folder / "many"
    many.mkdir()
    for i in range(FILES):
        share.random_file(many / f"small-{i}.bin", FILE_SIZE)


def measure(bench, name):
    if name != "standard":
        return
    with bench.serve(name) as server:
        for _ in range(bench.sizes.rounds):
            for key, value in take_turn(bench, server).items():
                bench.note(key, name, value)
    for key in ("app_big", "app_files"):
        by_page, by_curl = (bench.results.best(each, name) for each in (key, f"{key}_curl"))
        bench.note(f"{key}_ratio", name, by_page / by_curl)


def take_turn(bench, server):
    """The figures of one round, all but the ratios."""
    big = bench.sizes.big
    # Twice, as the other uploads: what comes first also pays for memory.
    put = min(put_big(bench, server) for _ in range(2))
    turn = {"app_files_curl": min(put_small(bench, server) for _ in range(2))}
    with Arriving(bench, 2 * (FILES + 1), 2 * (big + FILES * FILE_SIZE)):
        turn.update(visit(bench, server))
    seconds = {"app_big_curl": put, "app_big": turn.pop("big"), "app_big_bare": turn.pop("big_bare")}
    return {**turn, **{key: big / took / 1e9 for key, took in seconds.items()}}


class Arriving:
    """A folder of the share, "uploads", that is empty at first and holds `count` files of `size` bytes
    in all at the end of its `with` block."""

    def __init__(self, bench, count, size):
        self.folder, self.expected = bench.share / "uploads", (count, size)

    def __enter__(self):
        self.folder.mkdir()

    def __exit__(self, failure, *_):
        sizes = [path.stat().st_size for path in self.folder.iterdir()]
        shutil.rmtree(self.folder)
        if not failure and (len(sizes), sum(sizes)) != self.expected:
            raise Failure(f"{len(sizes)} files of {sum(sizes)} bytes arrived, not {self.expected}")


def put_big(bench, server):
    """Seconds that curl takes for the large file."""
    target = bench.share / "put.bin"
    return upload(server.url + target.name, target, bench.sizes.big, "-T", bench.share / "big.bin")


def put_small(bench, server):
    """Seconds that one curl takes for all small files."""
    wanted = bench.folder / "wanted"
    wanted.write_text("".join(
        f'upload-file = "{path}"\nurl = "{server.url}uploads/"\noutput = "/dev/null"\n'
        for path in (bench.folder / "many").iterdir()))
    with Arriving(bench, FILES, FILES * FILE_SIZE):
        began = time.perf_counter()
        subprocess.run(["curl", "-sS", "--no-progress-meter", "--fail", "-H", "Expect:", "-Z",
                        "--parallel-immediate", "--parallel-max", str(AT_ONCE), "-K", wanted],
                       check=True)
        return time.perf_counter() - began


def visit(bench, server):
    """What a visitor's browser tells. Its own files go with the bench's."""
    temporary = bench.folder / "tmp"
    told = subprocess.run(
        ["node", ROOT / "bench/visit.mjs", server.url, "uploads/", bench.share / "big.bin",
         bench.folder / "many"], stdout=subprocess.PIPE, text=True, check=True, timeout=LONGEST,
        env={**os.environ, "ARTEFACTS": str(temporary), "TMPDIR": str(temporary)})
    return json.loads(told.stdout)
