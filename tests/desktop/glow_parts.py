"""Programs and parts of the screen that the tests of the glow use."""

import re

from process import Process
from screen import screens_windows
from tray_parts import Screen
from waiting import wait_for

ORANGE, BETWEEN, DEEP_RED = (0.945, 0.525, 0.125), (0.9092, 0.2835, 0.1517), (0.78, 0.247, 0.196)
WIDTH, HEIGHT = 1920, 1080
MIDDLE_OF_TOP = (WIDTH // 2, 1)

# A window of another program, given where it lies and its colour. Reports each press, and takes other colours.
OTHER = """
import sys, gi
gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk
place, colour = sys.argv[1:3]
window = Gtk.Window(title="desktop" if place == "desktop" else "other")
style = Gtk.CssProvider()
def paint(colour):
    style.load_from_data(("window { background: %s }" % colour).encode())
paint(colour)
window.get_style_context().add_provider(style, 800)
window.add_events(Gdk.EventMask.BUTTON_PRESS_MASK)
window.connect("button-press-event", lambda _, event: print("press %d %d" % (event.x_root, event.y_root), flush=True))
window.connect("map-event", lambda *_: print("shown", flush=True))
window.set_decorated(False)
if place == "desktop":
    window.set_type_hint(Gdk.WindowTypeHint.DESKTOP)
    window.set_default_size(1920, 1080)
elif place == "fullscreen":
    window.fullscreen()
else:
    window.set_default_size(400, 300)
    window.move(*map(int, place.split(",")))
window.show_all()
def obey(source, condition):
    line = sys.stdin.readline().strip()
    if line:
        paint(line)
    else:
        Gtk.main_quit()
    return bool(line)
GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_IN | GLib.IO_HUP, obey)
Gtk.main()
"""


def other_program(place, colour):
    program = Process("/usr/bin/python3", "-c", OTHER, place, colour)
    program.expect("shown")
    return program


class Desktop:
    """The background: a window below all others, as file managers have it. Compositors do not show the root's colour."""

    def __init__(self, colour):
        self.program = other_program("desktop", colour)
        self.close = self.program.close
        self.await_colour(colour)

    def paint(self, colour):
        self.program.tell(colour)
        self.await_colour(colour)

    @staticmethod
    def await_colour(colour):
        wanted = {"white": (255,) * 3, "black": (0,) * 3}[colour]
        wait_for(lambda: Screen().pixel(WIDTH // 2, HEIGHT // 2) == wanted, f"a {colour} desktop")


def lit(ground, colour, opacity, pixel_from_edge=1, depth=100):
    """Colour of a ground below one band, `pixel_from_edge` pixels inside of the edge."""
    share = opacity * (1 - (pixel_from_edge + 0.5) / depth)
    return tuple(255 * (ground + share * (component - ground)) for component in colour)


def near(pixel, wanted, tolerance=4):
    return all(abs(a - b) <= tolerance for a, b in zip(pixel, wanted))


def until_pixel(place, wanted, what):
    seen = []

    def found():
        seen[:] = [Screen().pixel(*place)]
        return near(seen[0], wanted)

    try:
        wait_for(found, what, seconds=15.0)
    except AssertionError as error:
        raise AssertionError(f"{error}: {place} is {seen}, wanted {wanted}") from None


def band_windows():
    """(width, height, x, y) of each band, among all windows whether they are mapped or not."""
    places = re.findall(r"(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(-?\d+)\+(-?\d+)", screens_windows("-tree"))
    sizes = [tuple(map(int, place)) for place in places]
    return [place for place in sizes if 100 in place[:2] or 140 in place[:2]]
