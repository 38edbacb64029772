#!/usr/bin/python3
"""popover_screens.py PROGRAM: the popover on two monitors, and light or dark like the user's desktop."""

import os
import re
import subprocess
import unittest

import tray_parts
from popover_case import CALM, CRITICAL, SCREEN_HEIGHT, SCREEN_WIDTH, PopoverTest
from popover_parts import RATIO, output
from tray_parts import Screen, click
from waiting import wait_for

HALF = SCREEN_WIDTH // 2
MONITORS = {"left": (0, HALF), "right": (HALF, SCREEN_WIDTH)}
FROM_THE_SIDE, FROM_THE_PANEL = 4, 6  # points


def panel_window():
    """(x, y, width, height) of the panel, or None."""
    pattern = r'"xfce4-panel": \("xfce4-panel" "Xfce4-panel"\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(-?\d+)\+(-?\d+)'
    for width, height, x, y in re.findall(pattern, output("xwininfo", "-root", "-tree")):
        if int(width) > 100:
            return int(x), int(y), int(width), int(height)
    return None


class MonitorsTest(PopoverTest):
    """Two monitors beside each other. The panel fills an edge of one of them, with the icon at its right end."""

    monitor = "left"
    edge = "top"

    @classmethod
    def setUpClass(cls):
        for name, (start, end) in MONITORS.items():
            place = f"{end - start}/254x{SCREEN_HEIGHT}/286+{start}+0"
            # There is only one output, and panels accept only monitors with an output.
            output_name = "screen" if name == cls.monitor else "none"
            subprocess.run(["xrandr", "--setmonitor", name, place, output_name], check=True, capture_output=True)
        cls.addClassCleanup(cls.one_monitor)
        cls.move_panel(cls.edge, MONITORS[cls.monitor])
        super().setUpClass()

    @classmethod
    def one_monitor(cls):
        for name in MONITORS:
            subprocess.run(["xrandr", "--delmonitor", name], check=True)
        cls.move_panel("top", (0, SCREEN_WIDTH))

    @staticmethod
    def move_panel(edge, sides):
        command = tray_parts.end_panel("xfce4-panel")
        subprocess.run(["xfconf-query", "-c", "xfce4-panel", "-p", "/panels/panel-1/position", "-s",
                        f"p={6 if edge == 'top' else 8};x=0;y=0"], check=True)
        tray_parts.start_panel(command)
        start, end = sides

        def is_there():
            panel = panel_window()
            if not panel:
                return False
            x, y, width, height = panel
            return x == start and width == end - start and y == (0 if edge == "top" else SCREEN_HEIGHT - height)

        wait_for(is_there, f"the panel at the {edge} from {start} to {end}", 15)

    def assert_hangs(self, edge):
        left, right = MONITORS[self.monitor]
        _, panel_y, _, panel_height = panel_window()
        x, y, width, height = self.vorli.card(240, bottom=edge == "bottom")
        self.assertTrue(left <= self.icon[0] < right, "the icon is on that monitor")
        # The icon is less than half a card away from the side.
        self.assertAlmostEqual(x + width, right - FROM_THE_SIDE * RATIO, delta=RATIO)
        self.assertGreater(x, left)
        free_top = panel_height if edge == "top" else 0
        free_bottom = SCREEN_HEIGHT if edge == "top" else panel_y
        self.assertGreaterEqual(y, free_top)
        self.assertLessEqual(y + height, free_bottom)
        gap = y - free_top if edge == "top" else free_bottom - (y + height)
        self.assertAlmostEqual(gap, FROM_THE_PANEL * RATIO, delta=2 * RATIO)
        middle = Screen().pixel(x + width // 2, y + round(215 * RATIO))
        self.assertGreater(min(middle), 220, "paper where the card is said to be")

    def hang_at(self, edge):
        self.open_at_new_icon()
        self.away()
        self.still()
        self.vorli.picture(f"{self.monitor}-{edge}")
        self.assert_hangs(edge)
        click(self.icon)
        self.vorli.gone()

    def test_it_hangs_on_the_monitor_that_holds_the_icon(self):
        self.vorli.settle(*CALM)
        self.hang_at(self.edge)
        if RATIO == 1.0:
            other = "bottom" if self.edge == "top" else "top"
            self.move_panel(other, MONITORS[self.monitor])
            self.hang_at(other)


class RightMonitorTest(MonitorsTest):
    monitor = "right"
    edge = "bottom"


class Settings:
    """The desktop's settings daemon with that theme, running for as long as the block lasts."""

    def __init__(self, theme):
        self.file = os.path.join(os.environ["HOME"], "xsettingsd")
        with open(self.file, "w", encoding="ascii") as file:
            file.write(f'Net/ThemeName "{theme}"\n')

    def __enter__(self):
        self.process = subprocess.Popen(["xsettingsd", "--config", self.file], stderr=subprocess.DEVNULL)
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()


class PaperTest(PopoverTest):
    def open_calm(self):
        self.vorli.settle(*CALM)
        self.open()
        self.away()

    def prefer(self, scheme):
        """Sets the user's preference, which the portal publishes."""
        subprocess.run(["gsettings", "set", "org.gnome.desktop.interface", "color-scheme", scheme], check=True)

    def until_paper(self, kind):
        x, y, width, _ = self.vorli.card(240)

        def is_so():
            pixel = Screen().pixel(x + width // 2, y + round(215 * RATIO))
            return min(pixel) > 220 if kind == "light" else max(pixel) < 60

        wait_for(is_so, f"{kind} paper")


class AppearanceTest(PaperTest):
    def setUp(self):
        super().setUp()
        self.prefer("default")
        self.open_calm()
        self.until_paper("light")

    def photograph(self, kind):
        self.still()
        self.vorli.picture(f"{kind}-calm")
        self.vorli.settle(*CRITICAL)
        self.still()
        self.vorli.picture(f"{kind}-critical")

    def test_a_dark_theme_makes_the_open_popover_dark(self):
        with Settings("Adwaita-dark"):
            self.until_paper("dark")
        self.until_paper("light")

    def test_a_dark_preference_makes_the_open_popover_dark(self):
        self.prefer("prefer-dark")
        self.until_paper("dark")
        self.photograph("dark")
        self.vorli.settle(*CALM)
        self.prefer("prefer-light")
        self.until_paper("light")
        self.photograph("light")

    def test_a_preference_overrides_a_theme(self):
        with Settings("Adwaita-dark"):
            self.until_paper("dark")
            self.prefer("prefer-light")
            self.until_paper("light")
            self.prefer("default")
            self.until_paper("dark")


class OwnFileTest(PaperTest):
    """A desktop without a settings daemon, whose user has written the toolkit's file."""

    @classmethod
    def setUpClass(cls):
        file = os.path.join(os.environ["XDG_CONFIG_HOME"], "gtk-3.0", "settings.ini")
        os.makedirs(os.path.dirname(file), exist_ok=True)
        with open(file, "w", encoding="ascii") as settings:
            settings.write("[Settings]\ngtk-application-prefer-dark-theme=1\n")
        cls.addClassCleanup(os.remove, file)
        super().setUpClass()

    def test_the_users_own_file_makes_it_dark_and_a_preference_overrides_it(self):
        self.prefer("default")
        self.open_calm()
        self.until_paper("dark")
        self.prefer("prefer-light")
        self.until_paper("light")
        self.prefer("default")
        self.until_paper("dark")


if __name__ == "__main__":
    unittest.main(warnings="ignore", verbosity=1)
