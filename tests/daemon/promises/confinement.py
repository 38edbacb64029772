"""The daemon's confinement, with and without a service manager."""

import ctypes
import errno
import os
import re
import shutil
import subprocess

from harness.calls import call, start_floor
from harness.machine import Machine
from harness.rung import promise
from harness.sandbox import FOLDERS, HELPER, STANDINS, WORK, command, write
from promises.rights import Sleeper
from waiting import wait_for

CAP_KILL = "0000000000000020"
NEEDED = ("write-drop_caches", "write-compact_memory", "move-in-/etc/xdg/autostart", "move-in-/etc/systemd/system",
          "move-in-/etc/systemd/user", "continue-another-users", "read-another-users-status", "unix-socket", "sync",
          "landlock")
FORBIDDEN = ("write-swappiness", "write-core_pattern", "write-passwd", "make-cron", "make-in-usr", "make-in-root",
             "list-home", "inet-socket", "netlink-socket", "mount", "new-namespace", "change-user")


def status(path):
    with open(path, encoding="utf-8") as file:
        return dict(line.rstrip("\n").split(":\t", 1) for line in file if ":\t" in line)


def check_status(rung, found):
    for field in ("CapPrm", "CapEff", "CapBnd"):
        rung.equal(f"{field} of the daemon (capability to signal alone)", found[field].strip(), CAP_KILL)
    for field in ("CapInh", "CapAmb"):
        rung.equal(f"{field} of the daemon", found[field].strip(), "0" * 16)
    rung.equal("no new privileges", found["NoNewPrivs"].strip(), "1")
    rung.equal("umask", found["Umask"].strip(), "0077")


@promise("P19", "Under the service manager, the shipped restrictions apply, and it works within them")
def walls_of_the_unit(rung):
    box = rung.sandbox
    machine = Machine(box)
    try:
        reply = machine.run(f"{WORK}/tools/vorli_helper_load", "call", "PurgeMemory")
        # A machine that is slow to write its files back is slow to forget them.
        rung.holds(f"a purge for real: {reply.split(' ', 3)[3].strip()}", reply.startswith(("answer 0 ", "answer 110 ")))
        item = "/etc/systemd/user/item.service"
        write(item, "x")
        reply = machine.run(f"{WORK}/tools/vorli_helper_load", "call", "MoveLaunchAgentPlist", item,
                            item + ".vorli-disabled")
        rung.holds(f"a move for real: {reply.strip()}", reply.startswith("answer 0 ") and os.path.exists(item + ".vorli-disabled"))
        entry = "/etc/xdg/autostart/item.desktop"
        write(entry, "[Desktop Entry]\nExec=x\n")
        reply = machine.run(f"{WORK}/tools/vorli_helper_load", "call", "MoveLaunchAgentPlist", entry,
                            entry + ".vorli-disabled")
        rung.holds(f"a desktop entry rewritten for real: {reply.strip()}", reply.startswith("answer 0 "))

        pid = machine.helper_pid()
        found = status(f"/proc/{machine.first}/root/proc/{pid}/status")
        check_status(rung, found)
        rung.equal("system calls filtered", found["Seccomp"].strip(), "2")
        report = machine.run("systemd-analyze", "security", "--no-pager", "vorli-helper.service")
        exposure = float(re.search(r"Overall exposure level for vorli-helper.service: ([0-9.]+)", report)[1])
        rung.figure("exposure by the service manager's own scale", exposure, 1.5)
        rung.holds("each request has its line in the journal", "method=PurgeMemory" in machine.journal())

        landlock_in_the_unit(rung, machine)
        probe_the_unit(rung, machine)
        starts_and_ends(rung, machine)
        foreign_environment(rung, machine)
    finally:
        machine.end()


def probe_the_unit(rung, machine):
    """The shipped unit with another program."""
    other = subprocess.Popen(machine.enter("/usr/bin/setpriv", "--reuid=4002", "--regid=4002", "--clear-groups",
                                           "/bin/sleep", "1000"))
    inside = int(wait_for(lambda: machine.run("pgrep", "-u", "4002", "sleep", check=False).strip(), "it sleeps"))
    unit = machine.run("cat", "/usr/local/lib/systemd/system/vorli-helper.service")
    unit = re.sub(r"(?m)^Type=dbus$", "Type=oneshot", unit)
    unit = re.sub(r"(?m)^(BusName|NotifyAccess)=.*\n", "", unit)
    shutil.copy(f"{STANDINS}/probe.py", WORK)
    unit = re.sub(r"(?m)^ExecStart=.*$", f"ExecStart=/usr/bin/python3 -B {WORK}/probe.py {inside}", unit)
    write(f"/proc/{machine.first}/root/run/systemd/system/probe.service", unit)
    machine.run("systemctl", "daemon-reload")
    machine.run("systemctl", "start", "probe.service", check=False)
    lines = machine.journal("probe.service").splitlines()
    other.kill()
    other.wait()
    results = dict(line.rsplit(" ", 1) for line in lines if line.endswith((" possible", " refused")))
    for name in NEEDED:
        rung.equal(name, results.get(name), "possible")
    for name in FORBIDDEN:
        rung.equal(name, results.get(name), "refused")


def starts_and_ends(rung, machine):
    machine.set_arguments("--idle-milliseconds=1")
    figures = machine.figures("cold", 30)
    # The service manager makes a namespace of a dozen mounts and a filter for each start, and waits for the bus in turn.
    slowest = max(2500, 100 * start_floor(rung.sandbox))
    rung.figure("cold start with its first ping, p99", figures["p99"] * 1000, 250, " ms", busy=slowest)
    calls = 1000 if rung.options.long else 150
    machine.set_arguments("--idle-milliseconds=30")
    figures = machine.figures("hammer", calls, 60000)
    rung.equal(f"lost of {calls} calls around an idle exit", figures["lost"], 0)
    machine.set_arguments()
    figures = machine.figures("killed", 20, 3000)
    rung.figure("killed: the next call answered, p99", figures["back_p99"] * 1000, 250, " ms", busy=slowest)
    rung.equal("unanswered of 20", figures["unanswered"], 0)


def foreign_environment(rung, machine):
    """Checks that no environment variable changes what the daemon does."""
    folder = f"/proc/{machine.first}/root/run/systemd/system/vorli-helper.service.d"
    names = ("DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS", "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE",
             "SYSTEMD_BUS_TIMEOUT", *found_names(HELPER))
    write(f"{folder}/environment.conf",
          "[Service]\n" + "".join(f"Environment={name}=system\n" for name in names))
    machine.run("systemctl", "daemon-reload")
    machine.run("systemctl", "stop", "vorli-helper.service")
    reply = machine.run(f"{WORK}/tools/vorli_helper_load", "call", "Ping")
    rung.holds(f"with {len(names)} variables set it serves the same bus", reply.startswith("answer"))
    refused = machine.run("/usr/bin/setpriv", "--reuid=4001", "--regid=4001", "--clear-groups",
                          f"{WORK}/tools/vorli_helper_load", "call", "MoveLaunchAgentPlist",
                          "/etc/systemd/user/item.service.vorli-disabled", "/etc/systemd/user/item.service")
    rung.holds("and refuses the same", refused.startswith("answer 200 "))


def found_names(program):
    """All words in the program that look like a variable of Vorli or of the bus library."""
    text = command("/usr/bin/strings", program)
    return sorted(set(re.findall(r"(?m)^(?:VORLI|DBUS|SDBUS|SD_BUS)_[A-Z_]+$", text)))


@promise("P20", "Restricted without a service manager as well")
def narrow_by_itself(rung):
    box = rung.sandbox
    box.restart(with_polkit=False)
    call(box, "Ping")
    pid = box.helper_pids()[0]
    check_status(rung, status(f"/proc/{pid}/status"))
    limits = open(f"/proc/{pid}/limits", encoding="utf-8").read()
    rung.equal("core files", re.search(r"Max core file size\s+(\S+)\s+(\S+)", limits).groups(), ("0", "0"))
    rung.equal("files", re.search(r"Max open files\s+(\S+)\s+(\S+)", limits).groups(), ("128", "128"))
    # /proc shows the environment at the start; only the daemon's behaviour shows what is left of it.
    sleeper = Sleeper(box, 4002)
    rung.holds("it still continues nobody else's processes",
               call(box, "KillPID", sleeper.pid, 19, uid=4001).code == 1 and sleeper.is_stopped)
    sleeper.end()
    within_landlock(rung)


def landlock_version(rung):
    version = ctypes.CDLL(None).syscall(444, None, 0, 1)  # landlock_create_ruleset
    rung.holds(f"Landlock of this kernel: {f'version {version}' if version > 0 else 'none, nothing more to show'}", True)
    return version


def landlock_in_the_unit(rung, machine):
    """Checks Landlock in the unit: a folder under an allowed name that came after the start is not an allowed one."""
    version = landlock_version(rung)
    item = f"{FOLDERS[2]}/late.service"
    pid = machine.helper_pid()
    inside = ["/usr/bin/nsenter", f"--target={pid}", "--mount"]
    machine.run(*inside, "/bin/mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", FOLDERS[2])
    machine.run(*inside, "/bin/sh", "-c", f"echo x > {item} && chmod 644 {item}")
    reply = machine.run(f"{WORK}/tools/vorli_helper_load", "call", "MoveLaunchAgentPlist", item, item + ".vorli-disabled")
    rung.equal("a move in a folder that came after its start", reply.split()[:2],
               ["answer", str(errno.EACCES) if version > 0 else "0"])
    rung.equal("by the same daemon", machine.helper_pid(), pid)
    machine.run("systemctl", "stop", "vorli-helper.service")


def within_landlock(rung):
    """Checks Landlock: the daemon may not write to another folder under an allowed name."""
    box = rung.sandbox
    version = landlock_version(rung)
    box.start_polkit()
    item = f"{FOLDERS[2]}/item.service"
    command("mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", FOLDERS[2])
    write(item, "x")
    reply = call(box, "MoveLaunchAgentPlist", item, item + ".vorli-disabled")
    moved = os.path.exists(item + ".vorli-disabled")
    command("umount", FOLDERS[2])
    rung.equal("a move in a folder that came after its start", (reply.code, moved),
               (errno.EACCES, False) if version > 0 else (0, True))
    write(item, "x")
    rung.equal("and in the one that was there", call(box, "MoveLaunchAgentPlist", item, item + ".vorli-disabled").code, 0)
