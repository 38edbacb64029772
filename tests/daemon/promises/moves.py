"""Allowed and refused moves, and what a move leaves behind."""

import hashlib
import os
import random
import signal
import socket
import threading

from harness.calls import call, ends_within, finish_tool, start_tool, tool
from harness.rung import promise
from harness.sandbox import FOLDERS, WORK, send, write

AUTOSTART, SYSTEM_UNITS, USER_UNITS = FOLDERS
AWAY = (".vorli-disabled", ".vorli-removed")
SECRET = f"{WORK}/secret"
ENTRY = "[Desktop Entry]\nType=Application\nName=Item {0}\nExec=/bin/true {0}\nHidden=false\n"


def without_marks(text):
    """Removes what the daemon adds to a desktop entry, with code that is not the daemon's."""
    lines = [line for line in text.split("\n")
             if line not in ("Hidden=true", "X-Vorli-Paused=true") and not line.startswith("X-Vorli-FirstSeen=")]
    return "\n".join(line.removeprefix("#X-Vorli-Kept:") for line in lines)


def make_items(count):
    """Plain items in all folders: path to content and mode."""
    items = {}
    for number in range(count):
        items[f"{AUTOSTART}/item{number}.desktop"] = (ENTRY.format(number), 0o644)
        items[f"{SYSTEM_UNITS}/item{number}.service"] = (f"[Service]\nExecStart=/bin/true {number}\n", 0o600)
        items[f"{USER_UNITS}/item{number}.timer"] = (f"[Timer]\nOnBootSec={number}\n", 0o640)
    for path, (text, mode) in items.items():
        write(path, text, mode)
    return items


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


@promise("P7", "Nothing is left half done on the disk when the helper is killed")
def nothing_halfway(rung):
    box = rung.sandbox
    box.restart(allow_everything=True)
    items = make_items(4)
    longest_life = 0.15 + 3 * call(box, "Ping").seconds  # the first call starts it, which takes a slow machine long
    kills = moved = rounds = 0
    dice = random.Random(7)
    wanted = 50000 if rung.options.long else 600
    # A fast machine has moved enough before that many kills.
    while (moved < wanted or kills < 50) and rounds < wanted:
        rounds += 1
        load = start_tool("toggle", 40, 100, *items)
        # Random, so that the signal meets a daemon in every state of its work.
        while not ends_within(load, dice.uniform(0.0, longest_life)):
            for pid in box.helper_pids():
                send(pid, signal.SIGKILL)
                kills += 1
        moved += int(finish_tool(load)["moved"])
    rung.figure("moves done", moved, wanted, at_least=True)
    rung.figure("helpers killed meanwhile", kills, 50, at_least=True)

    lost = double = changed = wrongly_awake = 0
    for path, (text, mode) in items.items():
        there = [path + ending for ending in ("", *AWAY) if os.path.lexists(path + ending)]
        lost += not there
        double += len(there) > 1
        for place in there:
            content = read(place)
            changed += without_marks(content) != text or os.stat(place).st_mode & 0o7777 != mode
            wrongly_awake += place != path and path.endswith(".desktop") and "X-Vorli-Paused=true" not in content
    rung.equal("items lost", lost, 0)
    rung.equal("items that exist twice", double, 0)
    rung.equal("contents or modes changed", changed, 0)
    rung.equal("put away, and yet a session would start them", wrongly_awake, 0)

    left = [name for folder in FOLDERS for name in os.listdir(folder) if name.startswith(".")]
    for path in items:
        for ending in AWAY:
            call(box, "MoveLaunchAgentPlist", path + ending, path)
        box.stop_helper()  # its limits would refuse so many moves
    rung.equal("items back in their places with every byte",
               sum(os.path.exists(path) and read(path) == text for path, (text, _) in items.items()), len(items))
    rung.equal(f"temporary files left of {len(left)} after the next moves",
               [name for folder in FOLDERS for name in os.listdir(folder) if name.startswith(".")], [])


def snapshot(roots):
    """Every file below the roots, by path: kind, mode, owner, target or digest."""
    seen = {}
    for root in roots:
        for folder, folders, files in os.walk(root):
            for name in folders + files:
                path = os.path.join(folder, name)
                info = os.lstat(path)
                if os.path.islink(path):
                    detail = os.readlink(path)
                elif os.path.isfile(path) and info.st_size < 1 << 24:
                    with open(path, "rb") as file:
                        detail = hashlib.sha256(file.read()).hexdigest()
                else:
                    detail = ""
                seen[path] = (info.st_mode, info.st_uid, info.st_nlink, detail)
    return seen


def plant_hostile_files():
    """Items that must not be moved: name to the daemon's answer."""
    secret = SECRET
    write(secret, "secret", 0o600)
    refused = {}

    def plant(name, make, code, folder=AUTOSTART):
        path = f"{folder}/{name}"
        make(path)
        refused[path] = code

    def bound(path):
        server = socket.socket(socket.AF_UNIX)
        server.bind(path)
        server.close()

    def owned(uid, mode=0o644):
        def make(path):
            write(path, ENTRY.format(0), mode)
            os.chown(path, uid, 0)
        return make

    def two_names(path):
        write(path, ENTRY.format(0))
        os.link(path, path + ".second")

    for folder, ending in ((AUTOSTART, "desktop"), (SYSTEM_UNITS, "service"), (USER_UNITS, "timer")):
        plant(f"link.{ending}", lambda path: os.symlink(secret, path), 1, folder)
        plant(f"dangling.{ending}", lambda path: os.symlink("/nowhere", path), 1, folder)
        plant(f"looped.{ending}", lambda path: os.symlink(path, path), 1, folder)
        plant(f"pipe.{ending}", lambda path: os.mkfifo(path, 0o644), 1, folder)
        plant(f"socket.{ending}", bound, 1, folder)
        plant(f"folder.{ending}", os.mkdir, 1, folder)
        plant(f"device.{ending}", lambda path: os.mknod(path, 0o600 | 0o020000, os.makedev(1, 3)), 1, folder)
        plant(f"foreign.{ending}", owned(4001), 1, folder)
        plant(f"two-names.{ending}", two_names, 1, folder)
        plant(f"missing.{ending}", lambda path: None, 2, folder)

        def taken(path):
            write(path, ENTRY.format(1))
            write(path + AWAY[0], "here before")
        plant(f"taken.{ending}", taken, 17, folder)

        def taken_by_link(path):
            write(path, ENTRY.format(1))
            os.symlink(secret, path + AWAY[0])
        plant(f"taken-by-link.{ending}", taken_by_link, 17, folder)
    os.mkdir(f"{SYSTEM_UNITS}/multi-user.target.wants")
    write(f"{SYSTEM_UNITS}/multi-user.target.wants/deep.service", "x")
    write(f"{AUTOSTART}/plain.desktop", ENTRY.format(9))
    write(f"{AUTOSTART}/notes.txt", "x")
    with open(f"{AUTOSTART}/huge.desktop", "wb") as file:
        file.truncate(2 << 20)
    refused[f"{AUTOSTART}/huge.desktop"] = 27
    return refused


def hostile_pairs():
    """Paths that are refused for their text alone."""
    plain = f"{AUTOSTART}/plain.desktop"
    away = plain + AWAY[0]
    for path in ("", "/", "plain.desktop", "./plain.desktop", "/etc/passwd", SECRET, "/proc/self/exe",
                 f"{AUTOSTART}/../autostart/plain.desktop", f"{AUTOSTART}//plain.desktop", f"{AUTOSTART}/./plain.desktop",
                 "//etc/xdg/autostart/plain.desktop", f"{SYSTEM_UNITS}/multi-user.target.wants/deep.service",
                 "/usr/lib/systemd/system/dbus.service", "/etc/xdg/autostart", f"{AUTOSTART}/", f"{AUTOSTART}/.",
                 f"{AUTOSTART}/..", f"{AUTOSTART}/notes.txt", f"{AUTOSTART}/.hidden.desktop", f"{AUTOSTART}/a b.desktop",
                 f"{AUTOSTART}/a\nb.desktop", f"{AUTOSTART}/*.desktop", f"{AUTOSTART}/$(id).desktop",
                 f"{AUTOSTART}/{'a' * 300}.desktop", "/etc/systemd/system.conf", "/home/u/.config/autostart/x.desktop"):
        yield path, path + AWAY[0]
    yield from ((plain, plain), (plain, "/tmp/plain.desktop"), (plain, f"{USER_UNITS}/plain.desktop.vorli-disabled"),
                (plain, f"{AUTOSTART}/other.desktop"), (plain, f"{AUTOSTART}/other.desktop.vorli-disabled"),
                (plain, plain + ".bak"), (plain, plain + ".vorli-new"), (plain, ""), ("", plain),
                (away, plain + AWAY[1]), (plain + AWAY[1], away), (away, away + AWAY[0]),
                ("/etc/shadow", f"{AUTOSTART}/shadow.desktop"), (f"{AUTOSTART}/plain.desktop", "/etc/shadow"))


def hostile_moves(rung):
    """Tries everything in plant_hostile_files and hostile_pairs, and checks that nothing changes."""
    box = rung.sandbox
    refused = plant_hostile_files()
    roots = ("/etc", "/usr/share/polkit-1", "/usr/local", os.path.dirname(SECRET))
    before = snapshot(roots)
    wrong = []
    tried = 0
    for path, code in refused.items():
        reply = call(box, "MoveLaunchAgentPlist", path, path + AWAY[0])
        tried += 1
        if reply.code != code or not reply.answered:
            wrong.append(f"{path}: {reply.code} {reply.text}, not {code}")
        if tried % 15 == 0:
            box.stop_helper()  # its limits would refuse so many
    for source, target in hostile_pairs():
        reply = call(box, "MoveLaunchAgentPlist", source, target)
        tried += 1
        if reply.code not in (1, 22) or not reply.answered:
            wrong.append(f"{source!r} -> {target!r}: {reply.code} {reply.text}")
    rung.figure("hostile moves tried", tried, 60, at_least=True)
    rung.equal("of them not refused as they should be", wrong, [])
    after = snapshot(roots)
    changed = sorted(path for path in before.keys() | after.keys()
                     if before.get(path) != after.get(path) and not path.endswith(".log"))
    rung.equal("files changed below /etc and /usr/local, or what the links lead to", changed, [])


def hostile_folders(rung):
    """Checks that a folder is refused if it is a link or if other users than root can change it."""
    box = rung.sandbox
    path = f"{USER_UNITS}/x.service"
    write(path, "x")
    for what, spoil, mend in (
            ("writable by all", lambda: os.chmod(USER_UNITS, 0o777), lambda: os.chmod(USER_UNITS, 0o755)),
            ("writable by the group", lambda: os.chmod(USER_UNITS, 0o775), lambda: os.chmod(USER_UNITS, 0o755)),
            ("of another user", lambda: os.chown(USER_UNITS, 4001, 0), lambda: os.chown(USER_UNITS, 0, 0))):
        spoil()
        reply = call(box, "MoveLaunchAgentPlist", path, path + AWAY[0])
        mend()
        rung.holds(f"a folder {what} is refused ({reply.code})", reply.code == 1 and os.path.exists(path))


def swap_race(rung, seconds):
    """Lets a root process replace the item by links, pipes and other files during the move."""
    box = rung.sandbox
    secret = SECRET
    write(secret, "secret", 0o600)
    path = f"{AUTOSTART}/raced.desktop"
    spare = f"{AUTOSTART}/.spare"
    write(path, ENTRY.format(5))
    stop = threading.Event()

    def swap():
        makers = (lambda: os.symlink(secret, path), lambda: os.mkfifo(path), lambda: os.mkdir(path),
                  lambda: write(path, "[Desktop Entry]\nother\n"))
        turn = 0
        while not stop.is_set():
            turn += 1
            try:
                os.rename(path, spare)
                makers[turn % 4]()
                os.rmdir(path) if turn % 4 == 2 else os.unlink(path)
                os.rename(spare, path)
            except OSError:
                for ending in AWAY:
                    try:
                        os.rename(path + ending, path)
                    except OSError:
                        pass
                if not os.path.lexists(path) and os.path.lexists(spare):
                    os.rename(spare, path)

    attacker = threading.Thread(target=swap)
    attacker.start()
    answers = blocked = 0
    try:
        load = start_tool("toggle", 60, max(20, int(seconds * 4)), path)
        figures = finish_tool(load, seconds=600)
        answers = int(figures["moved"] + figures["refused"])
        blocked = int(figures["cut_off"])
    finally:
        stop.set()
        attacker.join()
    rung.figure("moves against the swapping", answers, 500, at_least=True)
    rung.equal("calls that hung or were cut off", blocked, 0)
    rung.holds("the link's target is untouched", read(secret) == "secret" and os.stat(secret).st_mode & 0o777 == 0o600)
    copies = [name for name in os.listdir(AUTOSTART) if "secret" in read_if_plain(f"{AUTOSTART}/{name}")]
    rung.equal("copies of the target in the folder", copies, [])


def read_if_plain(path):
    info = os.lstat(path)
    if not os.path.isfile(path) or os.path.islink(path) or info.st_size > 1 << 20:
        return ""
    return read(path)


@promise("P8", "Only the four renames, only in the three folders")
def only_the_renames(rung):
    box = rung.sandbox
    box.restart(allow_everything=True)
    hostile_moves(rung)
    hostile_folders(rung)
    box.stop_helper()
    pairs = 200000 if rung.options.long else 20000
    figures = tool("pairs", pairs)
    rung.equal(f"of {pairs} random pairs of paths, those that were moved", figures["moved"], 0)
    rung.equal("those that were not answered", figures["cut_off"], 0)
    swap_race(rung, 60 if rung.options.long else 8)


@promise("P13", "Also safe if the administrator allows every action to everybody")
def safe_for_everybody(rung):
    box = rung.sandbox
    box.restart(allow_everything=True)
    path = f"{AUTOSTART}/plain.desktop"
    write(path, ENTRY.format(1))
    reply = call(box, "MoveLaunchAgentPlist", path, path + AWAY[0], uid=4001)
    rung.equal("a move by any user", (reply.code, os.path.exists(path + AWAY[0])), (0, True))
    reply = call(box, "MoveLaunchAgentPlist", path + AWAY[0], path, uid=4001)
    rung.equal("and back, byte for byte", (reply.code, read(path)), (0, ENTRY.format(1)))
    for source, target in hostile_pairs():
        reply = call(box, "MoveLaunchAgentPlist", source, target, uid=4001)
        if reply.code not in (1, 22):
            rung.holds(f"{source!r} -> {target!r} is refused", False)
    helper = box.helper_pids()[0]
    for pid, signal_number in ((1, 19), (helper, 9), (helper, 15), (helper, 19)):
        reply = call(box, "KillPID", pid, signal_number, uid=4001)
        rung.holds(f"KillPID({'the helper' if pid > 1 else 1}, {signal_number}) is refused ({reply.code})",
                   reply.code in (1, 22) and box.helper_pids() == [helper])
