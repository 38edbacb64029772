"""A sandbox as desktops make it: its own file tree with the application's mark, and the real bus proxy."""

import os
import subprocess
import tempfile

from waiting import wait_for
from workspace_probe import write

# A tray's registry that accepts items and lists them.
TRAY_SCRIPT = """
import dbus, dbus.mainloop.glib, dbus.service
from gi.repository import GLib
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
NAME = "org.kde.StatusNotifierWatcher"
class Registry(dbus.service.Object):
    items = []
    @dbus.service.method(NAME, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, _item, sender):
        self.items.append(sender + "/StatusNotifierItem")
        self.StatusNotifierItemRegistered(self.items[-1])
        print("registered", flush=True)
    @dbus.service.signal(NAME, signature="s")
    def StatusNotifierItemRegistered(self, item): pass
    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, _name):
        return dbus.Array(self.items, signature="s")
bus = dbus.SessionBus()
registry = Registry(bus, "/StatusNotifierWatcher")
name = dbus.service.BusName(NAME, bus)
print("ready", flush=True)
GLib.MainLoop().run()
"""

APPLICATION_SCRIPT = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gio, GLib, Gtk
def closed(*_):
    print("window closed", flush=True)
    Gtk.main_quit()
bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.set_exit_on_close(False)
bus.connect("closed", lambda *_: print("bus closed", flush=True))
bus.call_sync("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher",
              "RegisterStatusNotifierItem", GLib.Variant("(s)", (bus.get_unique_name(),)), None, 0, -1)
window = Gtk.Window(title="Boxed window")
window.connect("destroy", closed)
window.show_all()
Gtk.main()
"""


def sandboxed(info, shared_folders, *command, program=None):
    """The call that runs the command in a sandbox with this mark; `program` is a file that appears as /app/bin/gui."""
    tree = ["--ro-bind", "/usr", "/usr", "--ro-bind", "/etc", "/etc", "--dev", "/dev", "--ro-bind", "/proc", "/proc",
            "--bind", "/tmp", "/tmp", "--ro-bind", info, "/.flatpak-info"]
    for folder in ("bin", "lib", "lib64", "sbin"):
        tree += ["--symlink", f"usr/{folder}", f"/{folder}"]
    if program:
        tree += ["--ro-bind", program, "/app/bin/gui"]
    for folder in {*shared_folders, os.environ["HOME"], os.environ.get("XDG_RUNTIME_DIR", "/tmp")}:
        tree += ["--bind", folder, folder]
    return ["bwrap", "--die-with-parent", *tree, "--", *command]


class Sandbox:
    """A sandbox with its bus proxy, in which programs are started."""

    def __init__(self, identifier):
        # pylint: disable=consider-using-with
        self.folder = tempfile.TemporaryDirectory()
        self.scripts = 0
        place = self.folder.name
        write(f"{place}/info", f"[Application]\nname={identifier}\n")
        self.log = open(f"{place}/log", "a", encoding="utf-8")
        self.proxy = subprocess.Popen(self.boxed("/usr/bin/xdg-dbus-proxy", os.environ["DBUS_SESSION_BUS_ADDRESS"],
                                                 f"{place}/bus"))
        wait_for(lambda: os.path.exists(f"{place}/bus"), "the bus proxy")

    def boxed(self, *command):
        return sandboxed(f"{self.folder.name}/info", [self.folder.name], *command)

    def start(self, script, **environment):
        """Starts a Python script with this text."""
        self.scripts += 1
        path = f"{self.folder.name}/application{self.scripts}.py"
        write(path, script)
        environment = {**os.environ, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder.name}/bus", **environment}
        return subprocess.Popen(self.boxed("/usr/bin/python3", path), env=environment, stdout=self.log)

    @staticmethod
    def read(log):
        with open(log.name, encoding="utf-8") as file:
            return file.read()

    def output(self):
        return self.read(self.log)

    def close(self):
        self.proxy.kill()
        self.proxy.wait()
        self.log.close()
        self.folder.cleanup()


class SandboxWithTray(Sandbox):
    """A sandbox beside a tray that accepts its icons."""

    def __init__(self, identifier):
        super().__init__(identifier)
        # pylint: disable=consider-using-with
        place = self.folder.name
        write(f"{place}/tray.py", TRAY_SCRIPT)
        self.tray_log = open(f"{place}/tray-log", "a", encoding="utf-8")
        self.tray = subprocess.Popen(["/usr/bin/python3", f"{place}/tray.py"], stdout=self.tray_log)
        wait_for(lambda: "ready" in self.read(self.tray_log), "the tray's registry")

    def start_application(self):
        return self.start(APPLICATION_SCRIPT)

    def has_icon(self):
        return "registered" in self.read(self.tray_log)

    def close(self):
        self.tray.kill()
        self.tray.wait()
        self.tray_log.close()
        super().close()
