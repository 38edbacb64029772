"""A private machine with a real systemd as its first process, in namespaces inside the sandbox's."""

import os
import shutil
import subprocess

from waiting import wait_for

from .sandbox import CGROUP, WORK, command, write

# A control group for the machine alone: a group that has processes cannot give resources to groups below it.
ENTER = """set -e
mkdir -p {cgroup}/machine
echo 0 > {cgroup}/machine/cgroup.procs
exec /usr/bin/unshare --cgroup /bin/sh {work}/boot.sh
"""
BOOT = """set -e
mount --make-rprivate /
mount -t proc proc /proc
mkdir -p /mnt/vorli-kept && mount --bind {work} /mnt/vorli-kept
mount -t tmpfs -o mode=755 tmpfs /run
mkdir -p /run/dbus /run/lock /run/systemd/system {work}
mount --move /mnt/vorli-kept {work}
rmdir /mnt/vorli-kept
umount /sys/fs/cgroup
mount -t cgroup2 none /sys/fs/cgroup
mount -t tmpfs tmpfs /var/log
mount -t tmpfs -o mode=1777 tmpfs /tmp
mount -t tmpfs -o mode=1777 tmpfs /var/tmp
cp {work}/units/* /run/systemd/system/
exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin container=vorli-test {systemd} --system --unit=vorli-test.target \\
  --show-status=no --log-target=console --log-level=notice
"""
# Units that would affect the machine outside: its network, clock and disks stay untouched.
MASKED = ("systemd-udevd", "systemd-udev-trigger", "systemd-tmpfiles-setup", "systemd-tmpfiles-setup-dev",
          "systemd-networkd", "systemd-timesyncd", "systemd-remount-fs", "systemd-update-utmp", "systemd-sysctl",
          "systemd-modules-load", "systemd-random-seed", "systemd-resolved", "systemd-logind")
TARGET = """[Unit]
Wants=dbus.socket dbus.service systemd-journald.service
After=dbus.service
AllowIsolate=yes
DefaultDependencies=no
"""


class Machine:
    def __init__(self, box):
        box.stop()
        box.install()
        box.set_service()
        units = f"{WORK}/units"
        shutil.rmtree(units, ignore_errors=True)
        os.makedirs(units)
        write(f"{units}/vorli-test.target", TARGET)
        for name in MASKED:
            os.symlink("/dev/null", f"{units}/{name}.service")
        write(f"{WORK}/boot.sh", BOOT.format(work=WORK, systemd="/lib/systemd/systemd"))
        write(f"{WORK}/enter.sh", ENTER.format(work=WORK, cgroup=CGROUP))
        self.log = open(f"{WORK}/machine.log", "ab")
        self.outer = subprocess.Popen(
            ["/usr/bin/unshare", "--mount", "--pid", "--fork", "--kill-child", "--ipc", "--uts",
             "/bin/sh", f"{WORK}/enter.sh"], stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log)
        self.first = wait_for(self._first, "systemd is the first process", 30)
        wait_for(lambda: self.run("systemctl", "is-active", "dbus.service", check=False).strip() == "active",
                 "the machine's bus is there", 60)

    def _first(self):
        for child in open(f"/proc/{self.outer.pid}/task/{self.outer.pid}/children", encoding="utf-8").read().split():
            if os.readlink(f"/proc/{child}/exe").endswith("/systemd"):
                return int(child)
        return None

    def enter(self, *words):
        return ["/usr/bin/nsenter", f"--target={self.first}", "--mount", "--pid", "--cgroup", "--ipc", "--uts", *words]

    def run(self, *words, check=True, **options):
        """Runs a command inside the machine."""
        if check:
            return command(*self.enter(*words), **options)
        return subprocess.run(self.enter(*words), capture_output=True, text=True, **options).stdout

    def figures(self, *arguments):
        output = self.run(f"{WORK}/tools/vorli_helper_load", *map(str, arguments))
        return {line.split()[0]: float(line.split()[1]) for line in output.splitlines()}

    def set_arguments(self, *arguments):
        """A drop-in for the shipped unit."""
        folder = f"/proc/{self.first}/root/run/systemd/system/vorli-helper.service.d"
        os.makedirs(folder, exist_ok=True)
        program = "/usr/local/libexec/vorli/vorli-helper"
        write(f"{folder}/arguments.conf", f"[Service]\nExecStart=\nExecStart={' '.join((program, *arguments))}\n")
        self.run("systemctl", "daemon-reload")
        self.run("systemctl", "stop", "vorli-helper.service")

    def helper_pid(self):
        """Process id of the daemon inside the machine, or 0."""
        return int(self.run("systemctl", "show", "-P", "MainPID", "vorli-helper.service"))

    def journal(self, unit="vorli-helper.service"):
        """The unit's output so far. Output reaches the journal late, so the journal is synchronised first."""
        self.run("journalctl", "--sync")
        return self.run("journalctl", "-b", "-o", "cat", "-u", unit, check=False)

    def end(self):
        self.outer.kill()
        self.outer.wait()
        self.log.close()


