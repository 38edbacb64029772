"""daily_life.py PROGRAM: notices, the global key, a report after a crash and the start at login, in a real session."""

import os
import re
import signal
import subprocess
import sys
import tempfile
import unittest

import dbus
from crash_parts import PENDING_REPORT, MailProgram, clipboard, reports, store
from process import run
from screen import bring_to_front, found_windows, picture, place_of, window_picture, windows_of
from vorli import BUS_NAME, CrashReport, Load, Vorli
from waiting import settled, wait_for
from workspace_probe import write

PROGRAM = sys.argv.pop(1)
HOME, CONFIG = os.environ["HOME"], os.environ["XDG_CONFIG_HOME"]
LOGIN_ENTRY = os.path.join(CONFIG, "autostart", "com.kv.vorli.desktop")
LOGIN_GENERATOR = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator"
FULL = 0.9
LONGEST_PURGE = 40  # behind a flush of five seconds, on a machine that is slow to write its files back


def notice():
    """Place and size of the notice on the screen, or None."""
    found = found_windows("--class", "notifyd")
    return place_of(found[-1]) if found else None


def login_commands():
    """The command lines that start the program at login, by the session manager that reads the autostart folders."""
    with tempfile.TemporaryDirectory() as folder:
        places = [os.path.join(folder, name) for name in ("normal", "early", "late")]
        for place in places:
            os.mkdir(place)
        run(LOGIN_GENERATOR, *places)
        commands = []
        for place, _, files in os.walk(folder):
            for name in files:
                unit = os.path.join(place, name)
                if place.endswith(".wants"):
                    with open(unit, encoding="utf-8") as file:
                        commands += re.findall(r"^ExecStart=:?(.*)$", file.read(), re.MULTILINE)
        return [command for command in commands if PROGRAM in command]


class DailyLifeTest(unittest.TestCase):
    def start(self, command=PROGRAM):
        wait_for(lambda: not dbus.SessionBus().name_has_owner(BUS_NAME), "the end of the one before")
        handle, log = tempfile.mkstemp(dir=HOME, suffix=".log")
        os.close(handle)
        self.vorli = Vorli(command, log)
        self.addCleanup(self.vorli.end)
        wait_for(lambda: self.vorli.ticks >= 1, "the first look at the machine")

    def start_with_helper(self):
        self.start()
        wait_for(lambda: self.vorli.helper_status == "enabled", "the enabled helper", 20)

    def picture(self, name, window):
        window_picture(os.path.join(os.environ["VORLI_PICTURES"], f"{name}.png"), window)

    def answers(self, call):
        return self.vorli.log_text().count(f"{call} reply: exit=")

    def polishes(self, act):
        """Checks that `act` makes the program ask the daemon for both halves of a polish, once each."""
        self.assertEqual((self.answers("flushDNS"), self.answers("purgeMemory")), (0, 0))
        act()
        wait_for(lambda: self.answers("purgeMemory"), "the answer to purgeMemory", LONGEST_PURGE)
        self.assertEqual((self.answers("flushDNS"), self.answers("purgeMemory")), (1, 1))
        self.assertEqual(self.vorli.reply("flushDNS")["exitCode"], 0, self.vorli.reply("flushDNS"))
        # A machine that writes files back slowly also purges its memory slowly.
        self.assertIn(self.vorli.reply("purgeMemory")["exitCode"], (0, 110))

    def test_a_full_machine_brings_one_notice_whose_button_polishes(self):
        store(gentleNudges="true")
        self.start_with_helper()
        with Load():
            x, y, width, height = settled(notice, "the notice", 200)
            self.assertGreaterEqual(self.vorli.ring, FULL)
        picture(os.path.join(os.environ["VORLI_PICTURES"], "notice.png"), x, y, width, height)
        self.polishes(lambda: run("xdotool", "mousemove", str(x + width - 58), str(y + height - 31), "sleep", "0.4",
                                  "click", "1"))
        wait_for(lambda: not notice(), "the end of the notice")
        self.assertEqual(self.vorli.log_text().count("nudge: posted nudge with Polish Now action"), 1)

    def test_the_key_polishes_past_another_program_with_the_focus(self):
        store()
        self.start_with_helper()
        self.assertIn("hotkey: hotkey registered: opt+shift+C", self.vorli.log_text())
        other = subprocess.Popen(["xmessage", "-title", "other", "hello"])
        self.addCleanup(other.wait)
        self.addCleanup(other.terminate)
        bring_to_front("^other$")
        self.polishes(lambda: run("xdotool", "key", "alt+shift+c"))

    def test_a_crash_is_offered_at_the_next_start_and_is_passed_to_the_mail_program(self):
        store()
        mail = MailProgram(self)
        self.start()
        self.vorli.process.send_signal(signal.SIGSEGV)
        self.assertEqual(self.vorli.process.wait(30), -signal.SIGSEGV)
        (report,) = reports("pending")
        self.assertIn("\nSummary\n-------\nFatal signal SIGSEGV (11)\n", report)
        # An earlier report, short enough for the mail itself.
        write(PENDING_REPORT, "Crash kind:  Signal\n")

        self.start()
        first = CrashReport(self.vorli.process.pid)
        self.picture("crash-report", first.window)
        first.press("Return")
        first.gone()
        second = CrashReport(self.vorli.process.pid)
        second.press("Return")
        second.gone()
        wait_for(lambda: len(mail.links()) == 2, "both mails")
        subject = r"mailto:support@vorli\.test\?subject=Vorli%20crash%20report,%20v[0-9.]+%20\(build%20\d+\)"
        self.assertRegex(mail.links()[0], f"^{subject}&body=Crash%20kind:%20%20Signal%0A$")
        self.assertRegex(mail.links()[1], f"^{subject}$")
        self.assertEqual((reports("pending"), reports("sent")), ([], ["Crash kind:  Signal\n", report]))
        self.assertEqual(clipboard(), report)
        self.assertEqual(windows_of(self.vorli.process.pid), [])

    def test_a_report_that_is_only_closed_comes_back(self):
        store()
        write(PENDING_REPORT, "Crash kind:  Signal\n")
        for _ in range(2):
            self.start()
            window = CrashReport(self.vorli.process.pid)
            window.press("ctrl+w")
            window.gone()
            self.assertEqual(self.vorli.end(), 0)
            self.assertEqual(reports("pending"), ["Crash kind:  Signal\n"])
        os.remove(PENDING_REPORT)

    def test_the_session_manager_starts_it_once_while_the_setting_is_on(self):
        self.assertEqual(login_commands(), [])
        store(launchAtLogin="true")
        self.start()
        self.assertEqual(self.vorli.end(), 0)
        self.assertEqual(login_commands(), [PROGRAM])

        with open(LOGIN_ENTRY, "a", encoding="utf-8") as file:
            file.write("Hidden=true\n")  # as a desktop's own list of startup programs does
        self.assertEqual(login_commands(), [])
        self.start()
        self.assertEqual(self.vorli.end(), 0)
        self.assertEqual(login_commands(), [PROGRAM])

        self.start(login_commands()[0])
        self.assertEqual(self.vorli.end(), 0)
        store(launchAtLogin="false")
        self.start()
        self.assertEqual(self.vorli.end(), 0)
        self.assertEqual(login_commands(), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
