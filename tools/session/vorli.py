"""Drives the program in a private desktop session as a user does: for the tests, the measurements and the visit."""

import os
import re
import shutil
import signal
import subprocess

import dbus
from process import run
from screen import colours_at, has_keyboard, is_painted, screens_windows, width_of, windows_of
from waiting import Missing, wait_for

BUS_NAME, OBJECT, STATUS = "com.kv.vorli", "/com/kv/vorli", "com.kv.vorli.Status"
WATCHER = "org.kde.StatusNotifierWatcher"


class Vorli:
    """One running program, its log, and the item that it publishes on the session bus."""

    def __init__(self, program, log, environment=None):
        """`environment` has variables for this program in addition to the session's."""
        self.log = log
        self._bus = dbus.SessionBus()
        with open(log, "wb") as file:
            self.process = subprocess.Popen([program], env={**os.environ, **(environment or {})},
                                            stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT)
        wait_for(lambda: self._owned() or self._ended(), "the name of the program on the session bus", 15)
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
        """Exit code and text of the daemon's last answer to a call, as the program logs it; None if there is none yet."""
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
        """Asks the program to end, as the session manager does; returns its exit code."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        return self.process.wait(seconds)


def installed_at_home(prefix):
    """Copies the installed program to where users may keep programs, which is not below /tmp; returns the path."""
    home = os.path.join(os.environ["HOME"], ".local")
    for part in ("bin", "libexec", "share/vorli", "share/dbus-1/system-services", "share/dbus-1/system.d",
                 "share/polkit-1/actions", "lib/systemd/system"):
        source = os.path.join(prefix, part)
        if os.path.isdir(source):
            shutil.copytree(source, os.path.join(home, part), dirs_exist_ok=True)
    return os.path.join(home, "bin", "vorli")


def settings_file():
    return os.path.join(os.environ["XDG_CONFIG_HOME"], "Vorli", "Vorli.ini")


def become_new_user():
    """Makes the next start of the program this user's first one."""
    if os.path.exists(settings_file()):
        os.unlink(settings_file())


def stored(key):
    """The text of the key in the settings file, or None."""
    if not os.path.exists(settings_file()):
        return None
    with open(settings_file(), encoding="utf-8") as file:
        found = re.search(rf"^{re.escape(key)}=(.*)$", file.read(), re.MULTILINE)
    return found[1] if found else None


def is_stored(key):
    """Whether the settings file has the key with the value true."""
    return stored(key) == "true"


class Sheet:
    """A large window of the program that has the keyboard."""

    NAME = "window"
    LEAST_WIDTH = 460  # the popover is narrower

    def __init__(self, process):
        self._process = process
        self.window = wait_for(self._find, f"the {self.NAME}")
        wait_for(self.has_keyboard, f"the keyboard in the {self.NAME}")
        wait_for(lambda: is_painted(self.window), f"the contents of the {self.NAME}")

    def _find(self):
        return next((window for window in windows_of(self._process) if width_of(window) >= self.LEAST_WIDTH), None)

    def has_keyboard(self):
        return has_keyboard(self.window)

    def press(self, *keys):
        run("xdotool", "key", "--delay", "60", *keys)

    def gone(self):
        wait_for(lambda: self._find() != self.window, f"the end of the {self.NAME}")


class FirstSteps(Sheet):
    """The window of a new user."""

    NAME = "window of the first steps"


class Settings(Sheet):
    NAME = "settings"
    LEAST_WIDTH = 880


class CrashReport(Sheet):
    NAME = "crash report"


class TrayIcon:
    """The place of the icon in the panel."""

    def __init__(self, bus=None):
        self._bus = bus or dbus.SessionBus()

    def items(self):
        """The status notifier items that the panel has."""
        properties = dbus.Interface(
            self._bus.get_object(WATCHER, "/StatusNotifierWatcher", introspect=False), "org.freedesktop.DBus.Properties"
        )
        return [str(item) for item in properties.Get(WATCHER, "RegisteredStatusNotifierItems")]

    def appear(self, seconds=15):
        return wait_for(self.items, "the icon in the panel", seconds)

    @staticmethod
    def centre():
        """The middle of the panel's tray, which holds this one icon: the right-most of the panel's plug-ins."""

        def places():
            tree = screens_windows("-tree")
            place = r"\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(-?\d+)\+(-?\d+)"

            def found(program):
                matches = re.finditer(program + place, tree)
                return [(x, y, width, height) for width, height, x, y in
                        (tuple(int(number) for number in match.groups()) for match in matches)]

            # A plug-in that the panel has not placed yet is outside of it.
            panels = found(r'\("xfce4-panel" "Xfce4-panel"\)')
            return [(x, y, width, height) for x, y, width, height in found(r'\("wrapper-2.0" "Wrapper-2.0"\)')
                    if width > 16 and height > 16 and any(
                        left <= x and top <= y and x + width <= left + wide and y + height <= top + high
                        for left, top, wide, high in panels)]

        def tray():
            """The place, once the panel has drawn the icon there: clicks before that are lost."""
            found = max(places(), default=None)
            return found if found and colours_at(*found) > 16 else None

        x, y, width, height = wait_for(tray, "a tray with an icon in the panel")
        return x + width // 2, y + height // 2

    def click(self, button):
        x, y = self.centre()
        run("xdotool", "mousemove", str(x), str(y), "click", str(button))

    def open_popover(self, process):
        """Clicks until the program has a window; it must have none before. A busy panel may lose a click on an icon
        that has just come."""
        longer_than_an_opening = 8.0

        def opens():
            self.click(1)
            try:  # another click before it appears would close it
                return wait_for(lambda: windows_of(process), "the popover", longer_than_an_opening)
            except Missing:
                return None

        wait_for(opens, "the popover at the icon", 30)


def menu_of(item):
    """The menu of a status notifier item as the panel gets it: the bus object, and (id, label) of each row from the
    top, where a separator has no label."""
    menu = dbus.Interface(
        dbus.SessionBus().get_object(item.split("/")[0], "/Menu", introspect=False), "com.canonical.dbusmenu"
    )
    menu.AboutToShow(0)
    _, (_, _, rows) = menu.GetLayout(0, -1, ["label", "type"])
    return menu, [(row[0], "" if row[1].get("type") == "separator" else str(row[1].get("label"))) for row in rows]


def choose_row(item, label):
    """Chooses the row with that label without showing the menu, by the call that a panel makes."""
    menu, rows = menu_of(item)
    row = next(number for number, each in rows if each == label)
    menu.Event(row, "clicked", dbus.String("", variant_level=1), dbus.UInt32(0))


class PanelMenu:
    """The icon's menu, which the panel draws."""

    def __init__(self, icon):
        self._item = icon.appear()[0]
        before = {window for window, *_ in _menus()}
        icon.click(3)
        self.window, self.x, self.y, self.width, self.height = wait_for(
            lambda: next((menu for menu in _menus() if menu[0] not in before), None), "the icon's menu"
        )

    def labels(self):
        """Labels of the rows from the top, empty for a separator."""
        return [label for _, label in menu_of(self._item)[1]]

    def choose(self, label):
        """Chooses the row with that label by the keyboard."""
        passed = [each for each in self.labels() if each]
        if label not in passed:
            raise Missing(f"no row {label} among {passed}")
        run("xdotool", "key", "--delay", "60", *["Down"] * (passed.index(label) + 1), "Return")
        self._gone()

    def dismiss(self):
        run("xdotool", "key", "Escape")
        self._gone()

    def _gone(self):
        wait_for(lambda: self.window not in {window for window, *_ in _menus()}, "the end of the menu")


def _is_tooltip(window):
    """A panel with large letters has tooltips of a menu's size."""
    told = subprocess.run(["xprop", "-id", window, "_NET_WM_WINDOW_TYPE"], capture_output=True, text=True, check=False)
    return "TYPE_TOOLTIP" in told.stdout


def _menus():
    """Shown pop-up windows of a menu's size: id, x, y, width, height."""
    found = []
    for line in screens_windows("-children").splitlines():
        match = re.match(r"\s+(0x[0-9a-f]+) .*?\s(\d+)x(\d+)\+(-?\d+)\+(-?\d+)\s", line + " ")
        if not match or int(match[2]) < 60 or int(match[3]) < 60 or int(match[2]) > 800:
            continue
        about = subprocess.run(["xwininfo", "-id", match[1]], capture_output=True, text=True, check=False).stdout
        if "Override Redirect State: yes" in about and "Map State: IsViewable" in about and not _is_tooltip(match[1]):
            found.append((match[1], int(match[4]), int(match[5]), int(match[2]), int(match[3])))
    return found


def free_memory_bytes():
    with open("/proc/meminfo", encoding="ascii") as file:
        return int(re.search(r"^MemFree:\s+(\d+) kB", file.read(), re.MULTILINE)[1]) * 1024


class Load:
    """Keeps all processors busy for as long as the block lasts."""

    def __enter__(self):
        self._busy = [
            subprocess.Popen(["/bin/sh", "-c", "while :; do :; done"]) for _ in range(len(os.sched_getaffinity(0)))
        ]
        return self

    def __exit__(self, *_):
        for process in self._busy:
            process.kill()
            process.wait()
