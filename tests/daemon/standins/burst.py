#!/usr/bin/python3
"""Sends large moves that are complete at the same moment: burst.py COUNT MEBIBYTES. Each has its own connection, and
its last byte is held back until all the others are as far. Then waits for the answers and prints their codes, -1 for an
error of the bus."""

import os
import socket
import struct
import sys

NAME, PATH = "com.kv.vorli.helper", "/com/kv/vorli/helper"
BUS, BUS_PATH = "org.freedesktop.DBus", "/org/freedesktop/DBus"
CALL, REPLY, ERROR = 1, 2, 3


def padded(data, boundary):
    return data + b"\0" * (-len(data) % boundary)


def text(value):
    return struct.pack("<I", len(value)) + value + b"\0"


def field(code, kind, value):
    data = bytes([code, 1]) + kind.encode() + b"\0"
    return data + (bytes([len(value)]) + value.encode() + b"\0" if kind == "g" else text(value.encode()))


def message(serial, destination, path, interface, member, signature="", body=b""):
    fields = b""
    for entry in (field(1, "o", path), field(2, "s", interface), field(3, "s", member), field(6, "s", destination),
                  *([field(8, "g", signature)] if signature else [])):
        fields = padded(fields, 8) + entry
    head = struct.pack("<cBBBIII", b"l", CALL, 0, 1, len(body), serial, len(fields))
    return padded(head + fields, 8) + body


def received(connection, size):
    data = b""
    while len(data) < size:
        piece = connection.recv(size - len(data))
        if not piece:
            raise EOFError
        data += piece
    return data


def reply_to(connection, serial):
    """Kind and body of the message that answers `serial`. Skips signals."""
    while True:
        head = received(connection, 16)
        kind, (body_size, _, fields_size) = head[1], struct.unpack("<III", head[4:])
        fields = received(connection, fields_size + -fields_size % 8)
        body = received(connection, body_size)
        if kind in (REPLY, ERROR) and struct.pack("<BBBxI", 5, 1, ord("u"), serial) in fields:
            return kind, body


def connected():
    connection = socket.socket(socket.AF_UNIX)
    connection.settimeout(30)
    connection.connect("/run/dbus/system_bus_socket")
    connection.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\n")
    connection.recv(256)
    connection.sendall(b"BEGIN\r\n" + message(1, BUS, BUS_PATH, BUS, "Hello"))
    assert reply_to(connection, 1)[0] == REPLY
    return connection


def main():
    count, size = int(sys.argv[1]), int(sys.argv[2]) << 20
    body = padded(text(b"/" + b"x" * (size - 1)), 4) + text(b"/x")
    whole = message(2, NAME, PATH, NAME, "MoveLaunchAgentPlist", "ss", body)
    connections = [connected() for _ in range(count)]
    for connection in connections:
        connection.sendall(memoryview(whole)[:-1])
    for connection in connections:
        connection.sendall(whole[-1:])
    codes = []
    for connection in connections:
        try:
            kind, answer = reply_to(connection, 2)
            codes.append(struct.unpack_from("<i", answer)[0] if kind == REPLY else -1)
        except (EOFError, TimeoutError):
            codes.append(None)
    print(*codes)


if __name__ == "__main__":
    main()
