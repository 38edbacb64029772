#!/usr/bin/env python3
"""unit_logins.py PROBE: a real service manager of a user starts what is not paused, and nothing else, at each login.

Needs root with CAP_SYS_ADMIN, for namespaces in which the manager has folders and a control group of its own.
"""

import os
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../../tools/session"))
from waiting import holds, wait_for  # pylint: disable=wrong-import-position

NAMESPACES = ("--mount", "--propagation", "private", "--pid", "--fork", "--kill-child", "--mount-proc", "--ipc", "--cgroup")
RUNTIME = "/run/vorli-user"
GROUPS = "/sys/fs/cgroup"
PACKAGED, ADMINISTRATORS, ENTRIES = "/usr/lib/systemd/user", "/etc/systemd/user", "/etc/xdg/autostart"
# A desktop that lets the service manager start the entries.
SESSION = """[Unit]
BindsTo=graphical-session.target
Wants=xdg-desktop-autostart.target
Before=xdg-desktop-autostart.target
"""


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def mount(*words):
    subprocess.run(["mount", *words], check=True)


def make_private_folders(work):
    """Mounts the folders that the manager sees: this machine's units and ours, with nothing enabled. Nothing else is
    writable."""
    mount("-t", "tmpfs", "tmpfs", work)
    mount("-o", "remount,bind,ro", "/")
    mount("-t", "cgroup2", "none", GROUPS)
    mount("-t", "tmpfs", "-o", "mode=755", "tmpfs", "/run")
    os.makedirs("/run/systemd/system")  # shows that systemd started the system
    os.makedirs(RUNTIME, mode=0o700)
    for folder in (PACKAGED, ADMINISTRATORS, ENTRIES):
        private = work + folder
        if folder == PACKAGED:
            shutil.copytree(folder, private, symlinks=True)
        else:
            os.makedirs(private)
        mount("--bind", private, folder)


class Group:
    """A control group for the manager, removed after it."""

    def __init__(self):
        self.path = f"{GROUPS}/vorli-logins-{os.urandom(4).hex()}"
        os.makedirs(self.path)

    def enter(self):
        write(f"{self.path}/cgroup.procs", "0")

    def remove(self):
        for folder, _, _ in os.walk(self.path, topdown=False):
            os.rmdir(folder)


class UnitLogins(unittest.TestCase):
    def setUp(self):
        place = tempfile.mkdtemp(dir=self.work)
        self.home = os.path.join(place, "home")
        self.started = os.path.join(place, "started")
        self.mine = os.path.join(self.home, ".config/systemd/user")
        os.makedirs(self.started)
        os.makedirs(self.mine)
        self.environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": self.home, "LC_ALL": "C.UTF-8",
                            "XDG_RUNTIME_DIR": RUNTIME, "XDG_CURRENT_DESKTOP": "GNOME"}
        write(f"{PACKAGED}/test-session.target", SESSION)

    def service(self, folder, name):
        write(f"{folder}/{name}.service",
              f"[Unit]\nDescription=Example {name}\n[Service]\nType=oneshot\nExecStart=/usr/bin/touch {self.started}/{name}\n")

    def trigger(self, name, kind, lines):
        self.service(self.mine, name)
        write(f"{self.mine}/{name}.{kind}", f"[Unit]\nDescription=Example {name}\n[{kind.capitalize()}]\n{lines}\n")
        self.wanted(self.mine, f"{name}.{kind}", self.mine)

    @staticmethod
    def wanted(folder, name, target):
        """Enables the unit whose file is in the folder `target`."""
        wishes = f"{folder}/default.target.wants"
        os.makedirs(wishes, exist_ok=True)
        os.symlink(f"{target}/{name}", f"{wishes}/{name}")

    def entry(self, folder, name, more=""):
        write(f"{folder}/{name}.desktop",
              f"[Desktop Entry]\nType=Application\nName={name}\nExec=/usr/bin/touch {self.started}/{name}\n{more}")

    def systemctl(self, *words):
        return subprocess.run(["systemctl", "--user", *words], env=self.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True, timeout=30, check=False).stdout.strip()

    def start_manager(self):
        group = Group()
        manager = subprocess.Popen(["/usr/lib/systemd/systemd", "--user"], env=self.environment, preexec_fn=group.enter,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_for(lambda: self.systemctl("is-active", "default.target") == "active", "the manager has started", 30, 0.1)
        self.systemctl("start", "test-session.target")
        return group, manager

    def end_manager(self, group, manager):
        self.systemctl("start", "--no-block", "exit.target")
        try:
            manager.wait(60)
        finally:
            manager.kill()
            manager.wait()
            wait_for(lambda: self.is_empty(group.path), "the units have ended", 10)
            group.remove()
            shutil.rmtree(f"{RUNTIME}/systemd", ignore_errors=True)

    @staticmethod
    def is_empty(group):
        with open(f"{group}/cgroup.events", encoding="utf-8") as events:
            return "populated 0" in events.read()

    def knock(self):
        """Connects to the socket of the unit that waits for it. Nothing listens there unless the unit has started."""
        with socket.socket(socket.AF_UNIX) as caller:
            try:
                caller.connect(f"{RUNTIME}/doorbell")
            except OSError:
                return

    def marks(self):
        return set(os.listdir(self.started))

    def log_in(self, expected, while_in=lambda: None):
        """Checks that this login starts these items and nothing else."""
        for name in self.marks():
            os.remove(os.path.join(self.started, name))
        running = self.start_manager()
        try:
            self.knock()
            wait_for(lambda: expected <= self.marks(), f"all of {sorted(expected)}", 30)
            holds(lambda: expected == self.marks(), "nothing else", 1.0)
            while_in()
        finally:
            self.end_manager(*running)

    def press(self, verb, name):
        done = subprocess.run([sys.argv[1], verb, name], env=self.environment, stdout=subprocess.PIPE, text=True, timeout=60,
                              check=False)
        state = dict(line.split("\t") for line in done.stdout.splitlines())
        self.assertEqual(state.get(name), "off" if verb == "pause" else "on", f"{name}\n{done.stdout}")

    def files(self):
        found = {}
        for folder in (self.home, PACKAGED, ADMINISTRATORS, ENTRIES):
            for place, _, names in os.walk(folder):
                for path in (os.path.join(place, name) for name in names):
                    look = os.lstat(path)
                    with open(path, encoding="utf-8", errors="replace") if os.path.isfile(path) else open(os.devnull) as file:
                        link = os.readlink(path) if os.path.islink(path) else None
                        found[path] = (look.st_ino, look.st_mtime_ns, link, file.read())
        return found

    def test_what_is_paused_waits_until_it_is_resumed(self):
        self.service(self.mine, "always")
        self.wanted(self.mine, "always.service", self.mine)
        self.entry(f"{self.home}/.config/autostart", "always-entry")
        self.service(self.mine, "own")
        self.wanted(self.mine, "own.service", self.mine)
        self.trigger("nightly", "timer", "OnActiveSec=0")
        self.trigger("watcher", "path", "PathExists=/")
        self.trigger("doorman", "socket", "ListenStream=%t/doorbell")
        self.service(PACKAGED, "packaged")
        self.wanted(self.mine, "packaged.service", PACKAGED)
        self.service(PACKAGED, "everybodys")
        self.wanted(ADMINISTRATORS, "everybodys.service", PACKAGED)
        self.entry(f"{self.home}/.config/autostart", "own-entry")
        self.entry(ENTRIES, "shared-entry")
        units = {name: f"{name}.service" for name in ("own", "nightly", "watcher", "doorman", "packaged", "everybodys")}
        items = {**units, "own-entry": "own-entry", "shared-entry": "shared-entry"}
        before = self.files()

        def press_all(verb):
            for name in items.values():
                self.press(verb, name)

        everything = {"always", "always-entry", *items}
        self.log_in(everything, lambda: press_all("pause"))
        self.log_in({"always", "always-entry"}, lambda: press_all("resume"))
        self.assertEqual(self.files(), before)
        self.log_in(everything)

    def test_an_entry_that_only_another_desktop_passes_over_starts_and_is_shown_so(self):
        self.service(self.mine, "always")
        self.wanted(self.mine, "always.service", self.mine)
        self.entry(f"{self.home}/.config/autostart", "always-entry")
        self.entry(f"{self.home}/.config/autostart", "tweaked", "X-GNOME-Autostart-enabled=false\n")
        self.entry(f"{self.home}/.config/autostart", "numbered", "Hidden=1\n")

        def look():
            shown = subprocess.run([sys.argv[1], "list"], env=self.environment, stdout=subprocess.PIPE, text=True, timeout=60,
                                   check=True).stdout
            self.assertIn("tweaked\ton\n", shown)
            self.assertIn("numbered\toff\n", shown)

        self.log_in({"always", "always-entry", "tweaked"}, look)


def main():
    if len(sys.argv) == 3:  # inside the namespaces
        UnitLogins.work = sys.argv[2]
        make_private_folders(UnitLogins.work)
        unittest.main(argv=sys.argv[:1], verbosity=2)
    if os.geteuid() != 0:
        sys.exit("unit_logins.py needs root, for namespaces of its own")
    with tempfile.TemporaryDirectory(prefix="vorli-logins.") as work:
        inside = [sys.executable, os.path.abspath(__file__), os.path.abspath(sys.argv[1]), work]
        sys.exit(subprocess.run(["unshare", *NAMESPACES, *inside], check=False).returncode)


if __name__ == "__main__":
    main()
