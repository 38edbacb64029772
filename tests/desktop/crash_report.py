"""crash_report.py PROGRAM: the report of a crash, by keyboard alone and as assistive tools find it."""

import os
import sys
import tempfile
import unittest

from accessible import Keyboard, Spoken
from crash_parts import HOME, PENDING_REPORT, MailProgram, clipboard, reports, store
from screen import window_picture, windows_of
from vorli import CrashReport, Vorli, settings_file
from waiting import holds, wait_for
from workspace_probe import write

PROGRAM, PICTURES = sys.argv.pop(1), os.environ["VORLI_PICTURES"]
LINES = "\n".join(f"line {number} of the log, {'which goes on to the right, ' * 8}to its end" for number in range(200))
SUMMARY = "Fatal signal SIGSEGV (11)"
WIDE = "Crash kind:  Signal, " + "which goes on to the right, " * 9 + "to its end"
REPORT = (f"{WIDE}\n\nSummary\n-------\n{SUMMARY}\n\nStack trace\n-----------\nfirst\nsecond\nthird\n"
          f"Recent activity\n---------------\n{LINES}\n")
SIGNATURE = "fcac626ed3fa6a11"  # the first bytes of the SHA-256 of first|second|third

TITLE = "Vorli crashed last time"
BODY = ("Vorli ran into an error and quit unexpectedly on Mar 1, 2020 at 9:30 AM. You can send the details to Kelvaran "
        "so he can fix it, or dismiss this and carry on.")
VIEW, HIDE, CONTENTS = "View crash report", "Hide crash report", "Crash report contents"
SUPPRESS, DISMISS, SEND = "Don't ask me about this kind of crash again", "Not this time", "Send crash report"
COLLAPSED = [
    ("push button", VIEW, f"{SUMMARY}. Currently collapsed", "Expands the full crash report text"),
    ("check box", SUPPRESS, "", ""),
    ("push button", DISMISS, "", ""),
    ("push button", SEND, "", "Opens your email client with the report attached"),
    ("push button", "Close", "", ""),
]
EXPANDED = [
    ("push button", HIDE, f"{SUMMARY}. Currently expanded", "Collapses the report detail"),
    ("text", CONTENTS, REPORT, ""),
    *COLLAPSED[1:],
]
LONGER_THAN_THE_NEXT_REPORT_NEEDS = 1.0


class CrashReportTest(unittest.TestCase):
    def setUp(self):
        os.environ["TZ"] = "UTC"
        store()
        self.mail = MailProgram(self)
        write(PENDING_REPORT, REPORT)
        self.addCleanup(self.forget_reports)
        self.start()

    def forget_reports(self):
        for folder in ("pending", "sent", "dismissed"):
            path = PENDING_REPORT.replace("pending", folder)
            if os.path.exists(path):
                os.remove(path)

    def start(self):
        handle, log = tempfile.mkstemp(dir=HOME, suffix=".log")
        os.close(handle)
        self.vorli = Vorli(PROGRAM, log)
        self.addCleanup(self.vorli.end)
        wait_for(lambda: self.vorli.ticks >= 1, "the first look at the machine")

    def open(self):
        self.window = CrashReport(self.vorli.process.pid)
        self.spoken = Spoken(self.vorli.process.pid)
        self.keyboard = Keyboard(self.spoken)

    def picture(self, name):
        window_picture(os.path.join(PICTURES, f"{name}.png"), self.window.window)

    def is_suppressed(self):
        with open(settings_file(), encoding="utf-8") as file:
            return SIGNATURE in file.read()

    def is_at_start(self):
        down, right = self.spoken.scrolled()
        return (down, right) == (0, 0)

    def test_the_keyboard_alone_reads_copies_ticks_and_dismisses(self):
        self.open()
        self.keyboard.is_on(SEND)
        self.assertEqual(self.keyboard.walk(VIEW), [VIEW, SUPPRESS, DISMISS, SEND, "Close"])
        self.picture("collapsed")
        self.keyboard.press("Return")
        self.keyboard.is_on(HIDE)
        self.assertEqual(self.keyboard.walk(HIDE), [HIDE, CONTENTS, SUPPRESS, DISMISS, SEND, "Close"])
        self.picture("expanded")

        self.keyboard.go_to(CONTENTS)
        self.assertTrue(self.is_at_start())
        self.keyboard.press("Next")
        wait_for(lambda: 0 < self.spoken.scrolled()[0] < 0.5, "the next part of the report")
        self.keyboard.press("ctrl+End")
        wait_for(lambda: self.spoken.scrolled()[0] == 1, "the end of the report")
        self.keyboard.press("ctrl+Home")
        wait_for(self.is_at_start, "the start of the report")
        self.keyboard.press("End")
        wait_for(lambda: self.spoken.scrolled()[1] == 1, "the end of a line that is wider than the window")
        self.keyboard.press("Home")
        wait_for(self.is_at_start, "the start of the line")
        self.keyboard.press("ctrl+a", "ctrl+c")
        wait_for(lambda: clipboard() == REPORT, "the report in the clipboard")

        self.keyboard.go_to(HIDE)
        self.keyboard.press("space")
        self.keyboard.is_on(VIEW)
        self.keyboard.go_to(SUPPRESS)
        self.keyboard.press("space")
        wait_for(lambda: self.spoken.is_checked("check box", SUPPRESS), "the tick")
        self.keyboard.go_to(DISMISS)
        self.keyboard.press("Return")
        self.window.gone()
        self.assertEqual((reports("pending"), reports("dismissed"), reports("sent")), ([], [REPORT], []))
        self.assertEqual(self.mail.links(), [])
        self.is_not_offered_again()

    def is_not_offered_again(self):
        """Another crash of the same kind is not offered at the next start."""
        wait_for(self.is_suppressed, "the kind of crash in the settings file")
        self.assertEqual(self.vorli.end(), 0)
        write(PENDING_REPORT, REPORT)
        self.start()
        holds(lambda: not windows_of(self.vorli.process.pid), "no window", LONGER_THAN_THE_NEXT_REPORT_NEEDS)
        self.assertEqual(reports("pending"), [REPORT])

    def test_assistive_tools_alone_read_scroll_tick_and_send(self):
        self.open()
        self.spoken.find(("dialog", "Vorli", "", f"{TITLE}. {BODY}"), *COLLAPSED)
        self.assertNotIn(CONTENTS, [name for _, name in self.spoken.shown()])
        self.spoken.press("push button", VIEW)
        self.spoken.find(*EXPANDED)
        self.spoken.scroll_to(1)
        wait_for(lambda: self.spoken.scrolled()[0] == 1, "the end of the report")
        self.picture("scrolled")
        self.assertFalse(self.spoken.is_checked("check box", SUPPRESS))
        self.spoken.press("check box", SUPPRESS, "Toggle")
        wait_for(lambda: self.spoken.is_checked("check box", SUPPRESS), "the tick")
        self.spoken.press("check box", SUPPRESS, "Toggle")
        wait_for(lambda: not self.spoken.is_checked("check box", SUPPRESS), "no tick")
        self.spoken.press("push button", HIDE)
        self.spoken.find(*COLLAPSED)
        self.spoken.press("push button", SEND)
        self.window.gone()
        wait_for(self.mail.links, "the mail")
        self.assertEqual(clipboard(), REPORT)
        self.assertEqual((reports("pending"), reports("dismissed"), reports("sent")), ([], [], [REPORT]))
        self.assertFalse(self.is_suppressed())

    def test_a_window_that_is_only_closed_keeps_its_report(self):
        self.open()
        self.spoken.find(*COLLAPSED)
        self.spoken.press("check box", SUPPRESS, "Toggle")
        self.spoken.press("push button", "Close")
        self.window.gone()
        self.assertEqual((reports("pending"), reports("dismissed"), reports("sent")), ([REPORT], [], []))
        self.assertFalse(self.is_suppressed())


if __name__ == "__main__":
    unittest.main(warnings="ignore", verbosity=2)
