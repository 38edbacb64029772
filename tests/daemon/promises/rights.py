"""The users' rights to signal each other's processes."""

import os
import shutil
import signal
import subprocess

from harness.calls import call
from harness.rung import promise
from harness.sandbox import WORK
from waiting import wait_for


def state_of(pid):
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
            return file.read().rpartition(")")[2].split()[0]
    except FileNotFoundError:
        return None


class Sleeper:
    """A stopped process of that user."""

    def __init__(self, box, uid, program="/bin/sleep"):
        self.process = subprocess.Popen([*box.as_user(uid), program, "1000"])
        self.pid = self.process.pid
        wait_for(lambda: os.readlink(f"/proc/{self.pid}/exe") in (program, os.path.realpath(program)), "it sleeps")
        self.stop()

    def stop(self):
        os.kill(self.pid, signal.SIGSTOP)
        wait_for(lambda: state_of(self.pid) == "T", "it is stopped", pause=0.002)

    @property
    def is_stopped(self):
        return state_of(self.pid) == "T"

    @property
    def is_alive(self):
        return self.process.poll() is None and state_of(self.pid) is not None

    def end(self):
        self.process.kill()
        self.process.wait()


@promise("P9", "KillPID can only wake one's own processes")
def wakes_only_ones_own(rung):
    box = rung.sandbox
    box.restart(with_polkit=False)
    setuid_sleep = f"{WORK}/setuid-sleep"
    shutil.copy("/bin/sleep", setuid_sleep)
    os.chmod(setuid_sleep, 0o4755)
    own, other, roots = (Sleeper(box, uid) for uid in (4001, 4002, 0))
    mixed = Sleeper(box, 4001, setuid_sleep)
    sleepers = {"own": own, "another user's": other, "root's": roots, "own, but set to root": mixed}

    woke = []
    for number in range(-2, 131):
        reply = call(box, "KillPID", own.pid, number, uid=4001)
        if not own.is_stopped:
            woke.append(number)
            own.stop()
        if (reply.code == 0) != (number == 19):
            rung.holds(f"signal {number} is answered rightly, not {reply.code}", False)
    rung.equal("of all signals from -2 to 130, those that do anything", woke, [19])

    for uid, allowed in ((4001, own), (4002, other), (0, roots)):
        for what, sleeper in sleepers.items():
            reply = call(box, "KillPID", sleeper.pid, 19, uid=uid)
            expected = sleeper is allowed
            if (reply.code == 0) != expected or sleeper.is_stopped == expected or not sleeper.is_alive:
                rung.holds(f"user {uid} on {what}: {reply.code} {reply.text}", False)
            if expected:
                sleeper.stop()
    rung.holds("three callers on four kinds of process: each wakes its own alone, root included", True)

    for pid in (-2147483648, -own.pid, -1, 0, 1, 2147483647):
        reply = call(box, "KillPID", pid, 19, uid=4001)
        if reply.code not in (3, 22):
            rung.holds(f"pid {pid} is refused, not {reply.code}", False)
    rung.holds("no groups, not all, not the first process, none that is not there",
               all(sleeper.is_stopped for sleeper in sleepers.values()))

    passed_to_another(rung, box)
    for sleeper in sleepers.values():
        rung.holds("nobody was stopped or killed", sleeper.is_alive and sleeper.is_stopped)
        sleeper.end()


def passed_to_another(rung, box):
    """Signals a pid that belonged to the caller's own process a moment ago, and belongs to another user's now."""
    wrong = reused = 0
    rounds = 200
    for _ in range(rounds):
        gone = subprocess.Popen([*box.as_user(4001), "/bin/true"])
        gone.wait()
        with open("/proc/sys/kernel/ns_last_pid", "w", encoding="utf-8") as file:
            file.write(str(gone.pid - 1))
        heir = subprocess.Popen([*box.as_user(4002), "/bin/sleep", "1000"])
        os.kill(heir.pid, signal.SIGSTOP)
        if heir.pid == gone.pid:
            reused += 1
            wait_for(lambda pid=heir.pid: state_of(pid) == "T", "the heir is stopped", pause=0.002)
            call(box, "KillPID", heir.pid, 19, uid=4001)
            wrong += state_of(heir.pid) != "T"
        heir.kill()
        heir.wait()
    rung.figure(f"numbers that passed to another in {rounds} tries", reused, rounds // 2, at_least=True)
    rung.equal("heirs that were woken", wrong, 0)
