"""Attacks by unprivileged users on the log, on other callers and on the daemon's memory."""

import fcntl
import os
import re
import signal
import subprocess
import time

from harness.calls import bus_floor, call, finish_tool
from harness.machine import Machine
from harness.memory import MemoryLimit
from harness.rung import promise
from harness.sandbox import NAME, OBJECT, STANDINS, TOOLS, WORK, write
from promises.load import RESIDENT
from waiting import holds, wait_for

ITEM = "/etc/systemd/user/item.service"
AWAY = ITEM + ".vorli-disabled"
FLOODS = ((4001, "own"), (4002, "wrong"), (4001, "long"), (4002, "dump"))
LOAD = f"{TOOLS}/vorli_helper_load"
LINES, WINDOW, LONGEST_LINE = 20, 10, 640  # of a user in the log: lines in so many seconds, bytes of a line
STUCK = "leaving: the bus takes no answers"


def start_as(box, uid, *arguments, session=None):
    return subprocess.Popen([*box.as_user(uid, session), LOAD, *map(str, arguments)], stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, text=True)


def end_all(processes):
    """Figures of the attackers."""
    for process in processes:
        process.send_signal(signal.SIGTERM)
    return [finish_tool(process, 60) for process in processes]


@promise("P26", "Nobody can push another user's lines out of the log, or fill the disk with it")
def log_is_no_weapon(rung):
    in_a_file(rung, windows=3 if rung.options.long else 1)
    in_the_journal(rung, moves=40 if rung.options.long else 12)


def in_a_file(rung, windows):
    box = rung.sandbox
    box.restart()
    call(box, "Ping")
    mark = len(box.log())
    users = sorted({uid for uid, _ in FLOODS})
    start = time.monotonic()
    floods = [start_as(box, uid, "flood", kind) for uid, kind in FLOODS]
    # At the end of each window, a line says how many of a user's are missing.
    wait_for(lambda: all(box.log()[mark:].count(f" more of user {uid}\n") >= windows for uid in users),
             "the lines that say what is left out", 20 + windows * 2 * WINDOW, pause=0.1)
    sent = sum(figures["sent"] for figures in end_all(floods))
    box.stop_bus()  # ended first, because its waiting messages would start the daemon again
    seconds = time.monotonic() - start
    # The bus writes to the same log.
    lines = [line for line in box.log()[mark:].splitlines(keepends=True) if not line.startswith("dbus-daemon[")]
    rung.figure(f"requests of two users without rights in {seconds:.0f} s", sent, 10000, at_least=True)
    # Each user may have one window more than fit into the time, with the line that says what is left out; callers whom
    # the bus does not name in time share one more such budget.
    most = (len(users) + 1) * (LINES + 1) * (1 + int(seconds / WINDOW))
    rung.figure("lines in the log", len(lines), most)
    rung.figure("bytes in the log, with lines as long as they may be", len("".join(lines)), most * LONGEST_LINE)


def in_the_journal(rung, moves):
    machine = Machine(rung.sandbox)
    try:
        write(ITEM, "[Service]\nExecStart=/bin/true\n")
        for paths in ((ITEM, AWAY), (AWAY, ITEM)):  # polkit needs time to start
            machine.run(LOAD, "call", "MoveLaunchAgentPlist", *paths)
        before = granted_lines(machine)
        floods = [subprocess.Popen(machine.enter(*rung.sandbox.as_user(uid), LOAD, "flood", kind), stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True) for uid, kind in FLOODS]
        replies = []
        for _ in range(moves):
            goes = os.path.exists(ITEM)
            replies.append(machine.run(LOAD, "call", "MoveLaunchAgentPlist", *((ITEM, AWAY) if goes else (AWAY, ITEM))))
            # Every user, root too, may make twenty requests in ten seconds.
            holds(lambda: all(flood.poll() is None for flood in floods), "the flood", 0.6)
        sent = sum(figures["sent"] for figures in end_all_inside(machine, floods))
        rung.figure("requests of two users without rights meanwhile", sent, 10000, at_least=True)
        rung.equal(f"of {moves} moves by root meanwhile, those that were not done",
                   [reply for reply in replies if "answer 0 " not in reply], [])
        rung.equal("their lines in the journal", granted_lines(machine) - before, moves)
    finally:
        machine.end()


def granted_lines(machine):
    return len(re.findall(r"(?m)uid=0 method=MoveLaunchAgentPlist .* verdict=granted exit=0", machine.journal()))


def end_all_inside(machine, floods):
    machine.run("pkill", "-TERM", "-x", "vorli_helper_lo", check=False)
    return [finish_tool(process, 60) for process in floods]


@promise("P27", "One user with many connections takes nothing from another")
def nobody_is_starved(rung):
    box = rung.sandbox
    # Number of the attacker's connections at a time, and of pings that each one sends after its eight requests.
    attacks = ((16, 0), (16, 300), (64, 100)) if rung.options.long else ((64, 100),)
    for connections, pings in attacks:
        box.restart()
        box.add_session(4002, "s2")
        box.add_session(4003, "s3", active=False)
        call(box, "Ping")
        mark = len(box.log())
        attacker = start_as(box, 4001, "starve", connections, pings)
        try:
            wait_for(lambda: " more of user 4001" in box.log()[mark:] or box.log()[mark:].count("uid=4001") >= LINES,
                     "more of the attacker's requests than the log takes")
            # Time of a call without the daemon, because the attacker keeps the bus busy as well.
            floor = bus_floor(200)["p99"]
            victims = {"kept": start_as(box, 4002, "victim", 100, 110, "kept", session="s2"),
                       "new": start_as(box, 4003, "victim", 100, 110, "new", session="s3")}
            what = f"{connections} connections with {pings} pings behind each"
            # A call is a connection, a question to polkit, and the places that the attacker's requests free: ten calls' time.
            for kind, process in victims.items():
                figures = finish_tool(process)
                rung.equal(f"{what}: of 100 calls on {kind} connections, those done", figures["done"], 100)
                rung.figure("p50", figures["p50"] * 1000, 500, " ms", busy=max(500, 10 * floor))
                rung.figure("p99", figures["p99"] * 1000, 500, " ms", busy=max(500, 10 * floor))
        finally:
            made = end_all([attacker])[0]["made"]
        rung.figure("connections that the attacker made", made, 100, at_least=True)


@promise("P28", "No message, and no number of messages, kills it")
def messages_cannot_kill(rung):
    box = rung.sandbox
    with open(f"{rung.options.source}/packaging/linux/vorli-helper.service.in", encoding="utf-8") as file:
        mebibytes = int(re.search(r"(?m)^MemoryMax=(\d+)M$", file.read())[1])
    limit = MemoryLimit(mebibytes)
    rounds = 20 if rung.options.long else 3
    try:
        box.restart(environment=[limit.entrance], with_polkit=False)
        answered = wrong = 0
        for _ in range(rounds):
            box.terminate_helper()
            done = subprocess.run([*box.as_user(4001), "/usr/bin/python3", f"{STANDINS}/burst.py", "8", "31"],
                                  capture_output=True, text=True, check=True)
            codes = done.stdout.split()
            # 22 means not a path. The bus itself may refuse too many messages, with -1.
            wrong += any(code not in ("22", "-1") for code in codes) or "22" not in codes
            answered += call(box, "Ping").answered
        rung.equal(f"rounds of 8 messages of 31 MiB at a cold start, of {rounds}: with another answer than a refusal", wrong, 0)
        rung.equal("pings behind them that were answered", answered, rounds)
        rung.equal(f"kills under the unit's {mebibytes} MiB", limit.kills(), 0)
        rung.figure("the most that it took", limit.peak(), mebibytes, " MiB")
        box.terminate_helper()
    finally:
        box.stop_helper()
        limit.end()


@promise("P34", "Callers who never read their answers block nobody for long")
def unread_answers(rung):
    refused_for_their_length(rung)
    many_unread(rung)
    more_than_the_bus_holds(rung)


def refused_for_their_length(rung):
    """Checks that the bus refuses calls whose answer would be as long as the caller likes."""
    box = rung.sandbox
    box.restart(with_polkit=False)
    words = [*box.as_user(4001), "/usr/bin/dbus-send", "--system", "--print-reply", f"--dest={NAME}"]
    for what, arguments in (("a call to another object", [f"/{'x' * 60000}", f"{NAME}.Ping"]),
                            ("Introspect", [OBJECT, "org.freedesktop.DBus.Introspectable.Introspect"])):
        done = subprocess.run([*words, *arguments], capture_output=True, text=True)
        rung.holds(f"{what} is refused by the bus", "AccessDenied" in done.stderr)


def many_unread(rung):
    """Two users leave fewer answers unread than the bus holds."""
    box = rung.sandbox
    box.restart()
    box.add_session(4002, "s2")
    box.add_session(4004, "s4", active=False)
    call(box, "Ping")
    first = box.helper_pids()
    attackers = [start_as(box, uid, "flood", "unread") for uid in (4001, 4003)]
    victims = [start_as(box, 4002, "victim", 100, 110, "kept", session="s2"),
               start_as(box, 4004, "victim", 100, 110, "new", session="s4")]
    floor = bus_floor(200)["p99"]  # under attack, too
    figures = [finish_tool(process) for process in victims]
    sent = sum(figures["sent"] for figures in end_all(attackers))
    rung.figure("pings of two users who read no answer", sent, 10000, at_least=True)
    rung.equal("of 200 calls of two other users, those done", sum(figures["done"] for figures in figures), 200)
    rung.figure("p99", max(figures["p99"] for figures in figures) * 1000, 500, " ms",
                busy=max(5000, 10 * floor))
    rung.equal("the daemon is the same", box.helper_pids(), first)


def resident(pid):
    """KiB; 0 for a process that has ended."""
    try:
        with open(f"/proc/{pid}/status", encoding="utf-8") as file:
            found = re.search(r"(?m)^VmRSS:\s+(\d+) kB$", file.read())
    except (FileNotFoundError, ProcessLookupError):
        return 0
    return int(found[1]) if found else 0


def more_than_the_bus_holds(rung):
    """One user leaves so many answers unread that the bus accepts no more answers of the daemon."""
    box = rung.sandbox
    box.restart(with_polkit=False, max_incoming_bytes=1 << 20)
    call(box, "Ping")
    pid, mark = box.helper_pids()[0], len(box.log())
    attacker = start_as(box, 4001, "flood", "unread")
    most = 0

    def gives_up():
        nonlocal most
        most = max(most, resident(pid))
        return STUCK in box.log()[mark:]

    # It waits five seconds for a bus that does not accept its messages.
    wait_for(gives_up, "the daemon gives the bus up", 60)
    rung.figure("resident, with the queued answers, at most", most / 1024, RESIDENT, " MiB")
    wait_for(lambda: pid not in box.helper_pids(), "it has left")
    rung.holds("it gives the bus up and leaves", True)
    end_all([attacker])
    wait_for(lambda: call(box, "Ping").answered, "the next call is answered")
    rung.holds("the next call is answered", True)


@promise("P31", "A log that nobody reads blocks nobody")
def stuck_log(rung):
    box = rung.sandbox
    pipe = f"{WORK}/unread"
    wrapper = f"{WORK}/unread.sh"
    write(wrapper, f'#!/bin/sh\nexec "$@" 2>{pipe}\n', 0o755)
    if not os.path.exists(pipe):
        os.mkfifo(pipe)
    reader = os.open(pipe, os.O_RDWR | os.O_NONBLOCK)
    fcntl.fcntl(reader, fcntl.F_SETPIPE_SZ, 4096)
    try:
        box.restart(environment=[wrapper], with_polkit=False)
        replies = [call(box, "DumpBTM", uid=4001 + n % 4) for n in range(60)]
        rung.equal("calls that were answered, each with a line", {reply.code for reply in replies}, {203})
        # A daemon that waited for its log would never answer, and the tool would give the call up after thirty seconds.
        rung.figure("the slowest answer", max(reply.seconds for reply in replies), 1.0, " s", busy=10.0)
        rung.figure("of the log, in the pipe", len(os.read(reader, 65536)), 3000, " bytes", at_least=True)
        call(box, "DumpBTM", uid=4009)
        rung.holds("the dropped lines are reported", b"lines lost" in os.read(reader, 65536))
    finally:
        os.close(reader)
        box.stop_helper()
