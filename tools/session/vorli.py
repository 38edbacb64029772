"""Drives the installed program in a private desktop session, the way a user does: what the visit and the tests share."""

import os
import re
import signal
import subprocess
import time

import dbus

BUS_NAME, OBJECT, STATUS = "com.kv.vorli", "/com/kv/vorli", "com.kv.vorli.Status"
WATCHER = "org.kde.StatusNotifierWatcher"


class Missing(Exception):
    """Something that a user would see or get did not come."""


def until(condition, what, seconds=10.0, pause=0.05):
    """The first true value of the condition; a plain sentence when none came in time."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise Missing(f"{what} did not come within {seconds:g} s")
        time.sleep(pause)


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Vorli:
    """One running program, its log, and what it says of itself on the session bus."""

    def __init__(self, program, log):
        self.log = log
        self._bus = dbus.SessionBus()
        with open(log, "wb") as file:
            self.process = subprocess.Popen([program], stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT)
        until(lambda: self._owned() or self._ended(), "the name of the program on the session bus", 15)
        if not self._owned():
            raise Missing(f"Vorli ended at its start with {self.process.returncode}:\n{self.log_text()[-2000:]}")

    def _owned(self):
        return self._bus.name_has_owner(BUS_NAME)

    def _ended(self):
        return self.process.poll() is not None

    def status(self, name):
        properties = dbus.Interface(
            self._bus.get_object(BUS_NAME, OBJECT, introspect=False), "org.freedesktop.DBus.Properties"
        )
        return properties.Get(STATUS, name, timeout=25)

    @property
    def ring(self):
        return float(self.status("RingProgress"))

    @property
    def ticks(self):
        return int(self.status("Ticks"))

    @property
    def helper_status(self):
        return str(self.status("HelperStatus"))

    def log_text(self):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            return file.read()

    def reply(self, call):
        """The daemon's last answer to a call, as the program logs it: exit code and text. None before it came."""
        found = re.findall(rf"{call} reply: exit=(-?\d+) output=(.*)", self.log_text())
        return {"exitCode": int(found[-1][0]), "output": found[-1][1].strip()} if found else None

    def processor_milliseconds(self):
        total = 0
        for thread in os.listdir(f"/proc/{self.process.pid}/task"):
            with open(f"/proc/{self.process.pid}/task/{thread}/schedstat", encoding="ascii") as file:
                total += int(file.read().split()[0])
        return total / 1e6

    def memory_kilobytes(self, field):
        """A field of smaps_rollup: Rss, Pss, Pss_Anon, Private_Dirty."""
        with open(f"/proc/{self.process.pid}/smaps_rollup", encoding="ascii") as file:
            return int(re.search(rf"^{field}:\s+(\d+) kB", file.read(), re.MULTILINE)[1])

    def end(self, seconds=10):
        """Asks it to end as the session manager does; returns its exit code."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        return self.process.wait(seconds)


class TrayIcon:
    """The icon in the panel, as a place on the screen."""

    def __init__(self, bus=None):
        self._bus = bus or dbus.SessionBus()

    def items(self):
        """The status notifier items that the panel knows."""
        properties = dbus.Interface(
            self._bus.get_object(WATCHER, "/StatusNotifierWatcher", introspect=False), "org.freedesktop.DBus.Properties"
        )
        return [str(item) for item in properties.Get(WATCHER, "RegisteredStatusNotifierItems")]

    def appear(self, seconds=15):
        return until(self.items, "the icon in the panel", seconds)

    @staticmethod
    def centre():
        """The middle of the panel's tray, which holds this one icon: the right-most of the panel's plug-ins."""

        def places():
            tree = run("xwininfo", "-root", "-tree")
            plugin = r'\("wrapper-2.0" "Wrapper-2.0"\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(-?\d+)\+(-?\d+)'
            found = [tuple(int(number) for number in match.groups()) for match in re.finditer(plugin, tree)]
            return [(x, y, width, height) for width, height, x, y in found if width > 16 and height > 16]

        x, y, width, height = max(until(places, "a tray in the panel"))
        return x + width // 2, y + height // 2

    def click(self, button):
        x, y = self.centre()
        run("xdotool", "mousemove", str(x), str(y), "click", str(button))


class PanelMenu:
    """The icon's menu, which the panel draws."""

    def __init__(self, icon):
        before = {window for window, *_ in _menus()}
        icon.click(3)
        self.window, self.x, self.y, self.width, self.height = until(
            lambda: next((menu for menu in _menus() if menu[0] not in before), None), "the icon's menu"
        )

    def choose(self, row):
        """Presses the row with that number, counted from 1 without separators, by the keyboard."""
        run("xdotool", "key", "--delay", "60", *["Down"] * row, "Return")
        self._gone()

    def press_first(self):
        """Presses the first row with the mouse."""
        run("xdotool", "mousemove", str(self.x + self.width // 2), str(self.y + 16))
        run("xdotool", "mousemove_relative", "2", "1", "click", "1")
        self._gone()

    def dismiss(self):
        run("xdotool", "key", "Escape")
        self._gone()

    def _gone(self):
        until(lambda: self.window not in {window for window, *_ in _menus()}, "the end of the menu")


def _menus():
    """Shown pop-up windows of a menu's size: id, x, y, width, height."""
    found = []
    for line in run("xwininfo", "-root", "-children").splitlines():
        match = re.match(r"\s+(0x[0-9a-f]+) .*?\s(\d+)x(\d+)\+(-?\d+)\+(-?\d+)\s", line + " ")
        if not match or int(match[2]) < 60 or int(match[3]) < 60 or int(match[2]) > 800:
            continue
        about = subprocess.run(["xwininfo", "-id", match[1]], capture_output=True, text=True, check=False).stdout
        if "Override Redirect State: yes" in about and "Map State: IsViewable" in about:
            found.append((match[1], int(match[4]), int(match[5]), int(match[2]), int(match[3])))
    return found


def windows_of(process):
    """Ids of the shown ordinary windows of a process."""
    found = subprocess.run(
        ["xdotool", "search", "--all", "--onlyvisible", "--pid", str(process), "--name", "."],
        capture_output=True, text=True, check=False,
    )
    return found.stdout.split()


def picture(path, x, y, width, height, zoom=1):
    """A part of the screen as a PNG."""
    run("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage", "-filter", "point",
        "-resize", f"{zoom * 100}%", path)


def window_picture(path, window):
    run("import", "-window", window, path)


def is_painted(window):
    """True when the window shows more than one colour."""
    return int(run("import", "-window", window, "-format", "%k", "info:-")) > 1


def screen_width():
    return int(run("xdotool", "getdisplaygeometry").split()[0])


def free_memory_bytes():
    with open("/proc/meminfo", encoding="ascii") as file:
        return int(re.search(r"^MemFree:\s+(\d+) kB", file.read(), re.MULTILINE)[1]) * 1024


class Load:
    """All processors busy, for as long as the block lasts."""

    def __enter__(self):
        self._busy = [
            subprocess.Popen(["/bin/sh", "-c", "while :; do :; done"]) for _ in range(len(os.sched_getaffinity(0)))
        ]
        return self

    def __exit__(self, *_):
        for process in self._busy:
            process.kill()
            process.wait()
