"""Exact counts of what a pass does: calls to the kernel and instructions. They do not depend on the machine's load."""

import os
import re
import shutil
import subprocess
import sys
import tempfile

SHORT, LONG = 2, 12  # what a program does but once falls out of the difference of two runs


def _tool(name):
    found = shutil.which(name)
    if not found:
        sys.exit(f"bench: {name} is missing; install the Debian package {name}")
    return found


def _per_pass(measure):
    return (measure(LONG) - measure(SHORT)) / (LONG - SHORT)


def syscalls_per_pass(bench, kind):
    def measure(passes):
        with tempfile.NamedTemporaryFile("r", suffix=".strace") as file:
            subprocess.run([_tool("strace"), "-c", "-f", "-o", file.name, bench, "passes", kind, str(passes)], check=True)
            text = file.read()
        return int(re.search(r"^100\.00\s+\S+\s+(?:\S+\s+)?(\d+)\s+(?:\d+\s+)?total$", text, re.MULTILINE)[1])

    return _per_pass(measure)


def instructions_per_pass(bench, kind):
    def measure(passes):
        with tempfile.TemporaryDirectory() as folder:
            out = os.path.join(folder, "callgrind.out")
            done = subprocess.run(
                [_tool("valgrind"), "--tool=callgrind", f"--callgrind-out-file={out}", bench, "passes", kind, str(passes)],
                check=True, capture_output=True, text=True,
            )
        return int(re.search(r"Collected : (\d+)", done.stderr)[1])

    return _per_pass(measure)
