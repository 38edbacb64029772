"""window_pictures.py PROGRAM FAT_APPLICATION: pictures of every window of the program in each of its states."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

from accessible import Spoken
from crash_parts import CONFIG, DATA, HOME, PENDING_REPORT, store
from process import run
from screen import window_picture
from vorli import CrashReport, FirstSteps, Settings, Sheet, TrayIcon, Vorli, choose_row
from waiting import Missing, wait_for
from workspace_probe import write

PROGRAM, FAT = sys.argv.pop(1), sys.argv.pop(1)
PICTURES, NAME = os.environ["VORLI_PICTURES"], os.environ["VORLI_SESSION_NAME"]
IS_DARK, SCALE = NAME.startswith("dark"), 2 if NAME.endswith("2x") else 1
NO_BUS = "unix:path=/nonexistent"
FIRST_STEPS = {
    "Elsewhere": "Almost there. Vorli needs to be installed before it can set up its helper.",
    "New": "Welcome to Vorli. Vorli polishes your computer when things slow down, frees memory and flushes caches in "
           "seconds to make it feel new again.",
    "Approval": "Waiting for approval. Your system is asking for your password. Enter it to let Vorli's helper work.",
    "Enabled": "All set up. Helper is approved.",
    "Missing": "Almost there. The helper that belongs to Vorli is missing.",
    "Done": "You're all set. When your computer feels tight, click the Vorli icon in the panel and press Polish.",
}
PAGES = {
    "General": "Launch at login",
    "Notifications": "Gentle nudges",
    "Screen": "Soft edge glow",
    "About": "Diagnostics log",
}


class Alert(Sheet):
    NAME = "alert"
    LEAST_WIDTH = 300


class About(Alert):
    NAME = "about panel"


def installed(name, program="/bin/true"):
    """Copies the program to a folder of the user's own; returns the path."""
    path = os.path.join(HOME, ".local", "opt", name, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    shutil.copy(program, path)
    return path


def entry(folder, identifier, program, name):
    write(os.path.join(folder, f"{identifier}.desktop"),
          f"[Desktop Entry]\nType=Application\nName={name}\nExec={program}\n")


def autostart(identifier, program, name):
    entry(os.path.join(CONFIG, "autostart"), identifier, program, name)


class WindowPictures(unittest.TestCase):
    def setUp(self):
        os.environ["QT_SCALE_FACTOR"] = str(SCALE)

    def start(self, **environment):
        """The program, with these variables in its own environment only."""
        handle, log = tempfile.mkstemp(dir=HOME, suffix=".log")
        os.close(handle)
        self.vorli = Vorli(PROGRAM, log, environment)
        self.addCleanup(self.end)
        self.item = TrayIcon().appear()[0]
        wait_for(lambda: self.vorli.ticks >= 1, "the first look at the machine")
        self.spoken = Spoken(self.vorli.process.pid)

    def end(self):
        self.vorli.end()
        wait_for(lambda: not TrayIcon().items(), "a panel without the icon")

    def picture(self, sheet, state):
        path = os.path.join(PICTURES, f"{state}.png")
        middle = ("-gravity", "center", "-crop", "50%x50%+0+0", "+repage")  # beside it are shadow and desktop

        def has_its_lightness():
            """A window that fades in is dark at first."""
            window_picture(path, sheet.window)
            mean = run("convert", path, *middle, "-colorspace", "Gray", "-format", "%[fx:mean]", "info:-")
            return (float(mean) < 0.5) == IS_DARK

        wait_for(has_its_lightness, f"{state}, {'dark' if IS_DARK else 'light'} as the desktop is")

    def press(self, role, name):
        self.spoken.find((role, name))
        self.spoken.press(role, name)

    def test_first_steps_and_alert(self):
        self.start(VORLI_PREVIEW_ONBOARDING="1", DBUS_SYSTEM_BUS_ADDRESS=NO_BUS)
        steps = FirstSteps(self.vorli.process.pid)
        for state, sentence in FIRST_STEPS.items():
            self.press("radio button", state)
            self.spoken.find(("label", sentence))
            self.picture(steps, f"first-steps-{state.lower()}")
        steps.press("ctrl+w")
        steps.gone()
        choose_row(self.item, "Polish Now")
        alert = Alert(self.vorli.process.pid)
        self.spoken.find(("label", "Helper not installed. Open Vorli to finish setup."))
        self.picture(alert, "alert")
        self.press("push button", "OK")
        alert.gone()

    def test_all_other_windows(self):
        store()
        self.make_startup_items()
        write(PENDING_REPORT, "Crash kind:  Signal\n\nSummary\n-------\nFatal signal SIGSEGV (11)\n\nStack trace\n"
                              "-----------\n" + "".join(f"{frame:>2}  vorli  somewhere()\n" for frame in range(40)))
        self.addCleanup(os.remove, PENDING_REPORT)
        self.start()
        self.crash_report()
        self.about()
        self.settings()

    def crash_report(self):
        report = CrashReport(self.vorli.process.pid)
        self.spoken.find(("push button", "View crash report"))
        self.picture(report, "crash-report")
        self.press("push button", "View crash report")
        self.spoken.find(("text", "Crash report contents"))
        self.spoken.press("check box", "Don't ask me about this kind of crash again", "Toggle")
        self.picture(report, "crash-report-expanded")
        report.press("ctrl+w")
        report.gone()

    def about(self):
        choose_row(self.item, "About Vorli")
        about = About(self.vorli.process.pid)
        self.spoken.find(("dialog", "About Vorli"), ("label", "Vorli"))
        self.picture(about, "about")
        self.press("push button", "Close")
        about.gone()

    def make_startup_items(self):
        for part in ("walker", "runner"):
            autostart(f"org.example.{part}", installed(part), part.capitalize())
        autostart("org.example.gone", os.path.join(HOME, ".local", "opt", "gone", "gone"), "Long Gone")

    def make_more_startup_items(self):
        """Makes three applications: one that holds much memory, one that needs a question first, and an updater."""
        hog = installed("hog", FAT)
        entry(os.path.join(DATA, "applications"), "org.example.hog", hog, "Hog")
        autostart("org.example.hog", hog, "Hog")
        autostart("vorta", installed("vorta"), "Vorta")
        autostart("org.gnome.Software", installed("software"), "Software")
        process = subprocess.Popen([hog, "Hog", "450"])

        def end():
            process.kill()
            process.wait()

        self.addCleanup(end)
        found = ["xdotool", "search", "--onlyvisible", "--name", "^Hog$"]
        wait_for(lambda: subprocess.run(found, capture_output=True, check=False).stdout, "the window of Hog")

    def settings(self):
        wait_for(lambda: self.vorli.helper_status == "enabled", "the enabled helper", 20)
        TrayIcon().open_popover(self.vorli.process.pid)
        self.press("push button", "Settings")
        settings = Settings(self.vorli.process.pid)
        for tab, row in PAGES.items():
            self.press("page tab", f"{tab} tab")
            wait_for(lambda: row in [name for _, name in self.spoken.shown()], tab)  # pylint: disable=cell-var-from-loop
            self.picture(settings, f"settings-{tab.lower()}")
        self.sneaky_apps(settings)

    def sneaky_apps(self, settings):
        self.press("page tab", "Sneaky Apps tab")
        self.spoken.find(("push button", "Disable Walker"), ("push button", "Remove Long Gone"))
        self.picture(settings, "sneaky-apps")
        self.press("push button", "Disable Walker")
        self.spoken.find(("push button", "Undo paused Walker"), ("push button", "Enable Walker"))
        self.picture(settings, "sneaky-apps-paused")
        self.press("push button", "Remove Long Gone")
        self.spoken.find(("push button", "Undo removed Long Gone"))
        self.picture(settings, "sneaky-apps-removed")
        self.spoken.write("text", "Find an app…", "run")
        self.spoken.find(("push button", "Disable Runner"))
        self.picture(settings, "sneaky-apps-found")
        self.spoken.write("text", "Find an app…", "zzqqxx")
        self.spoken.find(("label", "No matches. Try a shorter search, or clear it to see everything."))
        self.picture(settings, "sneaky-apps-no-matches")
        self.more_sneaky_apps(settings)

    def list_shows_hog_running(self):
        """Opens the list anew, which looks at the running programs once. The program needs a moment to learn of Hog:
        it reads the entries when their folders have been quiet for half a second."""
        self.press("page tab", "General tab")
        self.press("page tab", "Sneaky Apps tab")
        hog = ("push button", "Quit Hog", "available")
        try:
            wait_for(lambda: any(each[:3] == hog for each in self.spoken.elements()), "Hog", 5)
        except Missing:
            return False
        return True

    def more_sneaky_apps(self, settings):
        self.make_more_startup_items()
        wait_for(self.list_shows_hog_running, "a list that was made after the program had met Hog", 60)
        self.spoken.find(("push button", "Pause it"), ("push button", "Quit Hog", "available"),
                         ("push button", "Pause all 1 updater"))
        self.picture(settings, "sneaky-apps-heavy")
        self.spoken.write("text", "Find an app…", "vorta")
        self.press("push button", "Disable Vorta")
        self.spoken.find(("push button", "Cancel"))
        self.picture(settings, "sneaky-apps-question")


if __name__ == "__main__":
    unittest.main(warnings="ignore", verbosity=2)
