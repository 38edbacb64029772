"""Fills the machine with as many processes as a measurement needs."""

import os
import subprocess
import sys


def process_count():
    return sum(1 for name in os.listdir("/proc") if name.isdigit())


class Crowd:
    """Adds sleeping processes up to `total` for as long as the block lasts."""

    def __init__(self, build, total):
        self._program, self._total, self._process = build.crowd(), total, None

    def __enter__(self):
        missing = max(0, self._total - process_count() - 2)  # the crowd's own process and the measured program
        self._process = subprocess.Popen(
            [self._program, str(missing)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True
        )
        if self._process.stdout.readline().strip() != "ready":
            self.__exit__()
            sys.exit(f"bench: this machine does not let {self._total} processes run")
        return self

    def __exit__(self, *_):
        self._process.stdin.close()
        self._process.wait()
