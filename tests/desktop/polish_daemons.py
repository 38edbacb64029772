"""polish_daemons.py PROGRAM HELPER AUTHORITY: polishes with a daemon that is killed, stopped, slow, or not allowed.

All of them run at the same time, each on its own system bus, because a polish is fifteen seconds of waiting.
"""

import os
import shutil
import signal
import sys
import unittest

from polish_probe import (
    APPROVE, BUDGET_EXCEEDED, CALM_RISE, CLOCK_GRAIN, FULL, GENTLE, LATENESS, POLISHED, PolishProbe,
)
from scripted_bus import ScriptedBus
from waiting import wait_for

PROGRAM, HELPER, AUTHORITY = sys.argv[1:4]
NEVER = -1
SLOW_MILLISECONDS = 4000


class PolishDaemonsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.buses = {
            "killed": ScriptedBus(HELPER, AUTHORITY, f"purge_ms {NEVER}\n"),
            "stopped": ScriptedBus(HELPER, AUTHORITY),
            "slow": ScriptedBus(HELPER, AUTHORITY, f"purge_ms {SLOW_MILLISECONDS}\npurge late\n"),
            "failing": ScriptedBus(HELPER, AUTHORITY, "purge_code 13\npurge Permission denied\n"),
            "awaiting approval": ScriptedBus(HELPER, AUTHORITY, verdicts="purge-memory challenge\n"),
        }
        cls.probes = {name: cls.start(name, bus.address) for name, bus in cls.buses.items()}
        cls.probes["without a bus"] = cls.start("without a bus", "unix:path=/nonexistent")
        try:
            cls.play()
        except BaseException:
            cls.tearDownClass()
            raise

    @classmethod
    def start(cls, name, system_bus):
        home = os.path.join(os.environ["HOME"], name.replace(" ", "-"))
        os.mkdir(home)
        folders = {f"XDG_{kind}_HOME": os.path.join(home, kind) for kind in ("CONFIG", "DATA", "STATE", "CACHE")}
        shutil.copytree(os.path.join(os.environ["XDG_CONFIG_HOME"], "Vorli"), os.path.join(home, "CONFIG", "Vorli"))
        # There is no session bus, because it allows only one program, and no sound server, so that nothing is heard.
        return PolishProbe(PROGRAM, name, HOME=home, DBUS_SYSTEM_BUS_ADDRESS=system_bus,
                           DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent", **folders)

    @classmethod
    def play(cls):
        for name, probe in cls.probes.items():
            awaited = {"awaiting approval": "Awaiting your approval", "without a bus": "Unknown (100)"}
            probe.open(awaited.get(name, "Enabled"))
            if name not in awaited:
                probe.expect_log("Helper healthy at v1.2.3; no reinstall needed")
        cls.buses["stopped"].signal_daemon(signal.SIGSTOP)
        for probe in cls.probes.values():
            probe.press()
        wait_for(lambda: "purge" in cls.buses["killed"].requests(), "the purge has reached the daemon")
        cls.buses["killed"].signal_daemon(signal.SIGKILL)
        for probe in cls.probes.values():
            probe.finish()

    @classmethod
    def tearDownClass(cls):
        for probe in cls.probes.values():
            probe.close()
        for bus in cls.buses.values():
            bus.close()

    def assert_times(self, probe, told):
        probe.print_times(told)
        times = probe.times()
        before = before_told = 0.0
        for name, seconds in told.items():
            self.assertGreaterEqual(times[name] - before, seconds - before_told - CLOCK_GRAIN, name)
            self.assertLess(times[name] - before, seconds - before_told + LATENESS, name)
            before, before_told = times[name], seconds
        self.assertGreaterEqual(probe.calm_rise(), CALM_RISE - CLOCK_GRAIN)

    def assert_optimistic(self, probe):
        self.assertEqual(probe.sentence(), POLISHED)
        self.assertIn(BUDGET_EXCEEDED, probe.values("log"))
        self.assert_times(probe, FULL)

    def test_a_daemon_that_is_killed_during_the_purge_counts_as_a_success(self):
        probe = self.probes["killed"]
        self.assert_optimistic(probe)
        self.assertTrue(probe.logged("helper-client: flushDNS reply: exit=0"))
        self.assertFalse(probe.logged("purgeMemory reply"))

    def test_a_daemon_that_is_stopped_counts_as_a_success(self):
        probe = self.probes["stopped"]
        self.assert_optimistic(probe)
        self.assertEqual(self.buses["stopped"].requests().count("purge"), 0)
        timed_out = probe.time_of("log", "helper-client: flushDNS: XPC reply timed out after 5s")
        print(f"stopped: the flush was given up after {timed_out - probe.started:.3f} s")
        self.assertGreaterEqual(timed_out - probe.started, 5 - CLOCK_GRAIN)

    def test_a_slow_purge_lands_during_the_hold(self):
        probe = self.probes["slow"]
        self.assert_optimistic(probe)
        late = probe.time_of("log", "helper-client: purgeMemory reply: exit=0 output=late") - probe.started
        print(f"slow: the purge landed after {late:.3f} s")
        self.assertGreaterEqual(late, SLOW_MILLISECONDS / 1000 - CLOCK_GRAIN)
        self.assertLess(late, probe.times()["rise"])

    def test_a_purge_that_fails_has_reached_the_daemon(self):
        probe = self.probes["failing"]
        self.assertEqual(probe.sentence(), POLISHED)
        self.assertTrue(probe.logged("purge exit=13 reachable=true"))
        self.assert_times(probe, FULL)

    def test_a_daemon_that_awaits_approval_is_left_alone(self):
        probe = self.probes["awaiting approval"]
        self.assert_gentle(probe)
        self.assertEqual([line for line in self.buses["awaiting approval"].requests() if line in ("flush", "purge")], [])

    def test_without_a_system_bus_the_tidy_is_gentle(self):
        self.assert_gentle(self.probes["without a bus"])

    def assert_gentle(self, probe):
        self.assertEqual(probe.sentence(), APPROVE)
        self.assertIsNone(probe.figure())
        spoken = probe.time_of("sentence", APPROVE, probe.pressed)
        self.assertLessEqual(spoken, probe.started, "its words are there before the ring drains")
        self.assertFalse(probe.logged("purgeMemory requested") or probe.logged("flushDNS requested"))
        self.assert_times(probe, GENTLE)

    def test_without_a_sound_server_the_press_is_not_held_up(self):
        for probe in self.probes.values():
            held_up, unserved = probe.listened()
            self.assertLess(held_up - unserved, 0.15)
            self.assertTrue(probe.logged("audio-detector: CreateProcessTap failed: "))

    def test_no_turn_of_the_main_thread_is_seen(self):
        """Long turns count only if each program has some; otherwise the machine caused them."""
        for probe in self.probes.values():
            probe.print_frames()
        for probe in self.probes.values():
            self.assertEqual(probe.turns_of_too_much_work(), [], probe.name)
        for share in (PolishProbe.working_share, PolishProbe.blocked_share):
            self.assertEqual(min(map(share, self.probes.values())), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
