"""A memory limit for the daemon, like the one in its unit."""

import os
import re
import subprocess

from .sandbox import CGROUP, WORK, command, write

FOLDER = f"{WORK}/memory"


class MemoryLimit:
    """A memory control group with a limit in MiB; uses version 1 if the kernel has it."""

    def __init__(self, mebibytes):
        os.makedirs(FOLDER, exist_ok=True)
        self.is_old = subprocess.run(["mount", "-t", "cgroup", "-o", "memory", "none", FOLDER],
                                     capture_output=True).returncode == 0
        if self.is_old:
            self.group = f"{FOLDER}/vorli-limited-{os.getpid()}"
        else:
            write(f"{CGROUP}/cgroup.subtree_control", "+memory")
            self.group = f"{CGROUP}/vorli-limited"
        os.mkdir(self.group)
        limit = "memory.limit_in_bytes" if self.is_old else "memory.max"
        self._set(limit, mebibytes << 20)
        self.entrance = f"{WORK}/limited.sh"
        write(self.entrance, f'#!/bin/sh\necho $$ > {self.group}/cgroup.procs && exec "$@"\n', 0o755)

    def _set(self, name, value):
        with open(f"{self.group}/{name}", "w", encoding="utf-8") as file:
            file.write(str(value))

    def _read(self, name):
        with open(f"{self.group}/{name}", encoding="utf-8") as file:
            return file.read()

    def kills(self):
        return int(re.search(r"oom_kill (\d+)", self._read("memory.oom_control" if self.is_old else "memory.events"))[1])

    def peak(self):
        """Highest use so far, in MiB."""
        return int(self._read("memory.max_usage_in_bytes" if self.is_old else "memory.peak")) / (1 << 20)

    def end(self):
        os.rmdir(self.group)
        if self.is_old:
            command("umount", FOLDER)
