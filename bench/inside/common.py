"""What the scripts in the sessions share."""

import json
import os
import sys
import time

import dbus
from vorli import BUS_NAME, OBJECT, Missing, TrayIcon, Vorli, run, until, windows_of

PREFIX, OUT, *ARGUMENTS = sys.argv[1:]


def started(program="vorli", arguments=()):
    """The program, with its icon in the panel, its first look at the machine done and its helper enabled."""
    path = os.path.join(PREFIX, "bin", program)
    if arguments:  # Vorli takes one word
        path = _with_arguments(path, arguments)
    vorli = Vorli(path, os.path.join(OUT, "vorli.log"))
    icon = TrayIcon()
    vorli.item = icon.appear()[0]
    until(lambda: vorli.ticks >= 1, "the first look at the machine", 30)
    until(lambda: vorli.helper_status == "enabled", "the enabled helper", 30)
    return vorli


def _with_arguments(path, arguments):
    script = os.path.join(OUT, "program.sh")
    with open(script, "w", encoding="utf-8") as file:
        file.write(f"#!/bin/sh\nexec {path} {' '.join(map(str, arguments))}\n")
    os.chmod(script, 0o755)
    return script


def toggle_popover():
    """As a second start of the program does."""
    application = dbus.Interface(dbus.SessionBus().get_object(BUS_NAME, OBJECT, introspect=False),
                                 "org.freedesktop.Application")
    application.Activate(dbus.Dictionary({}, signature="sv"))


def open_and_shut_popover(vorli):
    """True when a window came; False in a build without one."""
    before = set(windows_of(vorli.process.pid))
    toggle_popover()
    try:
        until(lambda: set(windows_of(vorli.process.pid)) - before, "the popover", 2)
    except Missing:
        return False
    toggle_popover()
    until(lambda: set(windows_of(vorli.process.pid)) <= before, "the end of the popover", 10)
    return True


def x_server():
    """The process that draws the session's screen."""
    return int(run("sh", "-c", "for p in /proc/[0-9]*; do [ \"$(cat $p/comm)\" = Xvfb ] && grep -qz \"$VORLI_SESSION_MARK\" "
                   "$p/environ 2>/dev/null && basename $p; done; true").split()[0])


def choose(vorli, label):
    """Presses a row of the icon's menu."""
    name = vorli.item.split("/")[0]
    menu = dbus.Interface(dbus.SessionBus().get_object(name, "/Menu", introspect=False), "com.canonical.dbusmenu")
    menu.AboutToShow(0)
    _, (_, _, rows) = menu.GetLayout(0, -1, ["label"])
    row = next(row for row in rows if row[1].get("label") == label)
    menu.Event(row[0], "clicked", dbus.String("", variant_level=1), dbus.UInt32(0))


def let_pass(seconds):
    time.sleep(seconds)


def write(result):
    with open(os.path.join(OUT, "result.json"), "w", encoding="utf-8") as file:
        json.dump(result, file)
