"""Tools of the status item's tests: its process, the screen, the session's bus."""

import contextlib
import os
import re
import signal
import subprocess

import dbus

from process import session_process
from screen import picture, placed_windows
from waiting import settled, wait_for
from x11 import Display

# Bytes that may remain for each sent picture. A picture that is kept has 1,900 or more; on a busy machine the allocator
# of a program needs up to 50 for each of ten thousand.
MOST_LEFT_OF_A_PICTURE = 200
ITEM, ITEM_PATH = "org.kde.StatusNotifierItem", "/StatusNotifierItem"
MENU, MENU_PATH = "com.canonical.dbusmenu", "/Menu"
HERE = os.path.dirname(os.path.realpath(__file__))
PANEL_HEIGHT = 28
BELOW_THE_ICON = (1580, 0, 340, 330)  # left, top, width and height of what the icon's menus cover
PICTURES = os.environ["VORLI_PICTURES"]


class Screen:
    """A picture of the X screen."""

    def __init__(self):
        data = subprocess.run(["import", "-window", "root", "-depth", "8", "ppm:-"], check=True, capture_output=True)
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data.stdout)
        self.width, self.height = int(header[1]), int(header[2])
        self.data = data.stdout[header.end() :]

    def pixel(self, x, y):
        at = 3 * (y * self.width + x)
        return tuple(self.data[at : at + 3])

    def place_of(self, wanted, height=None):
        """The middle of all pixels in the upper `height` lines that `wanted` accepts, or None."""
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


def icon_place(colour=is_amber):
    """The middle of the dial in the panel."""
    return settled(lambda: Screen().place_of(colour, PANEL_HEIGHT), "the dial is in the panel", pause=0.02)


def icon_is_gone():
    return Screen().place_of(lambda *pixel: is_amber(*pixel) or is_red(*pixel), PANEL_HEIGHT) is None


def photograph(name, area=BELOW_THE_ICON):
    picture(os.path.join(PICTURES, f"status-item-{name}.png"), *area)


def pointer(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True)


def click(place, button=1):
    pointer("mousemove", *place)
    pointer("click", button)


@contextlib.contextmanager
def held(key):
    """Holds the key for as long as the block lasts: a click over the bus makes its receiver ask which keys are held."""
    pointer("keydown", key)
    try:
        yield
    finally:
        pointer("keyup", key)


def corner_of(pid, width, height):
    """The upper left corner of the process's visible window of that size, or None."""
    return next(((x, y) for _, x, y, *size in placed_windows(pid) if size == [width, height]), None)


def pixel_at(x, y):
    """The colour of one place of the screen, read within milliseconds."""
    with Display() as display:
        return display.pixel(x, y)


def selection_owner(name):
    """The X11 window that owns that selection, as a number for command lines, or None."""
    with Display() as display:
        owner = display.selection_owner(name)
    return str(owner) if owner else None


def end_panel(name):
    """Kills the session's panel; returns the command that starts it again."""
    pid = session_process(name)
    with open(f"/proc/{pid}/cmdline", "rb") as file:
        command = [part.decode() for part in file.read().split(b"\0")[:-1]]
    os.kill(pid, signal.SIGKILL)
    wait_for(lambda: session_process(name) is None, f"{name} is gone")
    return command


def start_panel(command):
    subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


ROWS = ["Polish Now", "-", "Restart Panel", "Restart File Manager", "-", "Open Startup Applications", "-", "About Vorli",
        "-", "Quit Vorli"]
ACTIONS = {"Polish Now": "polish", "Restart Panel": "dock", "Restart File Manager": "finder",
           "Open Startup Applications": "login items", "About Vorli": "about", "Quit Vorli": "quit"}


class OwnMenu:
    """The menu that the program draws itself. Its rows have "-" for a separator."""

    WIDTH, EDGE, ROW_HEIGHT, SEPARATOR_HEIGHT = 224, 6, 28, 11

    def __init__(self, program, rows=tuple(ROWS)):
        self._program, self._rows = program, rows
        self._height = 2 * self.EDGE + self._height_of(rows)

    def _height_of(self, rows):
        return sum(self.SEPARATOR_HEIGHT if row == "-" else self.ROW_HEIGHT for row in rows)

    def place(self):
        """The menu's upper left corner, or None."""
        return corner_of(self._program.pid, width=self.WIDTH, height=self._height)

    def opened(self):
        return wait_for(self.place, "the program's own menu")

    def gone(self):
        wait_for(lambda: not self.place(), "the end of the program's own menu")

    def point_to(self, label):
        """Moves the pointer to the row with that label; returns the place."""
        x, y = self.opened()
        above = self._height_of(self._rows[: self._rows.index(label)])
        place = x + 60, y + self.EDGE + above + self.ROW_HEIGHT // 2
        pointer("mousemove", *place)
        return place

    def choose(self, label):
        """Chooses the row with that label by the mouse, and waits for the row's action."""
        since = self._program.mark()
        click(self.point_to(label))
        self._program.expect(f"chose {ACTIONS[label]}", since)
        self.gone()


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
        """Labels of the menu from the top, with "-" for a separator."""
        return [row[1].get("label", "-") for row in self.layout()[1][2]]

    def id_of(self, label):
        return next(row[0] for row in self.layout()[1][2] if row[1].get("label") == label)
