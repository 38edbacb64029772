#!/usr/bin/python3
"""glow_compositor.py PROGRAM: a compositor that comes and goes while there is light, and another screen size."""

import subprocess
import sys
import unittest

import glow_parts
from glow_parts import DEEP_RED, MIDDLE_OF_TOP, Desktop, lit, near, until_pixel
from process import Process
from tray_parts import Screen
from waiting import settled, wait_for

PROGRAM = sys.argv.pop(1)
SEVERAL_FRAMES = 0.3  # seconds


class CompositorTest(unittest.TestCase):
    def setUp(self):
        desktop = Desktop("white")
        self.addCleanup(desktop.close)
        self.program = Process(PROGRAM)
        self.addCleanup(self.program.close)
        self.program.expect("ready")
        for line in ("still", "enable", "progress 1.0"):
            self.program.tell(line)

    def start_compositor(self):
        compositor = subprocess.Popen(["picom", "--backend", "xrender"], stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL)
        self.addCleanup(compositor.wait)
        self.addCleanup(compositor.terminate)
        return compositor

    def frames(self):
        since = self.program.mark()
        self.program.tell("frames")
        return int(self.program.expect(r"frames \d+", since).split()[1])

    def test_there_is_no_glow_without_a_compositor_and_one_as_soon_as_it_runs(self):
        # Each start of an animation computes one picture.
        self.assertLessEqual(settled(self.frames, "no further frame", pause=SEVERAL_FRAMES), 5)
        self.assertEqual(glow_parts.band_windows(), [])
        self.assertEqual(Screen().pixel(*MIDDLE_OF_TOP), (255, 255, 255))

        compositor = self.start_compositor()
        until_pixel(MIDDLE_OF_TOP, lit(1.0, DEEP_RED, 0.45), "the light with a compositor")
        compositor.terminate()
        wait_for(lambda: not glow_parts.band_windows(), "no band without a compositor")
        until_pixel(MIDDLE_OF_TOP, (255, 255, 255), "the desktop as it was")

    def test_the_glow_follows_the_size_of_the_screen(self):
        self.start_compositor()
        until_pixel(MIDDLE_OF_TOP, lit(1.0, DEEP_RED, 0.45), "the light")
        for change in (["--newmode", "small", "108", "1280", "1328", "1440", "1688", "1024", "1025", "1028", "1066"],
                       ["--addmode", "screen", "small"], ["--output", "screen", "--mode", "small"]):
            subprocess.run(["xrandr", *change], check=True)
        wait_for(lambda: (1280, 100, 0, 924) in glow_parts.band_windows(), "a band at the new bottom edge")
        wait_for(lambda: near(Screen().pixel(640, 1022), lit(1.0, DEEP_RED, 0.45)), "its light")


if __name__ == "__main__":
    unittest.main(verbosity=2)
