"""idle.py PREFIX OUT WINDOWS SECONDS FLOOR: the installed program while nothing happens, and a bare tray program beside."""

import os
import subprocess

from common import ARGUMENTS, let_pass, let_the_dial_rest, open_and_shut_popover, started, write
from measuring.process import Window, memory_mb
from vorli import TrayIcon
from waiting import wait_for

SETTLE = 20  # seconds


def windows(pids, count, seconds):
    """Measures all programs over the same spans of time; returns a list for each program."""
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
        wait_for(lambda: len(icon.items()) == 2, "both icons")
        let_pass(SETTLE)
        let_the_dial_rest(vorli)
        result["idle"], result["floor"] = windows((vorli.process.pid, bare.pid), count, seconds)
        result["processes"] = sum(name.isdigit() for name in os.listdir("/proc"))
        if vorli.end() != 0:
            raise SystemExit("the program did not exit cleanly")
        result["floor_memory"] = memory_mb(bare.pid)
        bare.terminate()
    write(result)


main()
