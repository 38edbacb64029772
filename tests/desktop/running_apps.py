"""running_apps.py PROGRAM: real applications of different kinds, and what the workspace sees of them."""

import contextlib
import os
import shutil
import signal
import subprocess
import sys
import unittest

from screen import bring_to_front, window_of
from waiting import wait_for
from workspace_probe import Probe, client_list, write

PROGRAM = sys.argv[1]
DATA = os.environ["XDG_DATA_HOME"]

WINDOW_SCRIPT = """
import gi, sys
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window(title=sys.argv[1])
window.connect("destroy", Gtk.main_quit)
window.show_all()
Gtk.main()
"""

# Shows a window that does not name its application, and after a line of input one that does.
SPLASH_SCRIPT = """
import gi, sys
gi.require_version("Gtk", "3.0")
from gi.repository import GLib, Gtk
def show(title, name):
    window = Gtk.Window(title=title)
    window.set_wmclass(name, name)
    window.show_all()
def show_main(*_):
    sys.stdin.readline()
    show("Main", "late-main")
    return False
show("Splash", "starting")
GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN, show_main)
Gtk.main()
"""

# Has an icon in the X11 tray, and no window.
ICON_SCRIPT = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
icon = Gtk.StatusIcon.new_from_icon_name("dialog-information")
Gtk.main()
"""

SERVICE_SCRIPT = """
import gi, sys
gi.require_version("Gtk", "3.0")
from gi.repository import Gio, Gtk
application = Gtk.Application(application_id="org.example.Activated", flags=Gio.ApplicationFlags.IS_SERVICE)
application.connect("activate", lambda app: Gtk.ApplicationWindow(application=app, title="Activated").show_all())
application.run(sys.argv)
"""


def add_entries():
    write(f"{DATA}/tools/window.py", WINDOW_SCRIPT)
    write(f"{DATA}/tools/service.py", SERVICE_SCRIPT)
    write(f"{DATA}/tools/splash.py", SPLASH_SCRIPT)
    write(f"{DATA}/tools/icon.py", ICON_SCRIPT)
    write(f"{DATA}/applications/org.example.Icon.desktop",
          f"[Desktop Entry]\nType=Application\nName=Lone Icon\nExec=/usr/bin/python3 {DATA}/tools/icon.py\n")
    write(f"{DATA}/applications/org.example.Splash.desktop",
          "[Desktop Entry]\nType=Application\nName=Splash\nStartupWMClass=late-main\nExec=splash-launcher\n")
    write(f"{DATA}/applications/org.example.Script.desktop",
          f"[Desktop Entry]\nType=Application\nName=Script Window\nExec=/usr/bin/python3 {DATA}/tools/window.py Script\n")
    write(f"{DATA}/applications/org.example.Activated.desktop",
          "[Desktop Entry]\nType=Application\nName=Activated Window\nDBusActivatable=true\n"
          f"Exec=/usr/bin/python3 {DATA}/tools/service.py\n")
    write(f"{DATA}/dbus-1/services/org.example.Activated.service",
          f"[D-BUS Service]\nName=org.example.Activated\nExec=/usr/bin/python3 {DATA}/tools/service.py\n")


class RunningApplications(unittest.TestCase):
    def setUp(self):
        add_entries()
        self.started = []
        self.probe = Probe(PROGRAM)

    def tearDown(self):
        for application in self.probe.running().values():
            with contextlib.suppress(ProcessLookupError):  # a terminal that was ended before takes its program along
                os.kill(application["pid"], signal.SIGKILL)
        wait_for(lambda: not self.probe.running(), "all that was started has ended")
        self.probe.close()
        for process in self.started:
            process.kill()
            process.wait()
            if process.stdin:
                process.stdin.close()

    def start(self, *command, stdin=None):
        process = subprocess.Popen(command, stdin=stdin, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.started.append(process)
        return process

    def test_applications_of_different_make_map_to_their_entries(self):
        self.start("mousepad")
        self.start("featherpad", "--standalone")
        self.start("xterm", "-T", "Terminal", "-e", "galculator")
        self.start("/usr/bin/python3", f"{DATA}/tools/window.py", "Script")
        subprocess.run(["gapplication", "launch", "org.example.Activated"], check=True, timeout=20)

        expected = {
            "org.xfce.mousepad": "Mousepad",
            "featherpad": "FeatherPad",
            "debian-xterm": "XTerm",
            "galculator": "Galculator",
            "org.example.Script": "Script Window",
            "org.example.Activated": "Activated Window",
        }
        for identifier, name in expected.items():
            application = self.probe.appears(identifier)
            self.assertEqual(application["name"], name)
            self.assertEqual(application["policy"], "regular")
            self.assertGreater(application["launched"], 1.6e9)
            wait_for(lambda i=identifier: i in self.probe.events("launched"), f"{identifier} was reported")
        self.assertEqual(set(self.probe.running()), set(expected), "the desktop's own furniture is no application")

        for title, identifier in (("Script", "org.example.Script"), ("galculator", "galculator"),
                                  ("Activated", "org.example.Activated")):
            bring_to_front(title)
            wait_for(lambda i=identifier: self.probe.front() == i, f"{identifier} is frontmost")
            wait_for(lambda i=identifier: i in self.probe.events("activated"), f"{identifier} was reported")
        owners = {application["pid"] for application in self.probe.running().values()}
        wait_for(lambda: owners <= set(self.probe.ask("windows", "windows")), "a window of each on the screen")

    def test_a_program_leads_to_its_application_and_an_interpreter_to_none(self):
        at = lambda path: self.probe.ask(f"at {os.path.realpath(path)}", "at")
        self.assertEqual(at("/usr/bin/galculator"), "galculator")
        self.assertEqual(at(f"{DATA}/tools/window.py"), "org.example.Script")
        write(f"{DATA}/applications/org.example.Launched.desktop",
              "[Desktop Entry]\nType=Application\nName=Launched\nStartupWMClass=launched\nExec=launched-by-script\n")
        os.makedirs(f"{DATA}/launched/bin", exist_ok=True)
        program = f"{DATA}/launched/bin/shows-a-window"
        shutil.copy("/usr/bin/xterm", program)
        self.assertIsNone(at(program))
        self.start(program, "-class", "launched", "-name", "launched", "-e", "cat")
        self.start("/usr/bin/python3", f"{DATA}/tools/window.py", "Script")
        self.probe.appears("org.example.Launched")
        self.probe.appears("org.example.Script")
        self.assertEqual(at(program), "org.example.Launched")
        self.assertEqual(at(f"{DATA}/launched"), "org.example.Launched")
        self.assertIsNone(at("/usr/bin/python3"))

    def test_ends_of_every_kind_are_followed(self):
        self.start("galculator")
        crashing = self.start("mousepad")
        launcher = self.start("sh", "-c", f"/usr/bin/python3 {DATA}/tools/window.py Script & exit 0")
        launcher.wait(timeout=10)
        script = self.probe.appears("org.example.Script")
        self.probe.appears("galculator")
        self.probe.appears("org.xfce.mousepad")

        subprocess.run(["wmctrl", "-i", "-c", wait_for(lambda: window_of("galculator"), "its window")], check=True)
        wait_for(lambda: "galculator" in self.probe.events("terminated"), "the closed window's application ended")
        crashing.send_signal(signal.SIGKILL)
        wait_for(lambda: "org.xfce.mousepad" in self.probe.events("terminated"), "the crash was seen")
        self.assertIn("org.example.Script", self.probe.running())
        os.kill(script["pid"], signal.SIGTERM)
        wait_for(lambda: not self.probe.running(), "nothing runs any more")

    def test_a_polite_quit_asks_before_unsaved_text_is_lost(self):
        editor = self.start("mousepad")
        pid = self.probe.appears("org.xfce.mousepad")["pid"]
        bring_to_front("Mousepad")
        wait_for(lambda: self.probe.front() == "org.xfce.mousepad", "the editor has the focus")
        subprocess.run(["xdotool", "type", "--delay", "20", "unsaved"], check=True)
        wait_for(lambda: window_of(r"^\*"), "the text is in the editor")
        self.assertTrue(self.probe.ask(f"quit {pid}", "asked"))
        wait_for(lambda: window_of("Save Changes"), "the editor asks")
        self.assertIsNone(editor.poll())

    def test_a_polite_quit_ends_what_has_nothing_to_lose(self):
        self.start("galculator")
        pid = self.probe.appears("galculator")["pid"]
        self.assertTrue(self.probe.ask(f"quit {pid}", "asked"))
        wait_for(lambda: "galculator" in self.probe.events("terminated"), "it quit")
        self.assertFalse(self.probe.ask(f"quit {pid}", "asked"))
        self.assertFalse(self.probe.ask("quit 1", "asked"))

    def test_a_minimised_window_is_not_on_the_screen(self):
        self.start("galculator")
        pid = self.probe.appears("galculator")["pid"]
        wait_for(lambda: pid in self.probe.ask("windows", "windows"), "its window is on the screen")
        subprocess.run(["xdotool", "windowminimize", wait_for(lambda: window_of("galculator"), "its window")], check=True)
        wait_for(lambda: pid not in self.probe.ask("windows", "windows"), "its window is gone from the screen")
        self.assertIn("galculator", self.probe.running())

    def test_what_runs_already_is_met_and_not_launched(self):
        self.start("galculator")
        self.probe.appears("galculator")
        bring_to_front("galculator")
        wait_for(lambda: self.probe.front() == "galculator", "it is frontmost")
        late = Probe(PROGRAM)
        self.addCleanup(late.close)
        self.assertEqual(late.appears("galculator")["name"], "Galculator")
        wait_for(lambda: late.front() == "galculator", "what is frontmost already")
        self.start("/usr/bin/python3", f"{DATA}/tools/window.py", "Script")
        wait_for(lambda: "org.example.Script" in late.events("activated"), "the script was reported")
        self.assertEqual(late.events("launched"), ["org.example.Script"])
        self.assertEqual(late.events("activated"), ["org.example.Script"])

    def test_a_later_window_may_say_what_the_first_one_did_not(self):
        program = self.start("/usr/bin/python3", f"{DATA}/tools/splash.py", stdin=subprocess.PIPE)
        wait_for(lambda: window_of("^Splash$"), "the first window")
        self.assertNotIn("org.example.Splash", self.probe.running())
        program.stdin.write(b"\n")
        program.stdin.flush()
        self.assertEqual(self.probe.appears("org.example.Splash")["pid"], program.pid)

    def test_a_program_with_nothing_but_an_icon_in_the_x11_tray_is_known(self):
        program = self.start("/usr/bin/python3", f"{DATA}/tools/icon.py")
        running = self.probe.appears("org.example.Icon")
        self.assertEqual((running["pid"], running["name"], running["policy"]), (program.pid, "Lone Icon", "accessory"))
        wait_for(lambda: "org.example.Icon" in self.probe.events("launched"), "its launch was reported")
        late = Probe(PROGRAM)
        self.addCleanup(late.close)
        self.assertEqual(late.appears("org.example.Icon")["pid"], program.pid)
        self.assertEqual(set(late.running()), {"org.example.Icon"}, "the tray itself is no application")
        self.probe.ask("sweep", "swept")
        self.assertTrue(self.probe.ask("quit-name Lone Icon", "asked"))
        wait_for(lambda: "org.example.Icon" in self.probe.events("terminated"), "it quit")
        self.assertNotIn("hidden quit: Lone Icon", self.probe.logged())

    def test_a_window_of_another_machine_is_not_its_local_forwarders(self):
        self.start("galculator")
        pid = self.probe.appears("galculator")["pid"]
        window = wait_for(lambda: window_of("galculator"), "its window")
        owns = lambda: pid in self.probe.ask("windows", "windows")
        wait_for(owns, "its window is on the screen")

        def is_listed():
            return int(window) in [int(each, 16) for each in client_list()]

        def follow():
            """Lets the program read the list of windows: it has done so at the latest before the second question."""
            for _ in range(2):
                self.probe.running()

        def show_again(**properties):
            subprocess.run(["xdotool", "windowunmap", "--sync", window], check=True)
            # A window that leaves the list and returns before the program reads it would stay as it was.
            wait_for(lambda: not is_listed(), "the window is away")
            follow()
            self.assertFalse(owns())
            for name, (kind, value) in properties.items():
                subprocess.run(["xprop", "-id", window, "-f", name, kind, "-set", name, value], check=True)
            subprocess.run(["xdotool", "windowmap", "--sync", window], check=True)
            wait_for(is_listed, "the window is back")
            follow()

        show_again()
        wait_for(owns, "a window that comes back is known")
        show_again(WM_CLIENT_MACHINE=("8s", "elsewhere"))
        wait_for(owns, "a machine that was given another name keeps its windows")
        show_again(_NET_WM_PID=("32c", "2"))
        bring_to_front("galculator")
        wait_for(lambda: client_list() and not owns(), "the window belongs to the other machine's process")
        self.assertIsNone(self.probe.front())

    def test_a_window_on_another_space_is_not_on_the_screen_unless_it_is_on_all(self):
        subprocess.run(["wmctrl", "-n", "2"], check=True)
        self.addCleanup(subprocess.run, ["wmctrl", "-s", "0"], check=True)
        self.start("galculator")
        pid = self.probe.appears("galculator")["pid"]
        window = wait_for(lambda: window_of("galculator"), "its window")
        owns = lambda: pid in self.probe.ask("windows", "windows")
        spaces = lambda: sum(line.get("event") == "space" for line in self.probe.lines)
        wait_for(owns, "its window is on the screen")

        def go_to(space):
            before = spaces()
            subprocess.run(["wmctrl", "-s", space], check=True)
            wait_for(lambda: spaces() > before, f"the change to space {space} was reported")

        go_to("1")
        wait_for(lambda: not owns(), "its window stayed behind")
        self.assertIn("galculator", self.probe.running())
        go_to("0")
        wait_for(owns, "its window is there again")
        subprocess.run(["wmctrl", "-i", "-r", window, "-b", "add,sticky"], check=True)
        everywhere = lambda: "4294967295" in subprocess.run(["xprop", "-id", window, "_NET_WM_DESKTOP"], text=True,
                                                            capture_output=True, check=True).stdout
        wait_for(everywhere, "its window is on all spaces")
        go_to("1")
        wait_for(owns, "its window came along")

    def test_an_entry_that_comes_later_names_what_runs_already(self):
        self.start("/usr/bin/python3", f"{DATA}/tools/window.py", "Late")
        wait_for(lambda: window_of("Late"), "its window")
        write(f"{DATA}/tools/late.py", WINDOW_SCRIPT)
        self.start("/usr/bin/python3", f"{DATA}/tools/late.py", "Later")
        wait_for(lambda: window_of("Later"), "its window")
        self.assertNotIn("org.example.Late", self.probe.running())
        write(f"{DATA}/applications/org.example.Late.desktop",
              f"[Desktop Entry]\nType=Application\nName=Late\nExec=/usr/bin/python3 {DATA}/tools/late.py\n")
        self.assertEqual(self.probe.appears("org.example.Late")["name"], "Late")


unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
