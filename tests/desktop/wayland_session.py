"""wayland_session.py PROBE: applications whose windows cannot be seen are still known and asked in their own way."""

import os
import subprocess
import sys
import unittest

from waiting import holds, wait_for
from workspace_probe import Probe, write

DATA = os.environ["XDG_DATA_HOME"]
WAYLAND = {"WAYLAND_DISPLAY": "wayland-0"}

# Owns an application's name on the bus and shows no X11 window, as a native program does.
APPLICATION_SCRIPT = """
import sys
from gi.repository import Gio
application = Gio.Application(application_id=sys.argv[1])
def quit(*_):
    print("asked", flush=True)
    application.quit()
if "quit" in sys.argv:
    action = Gio.SimpleAction(name="quit")
    action.connect("activate", quit)
    application.add_action(action)
application.connect("activate", lambda application: application.hold())
application.run([])
"""


def entry(identifier, name, more=""):
    write(f"{DATA}/applications/{identifier}.desktop",
          f"[Desktop Entry]\nType=Application\nName={name}\nExec=started-elsewhere\n{more}")


class WaylandSession(unittest.TestCase):
    def setUp(self):
        write(f"{DATA}/tools/application.py", APPLICATION_SCRIPT)
        entry("org.example.Asks", "Asking Editor")
        entry("org.example.Plain", "Plain Editor")
        entry("org.example.Service", "Service", "NoDisplay=true\n")

    def start(self, *arguments):
        process = subprocess.Popen(["/usr/bin/python3", f"{DATA}/tools/application.py", *arguments],
                                   stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def probe(self, **environment):
        probe = Probe(sys.argv[1], **environment)
        self.addCleanup(probe.close)
        return probe

    def test_the_owner_of_an_applications_name_is_known_and_quits_by_its_own_action(self):
        early = self.start("org.example.Asks", "quit")
        probe = self.probe(**WAYLAND)
        known = probe.appears("org.example.Asks")
        self.assertEqual((known["pid"], known["name"], known["policy"]), (early.pid, "Asking Editor", "regular"))
        late = self.start("org.example.Plain")
        self.assertEqual(probe.appears("org.example.Plain")["pid"], late.pid)
        wait_for(lambda: "org.example.Plain" in probe.events("launched"), "its launch was reported")

        wait_for(lambda: probe.ask("quit-name Asking Editor", "asked"), "its own action is known")
        self.assertEqual(early.wait(timeout=20), 0)
        self.assertEqual(early.stdout.read(), "asked\n")
        self.assertIsNone(late.poll())

    def test_one_without_a_quit_action_gets_nothing(self):
        process = self.start("org.example.Plain")
        probe = self.probe(**WAYLAND)
        probe.appears("org.example.Plain")
        self.assertFalse(probe.ask("quit-name Plain Editor", "asked"))
        holds(lambda: process.poll() is None, "it runs on", 0.5)
        self.assertIn("not asked to quit: a signal could lose unsaved work", probe.logged())

    def test_a_service_is_no_application_and_with_windows_in_sight_a_name_is_not_enough(self):
        self.start("org.example.Service")
        self.start("org.example.Plain")
        probe, on_x11 = self.probe(**WAYLAND), self.probe()
        probe.appears("org.example.Plain")
        self.assertEqual(list(probe.running()), ["org.example.Plain"])
        self.assertEqual(on_x11.running(), {})


unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
