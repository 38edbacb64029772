"""installed_vorli.py PREFIX: the installed program in a whole desktop, with its real daemon.

Shows what a user sees of it, from start to end.
"""

import os
import subprocess
import sys
import unittest

import dbus
from screen import give_keyboard, is_painted, picture, screen_width, window_picture, windows_of
from vorli import BUS_NAME, OBJECT, PanelMenu, Settings, TrayIcon, Vorli, free_memory_bytes
from waiting import holds, wait_for

PREFIX, PICTURES = sys.argv.pop(1), os.environ["VORLI_PICTURES"]
PROGRAM = os.path.join(PREFIX, "bin", "vorli")
USED_ROWS = {"Polish Now", "About Vorli", "Quit Vorli"}
LONGER_THAN_A_WINDOW_NEEDS, LONGER_THAN_A_START = 2.0, 5.0


class InstalledVorliTest(unittest.TestCase):
    def setUp(self):
        self.vorli = Vorli(PROGRAM, os.path.join(os.environ["HOME"], "vorli.log"))
        self.addCleanup(self.end)
        self.icon = TrayIcon()
        self.icon.appear()
        wait_for(lambda: self.vorli.ticks >= 1, "the first look at the machine")

    def end(self):
        if self.vorli.process.poll() is None:
            self.assertEqual(self.vorli.end(), 0)
        wait_for(lambda: not self.icon.items(), "a panel without the icon")

    def picture_at_the_icon(self, name, width, height):
        x, y = self.icon.centre()
        picture(os.path.join(PICTURES, name), max(0, min(x - width // 2, screen_width() - width)),
                max(0, y - height + 40 if y > 100 else 0), width, height)

    def enabled(self):
        wait_for(lambda: self.vorli.helper_status == "enabled", "the enabled helper", 20)

    def test_the_icon_and_its_menu_are_there(self):
        menu = PanelMenu(self.icon)
        self.assertLessEqual(USED_ROWS, set(menu.labels()))
        self.picture_at_the_icon("menu.png", 420, 340)
        menu.dismiss()
        self.assertIsNone(self.vorli.process.poll())

    def test_polish_now_reaches_the_daemon(self):
        self.enabled()
        ticks, free = self.vorli.ticks, free_memory_bytes()
        PanelMenu(self.icon).choose("Polish Now")
        flush = wait_for(lambda: self.vorli.reply("flushDNS"), "the answer to flushDNS", 6)
        purge = wait_for(lambda: self.vorli.reply("purgeMemory"), "the answer to purgeMemory", 40)
        self.assertEqual(flush["exitCode"], 0)
        # A machine that is slow to write its files back is slow to forget them.
        told = f"{purge['exitCode']} {purge['output']}"
        self.assertRegex(told, r"^(0 Freed \d+ MiB|110 Not done in time; the work goes on)")
        wait_for(lambda: self.vorli.ticks > ticks, "the look at the machine after the polish")
        print(f"free memory rose by {(free_memory_bytes() - free) / 2**20:.0f} MiB")

    def test_about_opens_once_and_escape_closes_it(self):
        PanelMenu(self.icon).choose("About Vorli")
        window = wait_for(lambda: windows_of(self.vorli.process.pid), "the about panel")[0]
        give_keyboard(window)
        wait_for(lambda: is_painted(window), "the about panel's contents")
        window_picture(os.path.join(PICTURES, "about.png"), window)
        subprocess.run(["xdotool", "key", "Escape"], check=True)
        wait_for(lambda: not windows_of(self.vorli.process.pid), "the end of the about panel")
        self.assertIsNone(self.vorli.process.poll())

    def test_the_row_of_startup_applications_shows_the_settings_when_nothing_is_missing(self):
        self.enabled()
        PanelMenu(self.icon).choose("Open Startup Applications")
        Settings(self.vorli.process.pid)

    def test_quit_ends_it_cleanly(self):
        PanelMenu(self.icon).choose("Quit Vorli")
        self.assertEqual(self.vorli.process.wait(10), 0)

    def test_second_start_shows_the_popover_and_a_third_one_closes_nothing(self):
        self.assertEqual(windows_of(self.vorli.process.pid), [])
        for _ in range(2):
            later = subprocess.run([PROGRAM], capture_output=True, text=True, timeout=15, check=False)
            self.assertEqual((later.returncode, later.stderr),
                             (0, "vorli: already running; it has come to the front\n"))
            wait_for(lambda: len(windows_of(self.vorli.process.pid)) == 1, "the popover")
            holds(lambda: len(windows_of(self.vorli.process.pid)) == 1, "the open popover",
                  LONGER_THAN_A_WINDOW_NEEDS)
        self.assertIsNone(self.vorli.process.poll())
        self.assertEqual(len(self.icon.items()), 1)


class StartTest(unittest.TestCase):
    def test_the_session_bus_starts_it_on_demand(self):
        bus = dbus.SessionBus()
        application = dbus.Interface(bus.get_object(BUS_NAME, OBJECT, introspect=False), "org.freedesktop.Application")
        application.Activate(dbus.Dictionary({}, signature="sv"))
        self.assertEqual(len(TrayIcon(bus).appear()), 1)
        broker = dbus.Interface(bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus"), "org.freedesktop.DBus")
        process = int(broker.GetConnectionUnixProcessID(BUS_NAME))
        self.assertEqual(os.readlink(f"/proc/{process}/exe"), PROGRAM)
        holds(lambda: not windows_of(process), "a start without a window", LONGER_THAN_A_WINDOW_NEEDS)
        for _ in range(2):  # another start closes nothing
            application.Activate(dbus.Dictionary({}, signature="sv"))
            wait_for(lambda: windows_of(process), "the popover")
            holds(lambda: windows_of(process), "the open popover", LONGER_THAN_A_WINDOW_NEEDS)
        os.kill(process, 15)
        wait_for(lambda: not bus.name_has_owner(BUS_NAME), "the end of the program")

    def test_a_parent_that_the_bus_has_started_takes_no_activation_away(self):
        # The variable of the parent's activation is inherited; it must not hide the first message of another activation.
        starter = {"DBUS_STARTER_ADDRESS": os.environ["DBUS_SESSION_BUS_ADDRESS"]}
        vorli = Vorli(PROGRAM, os.path.join(os.environ["HOME"], "vorli.log"), starter)
        self.addCleanup(vorli.process.wait)
        self.addCleanup(vorli.process.kill)
        holds(lambda: not windows_of(vorli.process.pid), "a start without a window", LONGER_THAN_A_START)
        subprocess.run([PROGRAM], capture_output=True, timeout=15, check=True)
        wait_for(lambda: windows_of(vorli.process.pid), "the popover")
        self.assertEqual(vorli.end(), 0)

    def test_without_a_display_it_says_so(self):
        environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        run = subprocess.run([PROGRAM], env=environment, capture_output=True, text=True, timeout=15, check=False)
        self.assertEqual((run.returncode, run.stderr), (1, "vorli: there is no display to show the dial on\n"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
