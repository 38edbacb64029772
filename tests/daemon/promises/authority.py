"""Questions to polkit, and the daemon's use of the answers."""

import json
import os
import re
import shutil
import signal
import subprocess

from harness.calls import call, finish_call, start_call, tool
from harness.overheard import Overheard
from harness.rung import promise
from harness.sandbox import STANDINS, WORK, command, with_harmless_levers, write
from promises.rights import Sleeper
from waiting import wait_for

ITEM = "/etc/systemd/user/item.service"
AWAY = ITEM + ".vorli-disabled"
QUESTIONS = f"{WORK}/polkit-questions"
CLIENTS_LIMIT = 4.0  # seconds that the application waits for a move


class StandIn:
    def __init__(self, rung, mode):
        rung.sandbox.restart(with_polkit=False)
        write(ITEM, "x")
        if os.path.exists(QUESTIONS):
            os.unlink(QUESTIONS)
        self.process = subprocess.Popen(["/usr/bin/python3", f"{STANDINS}/polkit.py", QUESTIONS, mode],
                                        stdin=subprocess.PIPE, text=True)
        wait_for(lambda: rung.sandbox.owner_of("org.freedesktop.PolicyKit1"), "the stand-in owns polkit's name")

    def questions(self):
        with open(QUESTIONS, encoding="utf-8") as file:
            return [json.loads(line) for line in file]

    def consent(self):
        print(file=self.process.stdin, flush=True)
        wait_for(lambda: self.questions()[-1] == "consented", "the consent is on its way")

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()


@promise("P10", "The caller cannot be mistaken for another")
def no_mistaken_caller(rung):
    box = rung.sandbox
    standin = StandIn(rung, "root-only")
    program = f"{WORK}/setuid-sleep"
    shutil.copy("/bin/sleep", program)
    os.chmod(program, 0o4755)
    rounds = 10000 if rung.options.long else 600
    sent = 0
    while sent < rounds:
        sent += int(tool("vanish", 19, program, ITEM, AWAY)["sent"])
        box.stop_helper()  # the limit is 20 requests of a user in ten seconds, and the tool makes one to measure
        if os.path.exists(AWAY):
            break
    rung.figure("moves asked for by callers that exec, fork or go", sent, rounds, at_least=True)
    rung.holds("none of them was done", os.path.exists(ITEM) and not os.path.exists(AWAY))
    rung.equal("a move by root meanwhile", call(box, "MoveLaunchAgentPlist", ITEM, AWAY).code, 0)
    questions = standin.questions()
    rung.figure("questions that reached polkit", len(questions), rounds // 5, at_least=True)
    rung.equal("kinds of subject named to it", {(entry["kind"], *entry["subject"]) for entry in questions},
               {("system-bus-name", "name")})
    rung.equal("flags (1 would ask the user)", {entry["flags"] for entry in questions}, {0})
    rung.equal("details", {entry["details"].get("item") for entry in questions}, {"item.service"})
    standin.end()

    box.restart()
    sleeper = Sleeper(box, 4000000000)
    rung.equal("user 4000000000 purges", call(box, "PurgeMemory", uid=4000000000).code, 201)
    rung.equal("and moves", call(box, "MoveLaunchAgentPlist", ITEM, AWAY, uid=4000000000).code, 200)
    rung.equal("and wakes his own", call(box, "KillPID", sleeper.pid, 19, uid=4000000000).code, 0)
    sleeper.end()


class Heir:
    """A connection of that user, outside of any session, whose process has left it to a child and ended."""

    def __init__(self, box, uid, *arguments):
        self.process = subprocess.Popen([*box.as_user(uid), "/usr/bin/python3", "-B", f"{STANDINS}/heir.py", *arguments],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.number = int(self.process.stdout.readline())
        self.process.wait()

    def give_number_on(self):
        """Gives the next process the pid of the one that made the connection."""
        with open("/proc/sys/kernel/ns_last_pid", "w", encoding="utf-8") as file:
            file.write(str(self.number - 1))

    def call(self):
        print(file=self.process.stdin, flush=True)
        return int(self.process.stdout.readline())

    def end(self):
        self.process.stdin.close()
        self.process.stdout.close()


@promise("P10b", "A process id that is used again gives nobody the rights of the new process")
def no_lent_rights(rung):
    box = rung.sandbox
    box.restart()
    with_harmless_levers()
    write(ITEM, "x")
    box.add_session(4001, "s1")
    rung.equal("user 4001 in his active session purges", call(box, "PurgeMemory", uid=4001, session="s1").code, 0)
    lent = met = 0
    for method, arguments in (("PurgeMemory", ()), ("FlushDNS", ())) * 3:
        heir = Heir(box, 4003, method, *arguments)
        lent += heir.call() == 0  # no process has this pid yet
        heir.give_number_on()
        bearer = subprocess.Popen([*box.as_user(4001, "s1"), "/bin/sleep", "1000"])
        wait_for(lambda pid=bearer.pid: os.readlink(f"/proc/{pid}/exe").endswith("sleep"), "it sleeps")
        met += bearer.pid == heir.number
        lent += heir.call() == 0
        heir.end()
        bearer.kill()
        bearer.wait()
    rung.figure("numbers that came round to the session of another user", met, 3, at_least=True)
    rung.equal("purges and flushes by its right", lent, 0)
    by_a_given_password(rung, box)


def all_of_one_number(box):
    """A connection of another user, one of the same user, and the application, all with the same process id. Starts
    again if another process gets that id in between."""
    for _ in range(10):
        other = Heir(box, 4003, "MoveLaunchAgentPlist", ITEM, AWAY)
        other.give_number_on()
        own = Heir(box, 4001, "MoveLaunchAgentPlist", ITEM, AWAY)
        session = Session(box, "grant", own.give_number_on)
        if other.number == own.number == session.application.pid:
            break
        for each in (other, own, session):
            each.end()
    return other, own, session


def by_a_given_password(rung, box):
    box.stop_helper()
    other, own, session = all_of_one_number(box)
    rung.equal("the application has the process id of both", (other.number, own.number), (session.application.pid,) * 2)
    session.say("check 1")
    vouch(session.prompted_cookie())
    session.end_question()
    rung.equal("the password is right: granted", session.application.stdout.readline()[0], "1")
    rung.equal("another user's connection of that number moves", other.call(), 200)
    rung.equal("the application does", session.ask(f"move {ITEM} {AWAY}"), "0")
    rung.equal("and back", session.ask(f"move {AWAY} {ITEM}"), "0")
    if bus_hands_out_processes():
        rung.equal("the same user's connection of that number, on a bus that hands out processes", own.call(), 200)
    else:
        rung.equal("the same user's connection of that number, on a bus that hands out no processes, as SECURITY.md says",
                   own.call(), 0)
    for heir in (other, own):
        heir.end()
    session.end()


def bus_hands_out_processes():
    """Whether the bus identifies the process that made a connection by a handle, and not only by its number."""
    credentials = command("/usr/bin/busctl", "--system", "call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                          "org.freedesktop.DBus", "GetConnectionCredentials", "s", "org.freedesktop.PolicyKit1")
    return "ProcessFD" in credentials


@promise("P11", "A request in doubt is refused")
def doubt_is_refusal(rung):
    box = rung.sandbox
    for mode, code, seconds in (("error", 200, 0.5), ("garbage", 200, 0.5), ("empty", 200, 0.5), ("die", 200, 0.5),
                                ("silent", 200, 3.2), ("late", 200, 3.2)):
        standin = StandIn(rung, mode)
        reply = call(box, "MoveLaunchAgentPlist", ITEM, AWAY)
        if mode == "late":
            standin.consent()
            # The bus names this call's maker on the connection that brought the consent before.
            rung.equal("a call after the consent has come", call(box, "KillPID", 999999, 19).code, 3)
            box.terminate_helper()  # it would end a move first
        kept = reply.code == code and os.path.exists(ITEM) and call(box, "Ping").answered
        rung.holds(f"polkit's answer is {mode}: refused with {reply.code}", kept)
        rung.figure("after", reply.seconds, seconds, " s", busy=CLIENTS_LIMIT)
        standin.end()

    box.restart(with_polkit=False)
    write(ITEM, "x")
    reply = call(box, "MoveLaunchAgentPlist", ITEM, AWAY)
    rung.holds(f"no polkit: refused with {reply.code}", reply.code == 200)
    rung.figure("after", reply.seconds, 0.5, " s", busy=CLIENTS_LIMIT)

    box.start_polkit()
    moving, _ = move_at_a_stopped_polkit(box)
    box.stop_polkit()
    reply = finish_call(moving)
    rung.holds(f"polkit killed in the middle: refused with {reply.code}", reply.code == 200)
    rung.figure("after", reply.seconds, 1.0, " s", busy=CLIENTS_LIMIT)

    box.start_polkit()
    mark = len(box.log())
    moving, caller = move_at_a_stopped_polkit(box)
    moving.kill()
    moving.wait()
    wait_for(lambda: not box.owner_of(caller), "the bus has noticed that the caller has ended")
    box.polkitd.send_signal(signal.SIGCONT)
    # The line of a request is written when everything is done for it.
    line = wait_for(lambda: re.search(r"method=MoveLaunchAgentPlist .* verdict=(\w+) exit=(\d+)", box.log()[mark:]),
                    "the daemon has decided")
    rung.equal("the caller has ended in the middle: the answer that nobody gets", line[2], "200")
    rung.holds(f"it is not done, the verdict is {line[1]}", line[1] != "granted" and os.path.exists(ITEM))
    rung.equal("and the next call is served", call(box, "MoveLaunchAgentPlist", ITEM, AWAY).code, 0)


def move_at_a_stopped_polkit(box):
    """Stops polkit, and starts a move; returns its process and its name on the bus when polkit has been asked."""
    box.polkitd.send_signal(signal.SIGSTOP)
    with Overheard("MoveLaunchAgentPlist", "CheckAuthorization") as calls:
        moving = start_call(box, "MoveLaunchAgentPlist", ITEM, AWAY)
        calls.sender("CheckAuthorization")
        return moving, calls.sender("MoveLaunchAgentPlist")


# Codes: 0 done, 200 refused, 201 a password is needed. Ping has no code.
CELLS = {
    "PurgeMemory": {"active": 0, "inactive": 201, "none": 201, "root": 0, "nobody": 201},
    "FlushDNS": {"active": 0, "inactive": 0, "none": 201, "root": 0, "nobody": 201},
    "MoveLaunchAgentPlist": {"active": 201, "inactive": 200, "none": 200, "root": 0, "nobody": 200},
    "DumpBTM": dict.fromkeys(("active", "inactive", "none", "root", "nobody"), 203),
    "Ping": dict.fromkeys(("active", "inactive", "none", "root", "nobody"), 0),
}
CALLERS = {"active": (4001, "s1"), "inactive": (4002, "s2"), "none": (4003, None), "root": (0, None),
           "nobody": (65534, None)}


@promise("P12", "The shipped defaults are as documented")
def shipped_defaults(rung):
    box = rung.sandbox
    box.restart()
    with_harmless_levers()
    write(ITEM, "x")
    box.add_session(4001, "s1")
    box.add_session(4002, "s2", active=False)
    right = 0
    for method, cells in CELLS.items():
        arguments = (ITEM, AWAY) if method == "MoveLaunchAgentPlist" else ()
        for who, code in cells.items():
            uid, session = CALLERS[who]
            reply = call(box, method, *arguments, uid=uid, session=session)
            if reply.answered and reply.code == code:
                right += 1
            else:
                rung.holds(f"{method} by {who} gives {code}, not {reply.code} {reply.text}", False)
    rung.equal("cells of the table that are right", right, 25)
    os.rename(AWAY, ITEM)
    with_an_agent(rung)


class Session:
    """Starts the application and an agent of user 4001 in the active session."""

    def __init__(self, box, mode, before_application=lambda: None):
        self.box = box
        self.agent = self._start("agent.py", "s1", mode)
        assert self.agent.stdout.readline() == "registered\n"
        before_application()
        self.application = self._start("application.py")
        assert self.application.stdout.readline() == "ready\n"

    def _start(self, script, *arguments):
        return subprocess.Popen([*self.box.as_user(4001, "s1"), "/usr/bin/python3", f"{STANDINS}/{script}", *arguments],
                                stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def say(self, line):
        print(line, file=self.application.stdin, flush=True)

    def ask(self, line):
        self.say(line)
        return self.application.stdout.readline().strip()

    def prompted_cookie(self):
        return self.agent.stdout.readline().split()[1]

    def end_question(self):
        print(file=self.agent.stdin, flush=True)

    def end(self):
        for process in (self.agent, self.application):
            process.kill()
            process.wait()


def vouch(cookie):
    """Reports a correct password, as polkit's own setuid helper does."""
    subprocess.run(["/usr/bin/gdbus", "call", "--system", "-d", "org.freedesktop.PolicyKit1", "-o",
                    "/org/freedesktop/PolicyKit1/Authority", "-m",
                    "org.freedesktop.PolicyKit1.Authority.AuthenticationAgentResponse2", "4001", cookie,
                    "('unix-user', {'uid': <uint32 0>})"], check=False, capture_output=True)


def with_an_agent(rung):
    box = rung.sandbox
    box.stop_helper()
    session = Session(box, "cancel")
    rung.equal("before: a move", session.ask(f"move {ITEM} {AWAY}"), "201")
    rung.equal("the user cancels: granted, challenged", session.ask("check 1")[0], "0")
    rung.equal("a move", session.ask(f"move {ITEM} {AWAY}"), "201")
    session.end()

    session = Session(box, "wrong")
    session.say("check 1")
    session.prompted_cookie()
    vouch("1-not-the-cookie-1-0000")
    session.end_question()
    rung.equal("the password is wrong: granted, challenged", session.application.stdout.readline()[0], "0")
    rung.equal("a move", session.ask(f"move {ITEM} {AWAY}"), "201")
    session.end()

    session = Session(box, "grant")
    session.say("check 1")
    vouch(session.prompted_cookie())
    session.end_question()
    rung.equal("the password is right: granted", session.application.stdout.readline()[0], "1")
    rung.equal("a move", session.ask(f"move {ITEM} {AWAY}"), "0")
    rung.equal("and back over a second connection", session.ask(f"move-again {AWAY} {ITEM}"), "0")
    stranger = call(box, "MoveLaunchAgentPlist", ITEM, AWAY, uid=4001, session="s1")
    rung.equal("another process of the same user", stranger.code, 201)
    rung.equal("taken back", session.ask("revoke s1"), "revoked")
    rung.equal("a move", session.ask(f"move {ITEM} {AWAY}"), "201")
    session.end()
