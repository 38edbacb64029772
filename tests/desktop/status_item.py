#!/usr/bin/python3
"""status_item.py PROGRAM: the status item in a panel that speaks StatusNotifierItem, by real clicks."""

import os
import subprocess
import sys
import time
import unittest

import dbus

import tray_parts
from process import Process
from tray_parts import (
    ACTIONS, ITEM, MENU, MENU_PATH, PANEL_HEIGHT, ROWS, Item, OwnMenu, Screen, click, held, icon_is_gone,
    icon_place, photograph, pointer,
)
from waiting import wait_for

PROGRAM = sys.argv.pop(1)
WARM = "Your computer is warming up. 60 percent under pressure."
WHITE = (255, 255, 255)
TRAY = "_NET_SYSTEM_TRAY_S0"


class NewIcons:
    """Counts the NewIcon signals of an item."""

    def __init__(self, item):
        rule = f"type='signal',interface='{ITEM}',member='NewIcon',sender='{item.bus.get_name_owner(item.name)}'"
        self.monitor = Process("dbus-monitor", "--session", "--profile", rule)
        self.monitor.expect(".*\tNameLost")  # from now on it monitors
        self.close = self.monitor.terminate

    @property
    def count(self):
        return sum("\tNewIcon" in line for line in self.monitor.lines)


class StatusItemTest(unittest.TestCase):
    def setUp(self):
        pointer("mousemove", 600, 600)
        wait_for(icon_is_gone, "the dial of the test before has left the panel")
        self.program = Process(PROGRAM)
        self.addCleanup(self.program.close)
        self.program.expect("tray notifier")
        self.program.tell("picture 0.6")
        self.program.tell(f"sentence {WARM}")
        self.item = Item(self.program.pid)
        wait_for(lambda: self.item.properties()["IconAccessibleDesc"] == WARM, "the sentence is on the bus")
        self.place = icon_place()

    def has_panels_menu(self):
        """Whether the panel's menu is drawn: checks the empty ground of its first row."""
        return Screen().pixel(self.place[0] - 60, PANEL_HEIGHT + 20) == WHITE

    def open_panels_menu(self):
        since = self.program.mark()
        click(self.place, button=3)
        self.program.expect("asked for rows", since)
        wait_for(self.has_panels_menu, "the panel's menu")  # earlier keys are lost

    def times_asked_for_rows(self):
        """Counts only when all that the program has printed so far is read: the bus may be faster than its output."""
        since = self.program.mark()
        self.program.tell("flood 0")
        self.program.expect("flooded", since)
        return self.program.count("asked for rows")

    def test_the_bus_shows_what_the_item_is_and_says(self):
        properties = self.item.properties()
        told = {name: properties[name] for name in ("Category", "Id", "Title", "Status", "ItemIsMenu", "Menu")}
        self.assertEqual(
            told,
            {
                "Category": "SystemServices",
                "Id": "com.kv.vorli",
                "Title": "Vorli",
                "Status": "Active",
                "ItemIsMenu": False,
                "Menu": MENU_PATH,
            },
        )
        self.assertEqual((properties["ToolTip"][2], properties["ToolTip"][3]), ("Vorli", WARM))
        self.assertEqual(properties["IconName"], "")

    def test_every_size_is_sent_with_colours_that_are_not_premultiplied(self):
        pixmaps = self.item.properties()["IconPixmap"]
        self.assertEqual([(w, h) for w, h, _ in pixmaps], [(side, side) for side in (16, 22, 24, 32, 48)])
        side, _, data = pixmaps[-1]
        data = bytes(data)

        def argb(x, y):
            at = 4 * (y * side + x)
            return tuple(data[at : at + 4])

        up, left, middle = argb(24, 7), argb(7, 24), argb(24, 24)
        self.assertAlmostEqual(up[0], 0.7 * 255, delta=2)  # the first filled tick, the faintest
        for value, wanted in zip(up[1:], (0.824, 0.502, 0.145)):
            self.assertAlmostEqual(value, wanted * 255, delta=2)
        self.assertAlmostEqual(left[0], 0.22 * 255, delta=2)  # an empty tick is black
        self.assertEqual(left[1:], (0, 0, 0))
        self.assertEqual(middle[0], 0)

    def test_left_middle_right_and_control_clicks_are_distinguished(self):
        since = self.program.mark()
        click(self.place)
        line = self.program.expect("click .*", since)
        self.assertRegex(line, f"click left plain at {self.place[0]} {self.place[1]} icon .*")
        x, y, width, height = map(int, line.split(" icon ")[1].split())
        self.assertTrue(x <= self.place[0] < x + width and y <= self.place[1] < y + height)

        since = self.program.mark()
        click(self.place, button=2)
        self.program.expect("click left plain .*", since)

        since = self.program.mark()
        self.open_panels_menu()
        photograph("menu-of-the-panel")
        pointer("key", "Escape")
        wait_for(lambda: not self.has_panels_menu(), "the end of the panel's menu")  # the menu takes clicks
        self.assertFalse([line for line in self.program.lines[since:] if line.startswith("click")])

        since = self.program.mark()
        with held("ctrl"):
            click(self.place)
            self.program.expect("click left control .*", since)
        menu = OwnMenu(self.program)
        menu.point_to("Polish Now")
        photograph("menu-of-its-own")
        menu.choose("Polish Now")

    def test_every_row_of_its_own_menu_does_its_action(self):
        for label in ACTIONS:
            menu = OwnMenu(self.program)
            with held("ctrl"):
                click(self.place)
                menu.opened()
            menu.choose(label)

    def test_every_row_of_the_panels_menu_does_its_action(self):
        labels = [label for label in self.item.rows() if label != "-"]
        self.assertEqual(labels, list(ACTIONS))
        for label, action in ACTIONS.items():
            since = self.program.mark()
            self.open_panels_menu()
            pointer("key", "--delay", 60, *["Down"] * (labels.index(label) + 1), "Return")
            self.program.expect(f"chose {action}", since)

    def test_a_click_with_the_mouse_chooses_from_the_panels_menu(self):
        since = self.program.mark()
        self.open_panels_menu()
        click((self.place[0] - 60, PANEL_HEIGHT + 20))
        self.program.expect("chose polish", since)

    def test_the_menu_is_built_anew_for_each_opening(self):
        self.assertEqual(self.item.rows(), ROWS)
        before = self.times_asked_for_rows()
        revision = self.item.layout()[0]
        self.assertFalse(self.item.call(MENU_PATH, MENU, "AboutToShow", "i", 0))
        self.assertEqual(self.item.layout()[0], revision)
        self.program.tell("updates")
        self.program.expect("updates are configured")
        changed, unknown = self.item.call(MENU_PATH, MENU, "AboutToShowGroup", "ai", [0, 4711])
        self.assertEqual((changed, unknown), ([0], [4711]))
        self.assertEqual(self.times_asked_for_rows(), before + 2)
        at = ROWS.index("Open Startup Applications")
        self.assertEqual(self.item.rows(), [*ROWS[:at], "Check for Updates…", *ROWS[at:]])
        self.assertGreater(self.item.layout()[0], revision)

    def test_events_come_alone_and_in_groups(self):
        since = self.program.mark()
        self.item.call(MENU_PATH, MENU, "Event", "isvu", self.item.id_of("Restart Panel"), "clicked", "", 0)
        self.program.expect("chose dock", since)
        events = [(self.item.id_of("About Vorli"), "hovered", "", 0), (self.item.id_of("Quit Vorli"), "clicked", "", 0)]
        unknown = self.item.call(MENU_PATH, MENU, "EventGroup", "a(isvu)", [*events, (4711, "clicked", "", 0)])
        self.assertEqual(unknown, [4711])
        self.program.expect("chose quit", since)
        self.assertEqual(self.program.count("chose about"), 0)

    def test_quit_shows_its_key(self):
        quit_row = self.item.layout()[1][2][-1][1]
        self.assertEqual(quit_row["shortcut"], [["Control", "q"]])

    def test_calls_that_make_no_sense_are_refused(self):
        for path, interface, method, signature, arguments in (
            (MENU_PATH, MENU, "GetLayout", "s", ("x",)),
            (MENU_PATH, MENU, "GetLayout", "iias", (4711, -1, [])),
            (MENU_PATH, MENU, "GetProperty", "is", (0, "no such property")),
            (MENU_PATH, MENU, "NoSuchMethod", "", ()),
            (tray_parts.ITEM_PATH, ITEM, "Activate", "s", ("x",)),
            (tray_parts.ITEM_PATH, ITEM, "NoSuchMethod", "", ()),
            (tray_parts.ITEM_PATH, dbus.PROPERTIES_IFACE, "Get", "ss", (ITEM, "NoSuchProperty")),
            (tray_parts.ITEM_PATH, dbus.PROPERTIES_IFACE, "Set", "ssv", (ITEM, "Title", "x")),
        ):
            with self.subTest(method=method), self.assertRaises(dbus.DBusException):
                self.item.call(path, interface, method, signature, *arguments)

    def test_both_objects_describe_themselves(self):
        for path, interface in ((tray_parts.ITEM_PATH, ITEM), (MENU_PATH, MENU)):
            text = self.item.call(path, dbus.INTROSPECTABLE_IFACE, "Introspect", "")
            self.assertIn(f'interface name="{interface}"', text)

    def test_the_panel_shows_the_tool_tip(self):
        pointer("mousemove", self.place[0] - 3, self.place[1])
        pointer("mousemove", *self.place)

        def has_white_text(screen):
            below = ((x, y) for y in range(PANEL_HEIGHT + 4, 100) for x in range(screen.width - 400, screen.width))
            return sum(screen.pixel(x, y) == WHITE for x, y in below) > 100

        wait_for(lambda: has_white_text(Screen()), "the tool tip is shown")
        photograph("tool-tip", (1440, 0, 480, 120))

    def test_a_panel_that_is_killed_and_starts_again_gets_the_item_back(self):
        since = self.program.mark()
        command = tray_parts.end_panel("xfce4-panel")
        self.program.expect("tray none", since)
        since = self.program.mark()
        tray_parts.start_panel(command)
        self.program.expect("tray notifier", since)
        self.place = icon_place()
        since = self.program.mark()
        click(self.place)
        self.program.expect("click left plain .*", since)
        self.program.tell("picture 0.95")
        icon_place(tray_parts.is_red)

    def test_a_picture_that_changes_in_every_turn_is_sent_four_times_a_second_and_the_last_one_arrives(self):
        icons = NewIcons(self.item)
        self.addCleanup(icons.close)
        before = icons.count
        since = self.program.mark()
        started = time.monotonic()
        self.program.tell("flood 4000")
        self.program.expect("flooded", since, 60)
        self.program.tell("picture 0.95")
        icon_place(tray_parts.is_red)
        seconds = time.monotonic() - started
        wait_for(lambda: icons.count > before, "a picture on the bus")
        self.assertLessEqual(icons.count - before, seconds * 4 + 2)


class GrowthTest(unittest.TestCase):
    def test_ten_thousand_sent_pictures_leave_nothing_behind(self):
        pictures = int(os.environ.get("VORLI_SENT_PICTURES", "10000"))
        program = Process(PROGRAM, "--hurry", "500")
        self.addCleanup(program.close)
        program.expect("tray notifier")
        icons = NewIcons(Item(program.pid))
        self.addCleanup(icons.close)

        def send(count):
            since = program.mark()
            program.tell(f"send {count}")
            program.expect("sent", since, 120)
            return program.resources()

        dirty, descriptors, started = send(1000)
        counted = icons.count
        later_dirty, later_descriptors, ended = send(pictures)
        each = (ended - started) / pictures * 1000
        print(f"{pictures} pictures sent: {later_dirty - dirty:+} kB, {each:.2f} ms of processor each", flush=True)
        wait_for(lambda: icons.count - counted >= pictures, "all were sent", 60)
        self.assertLess((later_dirty - dirty) * 1024 / pictures, tray_parts.MOST_LEFT_OF_A_PICTURE)
        self.assertEqual(later_descriptors, descriptors)


class AppearanceTest(unittest.TestCase):
    def setUp(self):
        self.program = Process(PROGRAM)
        self.addCleanup(self.program.close)

    def test_the_dial_follows_the_panels_own_colours(self):
        self.assertEqual(self.program.expect("appearance .*"), "appearance light")
        self.program.expect("tray notifier")
        self.program.tell("picture 0.6")
        icon_place()
        photograph("light-panel", (1800, 0, 120, 30))
        since = self.program.mark()
        publish_foreground(60000)
        self.program.expect("appearance dark", since)
        since = self.program.mark()
        publish_foreground(12000)
        self.program.expect("appearance light", since)

    def test_the_dial_turns_bright_when_the_panel_comes_back_dark(self):
        self.program.expect("tray notifier")
        self.program.tell("picture 0.6")
        channel = ["xfconf-query", "-c", "xfce4-panel", "-p", "/panels/dark-mode"]
        self.addCleanup(lambda: wait_for(lambda: tray_parts.selection_owner(TRAY), "the panel of the next test"))
        self.addCleanup(lambda: tray_parts.start_panel(tray_parts.end_panel("xfce4-panel")))
        self.addCleanup(subprocess.run, [*channel, "-s", "false"], check=True)
        subprocess.run([*channel, "-s", "true"], check=True)
        since = self.program.mark()
        tray_parts.start_panel(tray_parts.end_panel("xfce4-panel"))
        self.program.expect("appearance dark", since)
        self.program.expect("tray notifier", since)
        place = icon_place()
        around = [(x, y) for x in range(place[0] - 9, place[0] + 9) for y in range(4, 24)]

        def has_bright_ticks(screen):
            return any(min(screen.pixel(*point)) > 170 for point in around)

        wait_for(lambda: has_bright_ticks(Screen()), "the empty ticks are bright")
        photograph("dark-panel", (1800, 0, 120, 30))


def publish_foreground(level):
    subprocess.run(
        ["xprop", "-id", tray_parts.selection_owner(TRAY), "-f", "_NET_SYSTEM_TRAY_COLORS", "32c"]
        + ["-set", "_NET_SYSTEM_TRAY_COLORS", ",".join([str(level)] * 12)],
        check=True,
    )


if __name__ == "__main__":
    unittest.main(warnings="ignore")
