"""The kernel's counters of a running process. Used inside and outside of the sessions."""

import os
import re
import time


def cpu_ms(pid):
    """Processor time of all threads of the process, including those that have ended."""
    return time.clock_gettime_ns(~pid << 3 | 2) / 1e6  # the process's clock, of type CPUCLOCK_SCHED


def wakeups(pid):
    """Number of voluntary context switches of each thread of the process."""
    counts = {}
    for thread in os.listdir(f"/proc/{pid}/task"):
        try:
            with open(f"/proc/{pid}/task/{thread}/status", encoding="utf-8") as file:
                counts[thread] = int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", file.read(), re.MULTILINE)[1])
        except FileNotFoundError:  # the thread has ended in the meantime
            continue
    return counts


def memory_mb(pid):
    """Resident, proportional and private dirty memory, in units of 1024 * 1024 bytes."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="utf-8") as file:
        text = file.read()
    return {name: int(re.search(rf"^{name}:\s+(\d+) kB", text, re.MULTILINE)[1]) / 1024
            for name in ("Rss", "Pss", "Private_Dirty")}


def descriptors(pid):
    return len(os.listdir(f"/proc/{pid}/fd"))


def descendants(pid):
    """The process and all its descendants."""
    with open(f"/proc/{pid}/task/{pid}/children", encoding="utf-8") as file:
        children = [int(child) for child in file.read().split()]
    return [pid, *(each for child in children for each in descendants(child))]


def machine_ticks():
    """Busy ticks and all ticks of the machine's processors so far."""
    with open("/proc/stat", encoding="utf-8") as file:
        fields = [int(field) for field in file.readline().split()[1:9]]
    return sum(fields) - fields[3] - fields[4], sum(fields)


class Window:
    """Measures the cost of a process from now on."""

    def __init__(self, pid):
        self.pid, self.start = pid, time.monotonic()
        self.cpu, self.wakeups, self.machine = cpu_ms(pid), wakeups(pid), machine_ticks()

    def result(self):
        minutes = (time.monotonic() - self.start) / 60
        busy, whole = (now - then for now, then in zip(machine_ticks(), self.machine))
        cpu = cpu_ms(self.pid) - self.cpu
        # A thread that ended within the window is left out, with its switches from before the window too.
        woken = sum(count - self.wakeups.get(thread, 0) for thread, count in wakeups(self.pid).items())
        return {"cpu_ms": cpu, "cpu_ms_per_minute": cpu / minutes, "wakeups": woken,
                "wakeups_per_minute": woken / minutes, "machine_busy_percent": 100 * busy / max(whole, 1)}
