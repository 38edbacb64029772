"""The installed program in a whole desktop, with its real daemon: what a user sees and gets from start to end."""

# session: --system-bus PREFIX
# session: --system-bus PREFIX --dark --panel-pos bottom
# session: --system-bus PREFIX --dpi 192 --size 2560x1440

import os
import subprocess
import unittest

import dbus
from vorli import (
    BUS_NAME, OBJECT, PanelMenu, TrayIcon, Vorli, free_memory_bytes, is_painted, picture, screen_width, until,
    window_picture, windows_of,
)

PREFIX, PICTURES = os.environ["VORLI_PREFIX"], os.environ["VORLI_PICTURES"]
PROGRAM = os.path.join(PREFIX, "bin", "vorli")
ROWS = ["Polish Now", "", "Restart Dock", "Restart Finder", "", "Open Login Items", "", "About Vorli", "", "Quit Vorli"]
POLISH, LOGIN_ITEMS, ABOUT, QUIT = 1, 4, 5, 6  # counted without separators
MOST_RESIDENT_KB, MOST_PROPORTIONAL_KB = 48 * 1024, 34 * 1024


def rows_on_the_bus(item):
    """The titles of the item's menu as the panel gets them; empty for a separator."""
    name = item.split("/")[0]
    bus = dbus.SessionBus()
    menu = dbus.Interface(bus.get_object(name, "/Menu", introspect=False), "com.canonical.dbusmenu")
    menu.AboutToShow(0)
    _, (_, _, children) = menu.GetLayout(0, -1, ["label", "type"])
    return ["" if row[1].get("type") == "separator" else str(row[1].get("label")) for row in children]


class InstalledVorliTest(unittest.TestCase):
    def setUp(self):
        self.vorli = Vorli(PROGRAM, os.path.join(os.environ["HOME"], "vorli.log"))
        self.addCleanup(self.end)
        self.icon = TrayIcon()
        self.item = self.icon.appear()[0]
        until(lambda: self.vorli.ticks >= 1, "the first look at the machine")

    def end(self):
        if self.vorli.process.poll() is None:
            self.assertEqual(self.vorli.end(), 0)
        until(lambda: not self.icon.items(), "a panel without the icon")

    def picture_at_the_icon(self, name, width, height):
        x, y = self.icon.centre()
        picture(os.path.join(PICTURES, name), max(0, min(x - width // 2, screen_width() - width)),
                max(0, y - height + 40 if y > 100 else 0), width, height)

    def enabled(self):
        until(lambda: self.vorli.helper_status == "enabled", "the enabled helper", 20)

    def test_the_icon_and_its_menu_are_there(self):
        self.assertEqual(rows_on_the_bus(self.item), ROWS)
        menu = PanelMenu(self.icon)
        self.picture_at_the_icon("menu.png", 420, 340)
        menu.dismiss()
        self.assertIsNone(self.vorli.process.poll())

    def test_polish_now_reaches_the_daemon(self):
        self.enabled()
        ticks, free = self.vorli.ticks, free_memory_bytes()
        PanelMenu(self.icon).choose(POLISH)
        flush = until(lambda: self.vorli.reply("flushDNS"), "the answer to flushDNS", 6)
        purge = until(lambda: self.vorli.reply("purgeMemory"), "the answer to purgeMemory", 25)
        self.assertEqual(flush["exitCode"], 0)
        self.assertEqual(purge["exitCode"], 0)
        self.assertRegex(purge["output"], r"^Freed \d+ MiB")
        self.assertNotIn("Permission denied", purge["output"])
        until(lambda: self.vorli.ticks > ticks, "the look at the machine after the polish")
        print(f"free memory rose by {(free_memory_bytes() - free) / 2**20:.0f} MiB")

    def test_about_opens_once_and_escape_closes_it(self):
        PanelMenu(self.icon).choose(ABOUT)
        window = until(lambda: windows_of(self.vorli.process.pid), "the about panel")[0]
        subprocess.run(["xdotool", "windowactivate", "--sync", window], check=True)
        until(lambda: is_painted(window), "the about panel's contents")
        window_picture(os.path.join(PICTURES, "about.png"), window)
        subprocess.run(["xdotool", "key", "Escape"], check=True)
        until(lambda: not windows_of(self.vorli.process.pid), "the end of the about panel")
        self.assertIsNone(self.vorli.process.poll())

    def test_quit_ends_it_cleanly(self):
        PanelMenu(self.icon).choose(QUIT)
        self.assertEqual(self.vorli.process.wait(10), 0)

    def test_second_start_brings_the_first_to_the_front(self):
        second = subprocess.run([PROGRAM], capture_output=True, text=True, timeout=15, check=False)
        self.assertEqual((second.returncode, second.stderr), (0, "vorli: already running; it was brought to the front\n"))
        self.assertIsNone(self.vorli.process.poll())
        self.assertEqual(len(self.icon.items()), 1)

    def test_it_stays_small(self):
        self.enabled()
        for _ in range(3):
            PanelMenu(self.icon).dismiss()
        self.assertLess(self.vorli.memory_kilobytes("Rss"), MOST_RESIDENT_KB)
        self.assertLess(self.vorli.memory_kilobytes("Pss"), MOST_PROPORTIONAL_KB)


class StartTest(unittest.TestCase):
    def test_the_session_bus_starts_it_on_demand(self):
        bus = dbus.SessionBus()
        application = dbus.Interface(bus.get_object(BUS_NAME, OBJECT, introspect=False), "org.freedesktop.Application")
        application.Activate(dbus.Dictionary({}, signature="sv"))
        self.assertEqual(len(TrayIcon(bus).appear()), 1)
        broker = dbus.Interface(bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus"), "org.freedesktop.DBus")
        process = int(broker.GetConnectionUnixProcessID(BUS_NAME))
        self.assertEqual(os.readlink(f"/proc/{process}/exe"), PROGRAM)
        os.kill(process, 15)
        until(lambda: not bus.name_has_owner(BUS_NAME), "the end of the program")

    def test_without_a_display_it_says_so(self):
        environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        run = subprocess.run([PROGRAM], env=environment, capture_output=True, text=True, timeout=15, check=False)
        self.assertEqual((run.returncode, run.stderr), (1, "vorli: there is no display to show the dial on\n"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
