"""Everything mixed, for a long time: first one daemon under load and attack, then daemons that are killed or exit when idle."""

import functools
import subprocess
import time

from harness.calls import call, finish_tool, start_tool
from harness.rung import Rung, complaints
from harness.sandbox import STANDINS, with_harmless_levers
from promises.attacks import FLOODS, end_all, start_as
from promises.load import GROWTH, RESIDENT, status
from promises.moves import make_items, snapshot, without_marks, read
from waiting import wait_for

ROOTS = ("/etc", "/usr/share/polkit-1", "/usr/local")
LIVES = 2 / 3  # share of the time for the first part


class Mixture:
    """Restarts each load when it has ended, and adds its figures up. Loads are functions that start a process."""

    def __init__(self, loads):
        self.loads = loads
        self.running = {}
        self.sums = {}
        self.rounds = 0

    def turn(self):
        for name, start in self.loads.items():
            if name not in self.running:
                self.running[name] = start()
                self.rounds += 1
            elif self.running[name].poll() is not None:
                self._take(name)

    def end(self):
        for name in list(self.running):
            self._take(name)

    def _take(self, name):
        for key, value in finish_tool(self.running.pop(name), 600).items():
            self.sums[f"{name} {key}"] = self.sums.get(f"{name} {key}", 0) + value

    def sum(self, key):
        return int(self.sums[key])

    def run(self, seconds, attack=None):
        end = time.monotonic() + seconds

        def has_ended():
            self.turn()
            if attack:
                attack.turn()
            return time.monotonic() >= end

        # A load that has ended is missing for up to this pause, which is short beside the seconds that it takes.
        wait_for(has_ended, "the end of the mixture", seconds + 60, pause=0.05)
        self.end()


class Running:
    """An attack by processes that run until they are asked to end, and then print how much they have sent."""

    def __init__(self, figure, processes):
        self.figure = figure
        self.processes = processes

    def turn(self):
        pass

    def end(self):
        return int(sum(figures[self.figure] for figures in end_all(self.processes)))


class LargeMessages:
    """An attack by messages of 31 MiB, two at a time: the bus holds 127 MiB for one receiver, and a refusal by the bus
    shows nothing about the daemon."""

    def __init__(self, box):
        self.words = [*box.as_user(4004), "/usr/bin/python3", "-B", f"{STANDINS}/burst.py", "2", "31"]
        self.burst = None
        self.codes = []

    def turn(self):
        if self.burst is None:
            self.burst = subprocess.Popen(self.words, stdout=subprocess.PIPE, text=True)
        elif self.burst.poll() is not None:
            self.codes += self.burst.communicate()[0].split()
            self.burst = None

    def end(self):
        """Number of messages that were properly refused, with 22, not a path."""
        if self.burst is not None:
            self.codes += self.burst.communicate(timeout=120)[0].split()
        return self.codes.count("22")


def load(*arguments, tool="vorli_helper_load"):
    return functools.partial(start_tool, *arguments, tool=tool)


def one_daemon(rung, seconds):
    box = rung.sandbox
    items = make_items(4)
    call(box, "Ping")
    pid = box.helper_pids()[0]
    loads = {"ping": load("many", 20, 2000), "churn": load("churn", 20, 20), "fuzz": load(5000, 1, tool="vorli_helper_fuzz"),
             "pairs": load("pairs", 3000), "moves": load("toggle", 20, 40, *items), "purges": load("purges", 5, 4)}
    Mixture(loads).run(min(10, seconds / 8))
    before = status(pid, "VmRSS")
    mixture = Mixture(loads)
    mixture.run(seconds / 2)
    under_attack(rung, seconds / 2, items)
    call(box, "Ping")
    after = status(pid, "VmRSS")
    print(f"      {mixture.rounds} rounds: {mixture.sum('moves moved')} moves, {mixture.sum('fuzz sent')} fuzzed messages, "
          f"{mixture.sum('churn connections')} connections, {mixture.sum('purges done')} purges", flush=True)
    rung.equal("one daemon: it is the same", box.helper_pids(), [pid])
    lost = sum(mixture.sum(key) for key in ("ping errors", "churn errors", "fuzz unanswered", "pairs cut_off",
                                            "moves cut_off", "purges other"))
    rung.equal("one daemon: calls lost", lost, 0)
    rung.equal("one daemon: hostile moves done", mixture.sum("pairs moved"), 0)
    rung.figure("one daemon: resident", after / 1024, RESIDENT, " MiB")
    rung.figure(f"one daemon: from {before} KiB it has grown by", after - before, GROWTH, " KiB")
    check_items(rung, items)


def under_attack(rung, seconds, items):
    """Runs one attack after the other by users without rights, and checks that users with rights are served."""
    box = rung.sandbox
    attacks = {"requests that each leave a line in the log": lambda: Running(
                   "sent", [start_as(box, uid, "flood", kind) for uid, kind in FLOODS]),
               "connections that take up places": lambda: Running("made", [start_as(box, 4003, "starve", 64, 100)]),
               "answers that are never read": lambda: Running("sent", [start_as(box, 4001, "flood", "unread")]),
               "refused messages of 31 MiB": lambda: LargeMessages(box)}
    mark = len(box.log())
    for what, start in attacks.items():
        attack = start()
        mixture = Mixture({"kept": functools.partial(start_as, box, 4010, "victim", 25, 110, "kept"),
                           "new": functools.partial(start_as, box, 4011, "victim", 25, 110, "new"),
                           "ping": load("many", 5, 200), "moves": load("toggle", 2, 4, *items)})
        mixture.run(seconds / len(attacks), attack)
        sent = attack.end()
        calls = mixture.sum("kept count") + mixture.sum("new count")
        rung.figure(f"under attack: {what}", sent, 1, at_least=True)
        rung.equal(f"under attack: of {calls} calls by two users, those not done",
                   calls - mixture.sum("kept done") - mixture.sum("new done"), 0)
        rung.equal("under attack: calls lost", mixture.sum("ping errors") + mixture.sum("moves cut_off"), 0)
    # The bus writes to the same log, and complains there of callers who do not wait for their answers.
    grown = sum(len(line) for line in box.log()[mark:].splitlines() if not line.startswith("dbus-daemon["))
    rung.figure(f"under attack: in {seconds:g} s the log has grown by", grown / 1e6, max(seconds, 30) / 30, " MB")


def many_daemons(rung, seconds):
    box = rung.sandbox
    box.restart(["--idle-milliseconds=5"], allow_everything=True)
    with_harmless_levers()
    idle = Mixture({"hammer": load("hammer", 300, 10000)})
    idle.run(seconds / 2)
    rung.equal(f"leaving daemons: of {300 * idle.rounds} calls lost", idle.sum("hammer lost"), 0)
    box.restart(allow_everything=True)
    with_harmless_levers()
    items = make_items(4)
    killed = Mixture({"killed": load("killed", 100, 4000), "moves": load("toggle", 10, 100, *items)})
    killed.run(seconds / 2)
    rung.equal("killed daemons: callers without an answer or an error", killed.sum("killed unanswered"), 0)
    rung.figure("killed daemons: calls cut off", killed.sum("killed cut_off"), 10, at_least=True)
    check_items(rung, items)


def check_items(rung, items):
    wrong = []
    for path, (text, _) in items.items():
        there = [place for place in (path, path + ".vorli-disabled", path + ".vorli-removed") if is_there(place)]
        if len(there) != 1 or without_marks(read(there[0])) != text:
            wrong.append(path)
    rung.equal("startup items lost, there twice or changed", wrong, [])


def is_there(path):
    try:
        read(path)
        return True
    except FileNotFoundError:
        return False


def soak(sandbox, options):
    """Runs the soak; returns 0 if nothing was lost, nothing grew and no fault was reported."""
    print(f"P25  {options.soak:g} s of everything mixed", flush=True)
    start = time.monotonic()
    rung = Rung(sandbox, options)
    sandbox.restart(allow_everything=True)
    with_harmless_levers()
    before = outside()
    one_daemon(rung, options.soak * LIVES)
    many_daemons(rung, options.soak * (1 - LIVES))
    sandbox.stop()
    rung.equal("files changed elsewhere", sorted(set(before.items()) ^ set(outside().items())), [])
    rung.equal("complaints of the daemon's run-time", complaints(sandbox.log()), [])
    print(f"      {'FAILED' if rung.broken else 'ok'} in {time.monotonic() - start:.1f} s", flush=True)
    print(f"{int(not rung.broken)} passed, {int(bool(rung.broken))} failed", flush=True)
    return 1 if rung.broken else 0


def outside():
    """All files except the startup folders and the settings of the soak itself."""
    own = ("/etc/xdg/autostart/", "/etc/systemd/system/", "/etc/systemd/user/", "/etc/polkit-1/rules.d/",
           "/usr/local/share/dbus-1/")
    return {path: seen for path, seen in snapshot(ROOTS).items() if not path.startswith(own)}
