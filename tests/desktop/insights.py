"""insights.py PROBE FAT_APPLICATION: the conclusions from real processes that hold real memory."""

import ctypes
import os
import shutil
import signal
import subprocess
import sys
import time
import unittest

from screen import bring_to_front, window_of
from waiting import wait_for
from workspace_probe import Probe, write

PROBE, FAT = sys.argv[1], sys.argv[2]
HOME, DATA = os.environ["HOME"], os.environ["XDG_DATA_HOME"]
SETTINGS = f"{os.environ['XDG_CONFIG_HOME']}/Vorli/Vorli.ini"
PAINT, HELPER = f"{HOME}/.local/opt/paint/paint-bin", f"{HOME}/.local/opt/paint/lib/paint-helper"
ATLAS = f"{HOME}/Applications/atlas/atlas"
END = "using the most right now."

TWO_WINDOWS_SCRIPT = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
for title in ("Left window", "Right window"):
    window = Gtk.Window(title=title)
    window.connect("destroy", Gtk.main_quit)
    window.show_all()
Gtk.main()
"""


def install():
    for program in (PAINT, HELPER, ATLAS):
        os.makedirs(os.path.dirname(program), exist_ok=True)
        shutil.copy(FAT, program)
    write(f"{DATA}/tools/two_windows.py", TWO_WINDOWS_SCRIPT)
    for identifier, name, command in (("org.example.Paint", "paint studio", f'"{PAINT}" %F'),
                                      ("org.example.Atlas", "Google Atlas", ATLAS),
                                      ("org.example.Two", "Two Windows", f"python3 {DATA}/tools/two_windows.py")):
        write(f"{DATA}/applications/{identifier}.desktop",
              f"[Desktop Entry]\nType=Application\nName={name}\nExec={command}\n")


class ServiceManager:
    """Makes this process the parent of its orphaned descendants, under the name of a user's service manager."""

    SET_NAME, SET_CHILD_SUBREAPER = 15, 36

    def __enter__(self):
        self.library = ctypes.CDLL(None)
        with open("/proc/self/comm", encoding="utf-8") as file:
            self.name = file.read().strip()
        self.become(1, "systemd")

    def __exit__(self, *_):
        self.become(0, self.name)

    def become(self, adopts, name):
        self.library.prctl(self.SET_CHILD_SUBREAPER, adopts, 0, 0, 0)
        self.library.prctl(self.SET_NAME, name.encode(), 0, 0, 0)


def running_helpers():
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            if os.readlink(f"/proc/{pid}/exe") == HELPER:
                yield int(pid)
        except OSError:
            pass  # it has ended


class Insights(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        install()

    def setUp(self):
        self.probe = None
        self.started = []

    def tearDown(self):
        if self.probe:
            self.probe.close()
        for process in self.started:
            process.kill()
            process.wait()
        for pid in running_helpers():
            os.kill(pid, signal.SIGKILL)
        wait_for(lambda: not list(running_helpers()), "the end of the helpers")

    def watch(self):
        self.probe = Probe(PROBE)

    def start(self, *command):
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.started.append(process)
        return process

    def start_paint(self):
        paint = self.start(PAINT, "Paint window", "50", HELPER, "80", HELPER, "80")
        self.assertEqual(self.probe.appears("org.example.Paint")["pid"], paint.pid)
        return paint

    def test_the_sentence_names_applications_and_never_processes(self):
        self.watch()
        one, other, both = f"Paint studio is {END}", f"Atlas is {END}", f"Paint studio and Atlas are {END}"
        told = []

        def tells(sentence):
            told.append(self.probe.look()["culprits"])
            return told[-1] == sentence

        wait_for(lambda: tells(None), "nobody is named before")
        self.start_paint()
        wait_for(lambda: tells(one), "one name for the application and its helpers")
        self.start(ATLAS, "Atlas window", "150")
        wait_for(lambda: tells(both), "two names, the bigger first although its processes are smaller")
        self.assertTrue(self.probe.ask("quit-name atlas", "asked"))
        wait_for(lambda: "org.example.Atlas" in self.probe.events("terminated"), "it quit by the name in the sentence")
        wait_for(lambda: tells(one), "one name again")
        self.assertLessEqual(set(told), {None, one, other, both, f"Atlas and Paint studio are {END}"})
        self.assertTrue(any(line.startswith("terminating Google Atlas (pid ") for line in self.probe.logged()))

    def helpers_of(self, paint):
        def read():
            with open(f"/proc/{paint.pid}/task/{paint.pid}/children", encoding="ascii") as file:
                return [int(pid) for pid in file.read().split()]

        return wait_for(lambda: len(read()) == 2 and read(), "its helpers")

    def orphans(self):
        return {orphan["pid"]: orphan for orphan in self.probe.look()["orphans"]}

    def follow_orphans(self, reap):
        self.watch()
        paint = self.start_paint()
        first, second = self.helpers_of(paint)
        wait_for(lambda: self.probe.look()["culprits"] == f"Paint studio is {END}", "its helpers run")
        self.assertEqual(self.orphans(), {})

        paint.kill()
        paint.wait()
        wait_for(lambda: set(self.orphans()) == {first, second}, "what it left behind")
        self.assertEqual(self.orphans()[first], {"pid": first, "name": "paint-helper", "parent": "paint studio",
                                                 "id": "org.example.Paint"})
        self.assertIsNone(self.probe.look()["culprits"], "an application that has ended is not to blame")

        def end(pid):
            os.kill(pid, signal.SIGKILL)
            if reap:
                os.waitpid(pid, 0)

        end(first)
        wait_for(lambda: set(self.orphans()) == {second}, "the other one alone")
        again = self.start_paint()
        self.assertEqual(self.orphans(), {}, "its application runs again")
        own = self.helpers_of(again)
        again.kill()
        again.wait()
        wait_for(lambda: set(self.orphans()) == {second, *own}, "all that it left")
        for pid in (second, *own):
            end(pid)
        wait_for(lambda: not self.orphans(), "none is left")

    def test_what_a_killed_application_leaves_is_listed_until_it_ends(self):
        self.follow_orphans(reap=False)

    def test_what_the_users_service_manager_takes_over_is_left_behind_too(self):
        with ServiceManager():
            self.follow_orphans(reap=True)

    def test_a_sweep_asks_what_has_no_window_on_the_screen(self):
        self.watch()
        self.start("galculator")
        editor = self.start("mousepad")
        self.start("/usr/bin/python3", f"{DATA}/tools/two_windows.py")
        for identifier in ("galculator", "org.xfce.mousepad", "org.example.Two"):
            self.probe.appears(identifier)
        bring_to_front("Mousepad")
        wait_for(lambda: self.probe.front() == "org.xfce.mousepad", "the editor has the focus")
        subprocess.run(["xdotool", "type", "--delay", "20", "unsaved"], check=True)
        wait_for(lambda: window_of(r"^\*"), "the text is in the editor")
        wait_for(lambda: window_of("Right window"), "the window that stays on the screen")
        for title in ("galculator", r"^\*", "Left window"):
            subprocess.run(["xdotool", "windowminimize", wait_for(lambda t=title: window_of(t), title)], check=True)
        running = self.probe.running()
        hidden = {running[name]["pid"] for name in ("galculator", "org.xfce.mousepad")}
        wait_for(lambda: not hidden & set(self.probe.ask("windows", "windows")), "the two are away")

        self.probe.ask("sweep", "swept")
        wait_for(lambda: "galculator" in self.probe.events("terminated"), "the one with nothing to lose quit")
        asked = [line for line in self.probe.logged() if line.startswith("hidden quit")]
        self.assertCountEqual(asked, ["hidden quit: Galculator", "hidden quit: Mousepad"])
        wait_for(lambda: window_of("Save Changes"), "the editor asks")
        self.assertIsNone(editor.poll())
        self.assertIn("org.example.Two", self.probe.running())

    def test_what_was_in_front_long_ago_is_idle_whoever_starts_meanwhile(self):
        hour = 3600
        write(SETTINGS, "[General]\nbundleLastActivation=@@Dictionary, "
                        f"galculator, @@Date {time.time() - 3 * hour:.6f}, org.example.Two, {int(time.time()) - 5 * hour}\n")
        self.start("/usr/bin/python3", f"{DATA}/tools/two_windows.py")
        self.start("galculator")
        wait_for(lambda: window_of("Left window") and window_of("galculator"), "their windows")
        bring_to_front("Left window")
        self.watch()
        wait_for(lambda: self.probe.front() == "org.example.Two", "the frontmost")
        idle = self.probe.look()["idle"]
        self.assertEqual([app["id"] for app in idle], ["galculator"])
        self.assertAlmostEqual(idle[0]["idleFor"], 3 * hour, delta=120)

        bring_to_front("galculator")
        wait_for(lambda: self.probe.front() == "galculator", "it is in front")
        self.assertEqual([app["id"] for app in self.probe.look()["idle"]], ["org.example.Two"])
        bring_to_front("Left window")
        wait_for(lambda: self.probe.front() == "org.example.Two", "the other is in front again")
        self.assertEqual(self.probe.look()["idle"], [])

    def test_nothing_happens_between_events(self):
        self.watch()
        self.start_paint()
        pid = self.probe.process.pid

        def wakes():
            switches = []
            for task in os.listdir(f"/proc/{pid}/task"):
                with open(f"/proc/{pid}/task/{task}/status", encoding="utf-8") as file:
                    switches += [line for line in file if "ctxt_switches" in line]
            return switches

        def sleeps_for(seconds):
            before, end = wakes(), time.monotonic() + seconds
            try:
                wait_for(lambda: wakes() != before or time.monotonic() > end, "a wake-up", seconds + 1)
            except AssertionError:
                return False
            return wakes() == before

        wait_for(lambda: sleeps_for(2.5), "a while without a single wake-up of any thread", 25)


unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
