"""The script that registers the daemon of an unpackaged program, and takes it off again."""

import os
import select
import subprocess

from harness.calls import call
from harness.rung import promise
from harness.sandbox import HELPER, NAME, SERVICE_FILE, WORK, command
from harness.waiting import wait_for
from promises.authority import STANDINS, vouch

FILES = (HELPER, SERVICE_FILE, f"/etc/dbus-1/system.d/{NAME}.conf", f"/usr/share/polkit-1/actions/{NAME}.policy",
         "/usr/local/lib/systemd/system/vorli-helper.service")


def can_be_started():
    names = command("/usr/bin/gdbus", "call", "--system", "-d", "org.freedesktop.DBus", "-o", "/org/freedesktop/DBus", "-m",
                    "org.freedesktop.DBus.ListActivatableNames")
    return f"'{NAME}'" in names


def traces():
    """What tells whether a file was written anew."""
    return [(path, os.stat(path).st_ino, os.stat(path).st_mtime_ns) for path in FILES]


def through_pkexec(box, script, mode):
    """As the program runs it for its user, whose agent refuses or has the right password."""
    pipes = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "text": True}
    user = box.as_user(4001, "s1")
    agent = subprocess.Popen([*user, "/usr/bin/python3", f"{STANDINS}/agent.py", "s1", mode], **pipes)
    assert agent.stdout.readline() == "registered\n"
    # It asks for the process that started it, which has to be in the session.
    done = subprocess.Popen([*user, "/bin/sh", "-c", '"$@"; exit $?', "sh", "/usr/bin/pkexec", script], **pipes)
    if mode == "grant":
        wait_for(lambda: select.select([agent.stdout], [], [], 0)[0], 20, "the agent is asked", 0.01)
        vouch(agent.stdout.readline().split()[1])
        print(file=agent.stdin, flush=True)
    done.communicate(timeout=20)
    agent.kill()
    agent.communicate()
    return done.returncode


@promise("P22b", "An unpackaged program's daemon is registered, registered again and taken off by its script")
def script_registers(rung):
    box = rung.sandbox
    box.restart()
    for path in FILES:
        os.unlink(path)
    # As an unpacked archive: everything is the user's.
    unpacked = f"{WORK}/unpacked"
    command("rm", "-rf", unpacked)
    os.mkdir(unpacked)
    for name in ("vorli-helper", "vorli-helper-install", "vorli-helper.service", f"{NAME}.service", f"{NAME}.conf",
                 f"{NAME}.policy"):
        command("cp", f"{rung.options.source}/build/package/src/{name}", unpacked)
    command("chown", "-R", "4001:4001", unpacked)
    script = f"{unpacked}/vorli-helper-install"
    wait_for(lambda: not can_be_started(), 5, "the bus has forgotten it", 0.01)

    for uid in (4001, 65534):
        done = subprocess.run([*box.as_user(uid), script], capture_output=True, text=True)
        rung.holds(f"user {uid} cannot: {done.stderr.strip()}", done.returncode == 1 and not os.path.exists(HELPER))
    done = subprocess.run([script, "--force"], capture_output=True, text=True)
    rung.holds(f"an argument that it does not know: {done.stderr.strip()}", done.returncode == 1)

    box.add_session(4001, "s1")
    rung.equal("through pkexec, the password refused: its exit", through_pkexec(box, script, "cancel"), 126)
    rung.holds("nothing is registered", not any(map(os.path.exists, FILES)))
    rung.equal("through pkexec, with the password: its exit", through_pkexec(box, script, "grant"), 0)
    rung.holds("registered: the bus can start it", wait_for(can_be_started, 5, "it can be started", 0.01))
    rung.equal("and has not", box.helper_pids(), [])
    rung.holds("polkit has its actions", wait_for(lambda: f"{NAME}.purge-memory" in command("/usr/bin/pkaction"), 5,
                                                  "polkit has read them", 0.01))
    loose = [path for path in FILES if (os.stat(path).st_uid, os.stat(path).st_mode & 0o7022) != (0, 0)]
    rung.equal("files that others than root could change", loose, [])
    rung.holds("any user's ping is answered", call(box, "Ping", uid=4001).answered)
    pids, before = box.helper_pids(), traces()
    rung.equal("it runs from where only root can change it", [os.readlink(f"/proc/{pid}/exe") for pid in pids], [HELPER])

    command(script)
    rung.equal("registered again: nothing is written", traces(), before)
    rung.equal("and the daemon runs on", box.helper_pids(), pids)
    with open(f"{unpacked}/vorli-helper", "ab") as file:
        file.write(b"newer")
    command(script)
    wait_for(lambda: not box.helper_pids(), 5, "the older daemon leaves", 0.01)
    rung.holds("a newer program: the older daemon leaves, the next call has an answer", call(box, "Ping").answered)

    command(script, "--remove")
    rung.equal("taken off: files left", [path for path in FILES if os.path.exists(path)], [])
    wait_for(lambda: not box.helper_pids(), 5, "the daemon leaves", 0.01)
    wait_for(lambda: not can_be_started(), 5, "the bus has forgotten it", 0.01)
    reply = call(box, "Ping")
    rung.holds(f"a call fails with a word ({reply.text})", not reply.answered)
    command(script, "--remove")
    rung.holds("taken off again: nothing to do", True)
