#!/usr/bin/python3
"""glow.py PROGRAM: the edge glow and the celebration under a window manager with a compositor."""

import os
import subprocess
import sys
import time
import unittest

import glow_parts
from glow_parts import (
    BETWEEN, DEEP_RED, HEIGHT, MIDDLE_OF_TOP, ORANGE, WIDTH, Desktop, lit, near, other_program, until_pixel,
)
from process import Process
from screen import screen_picture
from tray_parts import PICTURES, Screen, click, pixel_at, pointer
from waiting import wait_for

PROGRAM = sys.argv.pop(1)
WHITE, BLACK = 1.0, 0.0
SEVERAL_FRAMES = 0.3  # seconds; a frame takes 33 ms, or 100 ms while the light moves slowly


class GlowTest(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop("white")
        self.addCleanup(self.desktop.close)
        pointer("mousemove", WIDTH // 2, HEIGHT // 2)
        self.program = Process(PROGRAM)
        self.addCleanup(self.program.close)
        self.program.expect("ready")
        self.program.tell("still")

    def light(self, progress):
        self.program.tell("enable")
        self.program.tell(f"progress {progress}")

    def other(self, place, colour):
        program = other_program(place, colour)
        self.addCleanup(program.close)
        return program

    def frames(self):
        since = self.program.mark()
        self.program.tell("frames")
        return int(self.program.expect(r"frames \d+", since).split()[1])

    def settled_frames(self):
        """Number of frames, once none has come for the time of several; the last ones of a fade show no difference."""
        count, since = self.frames(), time.monotonic()

        def rests():
            nonlocal count, since
            now = self.frames()
            if now != count:
                count, since = now, time.monotonic()
            return time.monotonic() - since > SEVERAL_FRAMES

        wait_for(rests, "no more frames")
        return count

    def test_each_progress_has_its_light_on_white_and_on_black(self):
        for progress, colour, opacity in ((0.9, ORANGE, 0.22), (0.95, BETWEEN, 0.335), (1.0, DEEP_RED, 0.45)):
            for name, ground in (("white", WHITE), ("black", BLACK)):
                self.desktop.paint(name)
                self.light(progress)
                until_pixel(MIDDLE_OF_TOP, lit(ground, colour, opacity), f"{progress} on {name}")
                screen = Screen()
                for place in ((WIDTH // 2, HEIGHT - 2), (1, HEIGHT // 2), (WIDTH - 2, HEIGHT // 2)):
                    self.assertTrue(near(screen.pixel(*place), lit(ground, colour, opacity)), place)
                self.assertTrue(near(screen.pixel(WIDTH // 2, 50), lit(ground, colour, opacity, 50)))
                self.assertEqual(screen.pixel(WIDTH // 2, 101), (255 * ground,) * 3)
                self.assertEqual(screen.pixel(WIDTH // 2, HEIGHT // 2), (255 * ground,) * 3)
                screen_picture(os.path.join(PICTURES, f"glow-{progress:.2f}-{name}.png"))

    def test_below_the_edge_there_is_nothing_at_all(self):
        self.light(0.8999)
        self.program.tell("calm 0.5")
        self.assertEqual(self.frames(), 0)
        self.assertEqual(glow_parts.band_windows(), [])
        self.light(1.0)
        wait_for(lambda: len(glow_parts.band_windows()) == 4, "four bands")
        self.light(0.5)
        wait_for(lambda: not glow_parts.band_windows(), "the bands are gone")
        frames = self.settled_frames()
        self.program.tell("calm 0.2")
        self.assertEqual(self.settled_frames(), frames)

    def test_a_steady_light_costs_no_frame_and_a_breath_few(self):
        self.light(1.0)
        until_pixel(MIDDLE_OF_TOP, lit(WHITE, DEEP_RED, 0.45), "the light stands")
        settled = self.settled_frames()
        self.assertLess(settled, 60)
        began = time.monotonic()
        self.program.tell("moving")
        wait_for(lambda: self.frames() >= settled + 20, "it breathes")
        self.assertLess((self.frames() - settled) / (time.monotonic() - began), 35)

    def test_it_is_no_window_of_a_task_list_and_lets_every_click_through(self):
        under = self.other("0,0", "#808080")
        self.light(1.0)
        wait_for(lambda: len(glow_parts.band_windows()) == 4, "four bands")
        wait_for(lambda: not near(Screen().pixel(200, 2), (128, 128, 128), 8), "light over the other window")
        listed = subprocess.run(["wmctrl", "-l"], capture_output=True, text=True, check=True).stdout.splitlines()
        self.assertEqual({line.split()[-1] for line in listed}, {"desktop", "other"})
        for place in ((5, 5), (200, 2), (3, 200)):
            click(place)
            under.expect(f"press {place[0]} {place[1]}")
        active = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, text=True)
        self.assertEqual(active.stdout.strip(), "other")

    def test_it_lies_over_full_screen_windows_and_on_every_workspace(self):
        self.light(1.0)
        until_pixel(MIDDLE_OF_TOP, lit(WHITE, DEEP_RED, 0.45), "the light stands")
        subprocess.run(["wmctrl", "-s", "1"], check=True)
        self.addCleanup(subprocess.run, ["wmctrl", "-s", "0"], check=True)
        until_pixel(MIDDLE_OF_TOP, lit(WHITE, DEEP_RED, 0.45), "the light on the second workspace")
        self.other("fullscreen", "black")
        wait_for(lambda: Screen().pixel(WIDTH // 2, HEIGHT // 2) == (0, 0, 0), "the full-screen window")
        until_pixel(MIDDLE_OF_TOP, lit(BLACK, DEEP_RED, 0.45), "the light over it")

    def test_the_programs_own_panel_stays_above_it(self):
        self.program.tell("panel")
        wait_for(lambda: near(Screen().pixel(1600, 200), (0x20, 0x40, 0x60), 1), "the panel")
        self.light(1.0)
        until_pixel(MIDDLE_OF_TOP, lit(WHITE, DEEP_RED, 0.45), "the light stands")
        self.assertTrue(near(Screen().pixel(1600, 2), (0x20, 0x40, 0x60), 1))
        self.other("200,400", "#808080")
        until_pixel(MIDDLE_OF_TOP, lit(WHITE, DEEP_RED, 0.45), "the light after another window came up")
        self.assertTrue(near(Screen().pixel(1600, 2), (0x20, 0x40, 0x60), 1))

    def test_the_celebration_comes_turns_calm_and_leaves_no_window(self):
        # Each colour is shown for only half a second.
        self.program.tell("celebrate 0.902 0.235 0.157")
        reddest = wait_for(lambda: (lambda pixel: pixel if pixel[0] - pixel[1] > 60 else None)(
            pixel_at(*MIDDLE_OF_TOP)), "the colour of the ring")
        self.assertGreater(reddest[0], reddest[2])
        wait_for(lambda: (lambda pixel: pixel[1] > pixel[0] + 20)(pixel_at(*MIDDLE_OF_TOP)), "the calm colour")
        screen_picture(os.path.join(PICTURES, "glow-celebration.png"))
        wait_for(lambda: not glow_parts.band_windows(), "the end of the flash")
        wait_for(lambda: Screen().pixel(*MIDDLE_OF_TOP) == (255, 255, 255), "the desktop as it was")


if __name__ == "__main__":
    unittest.main(verbosity=2)
