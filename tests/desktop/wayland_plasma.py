"""wayland_plasma.py PROBE FAT_APPLICATION PROGRAM: native programs, and those of X11, under Plasma's compositor."""

import sys
import unittest

from compositor_case import ACTION_SCRIPT, PROBE, CompositorCase, entry
from compositors import KWin
from sandbox import Sandbox
from waiting import holds, wait_for

PROGRAM = sys.argv[3]
PERMISSION = "NoDisplay=true\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n"
# A part of an application that has no window.
SILENT_SCRIPT = """
import gi
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, GLib
Gdk.Display.get_default()
GLib.MainLoop().run()
"""


class PlasmaCompositor(CompositorCase):
    kind = KWin

    def add_entries(self):
        entry("org.example.Probe", "Probe", PROBE, PERMISSION)
        entry("org.example.Boxed", "Boxed Editor", "started-elsewhere")

    def on_screen(self, probe, processes):
        """The processes that own a window on the screen."""
        owners = probe.ask("windows", "windows")
        return {name for name, process in processes.items() if process.pid in owners}

    def test_native_programs_and_those_of_x11_are_listed_once_and_the_biggest_is_named(self):
        started = {"fat-editor": self.start_editor("fat-editor", 300),
                   "galculator": self.start_with_window("galculator"),
                   "org.xfce.mousepad": self.start_with_window("mousepad"),
                   "pcmanfm": self.start_with_window("pcmanfm", "--no-desktop"),
                   "org.example.X11": self.start_on_x11(60)}
        probe = self.watch()
        self.assert_known(probe, started)
        wait_for(lambda: self.on_screen(probe, started) == set(started), "all of them are on the screen")
        self.assert_biggest_first(probe, "Fat Editor")

    def test_the_focus_makes_a_native_program_the_one_in_use(self):
        started = {"small-editor": self.start_editor("small-editor", 10),
                   "org.example.X11": self.start_on_x11(20),
                   "fat-editor": self.start_editor("fat-editor", 20)}
        probe = self.watch()
        for identifier in started:
            probe.appears(identifier)
        for identifier, process in started.items():
            self.compositor.focus(process.pid)
            wait_for(lambda wanted=identifier: probe.front() == wanted, f"{identifier} is in front")
            wait_for(lambda wanted=identifier: probe.events("activated")[-1:] == [wanted], "it was reported")
        self.assertEqual(probe.look()["idle"], [], "all have just been used")

    def test_unsaved_work_asks_whether_native_or_not_and_nothing_is_lost(self):
        fat, small = self.start_editor("fat-editor", 20), self.start_editor("small-editor", 10)
        old = self.start_on_x11(20)
        probe = self.watch()
        wait_for(lambda: self.on_screen(probe, {"fat": fat, "old": old}) == {"fat", "old"}, "their windows are known")
        self.assertTrue(probe.ask("quit-name Fat Editor", "asked"))
        wait_for(lambda: len(self.compositor.windows_of(fat.pid)) == 2, "its question is shown", 20, 0.1)
        self.assertTrue(probe.ask("quit-name Old Program", "asked"))
        self.assertEqual(old.wait(timeout=20), 0)
        holds(lambda: fat.poll() is None and small.poll() is None, "the editors run on", 0.5)

    def test_of_two_processes_with_one_identifier_the_first_alone_is_asked(self):
        first, second = self.start_editor("fat-editor", 20), self.start_editor("fat-editor", 20)
        probe = self.watch()
        wait_for(lambda: len(probe.ask("list", "list")) == 2, "both are listed")
        self.assertTrue(probe.ask("quit-name Fat Editor", "asked"))
        wait_for(lambda: len(self.compositor.windows_of(first.pid)) == 2, "its question is shown", 20, 0.1)
        self.assertEqual(len(self.compositor.windows_of(second.pid)), 1)

    def test_a_sweep_asks_what_has_no_window_on_the_screen(self):
        started = {"galculator": self.start_with_window("galculator"),
                   "fat-editor": self.start_editor("fat-editor", 20),
                   "small-editor": self.start_editor("small-editor", 10)}
        probe = self.watch()
        wait_for(lambda: self.on_screen(probe, started) == set(started), "all of them are on the screen")
        for hidden in ("galculator", "fat-editor"):
            self.compositor.minimise(started[hidden].pid)
        wait_for(lambda: self.on_screen(probe, started) == {"small-editor"}, "the two are away", 20)
        probe.ask("sweep", "swept")
        self.assertEqual(started["galculator"].wait(timeout=20), 0)
        wait_for(lambda: len(self.compositor.windows_of(started["fat-editor"].pid)) == 2, "the editor asks", 20, 0.1)
        holds(lambda: started["fat-editor"].poll() is None, "it runs on", 0.5)
        asked = [line for line in probe.logged() if line.startswith("hidden quit")]
        self.assertCountEqual(asked, ["hidden quit: Galculator", "hidden quit: Fat Editor"])

    def test_a_sweep_spares_a_sandboxed_program_on_the_screen_whose_other_part_has_no_window(self):
        sandbox = Sandbox("org.example.Boxed")
        self.addCleanup(sandbox.close)
        boxed = self.start_boxed(sandbox, ACTION_SCRIPT.replace("IDENTIFIER", "org.example.Boxed"))
        self.start_boxed(sandbox, SILENT_SCRIPT)
        wait_for(lambda: "shown" in sandbox.output(), "its window")
        probe = self.watch()

        def parts():
            return {each["pid"] for each in probe.ask("list", "list") if each["id"] == "org.example.Boxed"}

        wait_for(lambda: len(parts()) == 2, "both parts are known", 40)
        wait_for(lambda: len(parts() & set(probe.ask("windows", "windows"))) == 1, "one of them is on the screen")
        probe.ask("sweep", "swept")
        self.assertIn("not asked to quit: a signal could lose unsaved work", probe.logged())
        holds(lambda: "asked" not in sandbox.output() and boxed.poll() is None, "the editor is left alone", 1.0)

    def test_the_popover_is_placed_and_closed_as_on_x11(self):
        self.check_popover(PROGRAM)


class PlasmaWithoutPermission(CompositorCase):
    """A session as in a build tree, where no entry allows the program to see the windows."""

    kind = KWin

    def test_applications_are_known_but_nobody_is_swept_or_idle_or_ended(self):
        started = {"fat-editor": self.start_editor("fat-editor", 300), "org.example.X11": self.start_on_x11(60)}
        probe = self.probe()
        self.assert_known(probe, started)
        self.assert_biggest_first(probe, "Fat Editor")
        self.assertFalse(probe.ask("windows", "visible"))
        probe.ask("sweep", "swept")
        self.assertIn("hidden quit: windows cannot be seen here, nobody is asked", probe.logged())
        self.assertFalse(probe.ask("quit-name Fat Editor", "asked"))
        self.assertIn("not asked to quit: a signal could lose unsaved work", probe.logged())
        self.assertIsNone(probe.front())
        holds(lambda: all(process.poll() is None for process in started.values()), "both run on", 0.5)


unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
