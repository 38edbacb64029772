"""polish.py PROGRAM SERVER: whole polishes of the real program with its real daemon, while a real sound server plays."""

import os
import subprocess
import sys
import time
import unittest

from polish_probe import CALM_RISE, CLOCK_GRAIN, FULL, LATENESS, POLISHED, SPARED, PolishProbe
from process import Process
from sound_server import SINK, Sound, pactl, sink_state
from waiting import wait_for

PROGRAM, SERVER = sys.argv[1:3]
WINDOW = 0.15
LISTENED = 0.2  # the window with its set-up, on an idle machine
MOST_WORKING = 0.005  # of all turns
MOST_BLOCKED = 0.01  # of all turns; the glow's colours wait for the X server, which waits for a processor
LONGEST_PURGE = 40  # after a flush of five seconds, on a machine that writes files back slowly
HOG = 0.15  # of the used memory, so that there is something to see


class Hog:
    """Holds memory until the end of the block."""

    def __init__(self):
        with open("/proc/meminfo", encoding="ascii") as file:
            numbers = {line.split(":")[0]: int(line.split()[1]) * 1024 for line in file}
        size = int((numbers["MemTotal"] - numbers["MemFree"]) * HOG)
        script = f"import mmap, sys; m = mmap.mmap(-1, {size})\n" \
                 f"for at in range(0, {size}, 4096): m[at] = 1\nprint('full', flush=True); sys.stdin.read()"
        self.process = subprocess.Popen([sys.executable, "-c", script], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.process.stdout.readline()

    def let_go(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
            self.process.stdin.close()
            self.process.stdout.close()


class NewIcons:
    """Times at which a new dial was sent to the panel."""

    def __init__(self):
        rule = "type='signal',interface='org.kde.StatusNotifierItem',member='NewIcon'"
        self.monitor = Process("dbus-monitor", "--session", "--profile", rule,
                               parse=lambda line: (time.monotonic(), line))
        self.close = self.monitor.terminate

    @property
    def times(self):
        return [at for at, line in self.monitor.lines if "NewIcon" in line]


class PolishTest(unittest.TestCase):
    # The silent output comes first: for a while after a purge the daemon only says that it has purged.
    def setUp(self):
        pactl("set-default-sink", SINK)
        words = self.id().split(".")[-1].split("_")
        self.probe = PolishProbe(PROGRAM, f"{SERVER}, {' '.join(words[1:4])}")
        self.addCleanup(self.probe.close)
        self.probe.open("Enabled")
        self.probe.expect_log("helper-client: Helper healthy at v1.2.3; no reinstall needed")

    def assert_times(self, told):
        """Checks that no step is early or late: each one waits for the step before, and the first one for the start."""
        times = self.probe.times()
        before = before_told = 0.0
        for name, seconds in told.items():
            self.assertGreaterEqual(times[name] - before, seconds - before_told - CLOCK_GRAIN, name)
            self.assertLess(times[name] - before, seconds - before_told + LATENESS, name)
            before, before_told = times[name], seconds

    def assert_listened(self):
        held_up, unserved = self.probe.listened()
        print(f"{self.probe.name}: held up {held_up:.3f} s by the probe, {unserved:.3f} s of it without a processor")
        self.assertGreaterEqual(held_up, WINDOW)
        self.assertLess(held_up - unserved, LISTENED + LATENESS)
        return held_up - unserved

    def expected_figure(self):
        before, after = (max(0, total - free) for total, free in self.probe.samples())
        lighter = (before - after) / before * 100 if after < before else 0.0
        print(f"{self.probe.name}: in use {before / 2**20:.1f} MiB before, {after / 2**20:.1f} MiB after:"
              f" {lighter:.2f} % lighter, shown {self.probe.figure()}", flush=True)
        return int(lighter) if lighter >= 2 else None

    def press_and_speak(self):
        self.probe.press()
        self.probe.expect("scale", "1.08", self.probe.started)

    def test_a_silent_output_is_purged_and_the_figure_is_that_of_two_real_samples(self):
        hog = Hog()
        self.addCleanup(hog.let_go)
        with Sound(None):
            self.probe.press()
            self.probe.expect_log("purgeMemory requested")
            hog.let_go()
            self.probe.expect("scale", "1.08", self.probe.started)
        self.assertEqual(self.probe.sentence(), POLISHED)
        self.assertEqual(self.probe.figure(), self.expected_figure())
        self.assertTrue(self.probe.logged("audio-detector: Audio probe: peak=0.000000"))
        self.assert_listened()
        self.probe.expect_log("helper-client: flushDNS reply: exit=0")
        self.probe.expect_log("helper-client: purgeMemory reply: ", LONGEST_PURGE)
        reply = next(line for line in self.probe.values("log") if "purgeMemory reply" in line)
        print(f"{self.probe.name}: {reply}")
        # A machine that writes files back slowly also purges its memory slowly.
        self.assertRegex(reply, r"exit=(0 output=Freed \d+ MiB|110 output=Not done in time; the work goes on)")
        if SERVER == "pulse":
            self.whole_ceremony()

    def test_music_is_flushed_and_not_purged(self):
        icons = NewIcons()
        self.addCleanup(icons.close)
        with Sound(-6) as sound:
            sound.until_heard()
            self.press_and_speak()
        self.assertEqual(self.probe.sentence(), SPARED)
        self.assertIsNone(self.probe.figure())
        self.assertTrue(self.probe.logged("audible=true"))
        self.assert_listened()
        self.probe.expect_log("helper-client: flushDNS reply: exit=0")
        self.assertTrue(self.probe.logged("popover: handleTap: audio active — purge will be skipped"))
        if SERVER == "pulse":
            self.whole_ceremony()
            self.assert_throttled(icons)
        self.assertFalse(self.probe.logged("purgeMemory requested"))

    def whole_ceremony(self):
        self.probe.finish()
        self.probe.print_times(FULL)
        self.probe.print_frames()
        self.assert_times(FULL)
        self.assertGreaterEqual(self.probe.calm_rise(), CALM_RISE - CLOCK_GRAIN)
        self.assertEqual(self.probe.turns_of_too_much_work(), [])
        self.assertLess(self.probe.working_share(), MOST_WORKING)
        self.assertLess(self.probe.blocked_share(), MOST_BLOCKED)

    def assert_throttled(self, icons):
        """Checks that the calm is shown, and that the panel gets at most four dials a second."""
        calms = int(self.probe.values("calms")[-1])
        seconds = FULL["end"] - FULL["grow"]
        end = self.probe.started + FULL["end"]
        sent = [at for at in icons.times if self.probe.started <= at <= end]
        print(f"{self.probe.name}: {calms} values of the calm and {len(sent)} dials sent in {seconds:g} s")
        most = 4 * (seconds + LATENESS) + 2
        self.assertLessEqual(calms, most)
        self.assertGreaterEqual(len(sent), 2)
        self.assertLessEqual(len(sent), most)

    def test_of_muted_music_nothing_is_heard(self):
        with Sound(-6):
            pactl("set-sink-mute", SINK, "1")
            try:
                self.press_and_speak()
            finally:
                pactl("set-sink-mute", SINK, "0")
        self.assert_polished_unheard()

    def test_suspended_output_is_not_woken(self):
        wait_for(lambda: sink_state(SINK) != "RUNNING", "the output rests")
        pactl("suspend-sink", SINK, "1")
        try:
            wait_for(lambda: sink_state(SINK) == "SUSPENDED", "the output is suspended")
            self.press_and_speak()
            self.assertEqual(sink_state(SINK), "SUSPENDED")
        finally:
            pactl("suspend-sink", SINK, "0")
        self.assert_polished_unheard()

    def assert_polished_unheard(self):
        held_up, unserved = self.probe.listened()
        print(f"{self.probe.name}: held up {held_up:.3f} s by the probe")
        self.assertLess(held_up - unserved, WINDOW)
        self.assertEqual(self.probe.sentence(), POLISHED)
        self.assertEqual(self.probe.figure(), self.expected_figure())
        self.assertTrue(self.probe.logged("helper-client: purgeMemory requested"))


if __name__ == "__main__":
    os.chdir(os.environ["HOME"])
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
