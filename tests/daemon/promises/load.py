"""Many callers, slow work, memory and quiet."""

import os
import re
import subprocess
import time

from harness.calls import bus_floor, call, finish_call, start_call, tool
from harness.rung import promise
from harness.sandbox import NAME, SYNC_BEGINS, WORK, stuck_sync, with_harmless_levers, write
from waiting import wait_for

# The daemon opens six files. Each of its two connections adds a socket, and with the newer bus library a handle of a
# process and two events.
MOST_OPEN_FILES = 14
IDLE = 30  # seconds until it leaves
# The daemon's budget in MiB, which holds on every machine: it starts with less than five, most of it libraries, and
# every page that a large message took must have gone back to the system.
RESIDENT = 8.0
# Growth in KiB over a hundred thousand calls or more. The smallest block of memory has 32 bytes, so one that is kept of
# every call would be 3,000; the rest is for the allocator, whose heap settles late.
GROWTH = 256


def status(pid, key, folder="/proc"):
    for line in open(f"{folder}/{pid}/status", encoding="utf-8"):
        if line.startswith(key + ":"):
            return int(line.split()[1])
    raise AssertionError(key)


def open_files(pid):
    """Their number, besides the three standard ones."""
    return sum(int(name) > 2 for name in os.listdir(f"/proc/{pid}/fd"))


@promise("P2", "Ping never waits for work")
def ping_never_waits(rung):
    box = rung.sandbox
    box.restart(environment=stuck_sync(3000))
    item = "/etc/systemd/user/a.service"
    write(item, "x")
    mark = len(box.log())
    purges = [start_call(box, "PurgeMemory")]
    wait_for(lambda: SYNC_BEGINS in box.log()[mark:], "it works")
    purges += [start_call(box, "PurgeMemory") for _ in range(3)]
    call(box, "FlushDNS")  # gives polkit time for the others; a late one would wait for the hung polkit
    box.polkitd.send_signal(19)  # SIGSTOP: its answers hang
    hung = [start_call(box, "FlushDNS", uid=4001), start_call(box, "FlushDNS", uid=4002)]
    hung += [start_call(box, "MoveLaunchAgentPlist", item, item + ".vorli-disabled", uid=4003 + n) for n in range(4)]
    pings = 20000
    figures = tool("ping", pings)
    refused = [finish_call(process) for process in hung]
    box.polkitd.send_signal(18)
    done = [finish_call(process) for process in purges]
    # A ping passes the bus both ways, where the floor turns round at it, and finds a daemon with ten requests; one that
    # waited for any of them would take seconds.
    floor = bus_floor()
    rung.figure("ping with 4 purges, 2 checks and 4 moves out, p99", figures["p99"] * 1000, 1.0, " ms",
                busy=max(20, 20 * floor["p99"]))
    rung.figure(f"the slowest of {pings}", figures["max"] * 1000, 50, " ms", busy=max(1000, 20 * floor["max"]))
    rung.equal("answers to those whom a hung polkit could not judge", {reply.code for reply in refused}, {200})
    # Polkit has three seconds, and the application waits for four.
    rung.figure("which came after, at most", max(reply.seconds for reply in refused), 3.3, " s", busy=4.0)
    rung.equal("answer to the purge that runs", done[0].code, 0)
    rung.figure("after its 3 s, at least", done[0].seconds, 2.9, " s", at_least=True)
    rung.equal("answers to those behind it, but 0 and 200", {reply.code for reply in done[1:]} - {0, 200}, set())
    rung.holds("the item has not moved", os.path.exists(item))


@promise("P3", "Many callers")
def many_callers(rung):
    rung.sandbox.restart()
    call(rung.sandbox, "Ping")
    clients = 100
    floor = tool("bus", 2000)["p50"]  # cost of one call of one client for the machine and the bus
    figures = tool("many", clients, 500)
    rung.figure(f"answers a second to {clients} clients", figures["rate"], 5000, at_least=True, busy=min(500, 0.05 / floor))
    rung.figure("p99 of the slowest client", figures["worst_p99"] * 1000, 100, " ms",
                busy=max(1000, 50 * clients * floor * 1000))
    rung.equal("errors", figures["errors"], 0)
    figures = tool("churn", 200, 10)
    rung.equal(f"errors of {figures['connections']:.0f} clients that come and go", figures["errors"], 0)
    rung.equal("daemons", len(rung.sandbox.helper_pids()), 1)


@promise("P15", "Small and quiet")
def small_and_quiet(rung):
    box = rung.sandbox
    box.restart()
    call(box, "Ping")
    call(box, "FlushDNS")
    pid = box.helper_pids()[0]
    tool("ping", 5000)
    before = status(pid, "VmRSS")
    tool("many", 20, 5000)
    after = status(pid, "VmRSS")
    rung.figure("resident", after / 1024, RESIDENT, " MiB")
    rung.figure("growth over 100000 calls", after - before, GROWTH, " KiB")
    # The last requests may hold some for a moment.
    wait_for(lambda: open_files(pid) <= MOST_OPEN_FILES, "few open files")
    rung.figure("open files besides the three standard ones", open_files(pid), MOST_OPEN_FILES)
    rung.figure("threads", status(pid, "Threads"), 8)

    quiet_until_it_leaves(rung, pid)
    rung.equal("and its name is free", box.owner_of(NAME), None)


def quiet_until_it_leaves(rung, pid):
    """The daemon leaves after 30 idle seconds, with the system calls of its last answer before and of its end after."""
    box = rung.sandbox
    trace = subprocess.Popen(["/usr/bin/strace", "-f", "-q", "-ttt", "-o", f"{WORK}/strace", "-p", str(pid)],
                             stderr=subprocess.DEVNULL)
    tasks = f"/proc/{pid}/task"
    wait_for(lambda: all(status(task, "TracerPid", tasks) for task in os.listdir(tasks)), "all its threads are traced")
    start = time.monotonic()
    call(box, "Ping")
    wait_for(lambda: pid not in box.helper_pids(), "it leaves", IDLE + 30, pause=0.1)
    seconds = time.monotonic() - start
    trace.wait(30)
    rung.figure("it has stayed after the last call", seconds, IDLE, " s", at_least=True)
    with open(f"{WORK}/strace", encoding="utf-8") as file:
        moments = sorted(float(moment) for moment in re.findall(r"(?m)^(?:\d+ +)?(\d+\.\d+) ", file.read()))
    longest = max(after - before for before, after in zip(moments, moments[1:]))
    # The timer that an earlier call has set wakes it once, so the longer of two parts is half of the time or more; the
    # answer and the end take their time on a slow machine.
    rung.figure("seconds of those without any system call", longest, IDLE / 3, at_least=True)


@promise("P16", "One purge at a time, no storm")
def no_purge_storm(rung):
    box = rung.sandbox
    box.restart(allow_everything=True, environment=stuck_sync(1000))
    with_harmless_levers()
    call(box, "Ping")
    mark = len(box.log())
    start = time.monotonic()
    figures = tool("purges", 5, 10)
    rounds = 20 if rung.options.long else 2
    storms = [tool("purges", 100, 5) for _ in range(rounds)]
    seconds = time.monotonic() - start
    begun = box.log()[mark:].count(SYNC_BEGINS)
    rung.equal("answers to 50 purges at once", answers(figures), 50)
    # The fifty connect at once and wait for each other on the bus, each for some calls.
    rung.figure("a refusal for want of room came after, at most", figures["refusal_max"] * 1000, 5, " ms",
                busy=max(1000, 50 * 10 * bus_floor()["p99"]))
    rung.equal(f"answers to {500 * rounds} more", sum(map(answers, storms)), 500 * rounds)
    rung.figure("purges begun", begun, 1, at_least=True)
    rung.figure(f"purges begun within {seconds:.1f} s, one in 5 s", begun, 1 + int(seconds / 5))


def answers(figures):
    return figures["done"] + figures["busy"] + figures["refused"]
