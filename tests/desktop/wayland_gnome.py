"""wayland_gnome.py PROBE FAT_APPLICATION PROGRAM: applications in a session whose compositor lists no windows."""

import signal
import sys
import unittest

from compositor_case import ACTION_SCRIPT, DATA, FAT, NAME_SCRIPT, CompositorCase, entry
from compositors import Mutter
from sandbox import Sandbox
from waiting import holds, wait_for
from workspace_probe import write

PROGRAM = sys.argv[3]


class GnomeCompositor(CompositorCase):
    kind = Mutter

    def add_entries(self):
        write(f"{DATA}/tools/asks.py", ACTION_SCRIPT.replace("IDENTIFIER", "org.example.Asks"))
        write(f"{DATA}/tools/name.py", NAME_SCRIPT)
        entry("org.example.Asks", "Asking Editor", "started-elsewhere")
        entry("org.example.Stranger", "Stranger", "started-elsewhere")
        entry("org.example.Boxed", "Boxed Editor", "started-elsewhere")

    def start_shown(self, *arguments):
        """A script that shows a window and then prints a line."""
        process = self.start("/usr/bin/python3", *arguments)
        self.assertEqual(process.stdout.readline(), "shown\n")
        return process

    def start_editor(self, identifier, megabytes):
        return self.start_shown(f"{DATA}/tools/{identifier}.py", identifier, str(megabytes))

    def test_native_programs_and_those_of_x11_are_listed_once_and_the_biggest_is_named(self):
        started = {"fat-editor": self.start_editor("fat-editor", 300),
                   "galculator": self.start("galculator"),
                   "org.xfce.mousepad": self.start("mousepad"),
                   "org.example.X11": self.start(FAT, "Old window", "60", QT_QPA_PLATFORM="xcb")}
        probe = self.probe()
        self.assert_known(probe, started)
        self.assert_biggest_first(probe, "Fat Editor")

    def test_nobody_is_in_use_idle_or_hidden(self):
        started = [self.start_editor("fat-editor", 20), self.start(FAT, "Old window", "20", QT_QPA_PLATFORM="xcb")]
        probe = self.probe()
        probe.appears("fat-editor")
        probe.appears("org.example.X11")
        self.assertFalse(probe.ask("windows", "visible"), "the X11 windows are not all")
        self.assertIsNone(probe.front())
        self.assertEqual(probe.look()["idle"], [])
        probe.ask("sweep", "swept")
        self.assertIn("hidden quit: windows cannot be seen here, nobody is asked", probe.logged())
        holds(lambda: all(process.poll() is None for process in started), "both run on", 0.5)
        self.assertEqual(probe.events("activated"), [])

    def test_each_is_asked_in_its_own_way_or_not_at_all(self):
        fat, asks = self.start_editor("fat-editor", 20), self.start_shown(f"{DATA}/tools/asks.py")
        old = self.start(FAT, "Old window", "20", QT_QPA_PLATFORM="xcb")
        stranger = self.start("/usr/bin/python3", f"{DATA}/tools/name.py", "org.example.Stranger")
        probe = self.probe()
        for identifier in ("fat-editor", "org.example.Asks", "org.example.X11", "org.example.Stranger"):
            probe.appears(identifier)

        self.assertFalse(probe.ask("quit-name Fat Editor", "asked"))
        self.assertIn("not asked to quit: a signal could lose unsaved work", probe.logged())
        wait_for(lambda: probe.ask("quit-name Asking Editor", "asked"), "its own action is known")
        self.assertEqual(asks.stdout.readline(), "asked\n")
        self.assertTrue(probe.ask("quit-name Old Program", "asked"))
        self.assertEqual(old.wait(timeout=20), 0)
        self.assertTrue(probe.ask("quit-name Stranger", "asked"))
        self.assertEqual(stranger.wait(timeout=20), -signal.SIGTERM)
        holds(lambda: fat.poll() is None and asks.poll() is None, "the editors run on", 0.5)

    def test_a_sandboxed_program_is_asked_by_its_own_action(self):
        sandbox = Sandbox("org.example.Boxed")
        self.addCleanup(sandbox.close)
        boxed = self.start_boxed(sandbox, ACTION_SCRIPT.replace("IDENTIFIER", "org.example.Boxed"))
        wait_for(lambda: "shown" in sandbox.output(), "its window")
        probe = self.probe()
        probe.appears("org.example.Boxed")
        wait_for(lambda: probe.ask("quit-name Boxed Editor", "asked"), "the action that its proxy offers is known")
        wait_for(lambda: "asked" in sandbox.output(), "the editor asks")
        holds(lambda: boxed.poll() is None, "the editor runs on", 0.5)

    def test_the_popover_is_placed_and_closed_as_on_x11(self):
        self.check_popover(PROGRAM)


unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
