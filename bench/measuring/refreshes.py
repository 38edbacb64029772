"""One refresh of the process table by popular programs and libraries."""

import os
import subprocess
import tempfile
import time

from measuring.terminal import InTerminal

SHORT, LONG = 2, 8  # subtracting two runs leaves only the refreshes
TERMINAL_DELAY = 2.0  # seconds between two refreshes of a program that draws in a terminal
TERMINAL_REFRESHES = 8


def cpu_ms(command):
    """Processor time of a whole run, including its children."""
    with open(os.devnull, "wb") as nothing:
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=nothing, stderr=nothing)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{command[0]} exited with {process.returncode}")
    return (usage.ru_utime + usage.ru_stime) * 1000


def difference_of_runs(command, *more):
    """Measures one pass of a program whose argument is the number of passes."""

    def measure():
        return (cpu_ms([*command, str(LONG), *more]) - cpu_ms([*command, str(SHORT), *more])) / (LONG - SHORT)

    return measure


def _loop(*command):
    return difference_of_runs(command)


def compile_peer(folder, name, library):
    """The command that runs a program of bench/peers."""
    program = os.path.join(folder, name)
    flags = subprocess.run(["pkg-config", "--cflags", "--libs", library], check=True, capture_output=True, text=True)
    subprocess.run(["cc", "-O2", "-o", program, f"bench/peers/{name}.c", *flags.stdout.split()], check=True)
    return [program]


def _top():
    def run(count):
        return cpu_ms(["top", "-b", "-d", "0.1", "-n", str(count)])

    return (run(LONG) - run(SHORT)) / (LONG - SHORT)


def _in_terminal(command):
    def measure():
        with InTerminal(command) as program:
            program.drain(time.monotonic() + 2 * TERMINAL_DELAY)
            return program.cpu_ms_of(TERMINAL_REFRESHES * TERMINAL_DELAY) / TERMINAL_REFRESHES

    return measure


class Refreshes:
    """The measured programs by name. Compiles the loops first."""

    def __init__(self, bench):
        self._folder = tempfile.TemporaryDirectory(prefix="vorli-bench.")
        procps, gtop = self._compile("procps_loop", "libproc2"), self._compile("gtop_loop", "libgtop-2.0")
        settings = os.path.join(self._folder.name, "btop", "btop.conf")
        os.makedirs(os.path.dirname(settings))
        with open(settings, "w", encoding="utf-8") as file:
            file.write(f"update_ms = {TERMINAL_DELAY * 1000:.0f}\nshown_boxes = \"proc\"\n")
        btop = ["env", f"XDG_CONFIG_HOME={self._folder.name}", "btop", "--utf-force"]
        self.quick = {
            "floor": _loop(bench, "passes", "floor"),
            "enumerate()": _loop(bench, "passes", "enumerate"),
            "refresh()": _loop(bench, "passes", "refresh"),
            "libproc2 loop": _loop(procps),
            "libgtop loop": _loop(gtop),
            "psutil loop": _loop("/usr/bin/python3", "bench/peers/psutil_loop.py"),
            "top": _top,
            "ps": lambda: cpu_ms(["ps", "-axo", "pid,ppid,rss,time,comm"]),
        }
        # These refresh at their own pace, so each runs for some seconds.
        self.slow = {"htop": _in_terminal(["htop", "-d", f"{TERMINAL_DELAY * 10:.0f}"]), "btop": _in_terminal(btop)}

    def _compile(self, name, library):
        return compile_peer(self._folder.name, name, library)[0]

    def status_icon(self):
        return self._compile("bare_status_icon", "gtk+-3.0")

    def close(self):
        self._folder.cleanup()
