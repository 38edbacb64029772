"""Everything mixed, for a long time: one daemon under load first, then daemons that are killed and leave."""

import time

from harness.calls import call, finish_tool, start_tool
from harness.rung import Rung, complaints
from harness.sandbox import with_harmless_levers
from harness.waiting import let_pass
from promises.load import status
from promises.moves import make_items, snapshot, without_marks, read

ROOTS = ("/etc", "/usr/share/polkit-1", "/usr/local")
LIVES = 2 / 3  # of the time is the first part


class Mixture:
    """Starts each load again when it has ended, and adds its figures up."""

    def __init__(self, loads):
        self.loads = loads
        self.running = {}
        self.sums = {}
        self.rounds = 0

    def turn(self):
        for name, arguments in self.loads.items():
            if name not in self.running:
                self.running[name] = start_tool(*arguments[1:], tool=arguments[0])
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

    def run(self, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.turn()
            let_pass(0.05)
        self.end()


def load(*arguments):
    return ("vorli_helper_load", *arguments)


def one_daemon(rung, seconds):
    box = rung.sandbox
    items = make_items(4)
    call(box, "Ping")
    pid = box.helper_pids()[0]
    loads = {"ping": load("many", 20, 2000), "churn": load("churn", 20, 20), "fuzz": ("vorli_helper_fuzz", 5000, 1),
             "pairs": load("pairs", 3000), "moves": load("toggle", 20, 40, *items), "purges": load("purges", 5, 4)}
    Mixture(loads).run(min(10, seconds / 4))
    before = status(pid, "VmRSS")
    mixture = Mixture(loads)
    mixture.run(seconds)
    call(box, "Ping")
    after = status(pid, "VmRSS")
    print(f"      {mixture.rounds} rounds: {mixture.sum('moves moved')} moves, {mixture.sum('fuzz sent')} fuzzed messages, "
          f"{mixture.sum('churn connections')} connections, {mixture.sum('purges done')} purges", flush=True)
    rung.equal("one daemon: it is the same", box.helper_pids(), [pid])
    lost = sum(mixture.sum(key) for key in ("ping errors", "churn errors", "fuzz unanswered", "pairs cut_off",
                                            "moves cut_off", "purges other"))
    rung.equal("one daemon: calls lost", lost, 0)
    rung.equal("one daemon: hostile moves done", mixture.sum("pairs moved"), 0)
    rung.figure("one daemon: resident", after / 1024, 8.0, " MiB")
    rung.figure(f"one daemon: from {before} KiB it has grown by", after - before, 256, " KiB")
    check_items(rung, items)


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
    rung.equal("killed daemons: callers left without a word", killed.sum("killed unanswered"), 0)
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
    """0 when nothing was lost, nothing grew and nobody complained."""
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
    """All but the startup folders, and what the soak itself sets."""
    own = ("/etc/xdg/autostart/", "/etc/systemd/system/", "/etc/systemd/user/", "/etc/polkit-1/rules.d/",
           "/usr/local/share/dbus-1/")
    return {path: seen for path, seen in snapshot(ROOTS).items() if not path.startswith(own)}
