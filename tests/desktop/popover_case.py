"""The base of the popover's tests, and their functions for the screen."""

import subprocess
import sys
import unittest

from popover_parts import Popover, icon_place, output
from tray_parts import click, pointer
from waiting import Missing, wait_for

PROGRAM = sys.argv.pop(1)
CRITICAL, CALM = (4, 0.83, 0.86), (1, 0.0, 0.1)
SCREEN_WIDTH, SCREEN_HEIGHT = map(int, output("xdotool", "getdisplaygeometry").split())
LONGER_THAN_AN_OPENING = 5.0


class PopoverTest(unittest.TestCase):
    """Tests that share one program. Each begins with a closed popover."""

    @classmethod
    def setUpClass(cls):
        pointer("mousemove", 60, SCREEN_HEIGHT // 2)
        cls.vorli = Popover(PROGRAM)
        cls.vorli.settle(*CRITICAL)  # so that the dial has a colour to find it by
        cls.icon = icon_place()

    @classmethod
    def tearDownClass(cls):
        cls.vorli.terminate()

    def setUp(self):
        self.assertIsNone(self.vorli.process.poll())
        if self.vorli.window():
            click(self.icon)
            self.vorli.gone()

    def open(self):
        click(self.icon)
        self.vorli.shown()
        wait_for(self.vorli.has_keyboard, "the keyboard in the popover")

    def open_at_new_icon(self):
        """Opens the popover in a panel that has just started, which may lose a click or move the icon once more."""

        def opens():
            type(self).icon = icon_place()
            click(self.icon)
            try:  # another click before it appears would close it
                return wait_for(self.vorli.window, "the popover", LONGER_THAN_AN_OPENING)
            except Missing:
                return None

        wait_for(opens, "the popover at the new icon", 30)

    def away(self):
        pointer("mousemove", 60, SCREEN_HEIGHT // 2)

    def still(self):
        """Waits until two pictures of the window differ by no more than the halo's breath."""

        def pixels():
            _, x, y, width, height = self.vorli.shown()
            geometry = f"{width}x{height}+{x}+{y}"
            command = ["import", "-window", "root", "-crop", geometry, "-resize", "50%", "-depth", "8", "gray:-"]
            return subprocess.run(command, capture_output=True, check=True).stdout

        last = [pixels()]

        def same():
            before, last[0] = last[0], pixels()
            return len(before) == len(last[0]) and max(abs(a - b) for a, b in zip(before, last[0])) <= 4

        wait_for(same, "the end of what moves")
