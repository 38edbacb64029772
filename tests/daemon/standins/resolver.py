#!/usr/bin/python3
"""Stands in for a DNS cache on the bus: resolver.py NAME MEMBER MODE, the mode being fine, error or silent. Prints
a line for each call."""

import sys

import dbus
import dbus.lowlevel
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib


def main():
    name, member, mode = sys.argv[1:]
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()

    def called(_, message):
        if not isinstance(message, dbus.lowlevel.MethodCallMessage) or message.get_member() != member:
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        print(message.get_path(), message.get_interface(), flush=True)
        if mode == "fine":
            bus.send_message(dbus.lowlevel.MethodReturnMessage(message))
        elif mode == "error":
            bus.send_message(dbus.lowlevel.ErrorMessage(message, "org.example.Broken", "no"))
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    bus.add_message_filter(called)
    bus.request_name(name)
    print("ready", flush=True)
    GLib.MainLoop().run()


main()
