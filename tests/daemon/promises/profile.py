"""The AppArmor profile that comes with the package."""

import os
import re
import subprocess

from harness.apparmor import Profile
from harness.calls import call
from harness.machine import Machine
from harness.rung import promise
from harness.sandbox import FOLDERS, WORK, command, with_harmless_levers, write
from promises.rights import Sleeper
from promises.work import RESOLVED, Resolver, SocketServer
from waiting import wait_for

TRACE = f"{WORK}/profile-trace"
AWAY = ".vorli-disabled"
SYSTEMD = "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager"
OUT_OF_REACH = (
    (*SYSTEMD, "StartTransientUnit"), (*SYSTEMD, "StartUnit"), (*SYSTEMD, "EnableUnitFiles"), (*SYSTEMD, "Reload"),
    ("/org/freedesktop/systemd1", "org.freedesktop.DBus.Properties", "Set"),
    ("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PowerOff"),
    ("/org/freedesktop/PolicyKit1/Authority", "org.freedesktop.PolicyKit1.Authority", "AuthenticationAgentResponse2"),
    ("/org/freedesktop/DBus", "org.freedesktop.DBus", "StartServiceByName"),
    ("/org/freedesktop/DBus", "org.freedesktop.DBus", "UpdateActivationEnvironment"))
FORBIDDEN_FILES = (("/etc/passwd", "w"), ("/etc/shadow", "r"), ("/etc/cron.d/job", "w"), ("/root/.ssh/id", "r"),
                   ("/run/systemd/private", "w"), ("/run/systemd/system/a.service", "w"), ("/dev/sda", "r"),
                   ("/etc/systemd/system/a.target", "w"), ("/etc/systemd/system/a.wants/b.service", "w"),
                   ("/etc/xdg/autostart/notes.txt", "w"), ("/usr/libexec/vorli/vorli-helper", "w"),
                   ("/proc/sys/kernel/core_pattern", "w"))


@promise("P32", "The AppArmor profile allows what the daemon needs, and keeps the service manager out of its reach")
def profile_is_right(rung):
    path = f"{rung.options.source}/packaging/linux/vorli-helper.apparmor"
    done = subprocess.run(["/usr/sbin/apparmor_parser", "--skip-kernel-load", "--skip-cache", path], capture_output=True,
                          text=True)
    rung.holds(f"AppArmor's own parser takes it{done.stderr if done.returncode else ''}", done.returncode == 0)
    profile = Profile(path)
    rung.equal("capabilities", sorted(rule for rule in profile.rules if rule.startswith("capability")),
               ["capability kill", "capability setpcap"])
    rung.equal("rules that let it reach a network", [rule for rule in profile.rules if rule.startswith("network")], [])
    rung.equal("calls that it must not send, and could",
               [fields for fields in OUT_OF_REACH if may_send(profile, *fields)], [])
    rung.equal("files that it must not touch, and could",
               [entry for entry in FORBIDDEN_FILES if profile.allows_file(*entry)], [])
    leaves_what_it_needs(rung, profile)
    in_the_kernel(rung, path)


def may_send(profile, path, interface, member):
    return profile.allows_message("send", path=path, interface=interface, member=member)


def leaves_what_it_needs(rung, profile):
    """Everything that the daemon opens and sends while each of its methods does its work."""
    box = rung.sandbox
    wrapper = f"{WORK}/traced.sh"
    write(wrapper, f'#!/bin/sh\nexec /usr/bin/strace -f -q -y -o {TRACE} '
          '-e trace=open,openat,connect,renameat2,unlinkat "$@"\n', 0o755)
    box.restart(environment=[wrapper], allow_everything=True)
    with_harmless_levers()
    monitor = subprocess.Popen(["/usr/bin/dbus-monitor", "--system", "--profile"], stdout=subprocess.PIPE, text=True)
    assert monitor.stdout.readline().startswith("#type")
    done = do_everything(box)
    names = unique_names(box.helper_pids())
    box.terminate_helper()
    monitor.terminate()
    sent, received = seen_messages(monitor.communicate()[0], names)

    rung.equal("each method has done its work", done, {"Ping": True, "PurgeMemory": 0, "FlushDNS": 0, "KillPID": 0,
                                                      "DumpBTM": 203, "moves": {0}})
    rung.figure("connections to the bus that were listened to", len(names), 2, at_least=True)
    rung.holds(f"of {len(sent)} kinds of calls that it sends, the question to polkit is one",
               any(member == "CheckAuthorization" for _, _, member in sent))
    rung.equal("those that the profile refuses", [fields for fields in sorted(sent) if not may_send(profile, *fields)], [])
    rung.equal("calls that reach it and that the profile refuses",
               [(path, interface, member) for path, interface, member in sorted(received)
                if not profile.allows_message("receive", path=path, interface=interface, member=member)], [])
    files = touched_files() - {(box.helper_log, "w")}  # elsewhere, standard error is a journal's socket
    rung.figure("files that it opens, changes or connects to", len(files), 30, at_least=True)
    rung.equal("those that the profile refuses", [entry for entry in sorted(files) if not profile.allows_file(*entry)], [])


def do_everything(box):
    entry, unit = f"{FOLDERS[0]}/entry.desktop", f"{FOLDERS[1]}/unit@one.service"
    write(entry, "[Desktop Entry]\nType=Application\nName=Entry\nExec=/bin/true\n")
    write(unit, "[Service]\nExecStart=/bin/true\n")
    box.add_session(4001, "s1")
    resolvers = [Resolver(*RESOLVED, "fine"), Resolver("uk.org.thekelleys.dnsmasq", "ClearCache", "fine"),
                 Resolver("org.freedesktop.NetworkManager.dnsmasq", "ClearCache", "fine")]
    server = SocketServer("/run/nscd/socket", b"\0\0\0\0")
    write("/run/unbound.pid", "1")
    sleeper = Sleeper(box, 4001)
    caller = {"uid": 4001, "session": "s1"}
    done = {"Ping": call(box, "Ping").answered}
    for method, arguments in (("PurgeMemory", ()), ("FlushDNS", ()), ("KillPID", (sleeper.pid, 19)), ("DumpBTM", ())):
        done[method] = call(box, method, *arguments, **caller).code
    done["moves"] = {call(box, "MoveLaunchAgentPlist", *way, **caller).code
                     for item in (entry, unit) for way in ((item, item + AWAY), (item + AWAY, item))}
    sleeper.end()
    server.end()
    for resolver in resolvers:
        resolver.calls()
    os.unlink("/run/unbound.pid")
    return done


def ask_bus(member, *arguments):
    return command("/usr/bin/gdbus", "call", "--system", "-d", "org.freedesktop.DBus", "-o", "/org/freedesktop/DBus", "-m",
                   f"org.freedesktop.DBus.{member}", *arguments)


def unique_names(pids):
    """Names of those processes' connections on the bus."""
    found = set()
    for name in re.findall(r"':1\.\d+'", ask_bus("ListNames")):
        try:
            owner = ask_bus("GetConnectionUnixProcessID", name.strip("'"))
        except AssertionError:  # it has ended in the meantime
            continue
        if int(re.search(r"uint32 (\d+)", owner)[1]) in pids:
            found.add(name.strip("'"))
    return found


def seen_messages(text, names):
    """Calls that connections of these names have sent, and calls to them: path, interface and member of each."""
    sent, received = set(), set()
    for line in text.splitlines():
        fields = line.split("\t")
        if fields[0] != "mc":
            continue
        _, _, _, sender, destination, *what = fields
        if sender in names:
            sent.add(tuple(what))
        elif destination in names or destination == "com.kv.vorli.helper":
            received.add(tuple(what))
    return sent, received


def touched_files():
    """Path and access of everything opened, renamed, removed or connected to, as the kernel resolved it."""
    touched = set()
    with open(TRACE, encoding="utf-8") as file:
        for line in file:
            if found := re.search(r' connect\(.* sun_path="([^"]+)"\}, \d+\) = 0', line):
                touched.add((found[1], "rw"))
            elif found := re.search(r" renameat2\(\d+<([^>]+)>, \"([^\"]+)\", \d+<[^>]+>, \"([^\"]+)\", .*\) = 0", line):
                touched |= {(f"{found[1]}/{found[2]}", "rw"), (f"{found[1]}/{found[3]}", "rw")}
            elif found := re.search(r" unlinkat\(\d+<([^>]+)>, \"([^\"]+)\", 0\) = 0", line):
                touched.add((f"{found[1]}/{found[2]}", "w"))
            elif found := re.search(r" open(?:at)?\(.*(O_RDONLY|O_WRONLY|O_RDWR)(\S*?)(?:, \d+)?\) = \d+<(/[^>]*)>", line):
                mode, flags, path = found.groups()
                if "O_PATH" in flags:  # O_PATH opens only a name
                    continue
                is_folder = "O_DIRECTORY" in flags and path != "/"
                access = {"O_RDONLY": "r", "O_WRONLY": "w", "O_RDWR": "rw"}[mode]
                touched.add((path + "/" if is_folder else path, access))
    return touched


def in_the_kernel(rung, path):
    """Checks the same with the kernel and the bus, if the kernel has AppArmor."""
    if not os.path.exists("/sys/kernel/security/apparmor/.load"):
        rung.holds("AppArmor of this kernel: none, nothing more to show", True)
        return
    name = "vorli-helper-tested"
    tested = f"{WORK}/{name}"
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"(?m)^profile .*\{$", f"profile {name} {{\n  /usr/bin/busctl mr,", file.read())
    write(tested, text)
    command("/usr/sbin/apparmor_parser", "--replace", "--skip-cache", tested)
    machine = Machine(rung.sandbox)
    try:
        confined = ["/usr/bin/aa-exec", "-p", name, "--"]
        reply = subprocess.run(machine.enter(*confined, "/usr/bin/busctl", "call", "org.freedesktop.DBus",
                                             "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"), capture_output=True)
        rung.equal("from inside, the bus itself is reached: the exit", reply.returncode, 0)
        for who, words in (("outside", []), ("inside", confined)):
            started = f"{WORK}/started-from-{who}"
            unit = (f"{who}.service", "fail", "1", "ExecStart", "a(sasb)", "1", "/usr/bin/touch", "2", "touch", started,
                    "false", "0")
            subprocess.run(machine.enter(*words, "/usr/bin/busctl", "call", "org.freedesktop.systemd1", *SYSTEMD,
                                         "StartTransientUnit", "ssa(sv)a(sa(sv))", *unit), capture_output=True)
            if who == "outside":
                wait_for(lambda file=started: os.path.exists(file), "the transient unit runs")
        rung.holds("from inside, StartTransientUnit is refused", not os.path.exists(f"{WORK}/started-from-inside"))
    finally:
        machine.end()
        command("/usr/sbin/apparmor_parser", "--remove", tested)
