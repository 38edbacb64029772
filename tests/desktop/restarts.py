"""restarts.py PROBE: restarts of the panel and the file manager, as by the menu."""

import os
import signal
import subprocess
import sys
import unittest

from screen import window_of
from waiting import holds, wait_for
from workspace_probe import Probe

ENDED = 0  # exit code of a file manager that was asked to end


def text_of(pid, name):
    try:
        with open(f"/proc/{pid}/{name}", encoding="utf-8", errors="replace") as file:
            return file.read()
    except OSError:
        return ""


def session_processes(program):
    """Process ids and start times of this session's processes of that name."""
    display = f"DISPLAY={os.environ['DISPLAY']}"
    found = set()
    for pid in filter(str.isdigit, os.listdir("/proc")):
        stat = text_of(pid, "stat")
        if text_of(pid, "comm").strip().lower() != program or display not in text_of(pid, "environ").split("\0"):
            continue
        fields = stat.rsplit(")", 1)[1].split()
        if fields[0] != "Z":
            found.add((int(pid), fields[19]))
    return found


class Restarts(unittest.TestCase):
    def setUp(self):
        self.probe = Probe(sys.argv[1])
        self.addCleanup(self.probe.close)

    def start(self, *command):
        program = command[0].lower()
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(self.end_all, program)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        wait_for(lambda: session_processes(program), f"{program} runs")
        return process

    def end_all(self, program):
        for pid, _ in session_processes(program):
            os.kill(pid, signal.SIGKILL)
        wait_for(lambda: not session_processes(program), f"{program} has ended")

    def wait_for_another(self, program, before):
        wait_for(lambda: session_processes(program) and not session_processes(program) & before, f"another {program}", 30)

    def test_the_panel(self):
        before = session_processes("xfce4-panel")
        self.assertEqual(len(before), 1)
        self.probe.tell("restart-panel")
        self.wait_for_another("xfce4-panel", before)
        wait_for(lambda: window_of("xfce4-panel"), "the panel is on the screen")

    def test_a_file_manager_with_a_window(self):
        folder = os.path.join(os.environ["HOME"], "folder-of-the-test")
        os.makedirs(folder)
        manager = self.start("thunar", folder)
        wait_for(lambda: window_of("folder-of-the-test"), "its window")
        before = session_processes("thunar")
        self.probe.tell("restart-files")
        self.assertEqual(manager.wait(timeout=20), ENDED)
        self.wait_for_another("thunar", before)
        wait_for(lambda: window_of("folder-of-the-test"), "its window is back")

    def test_a_file_manager_in_the_background(self):
        self.start("thunar", "--daemon")
        before = session_processes("thunar")
        self.probe.tell("restart-files")
        self.wait_for_another("thunar", before)
        self.assertIsNone(window_of("Thunar"))

    def test_a_file_manager_that_draws_the_desktop(self):
        self.start("pcmanfm", "--desktop")
        wait_for(lambda: window_of("pcmanfm"), "the desktop")
        before = session_processes("pcmanfm")
        self.probe.tell("restart-files")
        self.wait_for_another("pcmanfm", before)
        wait_for(lambda: window_of("pcmanfm"), "the desktop is back")

    def test_a_file_manager_that_is_back_by_itself_stays_alone(self):
        self.start("pcmanfm", "--desktop")
        before = session_processes("pcmanfm")
        self.probe.tell("restart-files")
        wait_for(lambda: not session_processes("pcmanfm"), "it has ended", pause=0.005)
        self.start("pcmanfm", "--desktop")
        holds(lambda: len(session_processes("pcmanfm")) == 1, "one of them", 3.0)
        self.assertFalse(session_processes("pcmanfm") & before)


unittest.main(argv=sys.argv[:1], verbosity=2)
