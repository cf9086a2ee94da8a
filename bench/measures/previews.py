"""Previews of camera pictures, the server pinned to one core, and who asks for something else."""

import os
import shutil
import subprocess
import time
from pathlib import Path

import share
from loads import connect, waits
from measures import pages
from servers import CLASSIC, Failure
from table import high, low

LONGEST = 120  # seconds
OTHER_FILES = ("lock", "unfinished")  # among the previews


def metrics(_):
    return [
        high("previews", "previews of 12 MP pictures, 1 core [1/s]", 15),
        low("previews_p99", "small GET meanwhile, p99 [ms]", 20),
    ]


def prepare(bench):
    album = bench.folder / "album"
    album.mkdir()
    for i in range(bench.sizes.pictures):
        picture = album / f"IMG_{i}.jpg"
        if i < bench.sizes.motifs:
            subprocess.run(["gm", "convert", "-size", "4000x3000", "plasma:fractal",
                            "-quality", "92", picture], check=True)
        else:
            shutil.copyfile(album / f"IMG_{i % bench.sizes.motifs}.jpg", picture)
    share.random_file(album / "small.bin", 4096)


def measure(bench, name):
    if name not in CLASSIC:
        return
    made = bench.launcher.home(name) / ".thumbnails"
    shutil.rmtree(made, ignore_errors=True)
    with bench.serve(name, bench.folder / "album") as server, connect(server.address) as peer:
        pin(server)
        began = time.perf_counter()
        pages.page(server, 1, "-d", f"a=c&cv={bench.sizes.pictures}")
        taken = waits(peer, "/small.bin", lambda: goes_on(made, bench.sizes.pictures, began), 0.005)
        bench.note("previews", name, bench.sizes.pictures / (time.perf_counter() - began))
    bench.note("previews_p99", name, taken[len(taken) * 99 // 100] * 1e3)


def pin(server):
    for pid in server.processes():
        for thread in Path(f"/proc/{pid}/task").iterdir():
            os.sched_setaffinity(int(thread.name), {0})


def goes_on(made, pictures, began):
    if time.perf_counter() - began > LONGEST:
        raise Failure(f"no {pictures} previews within {LONGEST} s")
    files = [path for path in made.rglob("*") if path.is_file() and path.name not in OTHER_FILES]
    return len(files) < pictures
