"""settings_window.py PREFIX: the settings, by keyboard alone and as assistive tools find them."""

import os
import shutil
import sys
import unittest

from accessible import CONTROLS, Keyboard, Spoken
from process import run
from screen import place_of, window_picture
from spoken_parts import Listener
from vorli import Settings, TrayIcon, Vorli, is_stored, stored
from waiting import Missing, holds, settled, wait_for
from workspace_probe import write

PREFIX, PICTURES = sys.argv.pop(1), os.environ["VORLI_PICTURES"]
BUILD_DEPENDENT = {"Community tab", "Check for updates", "Made by Kelvaran"}
TABS = ["General tab", "Sneaky Apps tab", "Notifications tab", "Screen tab", "About tab"]
BUTTONS = ["Minimise", "Close"]
PAGES = {
    "General tab": ["Launch at login", "Auto\u2011polish", "Quit hidden apps on Polish", "Global hotkey",
                    "Haptic feedback"],
    "Notifications tab": ["Gentle nudges", "Stay quiet with Do Not Disturb"],
    "Screen tab": ["Soft edge glow", "Auto"],
    "About tab": ["Reinstall", "Diagnostics log", "Quit Vorli"],
}


SEARCH = "Find an app\u2026"
QUESTION = "This app might be doing something important. You can turn it back on any time."


def entry_path(identifier):
    return os.path.join(os.environ["XDG_CONFIG_HOME"], f"autostart/{identifier}.desktop")


def starts_at_login(identifier, name):
    """Makes a user's application that starts at login."""
    program = os.path.join(os.environ["HOME"], f".local/opt/{name.lower()}/{name.lower()}")
    os.makedirs(os.path.dirname(program), exist_ok=True)
    shutil.copy("/bin/true", program)
    write(entry_path(identifier), f"[Desktop Entry]\nType=Application\nName={name}\nExec={program}\n")


class SettingsWindowTest(unittest.TestCase):
    def setUp(self):
        self.vorli = Vorli(os.path.join(PREFIX, "bin", "vorli"), os.path.join(os.environ["HOME"], "vorli.log"))
        self.addCleanup(self.end)
        self.icon = TrayIcon()
        self.icon.appear()
        wait_for(lambda: self.vorli.helper_status == "enabled", "the enabled helper", 20)
        self.spoken = Spoken(self.vorli.process.pid)
        self.keyboard = Keyboard(self.spoken)
        self.open()

    def end(self):
        if self.vorli.process.poll() is None:
            self.assertEqual(self.vorli.end(), 0)
        wait_for(lambda: not self.icon.items(), "a panel without the icon")

    def open(self):
        self.icon.open_popover(self.vorli.process.pid)
        try:
            self.spoken.find(("push button", "Settings"))
        except Missing:
            window_picture(os.path.join(PICTURES, "no-gear.png"), "root")
            raise
        self.spoken.press("push button", "Settings")
        self.settings = Settings(self.vorli.process.pid)
        self.spoken.find(("page tab", "General tab"))
        wait_for(lambda: not self.popover_buttons(), "a closed popover")

    def popover_buttons(self):
        return [name for role, name in self.spoken.shown() if role == "push button" and name.startswith("Polish")]

    def items(self):
        return [name for role, name in self.spoken.shown() if role == "list item"]

    def walk(self):
        """Names of all elements that Tab reaches, from the first tab on."""
        return [name for name in self.keyboard.walk(TABS[0]) if name not in BUILD_DEPENDENT]

    def wait_for_page(self, tab, page):
        wait_for(lambda: page[0] in [name for _, name in self.spoken.shown()], tab)

    def test_tab_reaches_everything_in_reading_order(self):
        for tab, page in PAGES.items():
            self.keyboard.go_to(tab)
            self.keyboard.press("Return")
            self.wait_for_page(tab, page)
            self.assertEqual(self.walk(), TABS + page + BUTTONS)
            window_picture(os.path.join(PICTURES, f"{tab.removesuffix(' tab').lower()}.png"), self.settings.window)

    def test_the_keyboard_alone_turns_a_switch_records_a_key_and_closes(self):
        self.keyboard.go_to("Auto\u2011polish")
        self.keyboard.press("space")
        wait_for(lambda: is_stored("autoClear"), "the switch in the settings file")
        self.keyboard.press("space")
        wait_for(lambda: stored("autoClear") == "false", "the switch turned back")
        self.keyboard.go_to("Global hotkey")
        self.keyboard.press("Return")
        recording = ("push button", "Global hotkey",
                     "Recording. Press a key combination, or press Escape to cancel.", "Press Escape to cancel")
        self.spoken.find(recording)
        self.keyboard.press("Escape")
        self.spoken.find(("push button", "Global hotkey", "Current shortcut: opt+shift+C",
                          "Activates to record a new keyboard shortcut"))
        self.keyboard.press("Return")
        self.spoken.find(recording)
        self.keyboard.press("ctrl+alt+k")
        wait_for(lambda: stored("globalHotkeyCombo") == "ctrl+opt+K", "the combination in the settings file")
        self.spoken.find(("push button", "Global hotkey", "Current shortcut: ctrl+opt+K",
                          "Activates to record a new keyboard shortcut"))
        self.keyboard.press("Escape")
        self.settings.gone()
        self.assertIsNone(self.vorli.process.poll())

    def test_assistive_tools_find_and_turn_the_rows(self):
        self.spoken.find(("page tab", "Screen tab", "", "Switches to the Screen settings"),
                         ("check box", "Launch at login", "", "Open Vorli when you sign in."),
                         ("push button", "Close", "", ""))
        self.spoken.press("page tab", "Screen tab")
        glow = ("check box", "Soft edge glow", "", "A warm glow once your computer fills up.")
        self.spoken.find(glow, ("radio button", "Dark", "", "Dial on a light or dark panel"))
        self.spoken.press("check box", "Soft edge glow", "Toggle")
        wait_for(lambda: is_stored("edgeGlow"), "the glow in the settings file")
        self.spoken.press("radio button", "Dark")
        wait_for(lambda: stored("dialPanel") == "dark", "the panel in the settings file")
        self.spoken.press("page tab", "About tab")
        self.spoken.find(("push button", "Reinstall", "",
                          "Running. Press Reinstall if Vorli is having trouble removing or pausing system items."),
                         ("push button", "Diagnostics log", "", "For support requests."),
                         ("push button", "Quit Vorli", "", ""))

    def test_the_popover_leaves_the_settings_on_their_workspace(self):
        def number(*words):
            return int(run("xprop", *words).split()[-1])

        def places():
            """Workspace of the settings, and of the user."""
            return number("-id", self.settings.window, "_NET_WM_DESKTOP"), number("-root", "_NET_CURRENT_DESKTOP")

        run("wmctrl", "-n", "2")
        self.addCleanup(run, "wmctrl", "-s", "0")
        self.assertEqual(places(), (0, 0))
        run("wmctrl", "-s", "1")
        wait_for(lambda: places() == (0, 1), "the other workspace")
        self.icon.click(1)
        wait_for(self.popover_buttons, "the popover")
        holds(lambda: places() == (0, 1), "both stay where they are", 1.0)

    def test_the_list_of_startup_items_is_searched_by_keyboard(self):
        starts_at_login("org.example.walker", "Walker")
        self.keyboard.go_to("Sneaky Apps tab")
        self.keyboard.press("Return")
        self.spoken.find(("text", SEARCH, "", "Filters the list by name, description, or installer."), ("list", ""))
        wait_for(lambda: [name for name in self.items() if name.startswith("Walker, ")], "the row of Walker")
        window_picture(os.path.join(PICTURES, "sneaky-apps.png"), self.settings.window)
        self.keyboard.go_to(SEARCH)
        run("xdotool", "type", "--delay", "60", "zzqqxx")
        self.spoken.find(("label", "No matches. Try a shorter search, or clear it to see everything."))
        wait_for(lambda: not self.items(), "the end of the rows")

    def search_by_keyboard(self, text, name):
        """Opens the list and narrows it to one row."""
        self.keyboard.go_to("Sneaky Apps tab")
        self.keyboard.press("Return")
        self.spoken.find(("push button", f"Disable {name}"))
        self.keyboard.go_to(SEARCH)
        run("xdotool", "type", "--delay", "60", text)
        wait_for(lambda: [item.split(",")[0] for item in self.items()] == [name], f"{name} alone")

    def test_the_keyboard_alone_pauses_an_application_and_undoes_it(self):
        starts_at_login("org.example.walker", "Walker")
        self.search_by_keyboard("walker", "Walker")
        self.assertEqual(self.walk(), [*TABS, SEARCH, "Disable Walker", *BUTTONS])
        self.keyboard.go_to("Disable Walker")
        self.keyboard.press("space")
        self.keyboard.is_on("Enable Walker")
        self.spoken.find(("push button", "Undo paused Walker"))
        self.assertEqual(self.keyboard.tab(), "Undo paused Walker")
        self.keyboard.press("space")
        self.spoken.find(("push button", "Disable Walker"))
        wait_for(lambda: os.path.exists(entry_path("org.example.walker")), "the entry")

    def test_the_keyboard_alone_is_asked_first_where_an_application_matters(self):
        starts_at_login("vorta", "Vorta")
        self.addCleanup(os.remove, entry_path("vorta"))
        self.search_by_keyboard("vorta", "Vorta")
        self.keyboard.go_to("Disable Vorta")
        self.keyboard.press("space")
        self.keyboard.is_on("Cancel")
        self.spoken.find(("push button", "Disable", "", QUESTION), ("push button", "Cancel", "", QUESTION))
        self.keyboard.press("Escape")
        self.keyboard.is_on("Disable Vorta")
        wait_for(lambda: ("push button", "Cancel") not in self.spoken.shown(), "the end of the question")
        self.assertTrue(os.path.exists(entry_path("vorta")))

    def test_assistive_tools_alone_pause_and_undo_and_hear_of_it(self):
        starts_at_login("org.example.walker", "Walker")
        listener = Listener()
        self.addCleanup(listener.close)
        self.spoken.press("page tab", "Sneaky Apps tab")
        self.spoken.find(("push button", "Disable Walker", "",
                          "Stops Walker launching at login. You can re-enable any time."),
                         ("push button", "Quit Walker", "unavailable, app is not running",
                          "Closes Walker now. It can still launch later if it stays enabled."))
        self.spoken.write("text", SEARCH, "walker")
        wait_for(lambda: len(self.items()) == 1, "Walker alone")
        self.spoken.press("push button", "Disable Walker")
        self.spoken.find(("push button", "Undo paused Walker"), ("push button", "Enable Walker"))
        wait_for(lambda: listener.announced("Paused Walker. Six seconds to undo."), "the announcement")
        wait_for(lambda: ", disabled, " in "".join(self.items()), "the row of a paused application")
        self.spoken.press("push button", "Undo paused Walker")
        self.spoken.find(("push button", "Disable Walker"))
        wait_for(lambda: os.path.exists(entry_path("org.example.walker")), "the entry")

    def test_assistive_tools_hear_nothing_while_a_question_opens_and_closes(self):
        starts_at_login("vorta", "Vorta")
        self.addCleanup(os.remove, entry_path("vorta"))
        self.spoken.press("page tab", "Sneaky Apps tab")
        self.spoken.find(("push button", "Disable Vorta"))
        self.spoken.write("text", SEARCH, "vorta")
        wait_for(lambda: len(self.items()) == 1, "Vorta alone")
        listener = Listener()
        self.addCleanup(listener.close)
        self.spoken.press("push button", "Disable Vorta")
        self.spoken.find(("push button", "Cancel", "", QUESTION))
        self.spoken.press("push button", "Cancel")
        wait_for(lambda: ("push button", "Cancel") not in self.spoken.shown(), "the end of the question")
        self.assertEqual(listener.heard_of("object:property-change:accessible-name", "list item"), [])

    def test_nothing_reaches_over_the_edge(self):
        scale = int(os.environ.get("QT_FONT_DPI", "96")) / 96  # the reported places leave it out
        left, top, width, height = window = place_of(self.settings.window)
        for tab, page in PAGES.items():
            self.spoken.press("page tab", tab)
            self.wait_for_page(tab, page)
            for name, *place in settled(lambda: self.spoken.places(*CONTROLS), "a page that has come to rest"):
                x, y, wide, high = (round(number * scale) for number in place)
                inside = left <= x and top <= y and x + wide <= left + width and y + high <= top + height
                self.assertTrue(inside, f"{name} at {x}, {y}, {wide} x {high} in {window}")


if __name__ == "__main__":
    unittest.main(verbosity=2)
