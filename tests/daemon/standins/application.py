#!/usr/bin/python3
"""Makes moves as the application does: reads commands from standard input and prints one line for each.

check FLAGS, move FROM TO, move-again FROM TO (over a second connection), revoke
"""

import sys

import dbus
import dbus.bus

AUTHORITY = "org.freedesktop.PolicyKit1"
HELPER = "com.kv.vorli.helper"
ACTION = HELPER + ".move-startup-item"


def mover(bus):
    return dbus.Interface(bus.get_object(HELPER, "/com/kv/vorli/helper", introspect=False), HELPER)


def main():
    bus = dbus.SystemBus()
    authority = dbus.Interface(bus.get_object(AUTHORITY, "/org/freedesktop/PolicyKit1/Authority", introspect=False),
                               AUTHORITY + ".Authority")
    subject = ("system-bus-name", dbus.Dictionary({"name": bus.get_unique_name()}, signature="sv"))
    print("ready", flush=True)
    for line in sys.stdin:
        words = line.split()
        if words[0] == "check":
            granted, challenge, _ = authority.CheckAuthorization(
                subject, ACTION, dbus.Dictionary({}, signature="ss"), dbus.UInt32(words[1]), "", timeout=60)
            print(int(granted), int(challenge), flush=True)
        elif words[0] == "revoke":
            authority.RevokeTemporaryAuthorizations(("unix-session", dbus.Dictionary({"session-id": words[1]}, signature="sv")))
            print("revoked", flush=True)
        else:
            chosen = bus if words[0] == "move" else dbus.bus.BusConnection("unix:path=/run/dbus/system_bus_socket")
            print(int(mover(chosen).MoveLaunchAgentPlist(words[1], words[2])[0]), flush=True)


main()
