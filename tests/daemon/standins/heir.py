#!/usr/bin/python3
"""Connects, leaves the connection to a child and ends, so that its process id is free while the connection exists:
heir.py METHOD [TEXT TEXT]. Prints that id. For each line on standard input the child makes the call and prints its
code."""

import os
import struct
import sys

from burst import NAME, PATH, REPLY, connected, message, padded, reply_to, text


def main():
    method, *texts = sys.argv[1:]
    body = b""
    for one in texts:
        body = padded(body, 4) + text(one.encode())
    connection = connected()
    print(os.getpid(), flush=True)
    if os.fork():
        os._exit(0)
    for serial, _ in enumerate(sys.stdin, 2):
        connection.sendall(message(serial, NAME, PATH, NAME, method, "s" * len(texts), body))
        kind, answer = reply_to(connection, serial)
        print(struct.unpack_from("<i", answer)[0] if kind == REPLY else -1, flush=True)


if __name__ == "__main__":
    main()
