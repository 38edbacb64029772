"""wayland_compositor.py PROBE FAT_APPLICATION PROGRAM: native programs, and those of X11, under a real compositor."""

import re
import shutil
import signal
import sys
import time
import unittest

from compositor_case import DATA, NAME_SCRIPT, CompositorCase, entry
from compositors import Sway
from vorli import Vorli, settings_file, stored
from waiting import holds, wait_for
from workspace_probe import write

PROGRAM = sys.argv[3]
QUIET_SECONDS, LONG_AGO = 30, 1_600_000_000


def stored_activations():
    """Seconds by identifier, as the settings file has them."""
    return {name: float(date) for name, date in re.findall(r"([\w.-]+), @@Date ([\d.]+)",
                                                           stored("bundleLastActivation") or "")}


class WaylandCompositor(CompositorCase):
    kind = Sway

    def test_native_programs_and_those_of_x11_are_listed_once_and_the_biggest_is_named(self):
        started = {"small-editor": self.start_editor("small-editor", 10),
                   "fat-editor": self.start_editor("fat-editor", 300),
                   "galculator": self.start_with_window("galculator"),
                   "org.xfce.mousepad": self.start_with_window("mousepad"),
                   "org.example.X11": self.start_on_x11(60)}
        probe = self.watch()
        self.assert_known(probe, started)
        wait_for(lambda: set(probe.ask("windows", "windows")) >= {each.pid for each in started.values()},
              "all of them are on the screen")
        self.assert_biggest_first(probe, "Fat Editor")

    def test_the_focus_makes_a_native_program_the_one_in_use(self):
        small, fat = self.start_editor("small-editor", 10), self.start_editor("fat-editor", 20)
        old = self.start_on_x11(20)
        probe = self.watch()
        names = (("small-editor", small), ("org.example.X11", old), ("fat-editor", fat))
        for identifier, process in names:
            probe.appears(identifier)
        for identifier, process in names:
            self.compositor.focus(process.pid)
            wait_for(lambda wanted=identifier: probe.front() == wanted, f"{identifier} is in front")
            wait_for(lambda wanted=identifier: probe.events("activated")[-1:] == [wanted], "it was reported")

    def test_the_program_remembers_when_native_windows_had_the_focus(self):
        editors = {name: self.start_editor(name, 10) for name in ("small-editor", "fat-editor")}
        began = time.time()
        with open(settings_file(), "a", encoding="utf-8") as file:
            file.write(f"bundleLastActivation=@@Dictionary, quiet, @@Date {LONG_AGO}.000000, "
                       f"small-editor, @@Date {LONG_AGO}.000000\n")
        vorli = Vorli(PROGRAM, f"{self.compositor.folder}/vorli.log", self.compositor.environment)
        self.addCleanup(vorli.end)
        wait_for(lambda: vorli.ticks >= 1, "its first look at the machine", 30)

        def used_in_turn():
            for process in editors.values():
                self.compositor.focus(process.pid)
                # Changes in quick succession count as one.
                holds(lambda: vorli.process.poll() is None, "it keeps running", 1.0)

        used = lambda: {name for name, date in stored_activations().items() if date >= began}
        wait_for(lambda: used() == set(editors) or used_in_turn(), "both on the disk", 200, pause=QUIET_SECONDS + 10)
        self.assertEqual(stored_activations()["quiet"], LONG_AGO)

    def test_a_sweep_asks_nobody_whose_windows_the_compositor_does_not_call_hidden(self):
        started = {"fat-editor": self.start_editor("fat-editor", 20),
                   "small-editor": self.start_editor("small-editor", 10),
                   "galculator": self.start_with_window("galculator")}
        probe = self.watch()
        for identifier in started:
            probe.appears(identifier)
        self.compositor.run("swaymsg", f"[pid={started['fat-editor'].pid}] move scratchpad")
        self.compositor.run("swaymsg", f"[pid={started['small-editor'].pid}] move container to workspace 2")
        probe.ask("sweep", "swept")
        holds(lambda: all(process.poll() is None for process in started.values()), "all of them run on", 0.5)
        self.assertFalse([line for line in probe.logged() if line.startswith("hidden quit")])

    def test_a_native_program_with_unsaved_work_asks_and_loses_nothing(self):
        fat, small = self.start_editor("fat-editor", 20), self.start_editor("small-editor", 10)
        probe = self.watch()
        probe.appears("fat-editor")
        wait_for(lambda: fat.pid in probe.ask("windows", "windows"), "its window is known")
        self.assertTrue(probe.ask("quit-name Fat Editor", "asked"))
        wait_for(lambda: len(self.compositor.windows_of(fat.pid)) == 2, "its question is shown")
        holds(lambda: fat.poll() is None and len(self.compositor.windows_of(small.pid)) == 1, "both run on", 0.5)
        fat.kill()
        self.assertEqual(fat.stdout.read(), "shown\nasked\n")

    def test_a_real_editor_with_unsaved_text_asks(self):
        editor = self.start_with_window("mousepad")
        probe = self.watch()
        probe.appears("org.xfce.mousepad")
        self.compositor.focus(editor.pid)

        def changed():
            self.compositor.run("wtype", "text")
            return any(window[2].startswith("*") for window in self.compositor.windows_of(editor.pid))

        wait_for(changed, "its text is unsaved", seconds=20, pause=0.3)
        self.assertTrue(probe.ask("quit-name Mousepad", "asked"))
        wait_for(lambda: len(self.compositor.windows_of(editor.pid)) == 2, "its question is shown", seconds=20)
        holds(lambda: editor.poll() is None, "it runs on", 0.5)

    def test_an_x11_program_closes_by_its_window(self):
        old = self.start_on_x11(20)
        probe = self.watch()
        probe.appears("org.example.X11")
        self.assertTrue(probe.ask("quit-name Old Program", "asked"))
        self.assertEqual(old.wait(timeout=20), 0)

    def test_of_two_processes_with_one_identifier_nobody_is_asked(self):
        first, second = self.start_editor("fat-editor", 20), self.start_editor("fat-editor", 20)
        probe = self.watch()
        wait_for(lambda: len(probe.ask("list", "list")) == 2, "both are listed")
        self.assertFalse(probe.ask("quit-name Fat Editor", "asked"))
        holds(lambda: first.poll() is None and second.poll() is None, "both run on", 0.5)
        self.assertEqual(len(self.compositor.windows()), 2)
        self.assertIn("not asked to quit: a signal could lose unsaved work", probe.logged())

    def test_a_program_that_several_entries_start_is_known_by_its_window(self):
        program = shutil.copy(shutil.which("galculator"), f"{DATA}/tools/twin")
        entry("twin", "Twin", program)
        entry("twin-server", "Twin Server", f"{program} --server")
        probe = self.watch()
        twin = self.start_with_window(program)
        self.assertEqual(probe.appears("twin")["pid"], twin.pid)
        self.assertEqual(list(probe.running()), ["twin"])
        self.assertTrue(probe.ask("quit-name Twin", "asked"))
        self.assertEqual(twin.wait(timeout=20), 0)

    def test_a_signal_is_for_processes_that_are_no_clients_of_the_compositor(self):
        write(f"{DATA}/tools/name.py", NAME_SCRIPT)
        entry("org.example.Client", "Client", "started-elsewhere")
        entry("org.example.Stranger", "Stranger", "started-elsewhere")
        name = ("/usr/bin/python3", f"{DATA}/tools/name.py")
        client = self.start(*name, "org.example.Client", "client")
        stranger = self.start(*name, "org.example.Stranger")
        probe = self.watch()
        probe.appears("org.example.Client")
        probe.appears("org.example.Stranger")
        self.assertFalse(probe.ask("quit-name Client", "asked"))
        self.assertTrue(probe.ask("quit-name Stranger", "asked"))
        self.assertEqual(stranger.wait(timeout=20), -signal.SIGTERM)
        holds(lambda: client.poll() is None, "the client runs on", 0.5)


unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
