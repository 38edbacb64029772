#!/usr/bin/python3
"""status_item_alone.py PROGRAM: the status item in a session without any panel."""

import os
import sys
import unittest

import tray_parts
from process import Process
from tray_parts import ITEM, Item
from waiting import wait_for

PROGRAM = sys.argv.pop(1)
NO_BUS = {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent"}


class WithoutPanelTest(unittest.TestCase):
    def start(self, *arguments, environment=None):
        program = Process(PROGRAM, *arguments, environment=environment)
        self.addCleanup(program.close)
        return program

    def services(self, *lines):
        services = Process(os.path.join(tray_parts.HERE, "fake_tray_services.py"))
        self.addCleanup(services.close)
        for line in lines:
            services.tell(line)
            services.expect(line.replace(" ", " is "))
        return services

    def assert_lives_on(self, program):
        since = program.mark()
        program.tell("picture 0.6")
        program.tell("sentence Your computer is feeling great. 5 percent under pressure.")
        program.tell("flood 100")
        program.expect("flooded", since)

    def test_no_tray_is_reported_and_harms_nothing(self):
        program = self.start()
        program.expect("tray none")
        self.assert_lives_on(program)

    def test_no_session_bus_and_no_tray_harm_nothing(self):
        program = self.start(environment=NO_BUS)
        program.expect("tray none")
        self.assert_lives_on(program)

    def test_a_registry_that_appears_late_hears_of_the_item(self):
        program = self.start()
        program.expect("tray none")
        services = self.services("host on", "watcher on")
        services.expect(f"registered {ITEM}-{program.pid}-1")
        program.expect("tray notifier")

    def test_a_registry_without_a_panel_is_no_tray(self):
        services = self.services("watcher on")
        program = self.start()
        services.expect(f"registered {ITEM}-{program.pid}-1")
        program.expect("tray none")
        services.tell("host on")
        program.expect("tray notifier")

    def test_clicks_that_come_over_the_bus_alone_work(self):
        self.services("host on", "watcher on")
        program = self.start()
        program.expect("tray notifier")
        item = Item(program.pid)
        for method, expected in (
            ("Activate", "click left plain"),
            ("SecondaryActivate", "click left plain"),
            ("ContextMenu", "click right plain"),
        ):
            since = program.mark()
            item.call(tray_parts.ITEM_PATH, ITEM, method, "ii", 0, 0)  # as by the keyboard, without a place
            program.expect(expected, since)
        x, y = wait_for(lambda: tray_parts.corner_of(program.pid, width=224, height=224), "the menu is open")
        self.assertGreater(x, 1600)
        self.assertLess(y, 10)
        tray_parts.pointer("key", "Escape")

    def test_the_dial_follows_the_desktops_preference(self):
        services = self.services("scheme 1", "portal on")
        program = self.start()
        self.assertEqual(program.expect("appearance .*"), "appearance light")
        program.expect("appearance dark")
        since = program.mark()
        services.tell("scheme 2")
        program.expect("appearance light", since)


if __name__ == "__main__":
    unittest.main(warnings="ignore")
