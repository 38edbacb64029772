#!/usr/bin/python3
"""administrator.py SESSION PREFIX: the administrator of a private session, called by its tests over the system bus.

Shows the session's password windows and answers them, both as requested. Runs as root in the session's control group.
"""

import os
import signal
import subprocess
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

NAME = INTERFACE = "com.kv.vorli.Administrator"
HELPER = "com.kv.vorli.helper"
POLKIT, AUTHORITY = "org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority"
AGENT, AGENT_PATH = "org.freedesktop.PolicyKit1.AuthenticationAgent", "/agent"


class Agent(dbus.service.Object):
    """Shows one password window at a time. A window stays open until it has an answer."""

    def __init__(self, bus):
        super().__init__(bus, AGENT_PATH)
        self._authority = dbus.Interface(bus.get_object(POLKIT, AUTHORITY), POLKIT + ".Authority")
        self._open = None
        self.answer = ""
        self.asked = []

    @dbus.service.method(AGENT, in_signature="sssa{ss}sa(sa{sv})", async_callbacks=("done", "failed"))
    def BeginAuthentication(self, action, _message, _icon, _details, cookie, identities, done, failed):
        self.asked.append(action)
        self._open = (cookie, identities[0], done, failed)
        self.act()

    @dbus.service.method(AGENT, in_signature="s")
    def CancelAuthentication(self, _cookie):
        self._open = None

    def act(self):
        """Answers the open window, if there is a window and an answer."""
        if not self._open or not self.answer:
            return
        (cookie, identity, done, failed), self._open = self._open, None
        if self.answer == "refuse":
            failed(dbus.DBusException("dismissed", name=POLKIT + ".Error.Cancelled"))
            return
        # Does what polkit's own program does after the right password.
        self._authority.AuthenticationAgentResponse2(dbus.UInt32(os.getuid()), cookie, identity,
                                                     reply_handler=done, error_handler=failed)


class Administrator(dbus.service.Object):
    def __init__(self, bus, session, prefix):
        super().__init__(bus, "/")
        self._bus = bus
        self._subject = ("unix-session", {"session-id": session})
        self._installer = os.path.join(prefix, "libexec", "vorli", "vorli-helper-install")
        self._agent = Agent(bus)
        self._authority = dbus.Interface(bus.get_object(POLKIT, AUTHORITY), POLKIT + ".Authority")
        self._is_here = False

    @dbus.service.method(INTERFACE)
    def Arrive(self):
        """Makes password windows possible from now on."""
        if not self._is_here:
            self._authority.RegisterAuthenticationAgent(self._subject, "C", AGENT_PATH)
        self._is_here = True

    @dbus.service.method(INTERFACE)
    def Leave(self):
        if self._is_here:
            self._authority.UnregisterAuthenticationAgent(self._subject, AGENT_PATH)
        self._is_here = False

    @dbus.service.method(INTERFACE, in_signature="s")
    def Answer(self, answer):
        """Sets the answer of the open window and the next ones: "give" or "refuse"; "" leaves them open."""
        self._agent.answer = str(answer)
        self._agent.act()

    @dbus.service.method(INTERFACE, out_signature="as")
    def Asked(self):
        """The actions for which a password window was shown, in order."""
        return dbus.Array(self._agent.asked, signature="s")

    @dbus.service.method(INTERFACE, out_signature="i")
    def Daemon(self):
        """Process id of the running daemon, or 0."""
        try:
            return int(self._bus.call_blocking("org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                               "GetConnectionUnixProcessID", "s", (HELPER,)))
        except dbus.DBusException:
            return 0

    @dbus.service.method(INTERFACE, in_signature="s")
    def Signal(self, name):
        """Sends the running daemon a signal, as in "SIGKILL"."""
        daemon = self.Daemon()
        if not daemon:  # otherwise the signal would reach this process
            raise dbus.DBusException("no daemon runs", name=INTERFACE + ".NoDaemon")
        os.kill(daemon, signal.Signals[str(name)])

    @dbus.service.method(INTERFACE)
    def StartOver(self):
        """Removes the daemon's registration, and forgets all requests."""
        self.Leave()
        self._agent.answer, self._agent.asked = "", []
        subprocess.run([self._installer, "--remove"], check=True)


def main():
    session, prefix = sys.argv[1:]
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    administrator = Administrator(bus, session, prefix)
    name = dbus.service.BusName(NAME, bus)
    GLib.MainLoop().run()
    del administrator, name


main()
