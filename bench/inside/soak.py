"""soak.py PREFIX OUT TICKS OPENINGS POLISHES PERIOD_MILLISECONDS: the whole program in fast motion.

Takes ten samples of memory, threads and descriptors on the way, and a last one after a while of ticks alone.
"""

import os
import time

from common import ARGUMENTS, OUT, choose, let_pass, open_and_shut_popover, started, write
from measuring.process import cpu_ms, descriptors, memory_mb
from waiting import Missing

SLICES = 10
REST = 45  # seconds after which the last polish and its calls are over


class Soak:
    def __init__(self):
        self.ticks, self.openings, self.polishes, period = map(int, ARGUMENTS)
        self.vorli = started("vorli_soak", [period])
        self.opened = self.polished = 0
        self.samples, self.rings = [], []

    def sample(self):
        pid = self.vorli.process.pid
        self.samples.append({"ticks": self.vorli.ticks, "files": self.files(),
                             "processes": sum(name.isdigit() for name in os.listdir("/proc")),
                             "descriptors": descriptors(pid), "cpu_ms": cpu_ms(pid),
                             "threads": len(os.listdir(f"/proc/{pid}/task")), **memory_mb(pid)})

    def files(self):
        """Targets of the program's descriptors, without the changing numbers of sockets and pipes."""
        folder = f"/proc/{self.vorli.process.pid}/fd"
        found = []
        for name in os.listdir(folder):
            try:
                found.append(os.readlink(os.path.join(folder, name)).split(":[")[0])
            except OSError:  # closed in the meantime
                continue
        return found

    def turn(self, done):
        if self.opened < done * self.openings:
            self.rings.append(self.vorli.ring)
            if not open_and_shut_popover(self.vorli):
                raise Missing(f"the popover of opening {self.opened + 1} did not appear")
            self.opened += 1
        if self.polished < done * self.polishes:
            choose(self.vorli, "Polish Now")
            self.polished += 1

    def run(self):
        with open(os.path.join(OUT, "ready"), "w", encoding="utf-8") as file:
            file.write("the daemon may be killed from now on\n")
        begun, last = time.monotonic(), 0
        while last < self.ticks:
            if self.vorli.process.poll() is not None:
                raise Missing(f"a running program: it exited with {self.vorli.process.returncode}")
            self.turn(min(1.0, last / self.ticks + 1 / self.ticks))
            if last * SLICES >= len(self.samples) * self.ticks:
                self.sample()
            let_pass(0.1)
            last = self.vorli.ticks
        seconds = time.monotonic() - begun
        os.unlink(os.path.join(OUT, "ready"))
        let_pass(REST)
        self.sample()
        write({"samples": self.samples, "openings": self.opened, "polishes": self.polished, "seconds": seconds,
               "rings": self.rings, "replies": self.vorli.log_text().count("purgeMemory reply: exit=0"), "exit": self.vorli.end(20)})


Soak().run()
