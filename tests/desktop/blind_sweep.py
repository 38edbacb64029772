"""blind_sweep.py PROBE: where windows cannot be seen, no application counts as hidden or idle."""

import os
import subprocess
import sys
import unittest

from screen import window_of
from waiting import wait_for
from workspace_probe import Probe, write

DATA = os.environ["XDG_DATA_HOME"]

# A tray's registry with a single item. Some shells write an item as NAME@PATH.
TRAY_SCRIPT = """
import dbus, dbus.mainloop.glib, dbus.service
from gi.repository import GLib
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
class Registry(dbus.service.Object):
    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, _name):
        return dbus.Array([bus.get_unique_name() + "@/StatusNotifierItem"], signature="s")
registry = Registry(bus, "/StatusNotifierWatcher")
name = dbus.service.BusName("org.kde.StatusNotifierWatcher", bus)
GLib.MainLoop().run()
"""


PART_SCRIPT = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window(title="Tray part")
window.set_wmclass("Tray", "Tray")
window.show_all()
Gtk.main()
"""


def list_windows(*windows):
    """Publishes this list of windows, as a window manager does."""
    subprocess.run(["xprop", "-root", "-f", "_NET_CLIENT_LIST", "32x", "-set", "_NET_CLIENT_LIST", ", ".join(windows)],
                   check=True)


class BlindSweep(unittest.TestCase):
    def setUp(self):
        subprocess.run(["xprop", "-root", "-remove", "_NET_CLIENT_LIST"], check=True)  # left by an earlier test
        write(f"{DATA}/tools/tray.py", TRAY_SCRIPT)
        self.tray = self.start("/usr/bin/python3", f"{DATA}/tools/tray.py")
        self.calculator = self.start("galculator")
        self.probe = Probe(sys.argv[1])
        self.addCleanup(self.probe.close)

    def start(self, *command):
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def tell_of_the_tool(self):
        write(f"{DATA}/applications/org.example.Tray.desktop",
              f"[Desktop Entry]\nType=Application\nName=Tray Tool\nExec=/usr/bin/python3 {DATA}/tools/tray.py\n")

    def sweep(self):
        self.assertTrue(self.probe.ask("sweep", "swept"))
        self.assertIn("hidden quit: windows cannot be seen here, nobody is asked", self.probe.logged())
        self.assertFalse([line for line in self.probe.logged() if "galculator" in line.lower()])
        self.assertEqual((self.tray.poll(), self.calculator.poll()), (None, None))

    def test_without_a_list_of_windows_nobody_is_asked_and_nobody_is_idle(self):
        self.tell_of_the_tool()
        self.assertEqual(self.probe.appears("org.example.Tray")["policy"], "accessory")
        wait_for(lambda: window_of("galculator"), "its window")
        self.assertFalse(self.probe.ask("windows", "visible"))
        self.sweep()
        self.assertEqual(self.probe.look()["idle"], [])
        self.assertIn("windows cannot be seen here, no application counts as idle", self.probe.logged())

    def test_in_a_wayland_session_a_program_without_an_x11_window_gets_no_signal(self):
        self.tell_of_the_tool()
        list_windows(wait_for(lambda: window_of("galculator"), "its window"))
        for variable in ({"WAYLAND_DISPLAY": "wayland-0"}, {"XDG_SESSION_TYPE": "wayland"}):
            probe = Probe(sys.argv[1], **variable)
            self.addCleanup(probe.close)
            tray = probe.appears("org.example.Tray")
            self.assertFalse(probe.ask("windows", "visible"), "native windows are not among the X11 ones")
            self.assertFalse(probe.ask(f"quit {tray['pid']}", "asked"))
            self.assertFalse(probe.ask("quit-name Tray Tool", "asked"))
            self.assertTrue(probe.ask("sweep", "swept"))
            self.assertIn("not asked to quit: a signal could lose unsaved work", probe.logged())
            self.assertEqual((self.tray.poll(), self.calculator.poll()), (None, None))

    def test_without_wayland_a_tray_program_without_windows_is_asked_by_signal(self):
        self.tell_of_the_tool()
        tray = self.probe.appears("org.example.Tray")
        self.assertTrue(self.probe.ask(f"quit {tray['pid']}", "asked"))
        self.assertEqual(self.tray.wait(timeout=20), -15)

    def test_a_part_without_windows_gets_no_signal_while_another_part_has_windows(self):
        self.tell_of_the_tool()
        tray = self.probe.appears("org.example.Tray")
        self.start("/usr/bin/python3", "-c", PART_SCRIPT)
        list_windows(wait_for(lambda: window_of("Tray part"), "its window"))
        parts = lambda: [each for each in self.probe.ask("list", "list") if each["id"] == "org.example.Tray"]
        wait_for(lambda: len(parts()) == 2, "both parts are known")
        self.assertFalse(self.probe.ask(f"quit {tray['pid']}", "asked"))
        self.assertTrue(self.probe.ask("quit-name Tray Tool", "asked"), "the part with the window is asked")
        self.assertIsNone(self.tray.poll())

    def test_applications_that_were_seen_before_are_safe_too(self):
        window = wait_for(lambda: window_of("galculator"), "its window")
        list_windows(window)
        self.assertEqual(self.probe.appears("galculator")["policy"], "regular")
        subprocess.run(["xprop", "-root", "-remove", "_NET_CLIENT_LIST"], check=True)
        wait_for(lambda: not self.probe.ask("windows", "visible"), "the list is gone")
        self.assertIn("galculator", self.probe.running())
        self.sweep()


unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
