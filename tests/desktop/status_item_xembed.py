#!/usr/bin/python3
"""status_item_xembed.py PROGRAM PANEL: the status item in a panel that knows only the X11 tray."""

import os
import subprocess
import sys
import unittest

import tray_parts
from process import Process
from tray_parts import ITEM, PANEL_HEIGHT, OwnMenu, click, held, icon_is_gone, icon_place, photograph, pointer
from waiting import wait_for

PROGRAM, PANEL = sys.argv.pop(1), sys.argv.pop(1)


class XEmbedTest(unittest.TestCase):
    def setUp(self):
        pointer("mousemove", 600, 600)
        wait_for(icon_is_gone, "the dial of the test before has left the tray")
        self.program = Process(PROGRAM)
        self.addCleanup(self.program.close)
        self.program.expect("tray xembed")
        self.program.tell("picture 0.6")
        self.program.tell("sentence Your computer is warming up. 60 percent under pressure.")
        self.place = icon_place()

    def assert_click(self, expected, **how):
        since = self.program.mark()
        click(self.place, **how)
        line = self.program.expect("click .*", since)
        self.assertRegex(line, f"click {expected} at {self.place[0]} {self.place[1]} icon .*")
        x, y, width, height = map(int, line.split(" icon ")[1].split())
        self.assertTrue(x <= self.place[0] < x + width and y <= self.place[1] < y + height, line)
        self.assertLessEqual(height, PANEL_HEIGHT)

    def test_clicks_are_distinguished_when_the_button_is_released(self):
        since = self.program.mark()
        pointer("mousemove", *self.place, "mousedown", 1)
        pointer("mousemove", 600, 600, "mouseup", 1)  # dragged off: no click
        click(self.place, button=2)  # an embedded icon has two buttons only
        self.assert_click("left plain")
        self.assertEqual(len([line for line in self.program.lines[since:] if line.startswith("click")]), 1)
        with held("ctrl"):
            self.assert_click("left control")
        OwnMenu(self.program).choose("Polish Now")
        self.assert_click("right plain", button=3)
        photograph(f"menu-{PANEL}")
        OwnMenu(self.program).choose("Quit Vorli")

    def test_a_double_click_is_two_clicks(self):
        since = self.program.mark()
        pointer("mousemove", *self.place, "click", "--repeat", 2, "--delay", 40, 1)
        wait_for(
            lambda: len([line for line in self.program.lines[since:] if line.startswith("click left")]) == 2,
            "two clicks",
        )

    def test_the_menu_closes_by_escape_and_by_a_click_elsewhere(self):
        menu = OwnMenu(self.program)
        for close in (lambda: pointer("key", "Escape"), lambda: click((600, 600))):
            self.assert_click("right plain", button=3)
            menu.opened()
            close()
            menu.gone()

    def test_the_picture_follows(self):
        photograph(f"tray-{PANEL}", (1720, 0, 200, 30))
        self.program.tell("picture 0.95")
        icon_place(tray_parts.is_red)

    def test_a_tray_that_is_killed_and_starts_again_gets_the_icon_back(self):
        since = self.program.mark()
        command = tray_parts.end_panel(PANEL)
        self.program.expect("tray none", since)
        since = self.program.mark()
        tray_parts.start_panel(command)
        self.program.expect("tray xembed", since)
        self.place = icon_place()
        self.assert_click("left plain")

    def test_the_item_moves_to_a_better_tray_and_back(self):
        services = Process(os.path.join(tray_parts.HERE, "fake_tray_services.py"))
        self.addCleanup(services.close)
        services.tell("watcher on")
        services.expect(f"registered {ITEM}-{self.program.pid}-1")
        self.assertFalse(icon_is_gone(), "no panel shows what is registered")
        since = self.program.mark()
        services.tell("host on")
        self.program.expect("tray notifier", since)
        wait_for(icon_is_gone, "the icon has left the X11 tray")
        since = self.program.mark()
        services.tell("host off")
        self.program.expect("tray xembed", since)
        icon_place()
        services.tell("host on")
        wait_for(icon_is_gone, "the icon has left the X11 tray")
        since = self.program.mark()
        services.tell("watcher off")
        self.program.expect("tray xembed", since)
        self.place = icon_place()
        self.assert_click("left plain")

    def test_ten_thousand_pictures_leave_nothing_behind(self):
        program = Process(PROGRAM, "--hurry", "500")
        self.addCleanup(program.close)
        program.expect("tray xembed")

        def send(count):
            since = program.mark()
            program.tell(f"send {count}")
            program.expect("sent", since, 120)
            return program.resources()

        dirty, descriptors, _ = send(1000)
        pictures = int(os.environ.get("VORLI_SENT_PICTURES", "10000"))
        later_dirty, later_descriptors, _ = send(pictures)
        print(f"{PANEL}: pictures sent: {later_dirty - dirty:+} kB", flush=True)
        self.assertLess((later_dirty - dirty) * 1024 / pictures, tray_parts.MOST_LEFT_OF_A_PICTURE)
        self.assertEqual(later_descriptors, descriptors)


class SurroundingsTest(unittest.TestCase):
    def test_without_a_session_bus_there_is_still_the_x11_tray(self):
        program = Process(PROGRAM, environment={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent"})
        self.addCleanup(program.close)
        program.expect("tray xembed")
        program.tell("picture 0.6")
        place = icon_place()
        since = program.mark()
        click(place)
        program.expect("click left plain .*", since)

    def test_a_session_bus_that_dies_leaves_the_x11_tray(self):
        bus = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--print-address=1"], stdout=subprocess.PIPE, text=True
        )
        self.addCleanup(bus.stdout.close)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.kill)
        environment = {"DBUS_SESSION_BUS_ADDRESS": bus.stdout.readline().strip()}
        services = Process(os.path.join(tray_parts.HERE, "fake_tray_services.py"), environment=environment)
        for line in ("host on", "watcher on"):
            services.tell(line)
            services.expect(line.replace(" ", " is "))
        program = Process(PROGRAM, environment=environment)
        self.addCleanup(program.close)
        program.expect("tray notifier")
        bus.kill()
        program.expect("tray xembed")
        program.tell("picture 0.6")
        icon_place()

    def test_a_desktop_whose_panels_are_always_dark_gets_the_bright_dial(self):
        program = Process(PROGRAM, environment={"XDG_CURRENT_DESKTOP": "ubuntu:GNOME"})
        self.addCleanup(program.close)
        self.assertEqual(program.expect("appearance .*"), "appearance dark")


if __name__ == "__main__":
    unittest.main(warnings="ignore")
