"""Pausing an item must not activate another one, and a moved item must keep its attributes."""

import errno
import os
import shutil
import subprocess

from harness.calls import call
from harness.machine import Machine
from harness.rung import promise
from harness.sandbox import FOLDERS, TOOLS, WORK, command, write
from promises.load import status
from waiting import wait_for

AUTOSTART, SYSTEM_UNITS, USER_UNITS = FOLDERS
AWAY = ".vorli-disabled"
ENTRY = "[Desktop Entry]\nType=Application\nName=Item\nExec=/bin/true\n"
VENDOR = "[Service]\nType=oneshot\nExecStart=/bin/sh -c 'echo vendor > {started}'\n"
HARDENED = "[Service]\nType=oneshot\nExecStart=/bin/true\nNoNewPrivileges=yes\n"


@promise("P29", "Putting an item away never starts anything, whoever may do it")
def starts_nothing(rung):
    in_every_folder(rung)
    with_a_service_manager(rung)


def in_every_folder(rung):
    """Checks items that no user may move, although every user may move others."""
    box = rung.sandbox
    box.restart(allow_everything=True)
    planted = []

    def plant(path, text="[Unit]\n"):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        write(path, text)
        planted.append(path)
        return path

    cases = {"an empty unit": (plant(f"{SYSTEM_UNITS}/empty.service", ""), "mask"),
             "an empty unit of users": (plant(f"{USER_UNITS}/empty.timer", ""), "mask")}
    link = f"{SYSTEM_UNITS}/masked.service"
    os.symlink("/dev/null", link)
    cases["a link to /dev/null"] = link, "mask"
    # Folders that the tests may write to; the others in the list are similar.
    for number, folder in enumerate(("/run/systemd/system", "/usr/local/lib/systemd/system", "/run/systemd/generator",
                                     "/run/systemd/generator.late", "/run/systemd/transient")):
        name = f"two{number}.service"
        cases[f"a unit that {folder} has as well"] = plant(f"{SYSTEM_UNITS}/{name}"), plant(f"{folder}/{name}")
    for number, folder in enumerate(("/run/systemd/user", "/usr/local/lib/systemd/user")):
        name = f"two{number}.socket"
        cases[f"a unit of users that {folder} has as well"] = plant(f"{USER_UNITS}/{name}"), plant(f"{folder}/{name}")
    shipped = next(name for name in sorted(os.listdir("/lib/systemd/system"))
                   if name.endswith(".service") and "@" not in name and os.path.isfile(f"/lib/systemd/system/{name}"))
    cases[f"an override of {shipped}"] = plant(f"{SYSTEM_UNITS}/{shipped}"), f"/systemd/system/{shipped} would start"
    cases["an instance whose template is elsewhere"] = (plant(f"{SYSTEM_UNITS}/getty@vorli.service"), "getty@.service")
    cases["an instance beside its template"] = (plant(f"{SYSTEM_UNITS}/own@vorli.service"),
                                                plant(f"{SYSTEM_UNITS}/own@.service"))
    command("mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", "/etc/init.d")
    cases["a service with an init script"] = plant(f"{SYSTEM_UNITS}/old.service"), plant("/etc/init.d/old")
    cases["a service with an init script that ends in .sh"] = (plant(f"{SYSTEM_UNITS}/older.service"),
                                                               plant("/etc/init.d/older.sh"))
    cases["an entry that another folder has as well"] = (plant(f"{AUTOSTART}/two.desktop", ENTRY),
                                                         plant("/usr/local/share/autostart/two.desktop", ENTRY))
    for what, (path, why) in cases.items():
        reply = call(box, "MoveLaunchAgentPlist", path, path + AWAY, uid=4001)
        stays = os.path.lexists(path) and not os.path.lexists(path + AWAY)
        rung.holds(f"{what}: refused ({reply.code} {reply.text})", reply.code == 1 and stays and why in reply.text)
        box.stop_helper()  # its limits would refuse so many
    command("umount", "/etc/init.d")
    for path in planted:
        if os.path.exists(path):
            os.unlink(path)
    plain = plant(f"{SYSTEM_UNITS}/plain@vorli.service")
    rung.equal("a unit that nothing takes the place of", call(box, "MoveLaunchAgentPlist", plain, plain + AWAY, uid=4001).code, 0)
    newer = f"/run/systemd/system/{os.path.basename(plain)}"
    for what, make in (("a mask", lambda: os.symlink("/dev/null", newer)), ("another definition", lambda: plant(newer))):
        make()
        reply = call(box, "MoveLaunchAgentPlist", plain + AWAY, plain, uid=4001)
        os.unlink(newer)
        rung.holds(f"{what} that came meanwhile is not overridden ({reply.code} {reply.text})",
                   reply.code == 1 and newer in reply.text and not os.path.exists(plain))
    rung.equal("without them, it is brought back", call(box, "MoveLaunchAgentPlist", plain + AWAY, plain, uid=4001).code, 0)


def with_a_service_manager(rung):
    machine = Machine(rung.sandbox)
    try:
        rung.sandbox.allow_everything()
        started = f"{WORK}/vendor-started"
        root = f"/proc/{machine.first}/root"
        for name in ("masked", "hardened"):
            write(f"{root}/run/systemd/system/{name}.service", VENDOR.format(started=started))
        write(f"{SYSTEM_UNITS}/masked.service", "")
        write(f"{SYSTEM_UNITS}/hardened.service", HARDENED)
        for name in ("masked", "hardened"):
            path = f"{SYSTEM_UNITS}/{name}.service"
            reply = machine.run(*rung.sandbox.as_user(4001), f"{TOOLS}/vorli_helper_load", "call", "MoveLaunchAgentPlist",
                                path, path + AWAY)
            rung.holds(f"{name}: any user's move is refused: {reply.strip()}", reply.startswith("answer 1 "))
        machine.run("systemctl", "daemon-reload")
        state = machine.run("systemctl", "show", "-P", "LoadState", "masked.service").strip()
        rung.equal("the mask masks", state, "masked")
        rung.equal("what hardened.service runs with", machine.run("systemctl", "show", "-P", "NoNewPrivileges",
                                                                  "hardened.service").strip(), "yes")
        subprocess.run(machine.enter("systemctl", "start", "masked.service", "hardened.service"), capture_output=True)
        rung.holds("the vendor's command did not run", not os.path.exists(started))
    finally:
        machine.end()
        for name in os.listdir(SYSTEM_UNITS):
            os.unlink(f"{SYSTEM_UNITS}/{name}")


@promise("P30", "A rewritten entry keeps its attributes and its access list, and no other file is removed")
def keeps_what_it_has(rung):
    box = rung.sandbox
    box.restart()
    folder = on_a_disk(rung)  # before the daemon starts and confines itself to the existing folders
    path = f"{AUTOSTART}/kept.desktop"
    write(path, ENTRY)
    os.chmod(path, 0o640)
    os.setxattr(path, "user.note", b"a note")
    os.setxattr(path, "system.posix_acl_access", access_list(4001))
    before = attributes(path)
    rung.figure("attributes that it has, the access list among them", len(before), 2, at_least=True)
    rung.equal("put away", call(box, "MoveLaunchAgentPlist", path, path + AWAY).code, 0)
    rung.equal("its attributes", attributes(path + AWAY), before)
    rung.equal("its mode", os.stat(path + AWAY).st_mode & 0o7777, 0o640)
    rung.equal("brought back", call(box, "MoveLaunchAgentPlist", path + AWAY, path).code, 0)
    rung.equal("its attributes", attributes(path), before)

    os.chown(path, 0, 4001)
    reply = call(box, "MoveLaunchAgentPlist", path, path + AWAY)
    rung.holds(f"of a group that cannot be given on: {reply.code} {reply.text}",
               reply.code == 1 and "group" in reply.text and os.path.exists(path))
    os.chown(path, 0, 0)

    foreign = [f"{AUTOSTART}/{name}" for name in (".notes.vorli-new", ".kept.desktop.vorli-new", ".kept.desktop.1.vorli-new",
                                                  ".kept.desktop.x.vorli-new", "..vorli-new", ".1.vorli-new")]
    for other in foreign:
        write(other, "root's own")
    own = f"{AUTOSTART}/.kept.desktop.{os.stat(path).st_ino}.vorli-new"
    write(own, "left by a daemon that was killed")
    rung.equal("with files of similar names about, put away", call(box, "MoveLaunchAgentPlist", path, path + AWAY).code, 0)
    rung.equal("of root's own files, those that were removed", [other for other in foreign if not os.path.exists(other)], [])
    rung.holds("what a killed daemon left is removed", not os.path.exists(own))
    command("umount", AUTOSTART)
    shutil.rmtree(folder)


@promise("P33", "A refusal by the disk is reported as it is, and nothing is left half done")
def reported_as_it_is(rung):
    box = rung.sandbox
    box.restart()
    unit, entry = f"{USER_UNITS}/unit.service", f"{AUTOSTART}/entry.desktop"
    write(unit, "[Service]\nExecStart=/bin/true\n")
    write(entry, ENTRY)
    failed_at_last = 0, "Moved, but not safely on disk: Input/output error"
    # Result of a move whose writes to disk fail from the given one on. A unit's move writes only its folder, an
    # entry's move writes the new content before that.
    for path, ending, first, answer in ((unit, AWAY, 1, failed_at_last), (unit, "", 1, failed_at_last),
                                        (entry, AWAY, 1, (errno.EIO, "Input/output error")),
                                        (entry, AWAY, 2, failed_at_last), (entry, "", 1, (errno.EIO, "Input/output error")),
                                        (entry, "", 2, failed_at_last)):
        source, target = (path, path + AWAY) if ending else (path + AWAY, path)
        reply = moved_without_disk(box, source, target, first)
        what = f"{os.path.basename(source)} to {os.path.basename(target)}, writes fail from no. {first} on"
        rung.equal(f"{what}: the answer", (reply.code, reply.text), answer)
        rung.equal("the item is at", [one for one in (source, target) if os.path.exists(one)],
                   [target if reply.code == 0 else source])
        rung.equal("other files in the folder", len(os.listdir(os.path.dirname(path))), 1)
    with open(entry, encoding="utf-8") as file:
        rung.holds("in the end the entry is what it was", file.read() == ENTRY)


def moved_without_disk(box, source, target, first):
    call(box, "Ping")
    pid = box.helper_pids()[0]
    tracer = subprocess.Popen(["/usr/bin/strace", "-f", "-q", "-o", "/dev/null", "-e", "trace=fsync", "-e",
                               f"inject=fsync:error=EIO:when={first}+", "-p", str(pid)], stderr=subprocess.DEVNULL)
    tasks = f"/proc/{pid}/task"
    wait_for(lambda: all(status(task, "TracerPid", tasks) for task in os.listdir(tasks)), "all its threads are traced")
    reply = call(box, "MoveLaunchAgentPlist", source, target)
    tracer.terminate()
    tracer.wait()
    return reply


def on_a_disk(rung):
    """Replaces the folder of autostart entries by one on a file system that has user attributes."""
    folder = f"{rung.options.source}/build/helper-autostart"
    shutil.rmtree(folder, ignore_errors=True)
    os.mkdir(folder, 0o755)
    command("mount", "--bind", folder, AUTOSTART)
    return folder


def attributes(path):
    return {name: os.getxattr(path, name) for name in os.listxattr(path)}


def access_list(uid, rights=4):
    """An access list of version 2: the owner may read and write, the user has `rights`, the group reads, others none."""
    nobody = 0xffffffff
    entries = ((0x01, 6, nobody), (0x02, rights, uid), (0x04, 4, nobody), (0x10, rights, nobody), (0x20, 0, nobody))
    return (2).to_bytes(4, "little") + b"".join(
        tag.to_bytes(2, "little") + right.to_bytes(2, "little") + who.to_bytes(4, "little") for tag, right, who in entries)
