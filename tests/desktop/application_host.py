#!/usr/bin/python3
"""application_host.py PROGRAM: the about panel and the alert under a real window manager and compositor."""

import subprocess
import sys
import unittest

import tray_parts
from process import Process
from tray_parts import Screen, click, photograph, pointer
from waiting import wait_for

PROGRAM = sys.argv.pop(1)
MARGINS = (40, 40, 28, 56)  # left, right, top, bottom of the shadow
AROUND = (700, 330, 520, 420)


def active_window():
    """Id and title of the window that has the keyboard, or (None, None)."""
    found = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True).stdout.strip()
    title = subprocess.run(["xdotool", "getwindowname", found or "0"], capture_output=True, text=True).stdout.strip()
    return (found, title) if found and title else (None, None)


class WindowsTest(unittest.TestCase):
    def setUp(self):
        self.other = subprocess.Popen(["xmessage", "-geometry", "600x500+600+300", "another program"])
        self.addCleanup(self.other.wait)
        self.addCleanup(self.other.terminate)
        wait_for(lambda: active_window()[1] == "xmessage", "another program has the keyboard")
        self.program = Process(PROGRAM)
        self.addCleanup(self.program.close)
        self.program.expect("tray none")

    def open(self, command, title):
        self.program.tell(command)
        wait_for(lambda: active_window()[1] == title, f"{title} is in front and has the keyboard")
        return active_window()[0]

    def test_the_about_panel_comes_to_the_front_in_the_middle_and_closes_by_escape(self):
        window = self.open("about", "About Vorli")
        told = subprocess.run(
            ["xprop", "-id", window, "-notype", "_GTK_FRAME_EXTENTS"], capture_output=True, text=True
        ).stdout
        self.assertEqual(told.strip(), "_GTK_FRAME_EXTENTS = " + ", ".join(map(str, MARGINS)))
        x, y = tray_parts.corner_of(self.program.pid, width=380, height=336)
        self.assertAlmostEqual(x + MARGINS[0] + 150, 960, delta=2)
        self.assertAlmostEqual(y + MARGINS[2] + 126, 540, delta=2)
        wait_for(lambda: min(Screen().pixel(x + 60, y + 50)) > 230, "the sheet is drawn")
        photograph("about", AROUND)
        pointer("key", "Escape")
        wait_for(lambda: active_window()[1] == "xmessage", "the other program has the keyboard again")

    def test_the_about_panel_closes_by_its_button_and_is_moved_by_its_ground(self):
        window = self.open("about", "About Vorli")

        def place():
            return tray_parts.corner_of(self.program.pid, width=380, height=336)

        x, y = place()
        pointer("mousemove", x + 80, y + 60, "mousedown", 1)

        def place_with_pointer_at(pointer_x, pointer_y):
            pointer("mousemove", pointer_x, pointer_y, "sleep", 0.2)
            return place()

        def follows():
            """Compares distances only, because the window manager may take over at any moment after the press."""
            near, far = place_with_pointer_at(x + 80, y + 60), place_with_pointer_at(x + 180, y + 110)
            return (far[0] - near[0], far[1] - near[1]) == (100, 50)

        wait_for(follows, "the panel follows the pointer")
        dragged = place()
        pointer("mouseup", 1)

        def is_let_go():
            """Whether the drag is over: during a drag the window manager takes all clicks and ignores other moves."""
            pointer("windowmove", window, 300, 200)
            return place() != dragged

        wait_for(is_let_go, "the end of the drag")
        x, y = place()
        click((x + MARGINS[0] + 300 - 12 - 14, y + MARGINS[2] + 12 + 14))
        wait_for(lambda: not place(), "the panel has closed")

    def test_an_alert_takes_the_keyboard_and_return_closes_it(self):
        since = self.program.mark()
        self.open("alert Helper not installed. Open Vorli to finish setup.", "Vorli")
        photograph("alert", AROUND)
        self.program.tell("flood 10")
        self.program.expect("flooded", since)  # the main loop keeps running behind it
        pointer("key", "Return")
        wait_for(lambda: active_window()[1] == "xmessage", "the other program has the keyboard again")


if __name__ == "__main__":
    unittest.main(warnings="ignore")
