"""The base of the tests in Wayland sessions, and the programs that they start."""

import os
import re
import shutil
import subprocess
import sys
import unittest

import dbus
from process import Process
from vorli import Vorli
from waiting import settled, wait_for
from workspace_probe import Probe, write

PROBE, FAT = sys.argv[1], sys.argv[2]
DATA = os.environ["XDG_DATA_HOME"]
ENTRIES = f"{DATA}/applications"
FAKE_TRAY = os.path.join(os.path.dirname(os.path.abspath(__file__)), "fake_tray_services.py")
ICON_X, ICON_Y = 1000, 12

# A native window with unsaved work: it asks before it closes, and holds the requested amount of memory.
EDITOR_SCRIPT = """
import sys, gi
from gi.repository import GLib
GLib.set_prgname(sys.argv[1])
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
memory = bytearray(int(sys.argv[2]) << 20)
for at in range(0, len(memory), 4096): memory[at] = 1 + at % 251
def asked(window, _event):
    print("asked", flush=True)
    Gtk.MessageDialog(transient_for=window, text="Save changes?").show_all()
    return True
window = Gtk.Window(title=sys.argv[1])
window.connect("delete-event", asked)
window.show_all()
print("shown", flush=True)
Gtk.main()
"""

# A native window with unsaved work and an action that quits, like most programs of GNOME. The action asks first.
ACTION_SCRIPT = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gio, Gtk
application = Gtk.Application(application_id="IDENTIFIER")
def show(_application):
    window = Gtk.ApplicationWindow(application=application, title="Asks")
    window.show_all()
    print("shown", flush=True)
def asked(*_):
    Gtk.MessageDialog(transient_for=application.get_active_window(), text="Save changes?").show_all()
    print("asked", flush=True)
action = Gio.SimpleAction(name="quit")
action.connect("activate", asked)
application.add_action(action)
application.connect("activate", show)
application.run([])
"""

# Owns an application's name on the bus and has no window; as a client of the compositor it could have one.
NAME_SCRIPT = """
import sys, gi
if "client" in sys.argv:
    gi.require_version("Gdk", "3.0")
    from gi.repository import Gdk  # connects to the display
from gi.repository import Gio
application = Gio.Application(application_id=sys.argv[1])
application.connect("activate", lambda application: application.hold())
application.run([])
"""


def entry(identifier, name, command, more=""):
    write(f"{ENTRIES}/{identifier}.desktop",
          f"[Desktop Entry]\nType=Application\nName={name}\nExec={command}\n{more}")


class CompositorCase(unittest.TestCase):
    """A compositor for each test; a subclass names it."""

    kind = None

    def setUp(self):
        shutil.rmtree(ENTRIES, ignore_errors=True)
        os.makedirs(ENTRIES)
        for name in ("Small Editor", "Fat Editor"):
            identifier = name.lower().replace(" ", "-")
            write(f"{DATA}/tools/{identifier}.py", EDITOR_SCRIPT)
            entry(identifier, name, f"/usr/bin/python3 {DATA}/tools/{identifier}.py")
        entry("org.example.X11", "Old Program", FAT)
        self.add_entries()
        self.compositor = self.kind()
        self.addCleanup(self.compositor.close)

    def add_entries(self):
        """More entries that the compositor finds when it starts."""

    def start(self, *command, **environment):
        everything = {**os.environ, **self.compositor.environment, "GDK_BACKEND": "wayland", **environment}
        process = subprocess.Popen(command, env=everything, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                   text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def start_boxed(self, sandbox, script):
        process = sandbox.start(script, **self.compositor.environment, GDK_BACKEND="wayland")
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def start_with_window(self, *command, **environment):
        process = self.start(*command, **environment)
        wait_for(lambda: self.compositor.windows_of(process.pid), f"a window of {command[0]}", 40, 0.1)
        return process

    def start_editor(self, identifier, megabytes):
        return self.start_with_window("/usr/bin/python3", f"{DATA}/tools/{identifier}.py", identifier, str(megabytes))

    def start_on_x11(self, megabytes):
        return self.start_with_window(FAT, "Old window", str(megabytes), QT_QPA_PLATFORM="xcb")

    def probe(self):
        probe = Probe(PROBE, **self.compositor.environment)
        self.addCleanup(probe.close)
        return probe

    def watch(self):
        """Starts a probe and waits until it sees the windows."""
        probe = self.probe()
        wait_for(lambda: probe.ask("windows", "visible"), "windows are seen", 20)
        return probe

    def windows_of_x11(self):
        """Place and width of each shown X11 window of the program."""
        def look(*command):
            return subprocess.run(command, env={**os.environ, **self.compositor.environment}, capture_output=True,
                                  text=True, check=False)

        def tree():
            done = look("xwininfo", "-root", "-tree")
            return None if done.returncode else done.stdout  # some window has closed in the meantime

        shown = []
        for window in re.findall(r'^\s+(0x[0-9a-f]+) "Vorli": \("vorli"', wait_for(tree, "all windows"), re.MULTILINE):
            told = look("xwininfo", "-id", window).stdout
            if "IsViewable" in told:
                shown.append(tuple(int(re.search(rf"{name}: +(-?\d+)", told)[1]) for name in
                                   ("upper-left X", "upper-left Y", "Width")))
        return shown

    def check_popover(self, program):
        """Checks that the popover opens below the pressed icon, and closes when a native window takes the focus."""
        tray = Process("/usr/bin/python3", FAKE_TRAY)
        self.addCleanup(tray.kill)
        tray.tell("watcher on")
        tray.tell("host on")
        vorli = Vorli(program, f"{self.compositor.folder}/vorli.log", self.compositor.environment)
        self.addCleanup(vorli.end)
        name = tray.expect("registered .*").split()[1]
        item = dbus.Interface(dbus.SessionBus().get_object(name, "/StatusNotifierItem", introspect=False),
                              "org.kde.StatusNotifierItem")
        self.assertEqual(self.windows_of_x11(), [])
        item.Activate(ICON_X, ICON_Y)
        (x, y, width), = settled(self.windows_of_x11, "the popover", 20, 0.1)
        self.assertAlmostEqual(x + width / 2, ICON_X, delta=1)
        self.assertLess(y, ICON_Y + 20)
        wait_for(lambda: "0x0" not in self.compositor.run("xprop", "-root", "_NET_ACTIVE_WINDOW").split(),
                 "the keyboard in the popover", 20, 0.1)
        self.start_editor("small-editor", 10)
        wait_for(lambda: not self.windows_of_x11(), "the end of the popover", 20, 0.1)

    def assert_known(self, probe, started):
        """Checks that the probe lists each of these processes once, by its identifier, and nothing else."""
        for identifier, process in started.items():
            self.assertEqual(probe.appears(identifier)["pid"], process.pid)
        listed = [application["id"] for application in probe.ask("list", "list")]
        self.assertEqual(sorted(listed), sorted(started))

    def assert_biggest_first(self, probe, name):
        wait_for(lambda: (probe.look()["culprits"] or "").startswith(f"{name} and "), "the biggest is named first")
