"""Child processes: commands, and programs whose lines are read as they come."""

import os
import re
import subprocess
import threading

from waiting import Missing, wait_for


def run(*command):
    """Runs the command, which must succeed; returns its output."""
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def session_process(name):
    """Process id of the session's program of that name, or None."""
    mark = f"VORLI_SESSION_MARK={os.environ['VORLI_SESSION_MARK']}".encode()
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{pid}/comm", "rb") as comm, open(f"/proc/{pid}/environ", "rb") as environ:
                if comm.read().strip() == name.encode() and mark in environ.read().split(b"\0"):
                    return int(pid)
        except OSError:
            continue  # it has ended, or belongs to another user
    return None


class Process:
    """A program that reads lines and prints lines."""

    def __init__(self, *command, environment=None, parse=str):
        """`environment` has variables for this program in addition to the session's. `parse` makes the entry of `lines`
        from each line, on the thread that reads it."""
        self.lines, self._parse = [], parse
        self.process = subprocess.Popen(command, env={**os.environ, **(environment or {})}, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True, bufsize=1)
        self.pid = self.process.pid
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(self._parse(line.rstrip("\n")))

    def tell(self, line):
        self.process.stdin.write(line + "\n")

    def count(self, line):
        return self.lines.count(line)

    def mark(self):
        return len(self.lines)

    def expect(self, pattern, since=0, seconds=20.0):
        """Waits for a matching line with the number `since` or later, and returns it."""

        def found():
            return next((line for line in self.lines[since:] if re.fullmatch(pattern, line)), None)

        return wait_for(found, f"the line {pattern!r} after {self.lines[since:]}", seconds)

    def close(self):
        """Ends the program by the end of its input; it must exit cleanly."""
        code = self.end_input()
        assert code == 0, f"the program ended with {code}"

    def end_input(self, seconds=20):
        """Ends the program by the end of its input; returns its exit code."""
        self.process.stdin.close()
        return self._ended(seconds)

    def terminate(self, seconds=20):
        """Asks the program to end, as the session manager does; returns its exit code."""
        if self.process.poll() is None:
            self.process.terminate()
        return self._ended(seconds)

    def kill(self):
        """Ends a program that does not end with its input."""
        self.process.kill()
        self._ended()

    def _ended(self, seconds=None):
        """Waits for the end, and returns the exit code. Kills a program that is late, and fails."""
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            raise Missing(f"the program did not end within {seconds} s") from None
        finally:
            self.process.stdin.close()
            self._reader.join(10)
            if not self._reader.is_alive():  # otherwise a child of the program still has its output
                self.process.stdout.close()

    def resources(self):
        """Private dirty memory in KiB, number of descriptors, and seconds of processor time so far."""
        with open(f"/proc/{self.pid}/smaps_rollup", encoding="ascii") as file:
            dirty = int(re.search(r"Private_Dirty:\s+(\d+)", file.read())[1])
        with open(f"/proc/{self.pid}/stat", encoding="ascii") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        ticks = os.sysconf("SC_CLK_TCK")
        return dirty, len(os.listdir(f"/proc/{self.pid}/fd")), (int(fields[11]) + int(fields[12])) / ticks
