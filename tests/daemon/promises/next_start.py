"""A real service manager starts and logs in again: what is paused for everybody waits until it is resumed."""

import os
import shutil
import socket
from contextlib import contextmanager

from harness.machine import Machine
from harness.rung import promise
from harness.sandbox import FOLDERS, NAME, TOOLS, WORK, command, write
from waiting import settled, wait_for

_, SYSTEM_UNITS, USER_UNITS = FOLDERS
PACKAGED, LOCAL = "/usr/lib/systemd/system", "/usr/local/lib/systemd/system"
AWAY = ".vorli-disabled"
USER = 4001
STARTED, HOME, DOOR, PRIVATE = f"{WORK}/started", f"{WORK}/home", f"{WORK}/door", f"{WORK}/packaged"
RULES = "/etc/polkit-1/rules.d/50-test.rules"
SERVICE = """[Unit]
Description=Example {name}
[Service]
Type=oneshot
RemainAfterExit=yes
ExecStart=/usr/bin/touch {started}/{name}
"""
TRIGGERS = {"timer": "OnActiveSec=0", "path": "PathExists=/", "socket": f"ListenStream={DOOR}"}
# The user's manager as a login starts it, but without PAM.
LOGIN = f"""[Service]
Type=notify
User={USER}
ExecStart=/lib/systemd/systemd --user
Environment=HOME={HOME} XDG_RUNTIME_DIR=/run/vorli-user
RuntimeDirectory=vorli-user
RuntimeDirectoryMode=0700
Delegate=yes
"""

# The service of each item, and the folder of its file. The helper moves the files in /etc.
OWN = {"example-own": SYSTEM_UNITS, "example-nightly": SYSTEM_UNITS, "example-watcher": SYSTEM_UNITS,
       "example-doorman": SYSTEM_UNITS, "example-shared": USER_UNITS}
# The service manager masks the units of packages.
PACKAGES = {"example-packaged": PACKAGED, "example-cleaning": PACKAGED, "example-local": LOCAL}
TRIGGERED = {"example-nightly": "timer", "example-watcher": "path", "example-doorman": "socket",
             "example-cleaning": "timer"}
NEVER_PAUSED = {"example-always": SYSTEM_UNITS, "example-always-shared": USER_UNITS}


def plant():
    """Writes the units, each enabled by a link in /etc."""
    for name, folder in {**OWN, **PACKAGES, **NEVER_PAUSED}.items():
        os.makedirs(folder, exist_ok=True)
        write(f"{folder}/{name}.service", SERVICE.format(name=name, started=STARTED))
        kind = TRIGGERED.get(name, "service")
        if kind != "service":
            write(f"{folder}/{name}.{kind}", f"[Unit]\nDescription=Example\n[{kind.capitalize()}]\n{TRIGGERS[kind]}\n")
        users = f"{USER_UNITS}/default.target.wants"
        links = users if folder == USER_UNITS else f"{SYSTEM_UNITS}/vorli-test.target.wants"
        os.makedirs(links, exist_ok=True)
        os.symlink(f"{folder}/{name}.{kind}", f"{links}/{name}.{kind}")


def identifier(name):
    """The item's identifier in the program's list."""
    return f"{name}.service" + ("" if {**OWN, **NEVER_PAUSED}.get(name) == USER_UNITS else "@system")


def files():
    """Every file that starts a unit or prevents that, by path: inode, mode, owner, time and content."""
    found = {}
    for top in (SYSTEM_UNITS, USER_UNITS, PACKAGED, LOCAL):
        for folder, _, names in os.walk(top):
            for path in (f"{folder}/{name}" for name in names if not name.startswith("vorli-")):
                info = os.lstat(path)
                content = None
                if os.path.islink(path):
                    content = os.readlink(path)
                elif os.path.isfile(path):
                    with open(path, "rb") as file:
                        content = file.read()
                found[path] = (info.st_ino, info.st_mode, info.st_uid, info.st_mtime_ns, content)
    return found


@contextmanager
def booted(box):
    """A machine that has just started and whose user has logged in."""
    for name in os.listdir(STARTED):
        os.unlink(f"{STARTED}/{name}")
    machine = Machine(box)
    try:
        write(f"/proc/{machine.first}/root/run/systemd/system/vorli-login.service", LOGIN)
        machine.run("systemctl", "daemon-reload")
        machine.run("systemctl", "start", "vorli-login.service")
        yield machine
    finally:
        machine.end()


def knock():
    """Connects to the socket of the unit that waits for that; without the unit, nobody listens."""
    with socket.socket(socket.AF_UNIX) as caller:
        try:
            caller.connect(DOOR)
        except OSError:
            return


def started(rung, machine, expected):
    """Waits for the expected services, and until nothing more is being started; returns all that have been started."""
    def are_there():
        knock()
        return expected <= set(os.listdir(STARTED))

    wait_for(are_there, f"started: {', '.join(sorted(expected))}", 60, pause=0.1)

    def at_rest():
        knock()
        return None if jobs(rung, machine) else sorted(os.listdir(STARTED))

    return settled(at_rest, "nothing more is being started", 60)


def jobs(rung, machine):
    """What the system's and the user's service manager still have to do for the examples."""
    listed = ("list-jobs", "--no-legend", "example-*")
    of_the_system = machine.run("/usr/bin/systemctl", *listed)
    of_the_user = machine.run("/usr/bin/env", "-i", "XDG_RUNTIME_DIR=/run/vorli-user", *rung.sandbox.as_user(USER),
                              "/usr/bin/systemctl", "--user", *listed)
    return [line for line in (of_the_system + of_the_user).splitlines() if "example-" in line]


def as_user(rung, machine, tool, *words):
    environment = ("/usr/bin/env", "-i", f"HOME={HOME}", "PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8")
    return machine.run(*environment, *rung.sandbox.as_user(USER), f"{TOOLS}/{tool}", *words)


def press(rung, machine, verb):
    """Pauses or resumes everything: items of packages as the program does, the others by the helper alone."""
    for name in PACKAGES:
        as_user(rung, machine, "vorli_startup_probe", verb, identifier(name))
    for name, folder in OWN.items():
        path = f"{folder}/{name}.service"
        way = (path, path + AWAY) if verb == "pause" else (path + AWAY, path)
        reply = as_user(rung, machine, "vorli_helper_load", "call", "MoveLaunchAgentPlist", *way)
        rung.holds(f"{verb} {name}: {reply.strip()}", reply.startswith("answer 0 "))


def shown(rung, machine, state):
    """Compares the program's list with that state of the items that are pressed."""
    lines = as_user(rung, machine, "vorli_startup_probe", "list").splitlines()
    rows = dict(line.split("\t") for line in lines)
    wanted = {identifier(name): state for name in (*OWN, *PACKAGES)} | {identifier(name): "on" for name in NEVER_PAUSED}
    rung.equal(f"the list shows them {state}", {row: rows.get(row) for row in wanted}, wanted)


def pause_and_resume(rung):
    box = rung.sandbox
    plant()
    everything = {*OWN, *PACKAGES, *NEVER_PAUSED}
    before = files()
    with booted(box) as machine:
        rung.equal("at first, everything starts", started(rung, machine, everything), sorted(everything))
        shown(rung, machine, "on")
        press(rung, machine, "pause")
        shown(rung, machine, "off")
    with booted(box) as machine:
        rung.equal("paused, at the next start and login", started(rung, machine, set(NEVER_PAUSED)), sorted(NEVER_PAUSED))
        shown(rung, machine, "off")
        press(rung, machine, "resume")
        shown(rung, machine, "on")
    after = files()
    rung.equal("resumed: files and links that are not what they were",
               sorted(path for path in before.keys() | after.keys() if before.get(path) != after.get(path)), [])
    with booted(box) as machine:
        rung.equal("and at the start after that", started(rung, machine, everything), sorted(everything))


@promise("P35", "What is paused for everybody stays off at the next start and login, and is resumed as it was")
def waits_until_resumed(rung):
    rung.sandbox.clear_folders()
    for folder in (STARTED, HOME):
        os.makedirs(folder)
    os.chmod(STARTED, 0o1777)
    os.chown(HOME, USER, USER)
    shutil.copytree(PACKAGED, PRIVATE, symlinks=True)
    command("mount", "--bind", PRIVATE, PACKAGED)
    write(RULES, "polkit.addRule(function(action, subject) {\n"
          f'  if (action.id == "org.freedesktop.systemd1.manage-unit-files" || action.id.indexOf("{NAME}.") == 0)\n'
          "    return polkit.Result.YES;\n});\n")
    try:
        pause_and_resume(rung)
    finally:
        command("umount", PACKAGED)
        rung.sandbox.clear_folders()
        for path in (RULES, f"{LOCAL}/example-local.service", DOOR):
            if os.path.lexists(path):
                os.unlink(path)
        for folder in (STARTED, HOME, PRIVATE):
            shutil.rmtree(folder)
