"""Programs that draw in a terminal."""

import fcntl
import os
import pty
import select
import signal
import struct
import termios
import time

from measuring.process import cpu_ms

ROWS, COLUMNS = 50, 160


class InTerminal:
    """A program in a terminal of its own. Its output is read and discarded for as long as the block lasts."""

    def __init__(self, command):
        self._command = command

    def __enter__(self):
        self.pid, self._terminal = pty.fork()
        if self.pid == 0:
            os.environ.update(TERM="xterm-256color", LC_ALL="C.UTF-8")
            os.execvp(self._command[0], self._command)
        fcntl.ioctl(self._terminal, termios.TIOCSWINSZ, struct.pack("HHHH", ROWS, COLUMNS, 0, 0))
        return self

    def cpu_ms_of(self, seconds):
        """Processor time of the program over the next seconds."""
        before, end = cpu_ms(self.pid), time.monotonic() + seconds
        self.drain(end)
        return cpu_ms(self.pid) - before

    def drain(self, end):
        while time.monotonic() < end:
            if select.select([self._terminal], [], [], 0.1)[0]:
                os.read(self._terminal, 65536)

    def __exit__(self, *_):
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)
        os.close(self._terminal)
