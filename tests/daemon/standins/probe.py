#!/usr/bin/python3
"""Tries, in the daemon's place, what the daemon needs and what it must not be able to do. Prints a line for each."""

import ctypes
import errno
import os
import socket
import subprocess
import sys

SIGCONT = 18


def attempt(name, action):
    try:
        action()
        print(name, "possible")
    except (OSError, subprocess.SubprocessError):
        print(name, "refused")


def opened(path, flags=os.O_WRONLY):
    return lambda: os.close(os.open(path, flags, 0o644))


def moved(folder):
    def action():
        path = f"{folder}/probe.service"
        opened(path, os.O_WRONLY | os.O_CREAT)()
        os.rename(path, path + ".vorli-disabled")
        os.unlink(path + ".vorli-disabled")

    return action


def written(path):
    def action():
        with open(path, "w", encoding="utf-8") as file:
            file.write("1\n")

    return action


def signalled(pid):
    def action():
        libc = ctypes.CDLL(None, use_errno=True)
        handle = libc.syscall(434, pid, 0)
        if handle < 0 or libc.syscall(424, handle, SIGCONT, 0, 0) < 0:
            raise OSError(ctypes.get_errno(), "signal")

    return action


def read_users(pid):
    def action():
        with open(f"/proc/{pid}/status", encoding="utf-8") as file:
            file.read()

    return action


def landlock_asked():
    libc = ctypes.CDLL(None, use_errno=True)
    # landlock_create_ruleset for its version: a kernel without it says so; only a filter says that it is not permitted.
    if libc.syscall(444, None, 0, 1) < 0 and ctypes.get_errno() == errno.EPERM:
        raise OSError(errno.EPERM, "landlock")


def users_changed():
    if os.setuid(4001) is not None:
        raise OSError


def listed(folder):
    def action():
        if not os.listdir(folder):
            raise OSError("empty")

    return action


def main():
    other = int(sys.argv[1])
    attempt("write-drop_caches", written("/proc/sys/vm/drop_caches"))
    attempt("write-compact_memory", written("/proc/sys/vm/compact_memory"))
    for folder in ("/etc/xdg/autostart", "/etc/systemd/system", "/etc/systemd/user"):
        attempt(f"move-in-{folder}", moved(folder))
    attempt("continue-another-users", signalled(other))
    attempt("read-another-users-status", read_users(other))
    attempt("unix-socket", lambda: socket.socket(socket.AF_UNIX).close())
    attempt("sync", os.sync)
    attempt("landlock", landlock_asked)
    attempt("write-swappiness", opened("/proc/sys/vm/swappiness"))
    attempt("write-core_pattern", opened("/proc/sys/kernel/core_pattern"))
    attempt("write-passwd", opened("/etc/passwd"))
    attempt("make-cron", opened("/etc/vorli-probe", os.O_WRONLY | os.O_CREAT))
    attempt("make-in-usr", opened("/usr/bin/vorli-probe", os.O_WRONLY | os.O_CREAT))
    attempt("make-in-root", opened("/vorli-probe", os.O_WRONLY | os.O_CREAT))
    attempt("list-home", listed("/root"))
    attempt("inet-socket", lambda: socket.socket(socket.AF_INET).close())
    attempt("netlink-socket", lambda: socket.socket(socket.AF_NETLINK, socket.SOCK_RAW).close())
    attempt("mount", lambda: subprocess.run(["/bin/mount", "-t", "tmpfs", "none", "/mnt"], check=True,
                                            stderr=subprocess.DEVNULL))
    attempt("new-namespace", lambda: subprocess.run(["/usr/bin/unshare", "--mount", "true"], check=True,
                                                    stderr=subprocess.DEVNULL))
    attempt("change-user", users_changed)


main()
