"""What the tests of the status item look at and work with: its process, the screen, the session's bus."""

import ctypes
import os
import re
import signal
import subprocess
import threading

import dbus

from waiting import until

ITEM, ITEM_PATH = "org.kde.StatusNotifierItem", "/StatusNotifierItem"
MENU, MENU_PATH = "com.canonical.dbusmenu", "/Menu"
HERE = os.path.dirname(os.path.realpath(__file__))
PICTURES = os.environ.get("VORLI_PICTURES", os.path.join(HERE, "..", "..", "build", "pictures"))


class Process:
    """A program that is told lines and tells lines."""

    def __init__(self, *command, environment=None):
        self.lines = []
        self.process = subprocess.Popen(
            command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1, env=environment
        )
        self.pid = self.process.pid
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip("\n"))

    def tell(self, line):
        self.process.stdin.write(line + "\n")

    def count(self, line):
        return self.lines.count(line)

    def mark(self):
        return len(self.lines)

    def expect(self, pattern, since=0, seconds=10.0):
        """The first line from number `since` on that matches."""

        def found():
            return next((line for line in self.lines[since:] if re.fullmatch(pattern, line)), None)

        return until(found, f"the line {pattern!r} after {self.lines[since:]}", seconds)

    def close(self):
        self.process.stdin.close()
        try:
            code = self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise AssertionError("the program does not end") from None
        self.reader.join()
        self.process.stdout.close()
        assert code == 0, f"the program ended with {code}"

    def kill(self):
        """For a program that does not end by itself when its input does."""
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()
        self.reader.join()
        self.process.stdout.close()

    def resources(self):
        """Private dirty kibibytes, descriptors, and the seconds of processor time used so far."""
        with open(f"/proc/{self.pid}/smaps_rollup", encoding="ascii") as file:
            dirty = int(re.search(r"Private_Dirty:\s+(\d+)", file.read())[1])
        with open(f"/proc/{self.pid}/stat", encoding="ascii") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        ticks = os.sysconf("SC_CLK_TCK")
        return dirty, len(os.listdir(f"/proc/{self.pid}/fd")), (int(fields[11]) + int(fields[12])) / ticks


class Screen:
    """The X screen at one moment."""

    def __init__(self):
        data = subprocess.run(["import", "-window", "root", "-depth", "8", "ppm:-"], check=True, capture_output=True)
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data.stdout)
        self.width, self.height = int(header[1]), int(header[2])
        self.data = data.stdout[header.end() :]

    def pixel(self, x, y):
        at = 3 * (y * self.width + x)
        return tuple(self.data[at : at + 3])

    def place_of(self, wanted, height=None):
        """The middle of all pixels of the upper `height` lines that `wanted` takes, or None."""
        found = [
            (x, y)
            for y in range(height or self.height)
            for x in range(self.width // 2, self.width)
            if wanted(*self.pixel(x, y))
        ]
        if len(found) < 6:
            return None
        columns, rows = [x for x, _ in found], [y for _, y in found]
        return (min(columns) + max(columns)) // 2, (min(rows) + max(rows)) // 2


def is_amber(red, green, blue):
    return red > 150 and 60 < green < red - 40 and blue < green - 30


def is_red(red, green, blue):
    return red > 150 and green < 110 and blue < 110


def photograph(name, geometry="340x330+1580+0"):
    os.makedirs(PICTURES, exist_ok=True)
    target = os.path.join(PICTURES, f"status-item-{name}.png")
    subprocess.run(["import", "-window", "root", "-crop", geometry, "+repage", target], check=True)


def pointer(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True)


def click(place, button=1, control=False):
    pointer("mousemove", *place)
    if control:
        pointer("keydown", "ctrl")
    try:
        pointer("click", button)
    finally:
        if control:
            pointer("keyup", "ctrl")


def window_of(pid, width, height):
    """The upper left corner of the visible window of that size that the process has, or None."""
    search = ["xdotool", "search", "--onlyvisible", "--pid", str(pid)]
    for window in subprocess.run(search, capture_output=True, text=True).stdout.split():
        shell = subprocess.run(["xdotool", "getwindowgeometry", "--shell", window], capture_output=True, text=True)
        place = dict(line.split("=") for line in shell.stdout.split())
        if (place.get("WIDTH"), place.get("HEIGHT")) == (str(width), str(height)):
            return int(place["X"]), int(place["Y"])
    return None


def selection_owner(name):
    """The X11 window that owns that selection, as a number for a command line, or None."""
    x11 = ctypes.CDLL("libX11.so.6")
    for function in (x11.XOpenDisplay, x11.XInternAtom, x11.XGetSelectionOwner):
        function.restype = ctypes.c_void_p
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    atom = ctypes.c_ulong(x11.XInternAtom(display, name.encode(), 0))
    owner = x11.XGetSelectionOwner(display, atom)
    x11.XCloseDisplay(display)
    return str(owner) if owner else None


def session_process(name):
    """The process id of the session's program of that name, or None."""
    mark = f"VORLI_SESSION_MARK={os.environ['VORLI_SESSION_MARK']}".encode()
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{pid}/comm", encoding="ascii") as comm, open(f"/proc/{pid}/environ", "rb") as environ:
                if comm.read().strip() == name and mark in environ.read().split(b"\0"):
                    return int(pid)
        except OSError:
            continue
    return None


def end_panel(name):
    """Kills the session's panel; returns the command that starts it again."""
    pid = session_process(name)
    with open(f"/proc/{pid}/cmdline", "rb") as file:
        command = [part.decode() for part in file.read().split(b"\0")[:-1]]
    os.kill(pid, signal.SIGKILL)
    until(lambda: session_process(name) is None, f"{name} is gone")
    return command


def start_panel(command):
    subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


class Item:
    """The status item of a process, as any program on the session bus sees it."""

    def __init__(self, pid):
        self.bus = dbus.SessionBus(private=True)
        self.name = f"{ITEM}-{pid}-1"

    def properties(self):
        item = self.bus.get_object(self.name, ITEM_PATH, introspect=False)
        return item.GetAll(ITEM, dbus_interface=dbus.PROPERTIES_IFACE)

    def call(self, path, interface, method, signature, *arguments):
        return self.bus.call_blocking(self.name, path, interface, method, signature, arguments)

    def layout(self):
        return self.call(MENU_PATH, MENU, "GetLayout", "iias", 0, -1, dbus.Array([], signature="s"))

    def rows(self):
        """The menu from the top, "-" for a separator."""
        return [row[1].get("label", "-") for row in self.layout()[1][2]]

    def id_of(self, label):
        return next(row[0] for row in self.layout()[1][2] if row[1].get("label") == label)
