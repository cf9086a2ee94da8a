#!/usr/bin/env python3
"""Clients that a load generator does not have: they hang on, or only want to know when a port opens.

  load.py idle HOST:PORT COUNT PATH     opens COUNT connections, takes PATH once on each, says "ready"
                                        and keeps them open until it is ended
  load.py stall HOST:PORT COUNT PATH PROBE
                                        asks for PATH on COUNT connections at once and reads none of
                                        it; says "ready" and the milliseconds that a client who asks
                                        for PROBE meanwhile waits at worst, and hangs on
  load.py start HOST:PORT COMMAND...    prints the milliseconds from starting COMMAND to the first
                                        connection that it accepts, then ends it
"""

import socket
import subprocess
import sys
import time

LONGEST_RUN = 600  # seconds


def connect(address, receive_buffer=None):
    client = socket.socket()
    if receive_buffer:
        client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
    client.settimeout(10)
    client.connect(address)
    return client


def request(client, path):
    client.sendall(f"GET {path} HTTP/1.1\r\nHost: bench\r\n\r\n".encode())


def take_reply(client):
    reply = b""
    while b"\r\n\r\n" not in reply:
        reply += client.recv(65536)
    head, _, body = reply.partition(b"\r\n\r\n")
    length = next(int(line.split(b":")[1]) for line in head.split(b"\r\n")
                  if line.lower().startswith(b"content-length:"))
    while len(body) < length:
        body += client.recv(65536)


def hold(clients, remark=""):
    print("ready", remark, flush=True)
    time.sleep(LONGEST_RUN)
    for client in clients:
        client.close()


def idle(address, count, path):
    clients = [connect(address) for _ in range(count)]
    for client in clients:
        request(client, path)
        take_reply(client)
    hold(clients)


def stall(address, count, path, probe_path):
    probe = connect(address)
    clients = [connect(address, receive_buffer=4096) for _ in range(count)]
    for client in clients:
        request(client, path)
    hold(clients, f"{worst_wait(probe, probe_path):.1f}")


def worst_wait(client, path):
    """Until the crowd's buffers are full for sure."""
    worst = 0
    end = time.perf_counter() + 2
    while time.perf_counter() < end:
        began = time.perf_counter()
        request(client, path)
        take_reply(client)
        worst = max(worst, time.perf_counter() - began)
        time.sleep(0.002)
    return worst * 1000


def start(address, *command):
    began = time.perf_counter()
    server = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        while time.perf_counter() - began < 5:
            try:
                socket.create_connection(address).close()
                print(f"{(time.perf_counter() - began) * 1000:.1f}")
                return
            except OSError:
                time.sleep(0.0005)
        sys.exit("load.py: the server does not accept connections")
    finally:
        server.terminate()
        server.wait(10)


def main():
    action, address, *arguments = sys.argv[1:]
    host, port = address.rsplit(":", 1)
    address = (host, int(port))
    if action == "start":
        start(address, *arguments)
    else:
        {"idle": idle, "stall": stall}[action](address, int(arguments[0]), *arguments[1:])


main()
