"""surroundings.py PROGRAM: the whole program when something that it expects is missing or broken."""

import glob
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

from screen import found_windows
from waiting import holds, wait_for

PROGRAM = sys.argv[1]
LONGER_THAN_A_ROLL_UP = 1.0


def status(name, environment=None):
    answer = subprocess.run(
        ["gdbus", "call", "--session", "--dest", "com.kv.vorli", "--object-path", "/com/kv/vorli", "--method",
         "org.freedesktop.DBus.Properties.Get", "com.kv.vorli.Status", name],
        capture_output=True, text=True, env=environment)
    found = re.search(r"<(?:uint64 )?'?([^'>]*)'?>", answer.stdout)
    return found.group(1) if answer.returncode == 0 and found else None


def handles(pid, number):
    with open(f"/proc/{pid}/status", encoding="utf-8") as file:
        caught = int(re.search(r"SigCgt:\s*(\S+)", file.read()).group(1), 16)
    return caught >> (number - 1) & 1


def listens(path):
    """Whether a program listens there: a socket's file exists shortly before that."""
    with socket.socket(socket.AF_UNIX) as caller:
        return caller.connect_ex(path) == 0


def shown_windows(process):
    return found_windows("--pid", str(process.pid))


class Surroundings(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.mkdtemp(prefix="vorli-home-")
        shutil.copytree(f"{os.environ['XDG_CONFIG_HOME']}/Vorli", f"{self.home}/Vorli")
        self.environment = {**os.environ, "XDG_CONFIG_HOME": self.home}
        self.running = []

    def tearDown(self):
        for process in self.running:
            if process.poll() is None:
                process.kill()
            process.wait()
            process.stderr.close()
        shutil.rmtree(self.home)

    def start(self, **changes):
        environment = {**self.environment, **changes}
        environment = {name: value for name, value in environment.items() if value is not None}
        process = subprocess.Popen([PROGRAM], env=environment, stderr=subprocess.PIPE, text=True)
        os.set_blocking(process.stderr.fileno(), False)
        self.running.append(process)
        return process

    def lives(self, process):
        wait_for(lambda: status("Ticks") is not None or process.poll() is not None, "the program is on the bus")
        self.assertIsNone(process.poll(), "the program goes on")
        return process

    def end(self, process):
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(timeout=10), 0)

    def test_without_a_tray_it_lives_and_can_be_called_up(self):
        process = self.lives(self.start())
        self.assertEqual(shown_windows(process), [])
        for _ in range(2):  # another start closes nothing
            later = subprocess.run([PROGRAM], env=self.environment, capture_output=True, text=True, timeout=10)
            self.assertEqual(later.returncode, 0)
            self.assertIn("already running", later.stderr)
            wait_for(lambda: shown_windows(process), "the popover")
            holds(lambda: shown_windows(process), "the open popover", LONGER_THAN_A_ROLL_UP)
        self.end(process)

    def test_a_second_start_beside_one_that_hangs_says_so(self):
        process = self.lives(self.start())
        process.send_signal(signal.SIGSTOP)
        try:
            second = subprocess.run([PROGRAM], env=self.environment, capture_output=True, text=True, timeout=20)
        finally:
            process.send_signal(signal.SIGCONT)
        self.assertEqual(second.returncode, 2)
        self.assertIn("vorli: already running, but it does not answer\n", second.stderr)
        self.end(process)

    def test_without_a_session_bus_it_runs_until_it_is_asked_to_end(self):
        process = self.start(DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")
        wait_for(lambda: handles(process.pid, signal.SIGTERM), "it is put together")
        self.end(process)

    def test_without_a_display_it_says_so(self):
        process = self.start(DISPLAY=":987", QT_QPA_PLATFORM=None, WAYLAND_DISPLAY=None)
        self.assertEqual(process.wait(timeout=10), 1)
        self.assertEqual(process.stderr.read(), "vorli: there is no display to show the dial on\n")

    def test_with_no_display_named_at_all_it_says_so(self):
        process = self.start(DISPLAY=None, QT_QPA_PLATFORM=None, WAYLAND_DISPLAY=None)
        self.assertEqual(process.wait(timeout=10), 1)
        self.assertEqual(process.stderr.read(), "vorli: there is no display to show the dial on\n")

    if not glob.glob("/usr/lib/*/qt6/plugins/platforms/libqwayland*.so"):

        def test_with_nothing_but_wayland_and_no_back_end_for_it_it_says_so(self):
            for changes in ({"WAYLAND_DISPLAY": "wayland-7", "QT_QPA_PLATFORM": None}, {"QT_QPA_PLATFORM": "wayland"}):
                process = self.start(DISPLAY=None, **changes)
                self.assertEqual(process.wait(timeout=10), 1)
                self.assertEqual(process.stderr.read(), "vorli: there is no display to show the dial on\n")

    def test_without_a_system_bus_the_helper_is_unknown_and_the_ring_lives(self):
        process = self.lives(self.start(DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent"))
        wait_for(lambda: status("HelperStatus") == "unknown", "the helper is reported as unknown")
        self.assertGreaterEqual(float(status("RingProgress")), 0.05)
        self.end(process)

    def test_a_start_without_the_helper_shows_nothing_unasked(self):
        process = self.lives(self.start(DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent"))
        told = ""

        def is_through():
            nonlocal told
            try:
                told += os.read(process.stderr.fileno(), 65536).decode()
            except BlockingIOError:
                pass
            # The second repair of the launch has ended, and with it everything that the program does unasked.
            return told.count("Post-reinstall liveness") == 2

        wait_for(is_through, "the launch is through with the helper", 30.0)
        self.assertEqual(shown_windows(process), [])
        self.end(process)

    def test_nobody_reads_its_standard_error(self):
        with open(f"{self.home}/Vorli/Vorli.ini", "w", encoding="utf-8") as file:
            file.write("damaged, so that there is something to report at once")
        process = subprocess.Popen([PROGRAM], env=self.environment, stderr=subprocess.PIPE)
        process.stderr.close()
        self.running.append(process)
        self.lives(process)
        self.end(process)

    def hanging_bus(self, kind):
        """The address of a bus that accepts connections and never answers."""
        folder = tempfile.mkdtemp(prefix="vorli-bus-")
        self.addCleanup(shutil.rmtree, folder)
        config = os.path.join(folder, "bus.conf")
        with open(config, "w", encoding="utf-8") as file:
            file.write(f"<busconfig><type>{kind}</type><listen>unix:path={folder}/bus</listen>"
                       "<policy context='default'><allow send_destination='*'/><allow own='*'/></policy></busconfig>")
        bus = subprocess.Popen(["dbus-daemon", f"--config-file={config}", "--nofork"], stderr=subprocess.DEVNULL)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.kill)
        wait_for(lambda: listens(f"{folder}/bus"), "the bus is up")
        bus.send_signal(signal.SIGSTOP)
        return f"unix:path={folder}/bus"

    def test_a_session_bus_that_hangs_is_given_up(self):
        process = self.start(DBUS_SESSION_BUS_ADDRESS=self.hanging_bus("session"))
        wait_for(lambda: handles(process.pid, signal.SIGTERM), "it runs on without the bus", 30.0)
        self.end(process)
        self.assertIn("the session bus does not answer; going on without it", process.stderr.read())

    def test_a_system_bus_that_hangs_holds_nothing_up(self):
        process = self.lives(self.start(DBUS_SYSTEM_BUS_ADDRESS=self.hanging_bus("system")))
        ticks = int(status("Ticks"))
        subprocess.run([PROGRAM], env=self.environment, capture_output=True, timeout=10)
        wait_for(lambda: int(status("Ticks")) > ticks, "the main loop answers while the system bus hangs", 3.0)
        self.end(process)

    def test_damaged_settings_are_kept_aside(self):
        with open(f"{self.home}/Vorli/Vorli.ini", "wb") as file:
            file.write(b"\x00\x01 no settings \xff" * 50)
        process = self.lives(self.start())
        self.assertTrue(os.path.exists(f"{self.home}/Vorli/Vorli.ini.damaged"))
        self.end(process)
        with open(f"{self.home}/Vorli/Vorli.ini", encoding="utf-8") as file:
            self.assertIn("vorli.lastLaunchedBuild", file.read())


unittest.main(argv=sys.argv[:1], verbosity=2)
