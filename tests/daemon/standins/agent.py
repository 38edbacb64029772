#!/usr/bin/python3
"""A user's authentication agent: agent.py SESSION MODE. Prints each cookie; `cancel` refuses, the other modes wait
until a line on standard input ends the question."""

import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

AUTHORITY = "org.freedesktop.PolicyKit1"
AGENT = AUTHORITY + ".AuthenticationAgent"


class Agent(dbus.service.Object):
    def __init__(self, bus, mode):
        super().__init__(bus, "/agent")
        self.mode = mode
        self.waiting = None

    @dbus.service.method(AGENT, in_signature="sssa{ss}sa(sa{sv})", out_signature="", async_callbacks=("done", "failed"))
    def BeginAuthentication(self, action, message, icon, details, cookie, identities, done, failed):
        del icon, details, identities
        print("prompt", cookie, action, message, flush=True)
        if self.mode == "cancel":
            failed(dbus.DBusException("cancelled", name=AUTHORITY + ".Error.Cancelled"))
        else:
            self.waiting = done

    @dbus.service.method(AGENT, in_signature="s")
    def CancelAuthentication(self, cookie):
        del cookie

    def on_line(self, *_):
        sys.stdin.readline()
        if self.waiting:
            self.waiting()
            self.waiting = None
        return True


def main():
    session, mode = sys.argv[1:]
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    agent = Agent(bus, mode)
    GLib.io_add_watch(sys.stdin, GLib.IO_IN, agent.on_line)
    authority = bus.get_object(AUTHORITY, "/org/freedesktop/PolicyKit1/Authority")
    authority.RegisterAuthenticationAgent(("unix-session", {"session-id": session}), "C", "/agent",
                                          dbus_interface=AUTHORITY + ".Authority")
    print("registered", flush=True)
    GLib.MainLoop().run()


main()
