"""idle.py PREFIX OUT WINDOWS SECONDS FLOOR: the installed program while nothing happens, and a bare tray program beside."""

import os
import subprocess
import sys

from common import ARGUMENTS, let_pass, open_and_shut_popover, started, write
from measuring.process import Window, memory_mb
from vorli import Missing, TrayIcon, until

SETTLE = 20  # seconds
REST = 240  # seconds at most until the dial stands still: what ran before shows in it for minutes


def let_the_dial_rest(vorli):
    """Each new picture of the dial is sent to the panel, which asks for it: that is not an idle program."""
    seen = {}

    def still():
        seen[vorli.ticks] = vorli.ring
        last = [seen[tick] for tick in sorted(seen)][-3:]
        return len(last) == 3 and max(last) - min(last) < 0.002

    try:
        until(still, "a dial at rest", REST, pause=1)
    except Missing:
        print("idle: the dial did not come to rest", file=sys.stderr)


def windows(pids, count, seconds):
    """The same spans of time for all of them; a list for each."""
    results = [[] for _ in pids]
    for _ in range(count):
        begun = [Window(pid) for pid in pids]
        let_pass(seconds)
        for window, result in zip(begun, results):
            result.append(window.result())
    return results


def main():
    count, seconds, floor = int(ARGUMENTS[0]), float(ARGUMENTS[1]), ARGUMENTS[2]
    vorli = started()
    openings = sum(open_and_shut_popover(vorli) for _ in range(3))
    let_pass(SETTLE)
    result = {"openings": openings, "memory": memory_mb(vorli.process.pid)}  # before another program shares its toolkit
    icon = TrayIcon()
    with subprocess.Popen([floor], stdin=subprocess.DEVNULL) as bare:
        until(lambda: len(icon.items()) == 2, "both icons")
        let_pass(SETTLE)
        let_the_dial_rest(vorli)
        result["idle"], result["floor"] = windows((vorli.process.pid, bare.pid), count, seconds)
        result["processes"] = sum(name.isdigit() for name in os.listdir("/proc"))
        if vorli.end() != 0:
            raise SystemExit("the program did not end well")
        result["floor_memory"] = memory_mb(bare.pid)
        bare.terminate()
    write(result)


main()
