"""The files that are served."""

import os
import shutil

MIB = 1 << 20
MOST_LINKS = 50_000  # of one file; common file systems take some more
KINDS = ("jpg", "txt", "mp3", "pdf", "unknown")


def random_file(path, size):
    with open(path, "wb") as file:
        for start in range(0, size, MIB):
            file.write(os.urandom(min(MIB, size - start)))


def mixed_folder(folder, count):
    """Names, kinds and times as they come together over the years; every hundredth is a folder."""
    folder.mkdir()
    for i in range(count):
        path = folder / f"Holiday picture {i * 7919 % count:05}.{KINDS[i % len(KINDS)]}"
        if i % 100 == 0:
            path.mkdir()
        else:
            path.write_bytes(b"x" * (i % 5000))
        os.utime(path, (1500000000 + i * 5003,) * 2)


def empty_files(folder, count, name, size=0):
    """Files of `size` bytes that take no room; their names by the pattern `name`."""
    folder.mkdir(parents=True)
    for i in range(count):
        with open(folder / (name % i), "wb") as file:
            file.truncate(size)


def linked_files(folder, count, name):
    """Names of a few empty files, which are made much faster than as many files."""
    folder.mkdir(parents=True)
    for i in range(count):
        if i % MOST_LINKS == 0:
            (folder / (name % i)).touch()
        else:
            os.link(folder / (name % (i - i % MOST_LINKS)), folder / (name % i))


def tree(folder, count):
    """`count` empty files in 100 folders."""
    for branch in range(100):
        empty_files(folder / str(branch), count // 100, "file %d")


def space_needed(folder, size):
    if shutil.disk_usage(folder).free < size:
        raise SystemExit(f"{folder}: {size / 1e9:.0f} GB are needed; see BENCH_TMP")
