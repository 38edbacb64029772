"""The daemon's own work on memory and DNS caches."""

import os
import re
import shutil
import socket
import struct
import subprocess
import threading
import time

from harness.calls import call, finish_call, start_call
from harness.rung import promise
from harness.sandbox import STANDINS, WORK, command, stuck_sync, write
from promises.rights import state_of
from waiting import wait_for

LEVER = "/proc/sys/vm/drop_caches"
MEBIBYTE = 1 << 20
PURGE_LIMIT, FLUSH_LIMIT = 20.0, 5.0  # seconds that the application waits for their answers
TOLD = re.compile(r"Freed (\d+) MiB \(page cache (\d+), slab \d+\), available [+-]\d+ MiB, [\d.]+ s")
RESOLVED = ("org.freedesktop.resolve1", "FlushCaches")


def memory():
    fields = {}
    with open("/proc/meminfo", encoding="utf-8") as file:
        for line in file:
            key, value = line.split(":")
            fields[key] = int(value.split()[0]) // 1024
    return fields


def fill_page_cache(folder, mebibytes, is_written_back):
    path = f"{folder}/filling"
    block = os.urandom(MEBIBYTE)
    with open(path, "wb") as file:
        for _ in range(mebibytes):
            file.write(block)
        if is_written_back:
            file.flush()
            os.fsync(file.fileno())
    return path


def truth_of_figures(rung):
    """Compares the daemon's figures with measurements before and after. Other programs change the memory between the
    two readings, so the closest of several tries counts. A wrong figure would be wrong in all of them. A slow disk does
    not write all of it back in the daemon's time, so from the second try on it is on the disk before the purge."""
    box = rung.sandbox
    tries = []
    for attempt in range(5):
        box.restart()
        path = fill_page_cache(f"{rung.options.source}/build", 400, is_written_back=attempt > 0)
        before = memory()
        reply = call(box, "PurgeMemory")
        after = memory()
        os.unlink(path)
        told = TOLD.fullmatch(reply.text)
        if reply.code != 0 or not told:
            continue
        freed, cache = map(int, told.groups())
        measured = before["Cached"] + before["Buffers"] - after["Cached"] - after["Buffers"]
        apart = abs(cache - measured) / max(measured, 1), abs(freed - (after["MemFree"] - before["MemFree"])) / max(freed, 1)
        tries.append((max(apart), reply.text, cache, measured, freed, after["MemFree"] - before["MemFree"], *apart))
        if max(apart) <= 0.05:
            break
    rung.figure("purges that ended with figures", len(tries), 1, at_least=True)
    _, text, cache, measured, freed, measured_free, cache_apart, free_apart = min(tries)
    rung.holds(f"it says: {text}", True)
    rung.figure(f"page cache: reported {cache} MiB, measured {measured} MiB, apart by", cache_apart * 100, 5, " %")
    rung.figure(f"free memory: reported {freed} MiB, measured {measured_free} MiB, apart by", free_apart * 100, 5, " %", busy=20)
    rung.figure("page cache gone, of the 400 MiB put there", cache, 380, " MiB", at_least=True)


@promise("P17", "The purge reports what it did")
def purge_reports_what_it_did(rung):
    box = rung.sandbox
    truth_of_figures(rung)
    box.restart()
    command("mount", "--bind", LEVER, LEVER)
    command("mount", "-o", "remount,bind,ro", LEVER)
    reply = call(box, "PurgeMemory")
    again = call(box, "PurgeMemory")
    command("umount", LEVER)
    rung.holds(f"a lever that cannot be written: {reply.code} {reply.text}", reply.code == 30)
    rung.equal("asked again at once", again.code, 30)

    box.restart(environment=stuck_sync())
    reply = call(box, "PurgeMemory")
    rung.holds(f"a disk that never answers: {reply.text}", reply.code == 0 and reply.text.endswith("still runs"))
    rung.figure("reported after", reply.seconds, 4.0, " s", busy=PURGE_LIMIT)
    threads = thread_count(box)

    def purges_again():
        again = call(box, "PurgeMemory")
        return again if not again.text.startswith("Purged ") else None

    # For five seconds a caller only gets the last purge's report. A user may make twenty requests in ten seconds.
    reply = wait_for(purges_again, "the next purge", 30, pause=0.6)
    rung.figure("the next one", reply.seconds, 4.0, " s", busy=PURGE_LIMIT)
    rung.equal("threads that hang more than before", thread_count(box) - threads, 0)


def thread_count(box):
    return len(os.listdir(f"/proc/{box.helper_pids()[0]}/task"))


class Resolver:
    def __init__(self, name, member, mode):
        self.process = subprocess.Popen(["/usr/bin/python3", f"{STANDINS}/resolver.py", name, member, mode],
                                        stdout=subprocess.PIPE, text=True)
        assert self.process.stdout.readline() == "ready\n"

    def calls(self):
        """Ends the stand-in and returns the calls that it received."""
        self.process.kill()
        return self.process.communicate()[0].splitlines()


class SocketServer:
    """Listens on a path, stores the received bytes, and answers each connection with `answer`, or never."""

    def __init__(self, path, answer):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        self.path = path
        self.received = []
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.bind(path)
        self.socket.listen()
        self.answer = answer
        self.held = []
        self.thread = threading.Thread(target=self._serve)
        self.thread.start()

    def _serve(self):
        while True:
            try:
                connection, _ = self.socket.accept()
            except OSError:
                return
            self.received.append(connection.recv(256))
            if self.answer is None:
                self.held.append(connection)
            else:
                connection.sendall(self.answer)
                connection.close()

    def end(self):
        self.socket.shutdown(socket.SHUT_RDWR)
        self.thread.join()
        self.socket.close()
        for connection in self.held:
            connection.close()
        os.unlink(self.path)


@promise("P18", "The DNS flush works with every kind of cache, and with broken ones")
def dns_flush_copes(rung):
    box = rung.sandbox
    box.restart()
    reply = call(box, "FlushDNS")
    rung.equal("no cache", (reply.code, reply.text), (0, "No local DNS cache is running"))

    for mode, code, seconds in (("fine", 0, 1.0), ("error", 5, 1.0), ("silent", 110, 2.0)):
        resolver = Resolver(*RESOLVED, mode)
        reply = call(box, "FlushDNS")
        calls = resolver.calls()
        rung.holds(f"systemd-resolved is {mode}: {reply.code} {reply.text}", reply.code == code)
        rung.figure("after", reply.seconds, seconds, " s", busy=FLUSH_LIMIT)
        rung.equal("called", calls, ["/org/freedesktop/resolve1 org.freedesktop.resolve1.Manager"])
    broken_but_activatable(rung)
    on_sockets(rung)
    by_pid_file(rung)
    not_a_hammer(rung)
    everything_silent(rung)


def broken_but_activatable(rung):
    box = rung.sandbox
    service = f"/usr/local/share/dbus-1/system-services/{RESOLVED[0]}.service"
    write(service, f"[D-BUS Service]\nName={RESOLVED[0]}\nExec=/bin/sh -c 'echo started > {WORK}/started; read line'\n"
          "User=root\n")
    command("/usr/bin/dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.DBus", "/",
            "org.freedesktop.DBus.ReloadConfig")
    reply = call(box, "FlushDNS")
    os.unlink(service)
    rung.equal("a resolver that could be started: none runs", (reply.code, reply.text),
               (0, "No local DNS cache is running"))
    rung.holds("and it was not started", not os.path.exists(f"{WORK}/started"))
    rung.figure("after", reply.seconds, 1.0, " s", busy=FLUSH_LIMIT)


def on_sockets(rung):
    box = rung.sandbox
    invalidate_hosts = struct.pack("<iii", 2, 10, 6) + b"hosts\0"
    for name, path, answer, request, code in (
            ("nscd", "/run/nscd/socket", struct.pack("<i", 0), invalidate_hosts, 0),
            ("nscd", "/run/nscd/socket", struct.pack("<i", 1), invalidate_hosts, 71),
            ("nscd", "/run/nscd/socket", None, invalidate_hosts, 110),
            ("unbound", "/run/unbound.ctl", b"ok\n", b"UBCT1 flush_zone .\n", 0),
            ("unbound", "/run/unbound.ctl", b"error no\n", b"UBCT1 flush_zone .\n", 71)):
        server = SocketServer(path, answer)
        reply = call(box, "FlushDNS")
        server.end()
        rung.holds(f"{name} answering {answer!r}: {reply.code} {reply.text}", reply.code == code and name in reply.text)
        rung.equal("was sent", server.received, [request])
        rung.figure("after", reply.seconds, 2.0, " s", busy=FLUSH_LIMIT)


def by_pid_file(rung):
    """Checks that a pid file is used only if the file's owner runs the process and the process has the right name."""
    box = rung.sandbox
    os.makedirs("/run/dnsmasq")
    program = f"{WORK}/dnsmasq"
    shutil.copy("/bin/sleep", program)
    for what, name, uid, owner, woken in (("the server", program, 4001, 4001, True),
                                          ("another user's process", program, 4002, 4001, False),
                                          ("another program", "/bin/sleep", 4001, 4001, False)):
        # The hang-up signal ends a sleep, which shows that the signal came.
        process = subprocess.Popen([*box.as_user(uid), name, "1000"])
        wait_for(lambda pid=process.pid, name=name: os.readlink(f"/proc/{pid}/exe").endswith(os.path.basename(name)),
                 "it runs")
        write("/run/dnsmasq/dnsmasq.pid", f"{process.pid}\n")
        os.chown("/run/dnsmasq/dnsmasq.pid", owner, owner)
        box.stop_helper()  # the daemon would reuse a recent flush
        reply = call(box, "FlushDNS")
        ended = process.wait(5) is not None if woken else process.poll() is not None
        rung.holds(f"a pid file that names {what}: {reply.text}", ended == woken and ("dnsmasq" in reply.text) == woken)
        process.kill()
        process.wait()
    os.unlink("/run/dnsmasq/dnsmasq.pid")
    for what, make in (("a link", lambda path: os.symlink("/proc/self/stat", path)), ("a pipe", os.mkfifo),
                       ("no number", lambda path: write(path, "x")), ("the first process", lambda path: write(path, "1"))):
        make("/run/dnsmasq/dnsmasq.pid")
        box.stop_helper()
        reply = call(box, "FlushDNS")
        os.unlink("/run/dnsmasq/dnsmasq.pid")
        rung.holds(f"a pid file that is or holds {what}: {reply.text}", reply.text == "No local DNS cache is running")
    rung.holds("the daemon is alive", state_of(box.helper_pids()[0]) is not None)


def not_a_hammer(rung):
    """Two users flush until the server, which reloads at each signal, has got a second one: 5 seconds after the first."""
    box = rung.sandbox
    box.restart()
    program = f"{WORK}/unbound"
    with open(program, "w", encoding="utf-8") as file:
        file.write("#!/usr/bin/python3\nimport signal\nprint('ready', flush=True)\nwhile True:\n"
                   "    signal.sigwait({signal.SIGHUP})\n    print('loaded', flush=True)\n")
    os.chmod(program, 0o755)
    blocked = [*box.as_user(4010), "/usr/bin/python3", "-c", "import os, signal, sys; "
               "signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGHUP}); os.execv(sys.argv[1], sys.argv[1:])", program]
    with open(f"{WORK}/loads", "wb") as file:
        server = subprocess.Popen(blocked, stdout=file)
    wait_for(lambda: printed().startswith("ready\n"), "the server is ready")
    write("/run/unbound.pid", f"{server.pid}\n")
    os.chown("/run/unbound.pid", 4010, 4010)
    box.add_session(4001, "s1")
    box.add_session(4002, "s2", active=False)
    answers = []
    start = time.monotonic()

    def has_loaded_twice():
        for uid, session in ((4001, "s1"), (4002, "s2")):
            answers.append(call(box, "FlushDNS", uid=uid, session=session))
        return printed().count("loaded") >= 2

    # A user may make twenty requests in ten seconds.
    try:
        wait_for(has_loaded_twice, "the second signal", 60, pause=0.9)
    finally:
        seconds = time.monotonic() - start
        server.kill()
        server.wait()
        os.unlink("/run/unbound.pid")
    loaded = printed().count("loaded")
    rung.equal(f"of {len(answers)} flushes by two users, those answered otherwise than as done",
               [reply for reply in answers if reply.code != 0 or "unbound" not in reply.text], [])
    rung.figure(f"signals to the server in {seconds:.1f} s, one in 5 s", loaded, 1 + int(seconds / 5))


def printed():
    """What the name server of `not_a_hammer` has printed."""
    with open(f"{WORK}/loads", encoding="utf-8") as file:
        return file.read()


def everything_silent(rung):
    box = rung.sandbox
    box.stop_helper()  # resets its limit of requests
    resolvers = [Resolver(*RESOLVED, "silent"), Resolver("uk.org.thekelleys.dnsmasq", "ClearCache", "silent"),
                 Resolver("org.freedesktop.NetworkManager.dnsmasq", "ClearCache", "silent")]
    servers = [SocketServer("/run/nscd/socket", None), SocketServer("/run/unbound.ctl", None)]
    flush = start_call(box, "FlushDNS")
    joined = start_call(box, "FlushDNS")
    replies = [finish_call(flush), finish_call(joined)]
    asked = [len(resolver.calls()) for resolver in resolvers]
    for server in servers:
        server.end()
    rung.equal("five silent caches", {reply.code for reply in replies}, {110})
    rung.figure("two callers have their answer after", max(reply.seconds for reply in replies), 4.5, " s", busy=FLUSH_LIMIT)
    rung.figure("each was asked at most", max(asked), 1)
