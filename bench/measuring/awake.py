"""Keeps the processors from sleeping while something is measured.

On an idle machine each wake-up is charged to the program that wakes: a processor that slept has lowered its clock and
lost its caches, and a virtual one has lost its turn. That cost belongs to the machine, not to the program, and varies
from minute to minute. The kernel keeps the latency limit as long as the file is open: an idle processor then polls,
and still counts as idle.
"""

import contextlib
import struct

LATENCY = "/dev/cpu_dma_latency"


@contextlib.contextmanager
def awake():
    """Yields a note for the report, or None if the processors were kept awake."""
    try:
        file = open(LATENCY, "wb", buffering=0)
    except OSError as error:
        yield f"the processors may have slept, which makes a wake-up cost more: {error.strerror}: {LATENCY}"
        return
    with file:
        file.write(struct.pack("i", 0))  # longest wake-up time of a processor in microseconds
        yield None
