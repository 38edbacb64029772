"""start.py PREFIX OUT ROUNDS FLOOR: the time until the tray has a program's picture, in turn with a bare program.

This script is the tray itself: a program counts as started when it has answered with its picture.
"""

import os
import subprocess
import time

import dbus
import dbus.mainloop.glib
import dbus.service
from common import ARGUMENTS, PREFIX, let_pass, write
from gi.repository import GLib
from measuring.process import cpu_ms
from vorli import BUS_NAME, OBJECT, STATUS

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
LONGEST = 20  # seconds


class Tray(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(dbus.service.BusName(WATCHER, bus), "/StatusNotifierWatcher")
        self._bus, self.item = bus, None

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        self.item = (sender, service) if service.startswith("/") else (service, "/StatusNotifierItem")

    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, out_signature="s", path_keyword="path", connection_keyword="bus")
    def Introspect(self, path, bus):
        """Sets the property without which Qt does not recognise a tray."""
        start = f'<interface name="{WATCHER}">'
        return super().Introspect(path, bus).replace(
            start, start + '<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>')

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return {"IsStatusNotifierHostRegistered": True, "ProtocolVersion": 0}.get(name, dbus.Array([], signature="s"))

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return {"IsStatusNotifierHostRegistered": True, "ProtocolVersion": 0}

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostRegistered(self):
        pass


class Start:
    """One start of one program, watched from the tray's main loop."""

    def __init__(self, bus, tray, program, has_ticks):
        self._bus, self._tray, self._has_ticks = bus, tray, has_ticks
        self._loop, self.result = GLib.MainLoop(), None
        tray.item = None
        self._begun = time.monotonic()
        self._process = subprocess.Popen([program], stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self._asked = False
        GLib.timeout_add(1, self._look)
        self._limit = GLib.timeout_add_seconds(LONGEST, self._loop.quit)
        self._loop.run()
        GLib.source_remove(self._limit) if self.result else None
        self._process.terminate()
        self._process.wait(10)
        if not self.result:
            raise SystemExit(f"{os.path.basename(program)} showed no picture within {LONGEST} s")

    def _look(self):
        if self.result:
            return False
        if self._tray.item and not self._asked:
            self._asked = True
            properties = dbus.Interface(self._bus.get_object(*self._tray.item, introspect=False), dbus.PROPERTIES_IFACE)
            properties.GetAll(ITEM, reply_handler=self._shown, error_handler=lambda _error: self._again())
        return True

    def _again(self):
        self._asked = False

    def _shown(self, properties):
        taken = {"wall_ms": (time.monotonic() - self._begun) * 1000, "cpu_ms": cpu_ms(self._process.pid)}
        if not properties.get("IconPixmap") and not properties.get("IconName"):
            self._again()
        elif self._has_ticks:
            status = dbus.Interface(self._bus.get_object(BUS_NAME, OBJECT, introspect=False), dbus.PROPERTIES_IFACE)
            status.Get(STATUS, "Ticks", reply_handler=lambda ticks: self._counted(ticks, taken),
                       error_handler=lambda _error: self._again())
        else:
            self._end(taken)

    def _counted(self, ticks, taken):
        if ticks >= 1:
            self._end(taken)
        else:
            self._again()  # that picture did not yet show real values

    def _end(self, taken):
        self.result = taken
        self._loop.quit()


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    tray = Tray(bus)
    rounds, floor = int(ARGUMENTS[0]), ARGUMENTS[1]
    vorli = os.path.join(PREFIX, "bin", "vorli")
    result = {"vorli": [], "floor": []}
    for turn in range(rounds + 1):
        first = Start(bus, tray, floor, False).result
        let_pass(0.2)
        second = Start(bus, tray, vorli, True).result
        let_pass(0.2)
        if turn > 0:  # the first start fills the file cache
            result["floor"].append(first)
            result["vorli"].append(second)
    write(result)


main()
