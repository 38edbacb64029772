"""Tools of the popover's tests: the program, its window, the icon, and a neighbouring window."""

import collections
import os
import re
import subprocess
import threading
import time

import dbus
import tray_parts
from process import Process
from screen import found_windows, give_keyboard, has_keyboard, picture, place_of, placed_windows
from vorli import TrayIcon
from waiting import wait_for

NAME = os.environ.get("VORLI_SESSION_NAME", "session")
PICTURES = os.environ["VORLI_PICTURES"]
MARGIN_LEFT, MARGIN_TOP, BELOW = 24, 16, 34
WIDTH = 270


def output(*command):
    """Output of the command. Runs it again if it failed because some window was destroyed during its listing."""

    def look():
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        return None if "X Error" in done.stderr or "xwininfo: error" in done.stderr else (done.stdout,)

    return wait_for(look, f"an answer of {command[0]}")[0]


def pixel_ratio():
    dots = re.search(r"Xft.dpi:\s*(\d+)", output("xrdb", "-query"))
    return int(dots[1]) / 96 if dots else 1.0


RATIO = pixel_ratio()


def icon_place():
    """The middle of the icon, in native pixels."""
    if NAME != "openbox":
        return TrayIcon.centre()

    return wait_for(lambda: tray_parts.Screen().place_of(tray_parts.is_red), "the dial in the panel", 15)


class Popover(Process):
    """The program, and its popover's window as other programs see it."""

    def __init__(self, program, **environment):
        self.log = os.path.join(os.environ["HOME"], "vorli.log")
        self.started = time.monotonic()
        super().__init__("/bin/sh", "-c", 'exec "$0" 2>"$1"', program, self.log, environment=environment)
        self.expect("ring .*", seconds=20)

    def age(self):
        """Seconds since the start of the program."""
        return time.monotonic() - self.started

    def log_text(self):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            return file.read()

    def logged_at(self, line):
        """Time of the last such line by the program's clock, in seconds."""
        return float(re.findall(rf"^([\d.]+) vorli {re.escape(line)}", self.log_text(), re.MULTILINE)[-1])

    def helper_status(self):
        program = dbus.SessionBus().get_object("com.kv.vorli", "/com/kv/vorli", introspect=False)
        return str(program.Get("com.kv.vorli.Status", "HelperStatus", dbus_interface=dbus.PROPERTIES_IFACE))

    def settle(self, pressure, least, most):
        """Makes the program take samples until its ring rests between the two values."""
        self.tell(f"pressure {pressure}")

        def ring():
            since = self.mark()
            self.tell("look")
            value = float(self.expect("ring .*", since).split()[1])
            return least <= value <= most

        wait_for(ring, f"a ring from {least} to {most}")

    def window(self):
        """(id, x, y, width, height) of the shown popover, in native pixels, or None."""
        return next((window for window in placed_windows(self.pid) if window[3] == round(318 * RATIO)), None)

    def shown(self):
        return wait_for(self.window, "the popover")

    def toggle(self):
        """Opens the popover without a click on the icon."""
        self.tell("toggle")

    def gone_by(self, way):
        wait_for(self.has_keyboard, "the keyboard in the popover")
        way()
        self.gone()

    def gone(self):
        wait_for(lambda: not self.window(), "the end of the popover")

    def card(self, height, bottom=False):
        """The card's rectangle on the screen, in native pixels."""
        _, x, y, _, window_height = self.shown()
        top = window_height / RATIO - BELOW - height if bottom else MARGIN_TOP
        return [round(value) for value in (x + MARGIN_LEFT * RATIO, y + top * RATIO, WIDTH * RATIO, height * RATIO)]

    def has_keyboard(self):
        window = self.window()
        return window and has_keyboard(window[0])

    def picture(self, name):
        self._take(self.shown(), name)

    def picture_in_time(self, name):
        """One of a moment that a busy machine may miss: the popover closes by itself."""
        if window := self.window():
            self._take(window, name)

    @staticmethod
    def _take(window, name):
        picture(os.path.join(PICTURES, f"{name}.png"), *window[1:])

    def descriptors(self):
        """Number of open descriptors of each kind, without those of the machine's processes."""
        folder, kinds = f"/proc/{self.pid}/fd", collections.Counter()
        for number in os.listdir(folder):
            try:
                kinds[re.sub(r"\d+", "N", os.readlink(f"{folder}/{number}"))] += 1
            except FileNotFoundError:
                pass  # closed during the listing
        del kinds["/proc/N/statm"]
        return kinds

    def dirty_kilobytes(self):
        """Private dirty memory in KiB."""
        return self.resources()[0]


class Stalls:
    """Measures the longest time for which something that was ready had no processor: a beat of this process, or the
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
    """An ordinary window of another program, which prints presses in it."""

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
        self.program = Process("/usr/bin/python3", "-c", self.CODE)
        self.program.expect("ready", seconds=20)
        self.window = wait_for(lambda: found_windows("--name", "neighbour"), "the neighbour's window")[0]

    def middle(self):
        x, y, *_ = place_of(self.window)
        return x + 250, y + 200

    def activate(self):
        give_keyboard(self.window)

    def close(self):
        self.program.kill()
