#!/usr/bin/python3
"""A tray registry and a settings portal that a test turns on and off by lines on standard input.

  watcher on | off       the name org.kde.StatusNotifierWatcher
  host on | off          whether a panel shows registered items
  portal on              the name org.freedesktop.portal.Desktop
  scheme N               the portal's colour scheme: 0 no preference, 1 dark, 2 light
"""

import os
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

WATCHER = "org.kde.StatusNotifierWatcher"
PORTAL = "org.freedesktop.portal.Desktop"
SETTINGS = "org.freedesktop.portal.Settings"
SCHEME = ("org.freedesktop.appearance", "color-scheme")


def say(line):
    print(line, flush=True)


class Watcher(dbus.service.Object):
    has_host = False

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierItem(self, name):
        say(f"registered {name}")

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return self.has_host if name == "IsStatusNotifierHostRegistered" else dbus.Array([], signature="s")

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostRegistered(self):
        pass

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostUnregistered(self):
        pass


class Portal(dbus.service.Object):
    scheme = 0

    @dbus.service.method(SETTINGS, in_signature="ss", out_signature="v")
    def Read(self, space, key):
        assert (space, key) == SCHEME
        return dbus.UInt32(self.scheme, variant_level=1)

    @dbus.service.signal(SETTINGS, signature="ssv")
    def SettingChanged(self, _space, _key, _value):
        pass


class Services:
    def __init__(self):
        self.bus = dbus.SessionBus()
        self.watcher = Watcher(self.bus, "/StatusNotifierWatcher")
        self.portal = Portal(self.bus, "/org/freedesktop/portal/desktop")

    def obey(self, what, value):
        if what == "watcher" and value == "on":
            self.bus.request_name(WATCHER)
        elif what == "watcher":
            self.bus.release_name(WATCHER)
        elif what == "portal":
            self.bus.request_name(PORTAL)
        elif what == "scheme":
            self.portal.scheme = int(value)
            self.portal.SettingChanged(*SCHEME, dbus.UInt32(self.portal.scheme))
        elif what == "host":
            self.watcher.has_host = value == "on"
            if self.watcher.has_host:
                self.watcher.StatusNotifierHostRegistered()
            else:
                self.watcher.StatusNotifierHostUnregistered()
        say(f"{what} is {value}")


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    services, loop = Services(), GLib.MainLoop()

    unfinished = b""

    def readable(source, _condition):
        nonlocal unfinished
        read = os.read(source, 4096)
        *lines, unfinished = (unfinished + read).split(b"\n")
        for line in lines:
            services.obey(*line.decode().split())
        if not read:
            loop.quit()
        return bool(read)

    GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_IN | GLib.IO_HUP, readable)
    loop.run()


main()
