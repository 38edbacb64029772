"""popover.py PREFIX OUT OPENINGS SECONDS: the popover by clicks on the icon in the panel.

Measures three programs in turn. The installed one: its memory after 3 and after all openings, and the cost of an open
popover. The one that reports its frames: the time from a click to the first frame, and the frames at rest and while
the popover is shut. Then the bare one.
"""

import contextlib
import os
import re
import subprocess
import time

import dbus
from common import ARGUMENTS, OUT, PREFIX, let_pass, started, write, x_server
from measuring.process import Window, memory_mb
from screen import windows_of
from vorli import TrayIcon
from waiting import wait_for
from x11 import Pointer

ITEM = "org.kde.StatusNotifierItem"
FEW = 3
UNFOLDED = 0.7  # seconds until nothing moves but the halo
PAUSE = 0.6  # longer than the pause within a double click
SETTLE = 3.0
AT_REST = 12  # seconds, each counted on its own, because a tick may move the ring
SHUT = 20.0  # seconds: long enough for a tick
AWAY = (5, 500)


def frames_of(log):
    """The times (painted, shown) of every frame so far, in microseconds."""
    with open(log, encoding="utf-8", errors="replace") as file:
        found = re.findall(r"^frame (\d+) (\d+) ", file.read(), re.MULTILINE)
    return [(int(painted), int(shown)) for painted, shown in found]


class Clicked:
    """A program in the tray whose window opens and closes at clicks."""

    def __init__(self, pid, pointer):
        self.pid, self._pointer, self._icon = pid, pointer, TrayIcon.centre()

    def click(self):
        self._pointer.move(*self._icon)
        return self._pointer.click()

    def call(self, item):
        """Sends what the panel sends at a click, without the panel's own work. Returns the time of the call."""
        name, path = item.split("/", 1)
        proxy = dbus.SessionBus().get_object(name, "/" + path, introspect=False)
        self._pointer.move(*self._icon)
        moment = time.monotonic_ns() / 1000
        proxy.Activate(*map(dbus.Int32, self._icon), dbus_interface=ITEM, ignore_reply=True)
        return moment

    def open(self, item=None):
        moment = self.call(item) if item else self.click()
        wait_for(lambda: windows_of(self.pid), "the window")
        return moment

    def shut(self):
        self.click()
        wait_for(lambda: not windows_of(self.pid), "the end of the window")
        let_pass(PAUSE)

    def openings(self, count):
        for _ in range(count):
            self.open()
            let_pass(UNFOLDED)
            self.shut()

    def times_to_first_frame(self, log, count, item=None):
        """Times as (painted, shown) in milliseconds, counted from a click or from the panel's call to `item`."""
        times = []
        for _ in range(count):
            before = len(frames_of(log))
            moment = self.open(item)
            painted, shown = wait_for(lambda: frames_of(log)[before:], "the first frame")[0]
            times.append(((painted - moment) / 1000, (shown - moment) / 1000))
            let_pass(UNFOLDED)
            self.shut()
        return times

    def open_for(self, seconds):
        """Cost of an open window for the program and for the X server."""
        self.open()
        self._pointer.move(*AWAY)
        let_pass(SETTLE)
        windows = [Window(pid) for pid in (self.pid, x_server())]
        let_pass(seconds)
        result = [window.result() for window in windows]
        self.shut()
        return result

    def frames_at_rest(self, log):
        """Number of frames in each second."""
        self.open()
        self._pointer.move(*AWAY)
        let_pass(SETTLE)
        start = time.monotonic_ns() / 1000
        let_pass(AT_REST)
        self.shut()
        seconds = [int((painted - start) // 1e6) for painted, _ in frames_of(log)]
        return [seconds.count(second) for second in range(AT_REST)]

    def frames_while_shut(self, log):
        before = len(frames_of(log))
        let_pass(SHUT)
        return len(frames_of(log)) - before


def installed(pointer, openings, seconds):
    vorli = started()
    clicked = Clicked(vorli.process.pid, pointer)
    clicked.openings(FEW)
    let_pass(SETTLE)
    result = {"few": memory_mb(vorli.process.pid)}
    clicked.openings(openings - FEW)
    let_pass(SETTLE)
    result["many"] = memory_mb(vorli.process.pid)
    result["open"] = clicked.open_for(seconds)
    if vorli.end() != 0:
        raise SystemExit("the program did not exit cleanly")
    return result


def watched(pointer, openings):
    vorli = started("vorli_popover_watched")
    tick = wait_for(lambda: re.search(r"^tick (\d+)$", vorli.log_text(), re.MULTILINE), "the time of a tick", 20)
    clicked = Clicked(vorli.process.pid, pointer)
    result = {"tick": int(tick[1]) / 1000, "times": clicked.times_to_first_frame(vorli.log, openings + 1)}
    result["calls"] = clicked.times_to_first_frame(vorli.log, openings, vorli.item)
    result["rest"] = clicked.frames_at_rest(vorli.log)
    result["shut"] = clicked.frames_while_shut(vorli.log)
    if vorli.end() != 0:
        raise SystemExit("the watched program did not exit cleanly")
    return result


@contextlib.contextmanager
def bare_program(pointer, log, *arguments):
    with open(log, "w", encoding="utf-8") as file:
        program = subprocess.Popen([os.path.join(PREFIX, "bin", "vorli_bare_popover"), *arguments],
                                   stdin=subprocess.DEVNULL, stdout=file)
    icon = TrayIcon()
    try:
        item = icon.appear()[0]
        let_pass(SETTLE)
        yield Clicked(program.pid, pointer), item
    finally:
        program.terminate()
        program.wait(10)
    wait_for(lambda: not icon.items(), "an empty tray")


def bare(pointer, openings, seconds):
    log = os.path.join(OUT, "bare.log")
    with bare_program(pointer, log) as (clicked, _item):
        clicked.openings(openings)
        result = {"open": clicked.open_for(seconds), "many": memory_mb(clicked.pid)}
    with bare_program(pointer, log, "--watched") as (clicked, item):  # reporting its frames has a cost
        result["times"] = clicked.times_to_first_frame(log, openings + 1)
        result["calls"] = clicked.times_to_first_frame(log, openings, item)
    return result


def main():
    openings, seconds = int(ARGUMENTS[0]), float(ARGUMENTS[1])
    pointer, icon = Pointer(), TrayIcon()
    result = {"installed": installed(pointer, openings, seconds)}
    wait_for(lambda: not icon.items(), "an empty tray")
    result["watched"] = watched(pointer, openings)
    wait_for(lambda: not icon.items(), "an empty tray")
    result["bare"] = bare(pointer, openings, seconds)
    write(result)


main()
