"""Calls of the daemon's methods, as any user and in any session, and the load tool's figures."""

import subprocess
import time
from collections import namedtuple

from .sandbox import NAME, OBJECT, TOOLS

Reply = namedtuple("Reply", "answered code text seconds")


def start_call(sandbox, method, *arguments, uid=0, session=None):
    words = [f"{TOOLS}/vorli_helper_load", "call", method, *map(str, arguments)]
    if uid or session:
        words = [*sandbox.as_user(uid, session), *words]
    return subprocess.Popen(words, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, errors="replace")


def finish_call(process):
    output, errors = process.communicate(timeout=60)
    assert process.returncode == 0, f"the call could not be made: {errors}"
    kind, code, seconds, text = output.rstrip("\n").split(" ", 3)
    return Reply(kind == "answer", int(code), text, float(seconds))


def call(sandbox, method, *arguments, uid=0, session=None):
    return finish_call(start_call(sandbox, method, *arguments, uid=uid, session=session))


def start_tool(*arguments, tool="vorli_helper_load"):
    return subprocess.Popen([f"{TOOLS}/{tool}", *map(str, arguments)], stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, text=True)


def finish_tool(process, seconds=300):
    output, errors = process.communicate(timeout=seconds)
    assert process.returncode == 0, f"{process.args}: exit {process.returncode}\n{output}{errors}"
    for line in errors.splitlines():
        print(f"      | {line}", flush=True)
    figures = {}
    for line in output.splitlines():
        name, value = line.split()
        figures[name] = float(value)
    return figures


def ends_within(process, seconds):
    """Waits for the end of a process for at most that long; returns whether it has ended."""
    try:
        process.wait(seconds)
        return True
    except subprocess.TimeoutExpired:
        return False


def tool(*arguments, seconds=300, name="vorli_helper_load"):
    return finish_tool(start_tool(*arguments, tool=name), seconds)


def bus_floor(calls=1000):
    """Milliseconds of a call that the bus answers itself, as p50, p99 and max: no call is faster on this machine now."""
    figures = tool("bus", calls)
    return {name: figures[name] * 1000 for name in ("p50", "p99", "max")}


def start_floor(box, starts=10):
    """Milliseconds in which the daemon's program starts and ends without doing anything, at most: no cold start is faster."""
    times = []
    for _ in range(starts):
        start = time.monotonic()
        subprocess.run([*box.program_words(), "--version"], capture_output=True, check=True)
        times.append(time.monotonic() - start)
    return max(times) * 1000


def introspection():
    return subprocess.run(["/usr/bin/gdbus", "introspect", "--system", "-d", NAME, "-o", OBJECT, "--xml"],
                          capture_output=True, text=True, check=True).stdout
