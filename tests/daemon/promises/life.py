"""Starting, leaving and being killed."""

import os
import random
import signal

from harness.calls import bus_floor, call, ends_within, finish_call, finish_tool, start_call, start_floor, start_tool, tool
from harness.overheard import Overheard
from harness.rung import promise
from harness.sandbox import FOLDERS, HELPER, SYNC_BEGINS, send, stuck_sync, with_harmless_levers
from promises.rights import state_of
from waiting import wait_for


@promise("P1", "No accepted call is lost when the helper exits idle or is asked to stop")
def no_call_is_lost(rung):
    calls = 200000 if rung.options.long else 3000
    rung.sandbox.restart(["--idle-milliseconds=2"], with_polkit=False)
    mark = len(rung.sandbox.log())
    figures = tool("hammer", calls, 4000, seconds=3600)
    rung.figure("of which met a daemon that had to be started",
                rung.sandbox.log()[mark:].count("Activating service name"), calls // 20, at_least=True)
    rung.equal(f"lost of {calls} calls around an idle exit", figures["lost"], 0)

    rung.sandbox.restart(with_polkit=False)
    dice = random.Random(1)
    stopped = made = lost = 0
    while stopped < 15 and made < 20 * calls:  # on a fast machine the calls end before that many
        hammer = start_tool("hammer", calls // 3, 1000)
        # Random, so that the signal meets a daemon in every state between its start and its end.
        while not ends_within(hammer, dice.uniform(0.0, 0.03)):
            for pid in rung.sandbox.helper_pids():
                if listens(pid):
                    send(pid, signal.SIGTERM)
                    stopped += 1
        made += calls // 3
        lost += finish_tool(hammer)["lost"]
    rung.equal(f"lost of {made} calls around {stopped} SIGTERMs", lost, 0)
    rung.figure("daemons asked to stop", stopped, 15, at_least=True)


def listens(pid):
    """Whether the daemon handles the signal itself by now; before its first line, the kernel ends it."""
    try:
        with open(f"/proc/{pid}/status", encoding="utf-8") as file:
            blocked = next(line.split()[1] for line in file if line.startswith("SigBlk:"))
    except (FileNotFoundError, ProcessLookupError, StopIteration):
        return False
    return bool(int(blocked, 16) >> (signal.SIGTERM - 1) & 1)


@promise("P4", "It starts quickly")
def starts_quickly(rung):
    rung.sandbox.restart(["--idle-milliseconds=1"], with_polkit=False)
    figures = tool("cold", 200)
    slowest = most_for_a_start(rung.sandbox)
    rung.figure("cold start with its first ping, p50", figures["p50"] * 1000, 60, " ms", busy=slowest)
    rung.figure("cold start with its first ping, p99", figures["p99"] * 1000, 60, " ms", busy=slowest)


def most_for_a_start(box):
    """Milliseconds for a start by the bus with the first answer. Besides the program's own start, the daemon gives up
    rights, connects twice and takes its name, and the other processes of a busy machine may run in between each time."""
    return max(600, 20 * start_floor(box))


@promise("P5", "A killed helper is noticed and started again")
def comes_back(rung):
    rung.sandbox.restart(with_polkit=True)
    with_harmless_levers()
    rounds = 250
    cut_off = 0
    # The kernel ends a process, the bus notices, and the caller reads: no work of the daemon's, but as many turns of a
    # busy machine as some calls. A caller who gets no error waits for the limit of its call, thirty seconds.
    floor = bus_floor()
    told = max(200, 50 * floor["p99"]), max(1000, 50 * floor["max"])
    slowest = most_for_a_start(rung.sandbox)
    # A fast machine has answered most calls before the later moments, and a slow one none before the earlier ones.
    for moment in (4000, 100):
        figures = tool("killed", rounds, moment)
        cut_off += figures["cut_off"]
        rung.figure(f"killed within {moment} us: error after, p99", figures["told_p99"] * 1000, 20, " ms", busy=told[0])
        rung.figure("error after, at most", figures["told_max"] * 1000, 250, " ms", busy=told[1])
        rung.figure("next call answered, p99", figures["back_p99"] * 1000, 60, " ms", busy=slowest)
        rung.equal(f"unanswered of {rounds}", figures["unanswered"], 0)
    rung.figure("calls cut off by the kills", cut_off, 50, at_least=True)


@promise("P6", "Every caller gets an answer or an error: stopped, removed and unreachable helpers")
def callers_get_a_word(rung):
    box = rung.sandbox
    box.restart(with_polkit=False)
    call(box, "Ping")
    pid = box.helper_pids()[0]
    os.kill(pid, signal.SIGSTOP)
    wait_for(lambda: state_of(pid) == "T", "it is stopped")
    with Overheard("Ping") as calls:
        held = start_call(box, "Ping")
        calls.sender("Ping")
    rung.holds("a call that has reached a stopped helper has no answer", held.poll() is None)
    os.kill(pid, signal.SIGCONT)
    rung.holds("and answers when it goes on", finish_call(held).answered)

    os.unlink(HELPER)
    wait_for(lambda: not box.helper_pids(), "a helper whose program is removed leaves")
    rung.holds("a helper whose program is removed exits", True)
    reply = call(box, "Ping")
    rung.holds(f"a call then fails with an error ({reply.text})", not reply.answered)
    # The bus gives a start up after ten seconds; it need not wait for a program that is not there.
    rung.figure("after", reply.seconds, 2.0, " s", busy=10.0)
    box.install()
    rung.holds("and is answered again when the program is back", call(box, "Ping").answered)

    box.restart(with_polkit=False, environment=stuck_sync())
    box.start_polkit()
    mark = len(box.log())
    held = start_call(box, "PurgeMemory")
    wait_for(lambda: SYNC_BEGINS in box.log()[mark:], "the purge has begun")
    box.stop_bus()
    rung.holds("a caller on a bus that ends gets an error", not finish_call(held).answered)
    wait_for(lambda: not box.helper_pids(), "the helper leaves with its bus")
    rung.holds("and the helper leaves with its bus", True)


def programs(box):
    """Programs of the running daemons, as the kernel names them."""
    found = []
    for pid in box.helper_pids():
        try:
            found.append(os.readlink(f"/proc/{pid}/exe"))
        except OSError:  # it has ended in the meantime
            continue
    return found


@promise("P6b", "A replaced program answers the next call, and nothing is lost")
def replaced_program(rung):
    box = rung.sandbox
    box.restart(with_polkit=False)
    call(box, "Ping")
    hammer = start_tool("hammer", 3000, 2000)
    replaced = 0
    pids = set()
    # Long enough for a daemon to start and to answer a few calls.
    while not ends_within(hammer, 0.05):
        box.use_daemon(f"{box.installed}{HELPER}")
        replaced += 1
        pids.update(box.helper_pids())
    rung.equal(f"lost of 3000 calls around {replaced} replacements", finish_tool(hammer)["lost"], 0)
    rung.figure("different daemons seen", len(pids), 3, at_least=True)
    # The program may have been replaced while the daemon started.
    wait_for(lambda: all(program == HELPER for program in programs(box)), "what was replaced has left")
    call(box, "Ping")
    rung.equal("the program that answers", programs(box), [HELPER])
    rung.holds("the startup folders are untouched", not any(os.listdir(folder) for folder in FOLDERS))
