"""first_steps.py PREFIX: the first steps of a new user, by keyboard alone and as assistive tools find them."""

import os
import subprocess
import sys
import unittest

import dbus
from accessible import Keyboard, Spoken
from process import run
from screen import place_of, width_of, window_picture, windows_of
from vorli import FirstSteps, TrayIcon, Vorli, become_new_user, installed_at_home, is_stored
from waiting import wait_for

PREFIX, PICTURES = sys.argv.pop(1), os.environ["VORLI_PICTURES"]
UNFINISHED = "Setup not finished. Tap to return to onboarding."
ITEM = "org.kde.StatusNotifierItem"


class Item:
    """The properties of the status item on the bus."""

    def __init__(self, item):
        self._properties = dbus.Interface(
            dbus.SessionBus().get_object(item.split("/")[0], "/StatusNotifierItem", introspect=False),
            dbus.PROPERTIES_IFACE,
        )

    @property
    def sentence(self):
        return str(self._properties.Get(ITEM, "IconAccessibleDesc"))

    @property
    def opacity(self):
        """Opacity of the dial's most opaque pixel, from 0 to 255."""
        _, _, argb = self._properties.Get(ITEM, "IconPixmap")[-1]
        return max(bytes(argb)[::4])


class FirstStepsTest(unittest.TestCase):
    def setUp(self):
        become_new_user()

    def start(self, program):
        self.vorli = Vorli(program, os.path.join(os.environ["HOME"], "vorli.log"))
        self.addCleanup(self.end)
        self.icon = TrayIcon()
        self.item = Item(self.icon.appear()[0])
        self.steps = FirstSteps(self.vorli.process.pid)
        self.spoken = Spoken(self.vorli.process.pid)
        self.keyboard = Keyboard(self.spoken)

    def start_installed(self):
        self.start(installed_at_home(PREFIX))
        wait_for(lambda: self.vorli.helper_status == "enabled", "the enabled helper", 20)

    def end(self):
        if self.vorli.process.poll() is None:
            self.assertEqual(self.vorli.end(), 0)
        wait_for(lambda: not self.icon.items(), "a panel without the icon")

    def picture(self, name):
        window_picture(os.path.join(PICTURES, f"{name}.png"), self.steps.window)

    def windows(self):
        """The widths of the program's windows."""
        return [width_of(window) for window in windows_of(self.vorli.process.pid)]

    def has_popover_only(self):
        widths = self.windows()
        return widths and max(widths) < FirstSteps.LEAST_WIDTH

    def has_first_steps_only(self):
        widths = self.windows()
        return len(widths) == 1 and widths[0] >= FirstSteps.LEAST_WIDTH

    def left_edge(self):
        return place_of(self.steps.window)[0]

    def test_the_way_to_the_end_works_by_keyboard(self):
        self.start_installed()
        self.spoken.find(("label", "All set up. Helper is approved."),
                         ("label", "Background helper installed. Vorli can now free memory and flush caches when you "
                                   "press Polish."),
                         ("label", "Status: Helper is set up and ready."), ("push button", "Continue"),
                         ("push button", "Close"))
        self.picture("helper-enabled")
        self.keyboard.is_on("Continue")
        self.steps.press("Tab")
        self.keyboard.is_on("Close")
        self.steps.press("shift+Tab")
        self.keyboard.is_on("Continue")
        self.assertFalse(is_stored("hasCompletedOnboarding"))
        self.steps.press("Return")
        self.spoken.find(("push button", "Start using Vorli"), ("push button", "Close"),
                         ("label", "You're all set. When your computer feels tight, click the Vorli icon in the panel "
                                   "and press Polish."))
        self.picture("done")
        wait_for(lambda: is_stored("hasCompletedOnboarding"), "the last step but one in the settings")
        self.assertFalse(is_stored("hasSeenDoneScreen"))
        self.keyboard.is_on("Start using Vorli")
        self.steps.press("space")
        self.steps.gone()
        wait_for(lambda: is_stored("hasSeenDoneScreen"), "the end in the settings")
        self.assertTrue(is_stored("hasCompletedOnboarding"))
        self.icon.click(1)
        wait_for(self.has_popover_only, "the popover")

    def test_assistive_tools_alone_reach_the_end(self):
        self.start_installed()
        self.spoken.find(("dialog", "Vorli"), ("label", "All set up. Helper is approved."))
        self.spoken.press("push button", "Continue")
        self.spoken.find(("push button", "Start using Vorli"))
        self.spoken.press("push button", "Start using Vorli")
        self.steps.gone()
        wait_for(lambda: is_stored("hasSeenDoneScreen"), "the end in the settings")

    def test_the_dial_is_dimmed_until_the_end_and_says_so(self):
        self.start_installed()
        wait_for(lambda: self.vorli.ticks >= 1, "the first look at the machine")
        self.assertEqual(self.item.sentence, UNFINISHED)
        dimmed = self.item.opacity
        self.keyboard.is_on("Continue")
        self.steps.press("Return")
        self.keyboard.is_on("Start using Vorli")
        self.assertEqual(self.item.sentence, UNFINISHED)
        self.steps.press("Return")
        self.steps.gone()
        wait_for(lambda: self.item.sentence.startswith("Your computer is "), "the sentence about the machine")
        wait_for(lambda: self.item.opacity > dimmed, "the lit dial")

    def test_until_the_end_the_icon_and_a_second_start_lead_back_to_them(self):
        self.start_installed()
        centred = self.left_edge()
        run("xdotool", "windowmove", self.steps.window, "0", "100")
        wait_for(lambda: self.left_edge() < centred, "the window in another place")
        self.icon.click(1)
        wait_for(lambda: abs(self.left_edge() - centred) <= 2, "the window in its middle again")
        wait_for(self.has_first_steps_only, "no other window")
        self.steps.press("ctrl+w")
        self.steps.gone()
        self.icon.click(1)
        again = FirstSteps(self.vorli.process.pid)
        again.press("ctrl+w")
        again.gone()
        program = os.readlink(f"/proc/{self.vorli.process.pid}/exe")
        second = subprocess.run([program], capture_output=True, text=True, timeout=15, check=False)
        self.assertEqual(second.returncode, 0, second.stderr)
        self.assertIn("vorli: already running; it has come to the front\n", second.stderr)
        FirstSteps(self.vorli.process.pid)
        wait_for(self.has_first_steps_only, "no other window")

    def test_a_run_that_was_left_early_is_followed_by_another_with_them(self):
        self.start_installed()
        self.assertEqual(self.vorli.end(), 0)
        wait_for(lambda: not self.icon.items(), "a panel without the icon")
        self.assertFalse(is_stored("hasCompletedOnboarding"))
        self.start_installed()
        self.assertTrue(self.has_first_steps_only())
        self.assertEqual(self.item.sentence, UNFINISHED)

    def test_a_program_that_is_not_installed_says_so(self):
        self.start(os.path.join(PREFIX, "bin", "vorli"))
        self.spoken.find(("label", "Almost there. Vorli needs to be installed before it can set up its helper."),
                         ("push button", "Try again"), ("push button", "Show how"), ("push button", "Close"))
        self.picture("not-installed")
        self.keyboard.is_on("Show how")
        self.assertFalse(is_stored("hasCompletedOnboarding"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
