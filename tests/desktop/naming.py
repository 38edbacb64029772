"""naming.py PROBE FAT_APPLICATION: the sentence names the right application, and quitting reaches that application."""

import os
import shutil
import subprocess
import sys
import unittest

from sandbox import SandboxWithTray, sandboxed
from screen import window_of
from waiting import holds, wait_for
from workspace_probe import Probe, write

PROBE, FAT = sys.argv[1], sys.argv[2]
HOME, DATA = os.environ["HOME"], os.environ["XDG_DATA_HOME"]
ENTRIES, OPT = f"{DATA}/applications", f"{HOME}/.local/opt"
END = "using the most right now."

WINDOWS_SCRIPT = """
import gi, subprocess, sys
gi.require_version("Gtk", "3.0")
from gi.repository import GLib, Gtk
windows = []
for name in sys.argv[1].split(","):
    window = Gtk.Window(title=name)
    window.set_wmclass(name, name)
    window.connect("destroy", Gtk.main_quit)
    window.show_all()
    windows.append(window)
child = subprocess.Popen(sys.argv[2:]) if sys.argv[2:] else None
def put_away(*_):
    sys.stdin.readline()
    for window in windows: window.hide()
    return False
GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN, put_away)
Gtk.main()
"""


def entry(identifier, name, command, more=""):
    write(f"{ENTRIES}/{identifier}.desktop",
          f"[Desktop Entry]\nType=Application\nName={name}\nExec={command}\n{more}")


class Naming(unittest.TestCase):
    def setUp(self):
        shutil.rmtree(ENTRIES, ignore_errors=True)
        os.makedirs(ENTRIES)
        write(f"{DATA}/tools/windows.py", WINDOWS_SCRIPT)

    def watch(self):
        self.probe = Probe(PROBE)
        self.addCleanup(self.probe.close)

    def program(self, path):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        shutil.copy(FAT, path)
        return path

    def start(self, *command, record=None):
        """Starts the process as a desktop's launcher does; `record` names the entry that it is launched from."""
        if record:
            launch = f'GIO_LAUNCHED_DESKTOP_FILE={ENTRIES}/{record}.desktop GIO_LAUNCHED_DESKTOP_FILE_PID=$$ exec "$@"'
            command = ("sh", "-c", launch, "sh", *command)
        process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(process.stdin.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def start_windows(self, names, *child, script=None):
        return self.start("/usr/bin/python3", script or f"{DATA}/tools/windows.py", names, *child)

    def wait_for_unlisted(self, name):
        def find():
            applications = self.probe.ask("list", "list")
            return next((each for each in applications if each["id"] is None and each["name"] == name), None)

        return wait_for(find, f"{name}, which has no entry")

    def tells(self, sentence):
        wait_for(lambda: self.probe.look()["culprits"] == sentence, sentence)

    def quits(self, name):
        return self.probe.ask(f"quit-name {name}", "asked")

    def test_two_web_applications_over_one_browser_are_distinguished(self):
        browser = self.program(f"{OPT}/browser/browser")
        entry("browser", "Browser", browser)
        entry("webapp-mail", "Mail Webapp", f"{browser} --app=mail")
        self.watch()
        small = self.start(browser, "Browser window", "100", record="browser")
        big = self.start(browser, "Mail window", "100", browser, "170", record="webapp-mail")
        self.probe.appears("browser")
        self.probe.appears("webapp-mail")
        self.tells(f"Mail Webapp and Browser are {END}")
        self.assertTrue(self.quits("Browser"))
        small.wait(timeout=20)
        self.assertIsNone(big.poll())
        self.tells(f"Mail Webapp is {END}")
        self.assertTrue(self.quits("Mail Webapp"))
        big.wait(timeout=20)

    def test_a_sandboxed_application_with_a_tray_icon_is_asked_and_not_its_bus_proxy(self):
        entry("org.example.Boxed", "Boxed", "boxed")
        sandbox = SandboxWithTray("org.example.Boxed")
        self.addCleanup(sandbox.close)
        self.watch()
        application = sandbox.start_application()
        self.addCleanup(application.kill)
        running = self.probe.appears("org.example.Boxed")
        wait_for(sandbox.has_icon, "its icon is in the tray")
        self.probe.look()  # so that the program has followed the icon
        boxed = [each for each in self.probe.ask("list", "list") if each["name"] == "Boxed"]
        self.assertEqual([each["pid"] for each in boxed], [running["pid"]])
        self.assertNotEqual(running["pid"], sandbox.proxy.pid)
        self.assertTrue(self.quits("Boxed"))
        self.assertEqual(application.wait(timeout=20), 0)
        self.assertIn("window closed", sandbox.output())
        self.assertNotIn("bus closed", sandbox.output())

    def test_equal_paths_of_two_sandboxes_are_different_programs(self):
        entry("org.example.Alpha", "Alpha", "alpha")
        entry("org.example.Beta", "Beta", "beta")
        self.watch()
        started = {}
        for name, megabytes in (("Alpha", "20"), ("Beta", "170")):
            info = f"{DATA}/sandboxes/{name}"
            write(info, f"[Application]\nname=org.example.{name}\n")
            command = sandboxed(info, [DATA], "/app/bin/gui", f"{name} window", megabytes, program=FAT)
            started[name] = self.start(*command)
            self.probe.appears(f"org.example.{name}")
        self.assertIsNone(self.probe.ask("at /app/bin/gui", "at"))
        self.tells(f"Beta and Alpha are {END}")
        self.assertTrue(self.quits("Beta"))
        started["Beta"].wait(timeout=20)
        self.assertIsNone(started["Alpha"].poll())

    def test_a_name_with_parentheses_stays_whole_and_reaches_its_application(self):
        entry("emacs-gui", "Emacs (GUI)", self.program(f"{OPT}/emacs/emacs"))
        self.watch()
        process = self.start(f"{OPT}/emacs/emacs", "Editor", "60")
        self.tells(f"Emacs (GUI) is {END}")
        self.assertTrue(self.quits("Emacs (GUI)"))
        process.wait(timeout=20)

    def test_a_program_without_an_entry_is_named_by_its_window(self):
        self.watch()
        process = self.start(self.program(f"{HOME}/builds/moonlight"), "Game", "60")
        self.assertEqual(self.wait_for_unlisted("moonlight")["policy"], "regular")
        self.tells(f"Moonlight is {END}")
        self.assertTrue(self.quits("Moonlight"))
        process.wait(timeout=20)

    def test_a_sweep_leaves_a_program_without_an_entry_alone_unless_its_windows_are_hidden(self):
        self.start("galculator")
        gone, minimised = self.start_windows("gone-away"), self.start_windows("set-aside")
        self.watch()
        calculator = self.probe.appears("galculator")["pid"]
        wait_for(lambda: calculator in self.probe.ask("windows", "windows"), "a window that stays on the screen")
        self.wait_for_unlisted("gone-away")
        pid = self.wait_for_unlisted("set-aside")["pid"]
        gone.stdin.write(b"\n")
        gone.stdin.flush()
        wait_for(lambda: self.wait_for_unlisted("gone-away")["policy"] == "accessory", "its windows are gone")
        subprocess.run(["xdotool", "windowminimize", wait_for(lambda: window_of("set-aside"), "the other")], check=True)
        wait_for(lambda: pid not in self.probe.ask("windows", "windows"), "the other is minimised")
        self.probe.ask("sweep", "swept")
        minimised.wait(timeout=20)
        self.assertIsNone(gone.poll())
        asked = [line for line in self.probe.logged() if line.startswith("hidden quit")]
        self.assertEqual(asked, ["hidden quit: set-aside"])

    def test_a_game_is_not_blamed_on_its_launcher(self):
        launcher = self.program(f"{DATA}/Launcher/launcher")
        entry("org.example.Launcher", "Launcher", launcher)
        self.watch()
        self.start(launcher, "Launcher window", "20")
        game = self.program(f"{DATA}/Launcher/common/quest/quest")
        self.start(game, "Quest window", "100", game, "90")
        self.tells(f"Quest and Launcher are {END}")

    def test_the_program_of_a_wrapper_script_belongs_to_its_entry(self):
        program = self.program(f"{OPT}/wrapped/bin/real")
        for script, call in (("waits.sh", f"{program} Wrapped 60"), ("becomes.sh", f"exec {program} Wrapped 60")):
            write(f"{OPT}/wrapped/{script}", f"#!/bin/sh\n{call}\n", 0o755)
            entry("org.example.Wrapped", "Wrapped", f"{OPT}/wrapped/{script}")
            self.watch()
            process = self.start(f"{OPT}/wrapped/{script}")
            self.probe.appears("org.example.Wrapped")
            self.assertTrue(self.quits("Wrapped"))
            process.wait(timeout=20)
            wait_for(lambda: not self.probe.running(), "it ended")

    def test_one_process_with_several_entries_is_the_program_as_such(self):
        script = f"{DATA}/tools/windows.py"
        for part in ("writer", "calc"):
            entry(f"office-{part}", f"Office {part.title()}", f"python3 {script} {part}",
                  f"StartupWMClass=office-{part}\n")
        entry("office-start", "Office", script)
        os.chmod(script, 0o755)
        self.watch()
        self.start_windows("office-writer")
        self.probe.appears("office-writer")
        self.start_windows("office-writer,office-calc")
        self.assertEqual(self.probe.appears("office-start")["name"], "Office")

    def test_one_interpreter_does_not_make_two_programs_one(self):
        launcher, other = f"{DATA}/tools/launcher.py", f"{DATA}/tools/other.py"
        for script in (launcher, other):
            write(script, WINDOWS_SCRIPT)
        entry("py-launcher", "Py Launcher", f"python3 {launcher}")
        self.watch()
        process = self.start_windows("py-launcher-window", "/usr/bin/python3", other, "other-window", script=launcher)
        first = self.probe.appears("py-launcher")
        second = self.wait_for_unlisted("other-window")
        self.assertTrue(self.quits("Py Launcher"))
        process.wait(timeout=20)
        self.assertNotEqual(first["pid"], second["pid"])
        holds(lambda: window_of("other-window"), "the other program keeps its window", 0.5)
        self.assertTrue(self.quits("other-window"))
        wait_for(lambda: not window_of("other-window"), "it closes when it is asked itself")

    def test_a_rolled_up_window_is_on_the_screen(self):
        self.start("galculator")
        self.watch()
        pid = self.probe.appears("galculator")["pid"]
        window = wait_for(lambda: window_of("galculator"), "its window")
        subprocess.run(["wmctrl", "-i", "-r", window, "-b", "add,shaded"], check=True)
        state = lambda: subprocess.run(["xprop", "-id", window, "_NET_WM_STATE"], capture_output=True, text=True,
                                       check=True).stdout
        wait_for(lambda: "SHADED" in state(), "it is rolled up")
        self.assertIn(pid, self.probe.ask("windows", "windows"))

    def test_showing_the_desktop_sweeps_nobody(self):
        process = self.start("galculator")
        self.watch()
        pid = self.probe.appears("galculator")["pid"]
        wait_for(lambda: pid in self.probe.ask("windows", "windows"), "its window is on the screen")
        subprocess.run(["wmctrl", "-k", "on"], check=True)
        self.addCleanup(subprocess.run, ["wmctrl", "-k", "off"], check=True)
        wait_for(lambda: pid not in self.probe.ask("windows", "windows"), "its window is put aside")
        self.probe.ask("sweep", "swept")
        self.assertFalse([line for line in self.probe.logged() if line == "hidden quit: Galculator"])
        holds(lambda: process.poll() is None, "it runs on", 0.5)

    def test_who_is_skipped_leaves_a_line_with_the_reason(self):
        self.watch()
        self.start(self.program(f"{HOME}/builds/worker"), "--hold", "60")
        skipped = "skipped worker: belongs to no application"
        wait_for(lambda: self.probe.look() and skipped in self.probe.logged(), skipped)


unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
