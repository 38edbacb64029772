"""idle.py PREFIX OUT WINDOWS SECONDS FLOOR: the installed program while nothing happens, then a bare tray program."""

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


def windows(pid, count, seconds):
    results = []
    for _ in range(count):
        window = Window(pid)
        let_pass(seconds)
        results.append(window.result())
    return results


def main():
    count, seconds, floor = int(ARGUMENTS[0]), float(ARGUMENTS[1]), ARGUMENTS[2]
    vorli = started()
    openings = sum(open_and_shut_popover(vorli) for _ in range(3))
    let_pass(SETTLE)
    let_the_dial_rest(vorli)
    result = {"openings": openings, "idle": windows(vorli.process.pid, count, seconds),
              "memory": memory_mb(vorli.process.pid), "processes": sum(name.isdigit() for name in os.listdir("/proc"))}
    if vorli.end() != 0:
        raise SystemExit("the program did not end well")
    icon = TrayIcon()
    until(lambda: not icon.items(), "an empty tray")
    with subprocess.Popen([floor], stdin=subprocess.DEVNULL) as bare:
        icon.appear()
        let_pass(SETTLE)
        result["floor"] = windows(bare.pid, 1, seconds)
        result["floor_memory"] = memory_mb(bare.pid)
        bare.terminate()
    write(result)


main()
