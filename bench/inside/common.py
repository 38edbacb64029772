"""Functions that the scripts in the sessions share."""

import json
import os
import sys
import time

import dbus
from process import session_process
from screen import windows_of
from vorli import TrayIcon, Vorli, choose_row
from waiting import Missing, wait_for

PREFIX, OUT, *ARGUMENTS = sys.argv[1:]
REST = 240  # seconds at most until the dial is at rest: it shows earlier load for minutes


def started(program="vorli", arguments=()):
    """Starts the program, and returns when its icon is in the panel, its first tick is over and its helper enabled."""
    path = os.path.join(PREFIX, "bin", program)
    if arguments:  # Vorli accepts one word
        path = _with_arguments(path, arguments)
    vorli = Vorli(path, os.path.join(OUT, "vorli.log"))
    icon = TrayIcon()
    vorli.item = icon.appear()[0]
    wait_for(lambda: vorli.ticks >= 1, "the first look at the machine", 30)
    wait_for(lambda: vorli.helper_status == "enabled", "the enabled helper", 30)
    return vorli


def _with_arguments(path, arguments):
    script = os.path.join(OUT, "program.sh")
    with open(script, "w", encoding="utf-8") as file:
        file.write(f"#!/bin/sh\nexec {path} {' '.join(map(str, arguments))}\n")
    os.chmod(script, 0o755)
    return script


def toggle_popover(vorli):
    """Calls the program as the panel does at a click."""
    name, path = vorli.item.split("/", 1)
    item = dbus.SessionBus().get_object(name, "/" + path, introspect=False)
    item.Activate(*map(dbus.Int32, TrayIcon.centre()), dbus_interface="org.kde.StatusNotifierItem")


def open_and_shut_popover(vorli):
    """Returns whether a window appeared; a build without a popover has none."""
    before = set(windows_of(vorli.process.pid))
    toggle_popover(vorli)
    try:
        wait_for(lambda: set(windows_of(vorli.process.pid)) - before, "the popover", 2)
    except Missing:
        return False
    toggle_popover(vorli)
    wait_for(lambda: set(windows_of(vorli.process.pid)) <= before, "the end of the popover", 10)
    return True


def x_server():
    """The process that draws the session's screen."""
    return session_process("Xvfb")


def choose(vorli, label):
    """Presses a row of the icon's menu."""
    choose_row(vorli.item, label)


def let_pass(seconds):
    time.sleep(seconds)


def let_the_dial_rest(vorli):
    """Waits until the dial no longer changes: a program that sends new pictures to the panel is not idle."""
    seen = {}

    def still():
        seen[vorli.ticks] = vorli.ring
        last = [seen[tick] for tick in sorted(seen)][-3:]
        return len(last) == 3 and max(last) - min(last) < 0.002

    try:
        wait_for(still, "a dial at rest", REST, pause=1)
    except Missing:
        print("the dial did not come to rest", file=sys.stderr)


def write(result):
    with open(os.path.join(OUT, "result.json"), "w", encoding="utf-8") as file:
        json.dump(result, file)
