"""What the tests of the popover look at and work with: the program, its window, the icon, a neighbour window."""

import collections
import os
import re
import subprocess
import threading
import time

import dbus
import tray_parts
from tray_parts import pointer
from vorli import TrayIcon
from waiting import until

NAME = os.environ.get("VORLI_SESSION_NAME", "session")
PICTURES = os.environ["VORLI_PICTURES"]
MARGIN_LEFT, MARGIN_TOP, BELOW = 24, 16, 34
WIDTH = 270


def output(*command):
    """What the command prints. Asked again when a window of anybody's went while it looked at all of them."""
    while True:
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        if "X Error" not in done.stderr:
            return done.stdout


def pixel_ratio():
    dots = re.search(r"Xft.dpi:\s*(\d+)", output("xrdb", "-query"))
    return int(dots[1]) / 96 if dots else 1.0


RATIO = pixel_ratio()


def icon_place():
    """The middle of the icon, in native pixels."""
    if NAME != "openbox":
        return TrayIcon.centre()

    return until(lambda: tray_parts.Screen().place_of(tray_parts.is_red), "the dial in the panel", 15)


class Popover(tray_parts.Process):
    """The program, with its popover's window as anybody sees it."""

    def __init__(self, program, **environment):
        self.log = os.path.join(os.environ["HOME"], "vorli.log")
        super().__init__("/bin/sh", "-c", 'exec "$0" 2>"$1"', program, self.log,
                         environment={**os.environ, **environment})
        self.expect("ring .*", seconds=20)

    def end(self):
        self.process.terminate()
        self.process.wait(10)
        self.process.stdin.close()
        self.reader.join()
        self.process.stdout.close()

    def log_text(self):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            return file.read()

    def logged_at(self, line):
        """The program's own time of the last such line, in seconds."""
        return float(re.findall(rf"^([\d.]+) vorli {re.escape(line)}", self.log_text(), re.MULTILINE)[-1])

    def helper_status(self):
        program = dbus.SessionBus().get_object("com.kv.vorli", "/com/kv/vorli", introspect=False)
        return str(program.Get("com.kv.vorli.Status", "HelperStatus", dbus_interface=dbus.PROPERTIES_IFACE))

    def settle(self, pressure, least, most):
        """Looks at the machine until the ring has come to rest between the two."""
        self.tell(f"pressure {pressure}")

        def ring():
            since = self.mark()
            self.tell("look")
            value = float(self.expect("ring .*", since).split()[1])
            return least <= value <= most

        until(ring, f"a ring from {least} to {most}")

    def window(self):
        """(id, x, y, width, height) of the shown popover, in native pixels, or None."""
        for window in output("xdotool", "search", "--onlyvisible", "--pid", str(self.pid)).split():
            shell = output("xdotool", "getwindowgeometry", "--shell", window)
            place = dict(line.split("=") for line in shell.split() if "=" in line)
            if place and int(place["WIDTH"]) == round(318 * RATIO):
                return window, int(place["X"]), int(place["Y"]), int(place["WIDTH"]), int(place["HEIGHT"])
        return None

    def shown(self):
        return until(self.window, "the popover")

    def toggle(self):
        """As a second start does: without a click on the icon."""
        subprocess.run(
            ["dbus-send", "--session", "--print-reply", "--dest=com.kv.vorli", "/com/kv/vorli",
             "org.freedesktop.Application.Activate", "dict:string:string:"],
            check=True, capture_output=True,
        )

    def gone_by(self, way):
        until(self.has_keyboard, "the keyboard in the popover")
        way()
        self.gone()

    def gone(self):
        until(lambda: not self.window(), "the end of the popover")

    def card(self, height, bottom=False):
        """The card's rectangle on the screen, in native pixels."""
        _, x, y, _, window_height = self.shown()
        top = window_height / RATIO - BELOW - height if bottom else MARGIN_TOP
        return [round(value) for value in (x + MARGIN_LEFT * RATIO, y + top * RATIO, WIDTH * RATIO, height * RATIO)]

    def has_keyboard(self):
        window = self.window()
        return window and output("xdotool", "getactivewindow").strip() == window[0]

    def picture(self, name):
        _, x, y, width, height = self.shown()
        path = os.path.join(PICTURES, f"{NAME}-{name}.png")
        subprocess.run(
            ["import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage", path], check=True
        )

    def descriptors(self):
        """How many of each kind are open, without those by which it follows the processes of the machine."""
        folder, kinds = f"/proc/{self.pid}/fd", collections.Counter()
        for number in os.listdir(folder):
            try:
                kinds[re.sub(r"\d+", "N", os.readlink(f"{folder}/{number}"))] += 1
            except FileNotFoundError:
                pass  # closed during the look
        del kinds["/proc/N/statm"]
        return kinds

    def dirty_kilobytes(self):
        """Private memory that was written to."""
        return self.resources()[0]


class Stalls:
    """How long at the most the machine let something wait that was ready to go on: a beat of this process, or the
    program's first thread, while the block lasts."""

    BEAT = 0.005

    def __init__(self, pid):
        self.longest, self.ended = 0.0, threading.Event()
        self.file = f"/proc/{pid}/task/{pid}/schedstat"

    def __enter__(self):
        self.watcher = threading.Thread(target=self._watch)
        self.watcher.start()
        return self

    def __exit__(self, *_):
        self.ended.set()
        self.watcher.join()

    def _unserved(self):
        with open(self.file, encoding="ascii") as file:
            return int(file.read().split()[1]) / 1e9

    def _watch(self):
        last, unserved = time.monotonic(), self._unserved()
        while not self.ended.wait(self.BEAT):
            last, before_last = time.monotonic(), last
            unserved, before = self._unserved(), unserved
            self.longest = max(self.longest, last - before_last - self.BEAT, unserved - before)


class Neighbour:
    """An ordinary window of another program that prints what is pressed in it."""

    CODE = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window(title="neighbour")
window.set_default_size(500, 400)
window.move(200, 300)
box = Gtk.EventBox()
box.connect("button-press-event", lambda _, event: print("pressed", event.button, flush=True))
box.connect("button-release-event", lambda _, event: print("released", event.button, flush=True))
window.add(box)
window.show_all()
print("ready", flush=True)
Gtk.main()
"""

    def __init__(self):
        self.program = tray_parts.Process("/usr/bin/python3", "-c", self.CODE)
        self.program.expect("ready", seconds=20)
        self.window = until(lambda: output("xdotool", "search", "--onlyvisible", "--name", "neighbour").split(),
                            "the neighbour's window")[0]

    def middle(self):
        shell = output("xdotool", "getwindowgeometry", "--shell", self.window)
        place = dict(line.split("=") for line in shell.split() if "=" in line)
        return int(place["X"]) + 250, int(place["Y"]) + 200

    def activate(self):
        pointer("windowactivate", "--sync", self.window)

    def close(self):
        self.program.kill()
