"""new_user.py PREFIX: a new user's way from the first start.

The daemon is not registered yet, and there is an administrator to ask.
"""

import os
import shutil
import sys
import unittest

import dbus
from accessible import Keyboard, Spoken
from screen import window_picture
from spoken_parts import Listener
from vorli import FirstSteps, PanelMenu, Settings, TrayIcon, Vorli, become_new_user, installed_at_home, is_stored
from waiting import holds, wait_for
from workspace_probe import write

PREFIX, PICTURES = sys.argv.pop(1), os.environ["VORLI_PICTURES"]
AUTOSTART = os.path.join(os.environ["XDG_CONFIG_HOME"], "autostart", "org.example.walker.desktop")

WELCOME = ("label", "Welcome to Vorli. Vorli polishes your computer when things slow down, frees memory and flushes "
                    "caches in seconds to make it feel new again.")
NOT_INSTALLED = ("label", "Status: Helper not installed yet.")
WAITING = ("label", "Waiting for approval. Your system is asking for your password. Enter it to let Vorli's helper "
                    "work.")
WAITING_LINE = ("label", "Status: Waiting for approval…")
NO_WINDOW = ("label", "Almost there. No password window could be opened. Start your desktop's authentication agent, or "
                      "ask an administrator.")
READY = ("label", "All set up. Helper is approved.")
INSTALL, CONTINUE, START = "Install Helper", "Continue", "Start using Vorli"
HELPER = "com.kv.vorli.helper"
PROGRAMS_OF_ROOT = "org.freedesktop.policykit.exec"
LONGEST_PURGE = 40  # after a flush of five seconds, on a machine that writes files back slowly
PURGED = (0, 110)  # the second answer comes from a machine that writes files back slowly


def button(name):
    return "push button", name


class NewUserTest(unittest.TestCase):
    def setUp(self):
        become_new_user()
        self.administrator = dbus.Interface(
            dbus.SystemBus().get_object("com.kv.vorli.Administrator", "/", introspect=False),
            "com.kv.vorli.Administrator",
        )
        self.addCleanup(self.start_over)
        self.vorli = Vorli(installed_at_home(PREFIX), os.path.join(os.environ["HOME"], "vorli.log"))
        self.addCleanup(self.end)
        self.icon = TrayIcon()
        self.icon.appear()
        self.steps = FirstSteps(self.vorli.process.pid)
        self.spoken = Spoken(self.vorli.process.pid)
        self.keyboard = Keyboard(self.spoken)
        self.spoken.find(WELCOME, NOT_INSTALLED, button(INSTALL))
        self.keyboard.is_on(INSTALL)

    def end(self):
        if self.vorli.process.poll() is None:
            self.assertEqual(self.vorli.end(), 0)
        wait_for(lambda: not self.icon.items(), "a panel without the icon")

    def start_over(self):
        self.administrator.StartOver()
        wait_for(lambda: not self.administrator.Daemon(), "the end of the daemon")

    def picture(self, name, sheet=None):
        window_picture(os.path.join(PICTURES, f"{name}.png"), (sheet or self.steps).window)

    def install(self):
        """Takes the first steps until the password has set up the helper."""
        self.administrator.Arrive()
        self.administrator.Answer("give")
        self.steps.press("Return")
        self.spoken.find(READY, button(CONTINUE))
        self.assertEqual(self.vorli.helper_status, "enabled")

    def daemon(self):
        """Process id of the daemon; starts the daemon by a call if none runs."""
        dbus.SystemBus().call_blocking(HELPER, "/com/kv/vorli/helper", HELPER, "Ping", "", ())
        return self.administrator.Daemon()

    def finish(self):
        self.keyboard.is_on(CONTINUE)
        self.steps.press("Return")
        self.keyboard.is_on(START)
        self.steps.press("Return")
        self.steps.gone()
        wait_for(lambda: is_stored("hasSeenDoneScreen"), "the end in the settings")

    def assert_polishes(self):
        """Checks that the daemon answers both halves of a polish."""
        PanelMenu(self.icon).choose("Polish Now")
        flush = wait_for(lambda: self.vorli.reply("flushDNS"), "the answer to flushDNS")
        purge = wait_for(lambda: self.vorli.reply("purgeMemory"), "the answer to purgeMemory", LONGEST_PURGE)
        self.assertEqual(flush["exitCode"], 0)
        self.assertIn(purge["exitCode"], PURGED)

    def test_the_password_leads_to_a_program_that_works(self):
        listener = Listener()
        self.addCleanup(listener.close)
        self.picture("welcome")
        self.administrator.Arrive()
        self.steps.press("Return")
        self.spoken.find(WAITING, WAITING_LINE,
                         (*button("Ask again"), "", "Opens the password window again if you closed it"),
                         (*button("Waiting for helper approval"), "", "Enter your password to continue"))
        self.assertNotIn("enabled", self.spoken.states(*button("Waiting for helper approval")))
        wait_for(self.administrator.Asked, "the password window")
        self.assertEqual(self.administrator.Asked(), [PROGRAMS_OF_ROOT])
        wait_for(lambda: listener.announced(WAITING[1]), "the announcement of the password window")
        self.picture("waiting-for-approval")
        self.administrator.Answer("give")
        self.spoken.find(READY, ("label", "Status: Helper is set up and ready."), button(CONTINUE))
        wait_for(lambda: listener.announced(READY[1]), "the announcement of the helper")
        self.assertEqual(self.administrator.Asked(), [PROGRAMS_OF_ROOT])
        self.finish()
        self.assert_polishes()
        self.pause_and_undo()
        PanelMenu(self.icon).choose("Quit Vorli")
        self.assertEqual(self.vorli.process.wait(10), 0)

    def pause_and_undo(self):
        """Opens the settings by the popover's gear, on an application of the user's own that starts at login."""
        program = os.path.join(os.environ["HOME"], ".local/opt/walker/walker")
        os.makedirs(os.path.dirname(program), exist_ok=True)
        shutil.copy("/bin/true", program)
        write(AUTOSTART, f"[Desktop Entry]\nType=Application\nName=Walker\nExec={program}\n")
        self.addCleanup(os.remove, AUTOSTART)
        with open(AUTOSTART, encoding="utf-8") as file:
            before = file.read()

        self.icon.open_popover(self.vorli.process.pid)
        self.spoken.find(button("Settings"))
        self.spoken.press(*button("Settings"))
        settings = Settings(self.vorli.process.pid)
        self.spoken.find(("page tab", "Sneaky Apps tab"))
        self.spoken.press("page tab", "Sneaky Apps tab")
        self.spoken.find(button("Disable Walker"))
        self.spoken.press(*button("Disable Walker"))
        self.spoken.find(button("Enable Walker"), button("Undo paused Walker"))
        self.picture("paused", settings)
        wait_for(lambda: not os.path.exists(AUTOSTART), "the paused entry")
        self.spoken.press(*button("Undo paused Walker"))
        self.spoken.find(button("Disable Walker"))
        wait_for(lambda: os.path.exists(AUTOSTART), "the entry")
        with open(AUTOSTART, encoding="utf-8") as file:
            self.assertEqual(file.read(), before)
        settings.press("Escape")
        settings.gone()

    def test_a_password_that_is_refused_leaves_everything_as_it_was(self):
        self.administrator.Arrive()
        self.administrator.Answer("refuse")
        self.steps.press("Return")
        wait_for(self.administrator.Asked, "the password window")
        refusal = "service.register() failed: The password was not given."
        wait_for(lambda: refusal in self.vorli.log_text(), "the refusal in the log")
        self.spoken.find(WELCOME, NOT_INSTALLED, button(INSTALL))
        wait_for(lambda: "enabled" in self.spoken.states(*button(INSTALL)), "a button that can be pressed again")
        self.assertEqual(self.vorli.helper_status, "notRegistered")
        self.assertEqual(self.administrator.Asked(), [PROGRAMS_OF_ROOT])
        self.assertEqual(self.administrator.Daemon(), 0)
        self.assertFalse(is_stored("hasCompletedOnboarding"))
        self.picture("refused")

        self.keyboard.is_on(INSTALL)
        self.install()

    def test_a_desktop_without_password_windows_says_so_and_recovers(self):
        self.steps.press("Return")
        self.spoken.find(NO_WINDOW, button(INSTALL))
        for words in (WAITING, WAITING_LINE):
            holds(lambda: words not in self.spoken.shown(), "a window that does not claim to wait", 1)
        self.assertEqual(self.vorli.helper_status, "notRegistered")
        wait_for(lambda: "enabled" in self.spoken.states(*button(INSTALL)), "a button that can be pressed again")
        last = "Post-reinstall liveness: status=Not registered alive=false force=true"
        wait_for(lambda: last in self.vorli.log_text(), "the end of the program's own attempts", 20)
        self.spoken.find(NO_WINDOW)
        self.picture("no-password-window")

        self.keyboard.is_on(INSTALL)
        self.install()

    def test_a_daemon_that_is_killed_between_the_steps_is_there_again(self):
        self.install()
        first = self.daemon()
        self.administrator.Signal("SIGKILL")
        wait_for(lambda: self.administrator.Daemon() != first, "the end of the daemon")
        self.assertEqual(self.vorli.helper_status, "enabled")
        self.spoken.find(READY, button(CONTINUE))
        self.finish()
        self.assert_polishes()
        self.assertNotIn(self.administrator.Daemon(), (0, first))

    def test_a_daemon_that_is_killed_at_work_costs_one_answer(self):
        self.install()
        self.finish()
        first = self.daemon()
        self.administrator.Signal("SIGSTOP")
        PanelMenu(self.icon).choose("Polish Now")
        wait_for(lambda: "flushDNS requested" in self.vorli.log_text(), "the request to the stopped daemon")
        self.administrator.Signal("SIGKILL")
        wait_for(lambda: "flushDNS: XPC reply timed out after 5s" in self.vorli.log_text(), "the end of the wait")
        purge = wait_for(lambda: self.vorli.reply("purgeMemory"), "the answer to purgeMemory", LONGEST_PURGE)
        self.assertIn(purge["exitCode"], PURGED)
        self.assertIsNone(self.vorli.reply("flushDNS"))
        self.assertNotIn(self.administrator.Daemon(), (0, first))
        self.assertEqual(self.vorli.helper_status, "enabled")


if __name__ == "__main__":
    unittest.main(warnings="ignore", verbosity=2)
