#!/usr/bin/python3
"""notices.py PROGRAM SERVER: the real button of a real notice, on the notification server of this session."""

import subprocess
import sys
import unittest

from process import Process
from screen import found_windows, place_of
from waiting import holds, settled, wait_for

SERVER = sys.argv.pop()
PROGRAM = sys.argv.pop()


def window():
    """Place and size of the notice's window, or None."""
    kind = {"xfce4": "notifyd", "dunst": "[Dd]unst"}[SERVER]
    found = found_windows("--class", kind)
    return place_of(found[-1]) if found else None


class NoticeTest(unittest.TestCase):
    def setUp(self):
        self.program = Process(PROGRAM)
        self.addCleanup(self.program.kill)
        self.program.expect("granted")
        self.program.expect("posted")
        self.place = settled(window, "the notice is on the screen")

    def click(self, x, y, button):
        subprocess.run(["xdotool", "mousemove", str(x), str(y), "sleep", "0.4", "click", str(button)], check=True)

    def test_what_this_server_offers_answers(self):
        x, y, width, height = self.place
        if SERVER == "xfce4":  # this server draws the button at the lower right
            self.click(x + width - 58, y + height - 31, 1)
            self.program.expect("pressed VorliClearAction VorliClearNow")
        else:  # this server draws no button; the middle mouse button is its plain click
            self.click(x + 40, y + height // 2, 2)
            self.program.expect("pressed VorliClearAction com.apple.UNNotificationDefaultActionIdentifier")

    def test_a_left_click_on_the_notice_only_dismisses_it(self):
        x, y, _, _ = self.place
        self.click(x + 40, y + 20, 1)
        wait_for(lambda: window() is None, "the notice is gone")
        holds(lambda: not any(line.startswith("pressed") for line in self.program.lines), "no answer", 0.5)


if __name__ == "__main__":
    unittest.main()
