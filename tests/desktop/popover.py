#!/usr/bin/python3
"""popover.py PROGRAM: the popover as a user meets it, by real clicks on the icon in a real panel."""

import os
import re
import subprocess
import sys
import time
import unittest

import tray_parts
from popover_parts import NAME, RATIO, Neighbour, Popover, icon_place, output
from tray_parts import Screen, click, pointer
from waiting import holds, until

PROGRAM = sys.argv.pop(1)
CRITICAL, CALM = (4, 0.83, 0.86), (1, 0.0, 0.1)
SCREEN_WIDTH, SCREEN_HEIGHT = map(int, output("xdotool", "getdisplaygeometry").split())
OPENINGS = int(os.environ.get("VORLI_OPENINGS", "20"))  # 200 for the long form


class PopoverTest(unittest.TestCase):
    """One program for all tests of a class; each begins with the popover shut."""

    @classmethod
    def setUpClass(cls):
        pointer("mousemove", 60, SCREEN_HEIGHT // 2)
        cls.vorli = Popover(PROGRAM)
        cls.vorli.settle(*CRITICAL)  # so that the dial has a colour to find it by
        cls.icon = icon_place()

    @classmethod
    def tearDownClass(cls):
        cls.vorli.end()

    def setUp(self):
        self.assertIsNone(self.vorli.process.poll())
        if self.vorli.window():
            click(self.icon)
            self.vorli.gone()

    def open(self):
        click(self.icon)
        self.vorli.shown()
        until(self.vorli.has_keyboard, "the keyboard in the popover")

    def away(self):
        pointer("mousemove", 60, SCREEN_HEIGHT // 2)

    def still(self):
        """Until two looks at the window differ by no more than the halo's breath."""

        def pixels():
            _, x, y, width, height = self.vorli.shown()
            geometry = f"{width}x{height}+{x}+{y}"
            command = ["import", "-window", "root", "-crop", geometry, "-resize", "50%", "-depth", "8", "gray:-"]
            return subprocess.run(command, capture_output=True, check=True).stdout

        last = [pixels()]

        def same():
            before, last[0] = last[0], pixels()
            return len(before) == len(last[0]) and max(abs(a - b) for a, b in zip(before, last[0])) <= 4

        until(same, "the end of what moves")


class ClicksTest(PopoverTest):
    def test_a_click_opens_a_second_one_closes_and_a_third_opens_again(self):
        self.open()
        click(self.icon)
        self.vorli.gone()
        click(self.icon)
        self.vorli.shown()
        click(self.icon)
        self.vorli.gone()

    def test_a_slow_click_on_the_icon_closes_and_it_stays_closed(self):
        self.open()
        pointer("mousemove", *self.icon, "mousedown", 1)
        holds(self.vorli.window, "the popover while the button is down", 0.6)
        pointer("mouseup", 1)
        self.vorli.gone()
        # A click that was taken twice would open it again.
        holds(lambda: not self.vorli.window(), "the closed popover", 0.5)

    def test_escape_closes(self):
        self.open()
        pointer("key", "Escape")
        self.vorli.gone()

    def test_a_click_outside_closes_and_reaches_the_other_program(self):
        neighbour = Neighbour()
        self.addCleanup(neighbour.close)
        self.open()
        since = neighbour.program.mark()
        click(neighbour.middle())
        neighbour.program.expect("pressed 1", since)
        self.vorli.gone()

    def test_a_drag_that_starts_outside_closes_and_goes_on(self):
        neighbour = Neighbour()
        self.addCleanup(neighbour.close)
        self.open()
        since = neighbour.program.mark()
        x, y = neighbour.middle()
        pointer("mousemove", x, y, "mousedown", 1, "mousemove", x + 80, y + 30)
        neighbour.program.expect("pressed 1", since)
        self.vorli.gone()
        pointer("mouseup", 1)
        neighbour.program.expect("released 1", since)

    def test_a_click_beside_the_card_in_its_shadow_reaches_what_lies_there(self):
        self.open()
        x, y, _, height = self.vorli.card(240)
        click((x - 12, y + height // 2))
        self.vorli.gone()

    def test_a_press_inside_keeps_it_open(self):
        self.vorli.settle(*CALM)
        self.open()
        x, y, _, height = self.vorli.card(240)
        click((x + 20, y + height - 20))
        click((x + 135, y + 96))  # the ring is calm: a press does nothing
        holds(self.vorli.window, "the open popover", 0.5)

    def test_another_window_that_takes_the_keyboard_closes_it(self):
        neighbour = Neighbour()
        self.addCleanup(neighbour.close)
        self.open()
        holds(self.vorli.has_keyboard, "the keyboard in the popover", 0.3)
        neighbour.activate()
        self.vorli.gone()

    def test_it_is_in_no_task_list(self):
        self.open()
        states = output("xprop", "-id", self.vorli.window()[0], "_NET_WM_STATE")
        for state in ("SKIP_TASKBAR", "SKIP_PAGER", "ABOVE"):
            self.assertIn(state, states)

    def test_a_panel_that_starts_again_leaves_it_usable(self):
        self.open()
        command = tray_parts.end_panel("xfce4-panel")
        holds(self.vorli.window, "the open popover without a panel", 0.5)
        pointer("key", "Escape")
        self.vorli.gone()
        tray_parts.start_panel(command)
        type(self).icon = until(icon_place, "the icon", 15)

        def opens():
            click(self.icon)
            return self.vorli.window()

        until(opens, "the popover at the new icon", 20, pause=1.0)
        self.vorli.gone_by(lambda: pointer("key", "Escape"))


class KeyboardTest(PopoverTest):
    def test_tab_shows_where_the_focus_is(self):
        self.vorli.settle(*CALM)
        self.away()
        self.open()
        self.away()
        self.still()
        x, y, *_ = self.vorli.card(240)
        at = (x + 135, y + 96 - 45)  # on the ring of the focus
        before = Screen().pixel(*at)
        pointer("key", "Tab")
        until(lambda: Screen().pixel(*at) != before, "the focus at the ring")
        self.vorli.picture("focus")


class ManyOpeningsTest(PopoverTest):
    def test_many_openings_leave_nothing_behind(self):
        self.vorli.settle(*CALM)
        for _ in range(5):
            self.cycle()
        dirty, descriptors, windows = self.left_behind()
        for _ in range(OPENINGS):
            self.cycle()
        for _ in range(2 * OPENINGS):
            self.toggle()  # also in the middle of unfolding and rolling up
        later_dirty, later_descriptors, later_windows = self.left_behind()
        print(f"{OPENINGS} openings: {later_dirty - dirty:+} kB, {later_descriptors - descriptors:+} descriptors")
        self.assertEqual(later_windows, windows)
        # A call to the daemon may just be under way at either look.
        until(lambda: self.vorli.resources()[1] <= descriptors, f"{descriptors} descriptors, not {later_descriptors}")
        self.assertLessEqual(later_dirty - dirty, 512)

    def toggle(self):
        """As a second start does: without waiting for the panel."""
        subprocess.run(
            ["dbus-send", "--session", "--print-reply", "--dest=com.kv.vorli", "/com/kv/vorli",
             "org.freedesktop.Application.Activate", "dict:string:string:"],
            check=True, capture_output=True,
        )

    def cycle(self):
        self.toggle()
        self.vorli.shown()
        self.toggle()
        self.vorli.gone()

    def left_behind(self):
        """Private dirty kibibytes, descriptors and windows while it is shut."""
        rolling_up = 1.0
        try:
            until(lambda: not self.vorli.window(), "a popover that is about to close", rolling_up)
        except AssertionError:
            self.toggle()
            self.vorli.gone()
        windows = len(re.findall(r'"Vorli|"vorli', output("xwininfo", "-root", "-tree")))
        return *self.vorli.resources(), windows


class PolishTest(PopoverTest):
    def test_a_press_polishes_and_the_popover_closes_by_itself(self):
        until(lambda: self.vorli.helper_status() == "enabled", "the enabled helper", 20)
        self.vorli.settle(*CRITICAL)
        self.open()
        self.away()
        self.still()
        self.vorli.picture("critical")
        x, y, *_ = self.vorli.card(240)
        click((x + 135, y + 96))
        until(lambda: "setting isReleasing=true" in self.vorli.log_text(), "the start of the polish")
        started = time.monotonic()
        self.away()
        for moment in (0.7, 1.2, 1.8):
            until(lambda: time.monotonic() - started >= moment, "the moment")
            self.vorli.picture(f"polish-{moment}")
        until(lambda: time.monotonic() - started >= 4.0, "the sentence")
        self.vorli.picture("polished")
        until(lambda: "posted auto-close notification" in self.vorli.log_text(), "the end of the ceremony")
        closed = time.monotonic() - started
        self.vorli.gone()
        print(f"closed {closed:.2f} s after the start of the polish")
        self.assertIn("helperReady=true", self.vorli.log_text())
        self.assertGreater(closed, 5.5)
        self.assertLess(closed, 7.0)
        until(lambda: "Leaving cleared hold" in self.vorli.log_text(), "the settling ring", 15)


class SpokenTest(PopoverTest):
    """What assistive tools find, over the real accessibility bus."""

    def test_the_popover_says_what_it_shows(self):
        import gi

        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi

        def application():
            desktop = Atspi.get_desktop(0)
            desktop.clear_cache()
            children = (desktop.get_child_at_index(i) for i in range(desktop.get_child_count()))
            return next((child for child in children if child and child.get_process_id() == self.vorli.pid), None)

        def elements(parent):
            for i in range(parent.get_child_count()):
                child = parent.get_child_at_index(i)
                if child and child.get_state_set().contains(Atspi.StateType.SHOWING):
                    yield child.get_role_name(), child.get_name(), child.get_description()
                    yield from elements(child)

        self.vorli.settle(*CALM)
        self.open()
        found = until(lambda: set(elements(application())) if application() else None, "the program's elements", 20)
        for element in (
            ("push button", "Polish (disabled)", "Your Mac doesn't need polishing right now."),
            ("label", "Your Mac feels great.", ""),
            ("push button", "Settings", "Open Vorli settings."),
        ):
            self.assertIn(element, found)
        self.vorli.settle(*CRITICAL)
        until(lambda: ("push button", "Polish", "Frees memory and flushes caches. Takes about three seconds.")
              in set(elements(application())), "the button that can be pressed")
        self.assertIn(("label", "Your Mac is full. Time to polish it.", ""), set(elements(application())))


class PlaceTest(PopoverTest):
    def test_it_hangs_at_the_icon_and_stays_on_the_screen(self):
        self.vorli.settle(*CALM)
        self.open()
        self.away()
        is_bottom = NAME == "bottom"
        x, y, width, height = self.vorli.card(240, bottom=is_bottom)
        self.assertGreaterEqual(x, 0)
        self.assertLessEqual(x + width, SCREEN_WIDTH)
        self.assertLessEqual(abs(x + width / 2 - self.icon[0]), max(1, self.icon[0] - (SCREEN_WIDTH - width / 2 - 5 * RATIO)))
        gap = self.icon[1] - (y + height) if is_bottom else y - self.icon[1]
        self.assertTrue(6 * RATIO <= gap <= 60 * RATIO, f"{gap} from the middle of the icon")
        self.still()
        self.vorli.picture("open")
        screen = Screen()
        middle = screen.pixel(x + width // 2, y + round(215 * RATIO))
        self.assertTrue(min(middle) > 220 or max(middle) < 60, f"paper of {middle}")

    def test_the_card_unfolds_from_the_side_of_the_icon(self):
        self.vorli.settle(*CALM)
        self.open()
        is_bottom = NAME == "bottom"
        x, y, width, height = self.vorli.card(240, bottom=is_bottom)
        end = (x + width // 2, y + height - 4 if is_bottom else y + 3)
        pixel = until(lambda: Screen().pixel(*end), "the edge of the card")
        self.assertTrue(min(pixel) > 200 or max(pixel) < 70)


class SmallerScreenTest(PopoverTest):
    def test_a_screen_of_another_size_takes_it_along(self):
        self.open()
        before = self.vorli.shown()
        for change in (["--newmode", "small", "108", "1280", "1328", "1440", "1688", "1024", "1025", "1028", "1066"],
                       ["--addmode", "screen", "small"], ["--output", "screen", "--mode", "small"]):
            subprocess.run(["xrandr", *change], check=True)
        until(lambda: (self.vorli.window() or before)[1] + 24 + 270 <= 1280, "the popover on the smaller screen")


if __name__ == "__main__":
    unittest.main(warnings="ignore", verbosity=1)
