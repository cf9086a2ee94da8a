#!/usr/bin/env python3
"""Measures Quillon beside other servers over loopback, in turn on the same files, and prints the best
figures of all rounds; every single figure goes into bench/results/."""

import argparse
import contextlib
import datetime
import json
import os
import platform
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
from dataclasses import asdict, dataclass
from pathlib import Path

import share
from measures import (crowd, dav, latency, listing, locks, memory, pages, previews, requests,
                      soak, strain, transfers, webapp)
from servers import NAMES, ROOT, Failure, Launcher
from table import Results

SUBJECTS = {subject.__name__.split(".")[-1]: subject for subject in (
    transfers, requests, memory, latency, crowd, dav, locks, pages, previews, listing, webapp, strain,
    soak)}
USUAL = [name for name in SUBJECTS if name != "soak"]


@dataclass(frozen=True)
class Sizes:
    """How much is measured."""

    rounds: int = 3
    seconds: int = 4  # of each wrk
    big_mib: int = 1024
    entries: int = 10000
    listed_tree: int = 100000
    pictures: int = 120
    motifs: int = 4  # different pictures; the others are copies
    crowd: int = 10000
    settle: int = 10  # seconds until a server has given memory back
    strain: int = 60  # seconds
    soak: int = 200000  # requests

    @property
    def big(self):
        return self.big_mib * share.MIB


QUICK = Sizes(rounds=1, seconds=1, big_mib=64, entries=2000, listed_tree=10000, pictures=12, motifs=1,
              crowd=1000, settle=2, strain=10, soak=10000)


class Bench:
    """What the measures work with."""

    def __init__(self, folder, sizes, launcher, results):
        self.folder, self.sizes, self.launcher, self.results = folder, sizes, launcher, results
        self.share = folder / "share"
        self.failures = []

    def make_share(self):
        self.share.mkdir()
        share.random_file(self.share / "big.bin", self.sizes.big)
        share.random_file(self.share / "small.bin", 4096)
        share.mixed_folder(self.share / "entries", self.sizes.entries)

    def serve(self, name, folder=None, **settings):
        return self.launcher.start(name, folder or self.share, **settings).wait_listening()

    def note(self, key, name, value):
        self.results.note(key, name, value)

    def run(self, subject):
        """All rounds of one subject, the servers in turn."""
        metrics = subject.metrics(self.sizes)
        self.results.declare(metrics)
        if hasattr(subject, "prepare"):
            subject.prepare(self)
        for turn in range(getattr(subject, "ROUNDS", self.sizes.rounds)):
            for name in self.results.servers:
                print(f"==> {subject.__name__}, round {turn + 1}: {name}", file=sys.stderr)
                self.measure(subject, name)
        print(*self.results.lines(metrics), sep="\n", end="\n\n", flush=True)

    def measure(self, subject, name):
        try:
            subject.measure(self, name)
        except (Failure, OSError, subprocess.SubprocessError) as problem:
            self.failures.append(f"{subject.__name__}, {name}: {problem}")
            print(f"FAILED: {self.failures[-1]}", file=sys.stderr)


def read_arguments():
    parser = argparse.ArgumentParser(prog="bench/run.sh", description=__doc__)
    parser.add_argument("--quick", action="store_true",
                        help="small files and one short round, to see that everything works")
    parser.add_argument("--against", type=Path, metavar="BUILD",
                        help="beside another build of ours, such as /tmp/old/build")
    parser.add_argument("--only", type=names_of(SUBJECTS), default=USUAL, metavar="SUBJECT,...",
                        help=f"of {', '.join(SUBJECTS)}; all but soak by default")
    parser.add_argument("--rounds", type=int, metavar="N")
    parser.add_argument("--servers", type=names_of(NAMES), default=NAMES, metavar="NAME,...",
                        help=f"of {', '.join(NAMES)}; all by default")
    arguments = parser.parse_args()
    if arguments.against and not (arguments.against / "bin/quillon-serve").exists():
        parser.error(f"no program in {arguments.against}")
    return arguments


def names_of(known):
    def parse(text):
        names = text.split(",")
        if unknown := [name for name in names if name not in known]:
            raise argparse.ArgumentTypeError(f"unknown: {', '.join(unknown)}")
        return names
    return parse


def sizes_for(arguments):
    sizes = asdict(QUICK if arguments.quick else Sizes())
    if arguments.rounds:
        sizes["rounds"] = arguments.rounds
    # A crowd needs a descriptor a head, here and in the server.
    _, most = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (most, most))
    sizes["crowd"] = min(sizes["crowd"], most - 1000)
    return Sizes(**sizes)


def servers_for(arguments, launcher):
    return [name for name in launcher.available() if name in arguments.servers]


def machine():
    processor = next(line.split(":")[1].strip() for line in open("/proc/cpuinfo", encoding="utf-8")
                     if line.startswith("model name"))
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") >> 30
    return f"{processor}, {os.cpu_count()} cores, {memory} GiB, {platform.system()} {platform.release()}"


def commit():
    return subprocess.run(["git", "-C", ROOT, "describe", "--always", "--dirty"], text=True,
                          stdout=subprocess.PIPE, check=False).stdout.strip()


def write_json(bench, loads_before):
    now = datetime.datetime.now()
    record = {
        "date": now.isoformat(timespec="seconds"),
        "machine": machine(),
        "load averages": {"before": loads_before, "after": os.getloadavg()},
        "commit": commit(),
        "versions": {name: bench.launcher.version(name) for name in bench.results.servers},
        "sizes": asdict(bench.sizes),
        "figures": bench.results.as_records(),
        "failures": bench.failures,
    }
    folder = ROOT / "bench/results"
    folder.mkdir(exist_ok=True)
    path = folder / f"{now:%Y-%m-%d-%H%M%S}.json"
    path.write_text(json.dumps(record, indent=1) + "\n")
    print(f"All figures: {path}")


def end(*_):
    sys.exit(130)


def main():
    arguments = read_arguments()
    for ending in signal.SIGINT, signal.SIGTERM:
        signal.signal(ending, end)
    os.umask(0)  # Apache works as another user
    sizes, loads_before = sizes_for(arguments), os.getloadavg()
    # Not /tmp: that may be memory, and the files are meant to lie on a disk.
    where = os.environ.get("BENCH_TMP", "/var/tmp")
    share.space_needed(where, 4 * sizes.big)
    with contextlib.ExitStack() as stack:
        folder = Path(tempfile.mkdtemp(prefix="quillon-bench.", dir=where))
        stack.callback(shutil.rmtree, folder)
        folder.chmod(0o755)
        launcher = Launcher(folder, arguments.against)
        bench = Bench(folder, sizes, launcher, Results(servers_for(arguments, launcher)))
        bench.make_share()
        for name in arguments.only:
            bench.run(SUBJECTS[name])
        print(f"{machine()}; load average before the run: {loads_before[0]:.2f}")
        write_json(bench, loads_before)
    for failure in bench.failures:
        print(f"FAILED: {failure}")
    return 1 if bench.failures else 0


if __name__ == "__main__":
    sys.exit(main())
