"""The clients: curl and wrk where speed counts, sockets of our own for those that just hang on."""

import os
import re
import socket
import subprocess
import time
from dataclasses import dataclass

from servers import Failure

LONGEST = "180"  # seconds that a transfer may take
NOTHING_REPLIED = 52  # curl's status


def curl(url, *options, into="/dev/null", may_end_with=0):
    """Makes one request and gives its seconds and the bytes received and sent."""
    told = subprocess.run(
        ["curl", "-sSk", "--fail", "-m", LONGEST, "-o", into,
         "-w", "%{time_total} %{size_download} %{size_upload}", *options, url],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    if told.returncode not in (0, may_end_with):
        raise Failure(f"{url}: {told.stderr.strip()}")
    seconds, received, sent = told.stdout.split()
    return float(seconds), int(received), int(sent)


def download(url, size):
    """Seconds until all `size` bytes are there."""
    seconds, received, _ = curl(url)
    if received != size:
        raise Failure(f"{url}: {received} bytes instead of {size}")
    return seconds


def download_together(url, size, clients):
    """Bytes a second of all clients, from the first start to the last end."""
    began = time.perf_counter()
    running = [subprocess.Popen(["curl", "-sS", "--fail", "-m", LONGEST, "-o", "/dev/null",
                                 "-w", "%{size_download}", url], stdout=subprocess.PIPE)
               for _ in range(clients)]
    received = [int(client.communicate()[0] or 0) for client in running]
    seconds = time.perf_counter() - began
    if received != [size] * clients:
        raise Failure(f"{url}: {received} bytes instead of {size} each")
    return clients * size / seconds


def upload(url, arrives_at, size, *options):
    """Seconds; counts only when the whole file arrived at `arrives_at`, which goes again."""
    arrives_at.unlink(missing_ok=True)
    os.sync()  # what was written before this one is not its business
    seconds, _, _ = curl(url, "-H", "Expect:", *options)
    arrived = arrives_at.stat().st_size if arrives_at.exists() else 0
    arrives_at.unlink(missing_ok=True)
    if arrived != size:
        raise Failure(f"{url}: {arrived} bytes arrived instead of {size}")
    return seconds


@dataclass
class Replies:
    """What wrk saw."""

    count: int
    per_second: float
    p50: float  # microseconds
    p99: float


def hammer(url, connections, seconds, *options):
    """Asks for one file over and over."""
    told = subprocess.run(["wrk", "-t1", f"-c{connections}", f"-d{seconds}s", "--latency",
                           *options, url], stdout=subprocess.PIPE, text=True, check=True).stdout
    refused = re.search(r"Non-2xx or 3xx responses: (\d+)", told)
    broken = sum(map(int, re.findall(r"(?:connect|read|write|timeout) (\d+)", told)))
    count = int(re.search(r"(\d+) requests in", told)[1])
    if refused or broken > count / 100:
        raise Failure(f"{url}: of {count} requests {refused[1] if refused else 0} were refused "
                      f"and {broken} broken")
    rate = float(re.search(r"Requests/sec: +([\d.]+)", told)[1])
    return Replies(count, rate, percentile(told, 50), percentile(told, 99))


def percentile(told, wanted):
    """wrk's "50% 123.00us" in microseconds."""
    number, unit = re.search(rf"^ +{wanted}% +([\d.]+)(us|ms|s)$", told, re.MULTILINE).groups()
    return float(number) * {"us": 1, "ms": 1e3, "s": 1e6}[unit]


class Downloads:
    """Clients that download without a pause as long as the `with` block lasts."""

    def __init__(self, url, clients):
        self.command = ["curl", "-sS", "-o", "/dev/null", f"{url}?[1-100000]"]
        self.clients = clients

    def __enter__(self):
        self.running = [subprocess.Popen(self.command, stderr=subprocess.DEVNULL)
                        for _ in range(self.clients)]
        time.sleep(0.2)
        return self

    def __exit__(self, *_):
        early = [client for client in self.running if client.poll() is not None]
        for client in self.running:
            client.terminate()
            client.wait()
        if early:
            raise Failure(f"{len(early)} downloads ended early")


class Crowd:
    """Connections that stay open as long as the `with` block lasts. Those that are idle took `path`
    once; those that stall asked for it and read nothing."""

    def __init__(self, server, path, count, stalls=False):
        self.address, self.path = server.address, path
        self.count, self.stalls = count, stalls

    def __enter__(self):
        self.clients = [connect(self.address, 4096 if self.stalls else None)
                        for _ in range(self.count)]
        for client in self.clients:
            ask(client, self.path)
            if not self.stalls:
                take_reply(client)
        return self

    def __exit__(self, *_):
        for client in self.clients:
            client.close()


def connect(address, receive_buffer=None):
    client = socket.socket()
    if receive_buffer:
        client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
    client.settimeout(20)
    client.connect(address)
    return client


def ask(client, path):
    client.sendall(f"GET {path} HTTP/1.1\r\nHost: localhost\r\n\r\n".encode())


def take_reply(client):
    reply = b""
    while b"\r\n\r\n" not in reply:
        reply += receive(client)
    head, _, body = reply.partition(b"\r\n\r\n")
    length = next(int(line.split(b":")[1]) for line in head.split(b"\r\n")
                  if line.lower().startswith(b"content-length:"))
    missing = length - len(body)
    while missing > 0:
        missing -= len(receive(client))


def receive(client):
    bytes_read = client.recv(65536)
    if not bytes_read:
        raise Failure("the server closed a connection that was to stay open")
    return bytes_read


def waits(client, path, goes_on, pause=0.002):
    """The seconds of small requests on one connection, for as long as `goes_on()`; sorted."""
    taken = []
    while goes_on():
        began = time.perf_counter()
        ask(client, path)
        take_reply(client)
        taken.append(time.perf_counter() - began)
        time.sleep(pause)
    return sorted(taken)


def for_seconds(seconds):
    """A condition that holds for so long."""
    end = time.perf_counter() + seconds
    return lambda: time.perf_counter() < end
