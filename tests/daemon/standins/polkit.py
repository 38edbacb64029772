#!/usr/bin/python3
"""Stands in for polkit: polkit.py LOG MODE. Logs each question and answers as the mode says.

root-only   grants what the bus says is root's, refuses the rest
error, garbage, empty, silent, late, die
"""

import json
import sys

import dbus
import dbus.lowlevel
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

NAME = "org.freedesktop.PolicyKit1"


def main():
    log, mode = sys.argv[1:]
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()

    def answer(message, granted):
        reply = dbus.lowlevel.MethodReturnMessage(message)
        reply.append(dbus.Struct((granted, False, dbus.Dictionary({}, signature="ss"))), signature="(bba{ss})")
        bus.send_message(reply)

    def asked(_, message):
        if not isinstance(message, dbus.lowlevel.MethodCallMessage) or message.get_member() != "CheckAuthorization":
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        subject, action, details, flags, _ = message.get_args_list()
        with open(log, "a", encoding="utf-8") as file:
            print(json.dumps({"kind": subject[0], "subject": sorted(subject[1]), "action": action, "flags": flags,
                              "details": dict(details)}), file=file)
        if mode == "root-only":
            try:
                granted = bus.get_unix_user(subject[1]["name"]) == 0
            except dbus.DBusException:
                granted = False
            answer(message, granted)
        elif mode == "error":
            bus.send_message(dbus.lowlevel.ErrorMessage(message, NAME + ".Error.Failed", "no"))
        elif mode == "garbage":
            reply = dbus.lowlevel.MethodReturnMessage(message)
            reply.append("yes", True, signature="sb")
            bus.send_message(reply)
        elif mode == "empty":
            bus.send_message(dbus.lowlevel.MethodReturnMessage(message))
        elif mode == "late":
            GLib.timeout_add(3300, lambda: answer(message, True))
        elif mode == "die":
            sys.exit(0)
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    bus.add_message_filter(asked)
    bus.request_name(NAME)
    GLib.MainLoop().run()


main()
