"""Large files, down and up."""

from loads import curl, download, download_together, upload
from servers import CACHED, CLASSIC, OURS, Failure
from table import BEST, high, low

CLIENTS = 4


def metrics(sizes):
    size = "1 GiB" if sizes.big_mib == 1024 else f"{sizes.big_mib} MiB"
    return [
        high("download", f"download of {size}, 1 client [GB/s]", 1.0, BEST),
        low("download_cpu", "server's CPU time for it [s/GiB]", 1.2, BEST),
        high("downloads", f"download, {CLIENTS} clients together [GB/s]", 1.0, BEST),
        high("archive", f"speed of a zip of {size}, by that of a download", 0.7),
        high("tls", "download over TLS, 1 client [GB/s]", 1.0, BEST),
        low("tls_cpu", "server's CPU time for it [s/GiB]"),
        high("put", f"upload of {size} by PUT [GB/s]", 1.0, BEST),
        low("put_cpu", "server's CPU time for it [s/GiB]"),
        high("put_kept", "upload by PUT that is on the disk before the answer [GB/s]"),
        high("form", "upload by a form [GB/s]", 1.0),
    ]


def measure(bench, name):
    with bench.serve(name) as server:
        measure_download(bench, server, "download")
        together = download_together(server.url + "big.bin", bench.sizes.big, CLIENTS)
        bench.note("downloads", name, together / 1e9)
        if name == "standard":
            measure_archive(bench, server)
    with bench.serve(name, profile=CACHED) as server:
        # Twice: the first upload also pays for memory that the machine has not touched for long.
        for _ in range(2):
            note_speed(bench, server, "put", lambda: put(bench, server))
        if name in CLASSIC:
            bench.note("form", name, bench.sizes.big / send_form(bench, server) / 1e9)
    with bench.serve(name, tls=True) as server:
        measure_download(bench, server, "tls")
    if name in OURS:
        # Last: the disk is busy for a while with blocks that were written and are free again.
        with bench.serve(name) as server:
            bench.note("put_kept", name, bench.sizes.big / put(bench, server) / 1e9)


def measure_download(bench, server, key):
    note_speed(bench, server, key, lambda: download(server.url + "big.bin", bench.sizes.big))


def note_speed(bench, server, key, transfer):
    before = server.cpu_seconds()
    seconds = transfer()
    bench.note(f"{key}_cpu", server.name,
               (server.cpu_seconds() - before) * 1024 / bench.sizes.big_mib)
    bench.note(key, server.name, bench.sizes.big / seconds / 1e9)


def put(bench, server):
    return upload(server.url + "put.bin", bench.share / "put.bin", bench.sizes.big,
                  "-T", bench.share / "big.bin")


def send_form(bench, server):
    return upload(server.url + "?a=up", bench.share / "form.bin", bench.sizes.big,
                  "-F", f"f=@{bench.share / 'big.bin'};filename=form.bin")


def measure_archive(bench, server):
    """Of a file whose sum is not known, right after its plain download."""
    plain = download(server.url + "big.bin", bench.sizes.big)
    (bench.share / "big.bin").touch()
    seconds, received, _ = curl(server.url + "?archive=zip", "-d", "name=big.bin")
    if received <= bench.sizes.big:
        raise Failure(f"an archive of {received} bytes")
    bench.note("archive", server.name, plain / seconds)
