#!/usr/bin/python3
"""Stands in for polkit: polkit.py LOG MODE. Logs each question and each late consent, and answers as the mode says.

root-only   grants what the bus says is root's, refuses the rest
late        grants a question when a line comes on standard input
error, garbage, empty, silent, die
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
    waiting = []

    def answer(message, granted):
        reply = dbus.lowlevel.MethodReturnMessage(message)
        reply.append(dbus.Struct((granted, False, dbus.Dictionary({}, signature="ss"))), signature="(bba{ss})")
        bus.send_message(reply)

    def consent(*_):
        sys.stdin.readline()
        answer(waiting.pop(), True)
        bus.name_has_owner(NAME)  # answered when the consent has been passed on
        note("consented")
        return True

    def note(what):
        with open(log, "a", encoding="utf-8") as file:
            print(json.dumps(what), file=file)

    def asked(_, message):
        if not isinstance(message, dbus.lowlevel.MethodCallMessage) or message.get_member() != "CheckAuthorization":
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        subject, action, details, flags, _ = message.get_args_list()
        note({"kind": subject[0], "subject": sorted(subject[1]), "action": action, "flags": flags, "details": dict(details)})
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
            waiting.append(message)
        elif mode == "die":
            sys.exit(0)
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    bus.add_message_filter(asked)
    GLib.io_add_watch(sys.stdin, GLib.IO_IN, consent)
    bus.request_name(NAME)
    GLib.MainLoop().run()


main()
