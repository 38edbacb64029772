"""Keeps the processors from sleeping while something is measured.

On a machine with nothing to do each wake-up is charged to the program that wakes: a processor that slept has lost its
clock and its caches, and a virtual one its turn. That is the machine's price and not the program's, and differs from
minute to minute. The kernel takes the wish for as long as the file is open; an idle processor polls then, and still
counts as idle.
"""

import contextlib
import struct

LATENCY = "/dev/cpu_dma_latency"


@contextlib.contextmanager
def awake():
    """Gives what a report has to say about it; nothing when all went well."""
    try:
        file = open(LATENCY, "wb", buffering=0)
    except OSError as error:
        yield f"the processors may have slept in between, and a wake-up costs more then: {error.strerror}: {LATENCY}"
        return
    with file:
        file.write(struct.pack("i", 0))  # microseconds that a processor may take to be there again
        yield None
