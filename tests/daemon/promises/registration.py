"""The script that registers and unregisters the daemon of an unpackaged program."""

import os
import re
import select
import subprocess

from harness.builds import build_of, make_newer
from harness.calls import call, finish_tool, start_tool
from harness.machine import Machine
from harness.rung import promise
from harness.sandbox import HELPER, NAME, SERVICE_FILE, STANDINS, TOOLS, WORK, command, write
from promises.authority import vouch
from promises.putting_away import access_list
from waiting import wait_for

FILES = (HELPER, SERVICE_FILE, f"/etc/dbus-1/system.d/{NAME}.conf", f"/usr/share/polkit-1/actions/{NAME}.policy",
         "/usr/local/lib/systemd/system/vorli-helper.service")


def can_be_started():
    names = command("/usr/bin/gdbus", "call", "--system", "-d", "org.freedesktop.DBus", "-o", "/org/freedesktop/DBus", "-m",
                    "org.freedesktop.DBus.ListActivatableNames")
    return f"'{NAME}'" in names


def traces():
    """A value that changes when the file is written again."""
    return [(path, os.stat(path).st_ino, os.stat(path).st_mtime_ns) for path in FILES]


def through_pkexec(box, script, mode):
    """Runs the script as the program does; the user's agent refuses, or enters the right password."""
    pipes = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "text": True}
    user = box.as_user(4001, "s1")
    agent = subprocess.Popen([*user, "/usr/bin/python3", f"{STANDINS}/agent.py", "s1", mode], **pipes)
    assert agent.stdout.readline() == "registered\n"
    # pkexec asks about its parent process, which must be in the session.
    done = subprocess.Popen([*user, "/bin/sh", "-c", '"$@"; exit $?', "sh", "/usr/bin/pkexec", script], **pipes)
    if mode == "grant":
        wait_for(lambda: select.select([agent.stdout], [], [], 0)[0], "the agent is asked")
        vouch(agent.stdout.readline().split()[1])
        print(file=agent.stdin, flush=True)
    done.communicate(timeout=20)
    agent.kill()
    agent.communicate()
    return done.returncode


FROM_ARCHIVE = ("vorli-helper", "vorli-helper-install", "vorli-helper.service", f"{NAME}.service", f"{NAME}.conf",
                f"{NAME}.policy")


def unpack(rung, uid=4001):
    """Installs like an unpacked archive that the user owns; returns the script that registers it."""
    unpacked = f"{WORK}/unpacked"
    command("rm", "-rf", unpacked)
    os.mkdir(unpacked)
    for name in FROM_ARCHIVE:
        command("cp", f"{rung.options.source}/build/package/src/{name}", unpacked)
    command("chown", "-R", f"{uid}:{uid}", unpacked)
    os.chmod(unpacked, 0o755)
    return f"{unpacked}/vorli-helper-install"


def run_as_root_for(script, uid, *arguments):
    return subprocess.run([script, *arguments], env={"SUDO_UID": str(uid)}, capture_output=True, text=True)


@promise("P22c", "Files that others can change are not installed, and an older daemon is noticed and replaced")
def script_judges(rung):
    box = rung.sandbox
    box.restart()
    for path in FILES:
        os.unlink(path)
    folder = f"{WORK}/unpacked"
    program = f"{folder}/vorli-helper"
    policy = f"{folder}/{NAME}.policy"
    secret = f"{WORK}/secret"
    write(secret, "secret", 0o600)

    def linked(path, target=secret):
        os.unlink(path)
        os.symlink(target, path)

    def named_twice():
        os.unlink(policy)
        os.link(secret, policy)

    def piped():
        os.unlink(policy)
        os.mkfifo(policy)

    cases = {
        "a folder that everybody can change": lambda: os.chmod(folder, 0o777),
        "a shared folder": lambda: os.chmod(folder, 0o1777),
        "a folder that a group can change": lambda: (os.chmod(folder, 0o775), os.chown(folder, 4001, 4002)),
        "another user's folder": lambda: os.chown(folder, 4002, 4002),
        "a program that everybody can change": lambda: os.chmod(program, 0o757),
        "another user's program": lambda: os.chown(program, 4002, 4002),
        "a rule that a group can change": lambda: (os.chown(policy, 4001, 4002), os.chmod(policy, 0o664)),
        "a folder that an access list opens to another user":
            lambda: os.setxattr(folder, "system.posix_acl_access", access_list(4002, 7)),
        "a program that an access list opens to another user":
            lambda: os.setxattr(program, "system.posix_acl_access", access_list(4002, 6)),
        "a link to a file of root's": lambda: linked(policy),
        "a link to another program": lambda: linked(program, "/bin/true"),
        "a second name of a file of root's": named_twice,
        "a pipe": piped,
    }
    for what, spoil in cases.items():
        script = unpack(rung)
        spoil()
        done = run_as_root_for(script, 4001)
        rung.holds(f"{what}: {done.stderr.strip()}", done.returncode == 1 and not any(map(os.path.exists, FILES)))
    below_anothers_shared_folder(rung, unpack(rung))
    script = unpack(rung)
    rung.holds("nobody's number", run_as_root_for(script, "0x1").returncode == 1)
    os.chmod(folder, 0o775)  # the user's own group, without other members
    rung.equal("the user's own: its exit", run_as_root_for(script, 4001).returncode, 0)
    os.chmod(folder, 0o755)
    newer_is_noticed(rung, script)


def below_anothers_shared_folder(rung, script):
    """Checks a shared folder of another user: only the owner of such a folder can rename the files of others in it."""
    shared = f"{WORK}/shared"
    os.mkdir(shared)
    os.chown(shared, 4002, 4002)
    os.chmod(shared, 0o1777)
    os.rename(os.path.dirname(script), f"{shared}/unpacked")
    done = run_as_root_for(f"{shared}/unpacked/vorli-helper-install", 4001)
    rung.holds(f"a folder in another user's shared one: {done.stderr.strip()}",
               done.returncode == 1 and not any(map(os.path.exists, FILES)))
    command("rm", "-rf", shared)


def newer_is_noticed(rung, script):
    box = rung.sandbox
    user = [*box.as_user(4001), script, "--is-current"]
    rung.equal("what is installed is current: the exit, as any user", subprocess.run(user).returncode, 0)
    with open(f"{os.path.dirname(script)}/vorli-helper.service", "a", encoding="utf-8") as file:
        file.write("# newer\n")
    rung.equal("only the unit is newer: what is installed is current: the exit", subprocess.run(user).returncode, 1)
    wait_for(can_be_started, "it can be started")
    box.add_session(4001, "s1")
    ways = {"by sudo": lambda: run_as_root_for(script, 4001).returncode,
            "by the program, after a click and the password": lambda: through_pkexec(box, script, "grant")}
    for way, install in ways.items():
        new = make_newer(os.path.dirname(script) + "/vorli-helper")
        calls = start_tool("hammer", 1000000, 2000)
        rung.equal("a newer one is brought: what is installed is current: the exit", subprocess.run(user).returncode, 1)
        rung.equal(f"installed {way}: its exit", install(), 0)
        rung.equal("the build that is installed", build_of(HELPER), new)
        call(box, "Ping")
        answering = box.pid_of(NAME)
        rung.equal("the build that answers", build_of(f"/proc/{answering}/exe"), new)
        wait_for(lambda: box.helper_pids() == [answering], "what was replaced has left")
        calls.terminate()  # prints how many were lost, and ends
        figures = finish_tool(calls)
        rung.equal(f"of {figures['count']:.0f} calls meanwhile, lost", figures["lost"], 0)
    command(script, "--remove")


@promise("P22d", "A change of the unit alone applies to the next call, and nothing is lost")
def newer_unit(rung):
    machine = Machine(rung.sandbox)
    try:
        script = unpack(rung, uid=0)
        machine.run(script)
        load = f"{TOOLS}/vorli_helper_load"
        machine.run(load, "call", "Ping")
        pid = machine.helper_pid()
        machine.run(script)
        rung.equal("installed again without a change: the daemon runs on", machine.helper_pid(), pid)

        with open(f"{os.path.dirname(script)}/vorli-helper.service", "a", encoding="utf-8") as file:
            file.write("LimitNPROC=77\n")
        hammer = subprocess.Popen(machine.enter(load, "hammer", "1000000", "2000"), stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, text=True)
        wait_for(lambda: machine.run("pgrep", "-x", "vorli_helper_lo", check=False), "somebody calls")
        machine.run(script)
        machine.run(load, "call", "Ping")
        limits = machine.run("cat", f"/proc/{machine.helper_pid()}/limits")
        rung.equal("most processes of the daemon that answers", re.search(r"Max processes\s+(\d+)", limits)[1], "77")
        machine.run("pkill", "-TERM", "-x", "vorli_helper_lo")
        figures = finish_tool(hammer)
        rung.equal(f"of {figures['count']:.0f} calls meanwhile, lost", figures["lost"], 0)
        machine.run(script, "--remove")
    finally:
        machine.end()


@promise("P22b", "An unpackaged program's daemon is registered, registered again and removed by its script")
def script_registers(rung):
    box = rung.sandbox
    box.restart()
    for path in FILES:
        os.unlink(path)
    script = unpack(rung)
    wait_for(lambda: not can_be_started(), "the bus has forgotten it")

    for uid in (4001, 65534):
        done = subprocess.run([*box.as_user(uid), script], capture_output=True, text=True)
        rung.holds(f"user {uid} cannot: {done.stderr.strip()}", done.returncode == 1 and not os.path.exists(HELPER))
    done = subprocess.run([script, "--force"], capture_output=True, text=True)
    rung.holds(f"an argument that it does not know: {done.stderr.strip()}", done.returncode == 1)

    box.add_session(4001, "s1")
    rung.equal("through pkexec, the password refused: its exit", through_pkexec(box, script, "cancel"), 126)
    rung.holds("nothing is registered", not any(map(os.path.exists, FILES)))
    rung.equal("through pkexec, with the password: its exit", through_pkexec(box, script, "grant"), 0)
    rung.holds("registered: the bus can start it", wait_for(can_be_started, "it can be started"))
    rung.equal("and has not", box.helper_pids(), [])
    rung.holds("polkit has its actions", wait_for(lambda: f"{NAME}.purge-memory" in command("/usr/bin/pkaction"),
                                                  "polkit has read them"))
    loose = [path for path in FILES if (os.stat(path).st_uid, os.stat(path).st_mode & 0o7022) != (0, 0)]
    rung.equal("files that others than root could change", loose, [])
    rung.holds("any user's ping is answered", call(box, "Ping", uid=4001).answered)
    pids, before = box.helper_pids(), traces()
    rung.equal("it runs from where only root can change it", [os.readlink(f"/proc/{pid}/exe") for pid in pids], [HELPER])

    rung.equal("its exit", run_as_root_for(script, 4001).returncode, 0)
    rung.equal("registered again: nothing is written", traces(), before)
    rung.equal("and the daemon runs on", box.helper_pids(), pids)
    with open(f"{os.path.dirname(script)}/vorli-helper", "ab") as file:
        file.write(b"newer")
    rung.equal("its exit", run_as_root_for(script, 4001).returncode, 0)
    wait_for(lambda: not box.helper_pids(), "the older daemon leaves")
    rung.holds("a newer program: the older daemon leaves, the next call has an answer", call(box, "Ping").answered)

    command(script, "--remove")
    rung.equal("removed: files left", [path for path in FILES if os.path.exists(path)], [])
    wait_for(lambda: not box.helper_pids(), "the daemon leaves")
    wait_for(lambda: not can_be_started(), "the bus has forgotten it")
    reply = call(box, "Ping")
    rung.holds(f"a call fails with an error ({reply.text})", not reply.answered)
    command(script, "--remove")
    rung.holds("removed again: nothing to do", True)
