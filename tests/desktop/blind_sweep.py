"""blind_sweep.py PROBE: where windows cannot be seen, nobody counts as hidden or as idle."""

import os
import subprocess
import sys
import unittest

from waiting import until
from workspace_probe import Probe, window_of, write

DATA = os.environ["XDG_DATA_HOME"]

# A tray's registry, and the one item in it. Some shells tell an item as NAME@PATH.
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


def list_windows(*windows):
    """What a window manager does with the list of its windows."""
    subprocess.run(["xprop", "-root", "-f", "_NET_CLIENT_LIST", "32x", "-set", "_NET_CLIENT_LIST", ", ".join(windows)],
                   check=True)


class BlindSweep(unittest.TestCase):
    def setUp(self):
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
        self.assertEqual(self.probe.wait_for("org.example.Tray")["policy"], "accessory")
        until(lambda: window_of("galculator"), "its window")
        self.assertFalse(self.probe.ask("windows", "visible"))
        self.sweep()
        self.assertEqual(self.probe.look()["idle"], [])
        self.assertIn("windows cannot be seen here, no application counts as idle", self.probe.logged())

    def test_applications_that_were_seen_before_are_safe_too(self):
        window = until(lambda: window_of("galculator"), "its window")
        list_windows(window)
        self.assertEqual(self.probe.wait_for("galculator")["policy"], "regular")
        subprocess.run(["xprop", "-root", "-remove", "_NET_CLIENT_LIST"], check=True)
        until(lambda: not self.probe.ask("windows", "visible"), "the list is gone")
        self.assertIn("galculator", self.probe.running())
        self.sweep()


unittest.main(argv=sys.argv[:1], verbosity=2)
