"""suspended_apps.py PROGRAM SESSION_MANAGER: the whole program resumes recorded processes through the real daemon."""

import os
import re
import signal
import subprocess
import sys
import unittest

from process import Process
from screen import bring_to_front, window_of
from vorli import stored
from waiting import wait_for

NEVER = 3  # the hint never to start a program at a later login
FIRST_PROCESS = 1  # another user's process, which the daemon resumes for no caller


def state(process):
    with open(f"/proc/{process.pid}/stat", encoding="utf-8") as file:
        return re.search(r"\) (\w) ", file.read())[1]


class SessionManager:
    """A session manager that implements only the protocol; it ends with the test."""

    def __init__(self, test):
        self.process = Process(sys.argv[2])
        test.addCleanup(self.process.kill)
        self.lines, self.expect, self.tell = self.process.lines, self.process.expect, self.process.tell
        self.address = self.expect("address .*").removeprefix("address ")


class OtherDisplay:
    """An X server that a test may kill."""

    def __init__(self, test):
        self.server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "800x600x24"], stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, text=True)
        test.addCleanup(self.server.wait)
        test.addCleanup(self.server.kill)
        self.name = ":" + self.server.stdout.readline().strip()


class SuspendedApps(unittest.TestCase):
    def setUp(self):
        self.calculator = self.start_application("galculator", "galculator")
        self.editor = self.start_application("mousepad", "Mousepad")

    def start_application(self, program, title):
        process = subprocess.Popen([program], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        wait_for(lambda: window_of(title), f"the window of {program}")
        return process

    def start_program(self, **changes):
        self.log = open(os.path.join(os.environ["HOME"], f"{self.id()}.log"), "w+", encoding="utf-8")
        self.addCleanup(self.log.close)
        program = subprocess.Popen([sys.argv[1]], env={**os.environ, **changes}, stdin=subprocess.PIPE,
                                   stdout=self.log, stderr=self.log)
        self.addCleanup(program.stdin.close)
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        return program

    def log_text(self):
        with open(self.log.name, encoding="utf-8") as file:
            return file.read()

    def recorded(self):
        found = re.findall(r"^recorded(.*)$", self.log_text(), re.MULTILINE)
        return {int(pid) for pid in found[-1].split()} if found else set()

    def stop(self, program, *applications, also=()):
        for application in applications:
            application.send_signal(signal.SIGSTOP)
            wait_for(lambda a=application: state(a) == "T", "it is stopped")
        wanted = {application.pid for application in applications} | set(also)
        for pid in wanted:
            program.stdin.write(f"record {pid}\n".encode())
        program.stdin.flush()
        wait_for(lambda: self.recorded() == wanted, "all are on record")

    def end(self, program):
        program.send_signal(signal.SIGTERM)
        return program.wait(timeout=20)

    def test_the_user_turns_to_a_stopped_application_and_it_continues(self):
        program = self.start_program()
        bring_to_front("Mousepad")
        self.stop(program, self.calculator)
        bring_to_front("galculator")
        wait_for(lambda: state(self.calculator) != "T", "it continues")
        wait_for(lambda: self.recorded() == set(), "it is on record no longer")
        self.assertEqual(self.end(program), 0)

    def test_an_application_that_ends_is_forgotten(self):
        program = self.start_program()
        bring_to_front("Mousepad")
        self.stop(program, self.calculator, self.editor)
        self.calculator.kill()
        wait_for(lambda: self.recorded() == {self.editor.pid}, "the other one alone is on record")
        self.assertEqual(self.end(program), 0)

    def test_all_go_on_before_the_program_ends_and_what_the_daemon_refuses_stays_on_record(self):
        program = self.start_program()
        self.stop(program, self.calculator, self.editor, also=[FIRST_PROCESS])
        self.assertEqual(self.end(program), 0)
        self.assertNotIn("T", (state(self.calculator), state(self.editor)))
        self.assertEqual(self.recorded(), {FIRST_PROCESS})

    def test_what_the_daemon_could_not_resume_stays_on_record_until_it_can(self):
        bus = os.path.join(os.environ["HOME"], "system-bus")
        program = self.start_program(DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={bus}")
        bring_to_front("Mousepad")
        self.stop(program, self.calculator)

        def turn_to_it():
            bring_to_front("galculator")
            bring_to_front("Mousepad")
            return state(self.calculator) != "T"

        self.assertFalse(turn_to_it())
        self.assertEqual(self.recorded(), {self.calculator.pid})
        os.symlink(os.environ["DBUS_SYSTEM_BUS_ADDRESS"].removeprefix("unix:path="), bus)
        self.addCleanup(os.remove, bus)
        wait_for(turn_to_it, "a later activation reaches the daemon, and it continues")
        wait_for(lambda: self.recorded() == set(), "it is on record no longer")
        self.assertEqual(self.end(program), 0)

    def test_all_go_on_when_the_session_manager_ends_the_session(self):
        manager = SessionManager(self)
        program = self.start_program(SESSION_MANAGER=manager.address)
        manager.expect("registered")
        manager.expect(f"RestartStyleHint {NEVER}")
        self.stop(program, self.calculator, self.editor)
        manager.tell("end")
        self.assertEqual(program.wait(timeout=20), 0)
        self.assertNotIn("T", (state(self.calculator), state(self.editor)))
        self.assertEqual(self.recorded(), set())
        hints = [line for line in manager.lines if line.startswith("RestartStyleHint")]
        self.assertEqual(set(hints), {f"RestartStyleHint {NEVER}"})

    def test_all_go_on_when_the_x_server_is_lost(self):
        display = OtherDisplay(self)
        program = self.start_program(DISPLAY=display.name)
        self.stop(program, self.calculator, self.editor)
        display.server.kill()
        self.assertEqual(program.wait(timeout=20), 1)
        self.assertNotIn("T", (state(self.calculator), state(self.editor)))

    def test_the_last_change_of_a_setting_is_written_when_a_library_ends_the_process(self):
        program = self.start_program()
        self.assertNotEqual(stored("hapticFeedback"), "false")
        program.stdin.write(b"change and leave\n")
        program.stdin.flush()
        self.assertEqual(program.wait(timeout=20), 1)
        self.assertEqual(stored("hapticFeedback"), "false")

    def test_without_a_daemon_the_program_ends_all_the_same(self):
        program = self.start_program(DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent")
        self.stop(program, self.calculator)
        self.assertEqual(self.end(program), 0)
        self.assertEqual((self.recorded(), state(self.calculator)), ({self.calculator.pid}, "T"))


unittest.main(argv=sys.argv[:1], verbosity=2)
