"""Exact numbers of system calls and instructions per pass. They do not depend on the load of the machine."""

import os
import re
import shutil
import subprocess
import sys
import tempfile

SHORT, LONG = 2, 12  # subtracting two runs removes what a program does only once


def _tool(name):
    found = shutil.which(name)
    if not found:
        sys.exit(f"bench: {name} is missing; install the Debian package {name}")
    return found


def _per_pass(measure):
    return (measure(LONG) - measure(SHORT)) / (LONG - SHORT)


def syscalls_per_pass(bench, kind, *more):
    def measure(passes):
        with tempfile.NamedTemporaryFile("r", suffix=".strace") as file:
            subprocess.run([_tool("strace"), "-c", "-f", "-o", file.name, bench, "passes", kind, str(passes), *more],
                           check=True)
            text = file.read()
        return int(re.search(r"^100\.00\s+\S+\s+(?:\S+\s+)?(\d+)\s+(?:\d+\s+)?total$", text, re.MULTILINE)[1])

    return _per_pass(measure)


def instructions_per_pass(bench, kind, *more):
    def measure(passes):
        with tempfile.TemporaryDirectory() as folder:
            out = os.path.join(folder, "callgrind.out")
            done = subprocess.run(
                [_tool("valgrind"), "--tool=callgrind", f"--callgrind-out-file={out}", bench, "passes", kind, str(passes),
                 *more],
                check=True, capture_output=True, text=True,
            )
        return int(re.search(r"Collected : (\d+)", done.stderr)[1])

    return _per_pass(measure)
