"""Reads along on the bus, to know when a call has reached its receiver."""

import subprocess

from waiting import wait_for

from .sandbox import WORK


class Overheard:
    """All calls of those methods, by anybody. A context manager."""

    def __init__(self, *members):
        self.path = f"{WORK}/overheard"
        rules = [f"type='method_call',member='{member}'" for member in members]
        with open(self.path, "wb") as file:
            self.monitor = subprocess.Popen(["/usr/bin/dbus-monitor", "--system", "--profile", *rules],
                                            stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.DEVNULL)
        # The bus takes the name of a connection that becomes a monitor.
        wait_for(lambda: any(fields[-1] == "NameLost" for fields in self._lines()), "the monitor reads along")

    def _lines(self):
        with open(self.path, encoding="utf-8") as file:
            return [line.rstrip("\n").split("\t") for line in file if line.endswith("\n")]

    def sender(self, member):
        """Waits for a call of that method; returns the name of its sender on the bus."""
        def calls():
            return [fields[3] for fields in self._lines() if fields[0] == "mc" and fields[-1] == member]

        return wait_for(calls, f"{member} is called")[0]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.monitor.kill()
        self.monitor.wait()
