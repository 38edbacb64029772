"""audio_probe.py PROGRAM SERVER: the answers of the audio probe while a real sound server plays different sounds."""

import os
import socket
import subprocess
import sys
import tempfile
import unittest

from sound_server import SINK, Sound, pactl, sink_state
from waiting import holds, wait_for

PROGRAM, SERVER = sys.argv[1:3]
WINDOW, SET_UP_LIMIT, STATE_LIMIT = 0.15, 0.35, 0.1
# A machine under load may wake the program late.
SLACK = 0.25
LITTLE_MORE = 0.2
LONGER_THAN_A_FAILED_START = SET_UP_LIMIT + STATE_LIMIT + 1.0
# One server's plain sink renders two seconds ahead, and its monitor is silent for that time.
WITHOUT_A_LEAD = ("norewinds=1",) if SERVER == "pulse" else ()
LONGER_THAN_A_RAMP = 1.0  # a server changes the volume gradually, and sound that is already mixed keeps the old one


def recordings():
    return pactl("list", "short", "source-outputs").split()


def probe(**environment):
    out = subprocess.run(
        [PROGRAM], check=True, capture_output=True, text=True, env={**os.environ, **environment}, timeout=20
    ).stdout
    return parsed(out)


def has_fallback(answer):
    """Whether the server reported its state in time; on a busy machine it may not, and the cards are asked instead."""
    return answer["fallbackSeconds"] < STATE_LIMIT


def timely_probe():
    """The answer of a probe that the server served in time; on a busy machine some recordings start too late."""
    return wait_for(
        lambda: (answer := probe())["peak"] is not None and has_fallback(answer) and answer, "a recording in time"
    )


def prompt_probe():
    """The answer of a probe that did not listen for a whole window."""
    return wait_for(lambda: (answer := timely_probe())["seconds"] < WINDOW and answer, "an answer without listening")


def parsed(out):
    answer = {"log": []}
    for line in out.splitlines():
        name, value = line.split("=", 1)
        if name == "log":
            answer["log"].append(value)
        else:
            answer[name] = float(value)
    peaks = [line.split("peak=")[1].split(",")[0] for line in answer["log"] if "peak=" in line]
    answer["peak"] = float(peaks[0]) if peaks else None
    return answer


class SoundServerTest(unittest.TestCase):
    def setUp(self):
        pactl("set-default-sink", SINK)

    def tearDown(self):
        wait_for(lambda: not recordings(), "the end of the last recording")  # servers notice the end of a program late

    def tell(self, what, answer):
        print(
            f"{SERVER}: {what}: held up {answer['seconds']:.3f} s, peak {answer['peak']},"
            f" audible {answer['audible']:g}, fallback {answer['fallback']:g}",
            flush=True,
        )


class AudioProbeTest(SoundServerTest):
    def assert_listened(self, answer):
        self.assertGreaterEqual(answer["seconds"], WINDOW)
        self.assertLess(answer["seconds"], WINDOW + SET_UP_LIMIT + SLACK)

    def listen_to(self, decibels):
        with Sound(decibels):
            wait_for(lambda: probe()["peak"], "the sine has arrived")
            answer = timely_probe()
        self.tell(f"sine of {decibels} dB", answer)
        self.assert_listened(answer)
        self.assertAlmostEqual(answer["peak"], 10 ** (decibels / 20), delta=0.01 * 10 ** (decibels / 20))
        self.assertEqual(answer["fallback"], 1)
        return answer

    def test_a_loud_sine_is_audible(self):
        self.assertEqual(self.listen_to(-6)["audible"], 1)

    def test_a_sine_just_above_the_threshold_is_audible(self):
        self.assertEqual(self.listen_to(-33)["audible"], 1)

    def test_a_sine_below_the_threshold_is_not(self):
        self.assertEqual(self.listen_to(-36)["audible"], 0)

    def test_the_caller_is_held_up_for_little_more_than_the_window(self):
        with Sound(-6):
            answer = wait_for(lambda: (a := probe())["audible"] and a["seconds"] < LITTLE_MORE and a, "a probe in time", 20)
        self.tell("at its best", answer)
        self.assert_listened(answer)

    def test_silence_on_a_running_output_is_active_for_the_fallback_alone(self):
        with Sound(None):
            answer = wait_for(lambda: (a := timely_probe())["fallback"] and a, "the output runs")
        self.tell("silence while running", answer)
        self.assert_listened(answer)
        self.assertEqual((answer["peak"], answer["audible"], answer["fallback"]), (0.0, 0, 1))

    def test_a_muted_output_is_silent_at_once_and_active_for_the_fallback(self):
        with Sound(-6):
            pactl("set-sink-mute", SINK, "1")
            try:
                answer = prompt_probe()
            finally:
                pactl("set-sink-mute", SINK, "0")
        self.tell("muted", answer)
        self.assertEqual((answer["peak"], answer["audible"], answer["fallback"]), (0.0, 0, 1))
        self.assertLess(answer["seconds"], WINDOW)

    def at_volume(self, volume, decibels, heard=None, ask=timely_probe):
        """The probe's answer to a sine, once the output has that volume and the peak stays the same."""
        height = 10 ** (decibels / 20)

        def peak_of(expected, ask=timely_probe):
            return lambda: abs((a := ask())["peak"] - expected) <= 0.1 * expected and a

        with Sound(decibels):
            wait_for(peak_of(height), "the sine has arrived")
            pactl("set-sink-volume", SINK, volume)
            try:
                wait_for(lambda: volume in pactl("get-sink-volume", SINK), "the volume has arrived")
                at_volume = peak_of(height if heard is None else heard, ask)
                answer = wait_for(at_volume, f"the sine at a volume of {volume}")
                holds(at_volume, "the same peak", LONGER_THAN_A_RAMP)
            finally:
                pactl("set-sink-volume", SINK, "100%")
            wait_for(peak_of(height), "the volume is back")
        self.tell(f"sine of {decibels} dB at a volume of {volume}", answer)
        return answer

    def test_the_volume_of_the_output_makes_music_no_quieter(self):
        for volume in ("33%", "10%"):
            answer = self.at_volume(volume, -9)
            self.assertEqual((answer["audible"], answer["fallback"]), (1, 1))

    def test_the_volume_of_the_output_makes_quiet_noise_no_louder(self):
        for volume in ("100%", "33%", "150%"):
            answer = self.at_volume(volume, -40)
            self.assertEqual((answer["audible"], answer["fallback"]), (0, 1))

    def test_an_output_at_volume_zero_is_silent_at_once(self):
        answer = self.at_volume("0%", -6, heard=0.0, ask=prompt_probe)
        self.assertEqual((answer["peak"], answer["audible"], answer["fallback"]), (0.0, 0, 1))
        self.assertLess(answer["seconds"], WINDOW)

    def listen_on(self):
        """A program that is still listening, or None if the first sound came too late for its start."""
        listener = subprocess.Popen([PROGRAM, "15"], stdout=subprocess.PIPE, text=True)
        try:
            listener.wait(timeout=LONGER_THAN_A_FAILED_START)
        except subprocess.TimeoutExpired:
            self.assertNotEqual(recordings(), [])
            return listener
        listener.stdout.close()
        return None

    def test_a_recording_that_breaks_is_a_failed_start(self):
        module = pactl("load-module", "module-null-sink", "sink_name=vorli_breaking", *WITHOUT_A_LEAD).strip()
        try:
            pactl("set-default-sink", "vorli_breaking")
            with Sound(-6, sink="vorli_breaking"):
                with wait_for(self.listen_on, "a start that succeeds", 30) as listener:
                    pactl("unload-module", module)
                    module = None
                    out, _ = listener.communicate(timeout=30)
        finally:
            if module:
                pactl("unload-module", module)
        answer = parsed(out)
        self.tell("an output that is removed", answer)
        self.assertRegex(answer["log"][0], r"AudioDeviceStart failed: \d+")
        self.assertIsNone(answer["peak"])
        self.assertLess(answer["seconds"], 10)

    def test_an_output_that_does_not_run_is_silent_at_once(self):
        wait_for(lambda: sink_state(SINK) != "RUNNING", "the output rests")
        answer = prompt_probe()
        self.tell(f"not running ({sink_state(SINK).lower()})", answer)
        self.assertEqual((answer["peak"], answer["audible"], answer["fallback"]), (0.0, 0, 0))
        self.assertLess(answer["seconds"], WINDOW)

    def test_a_suspended_output_is_not_woken(self):
        wait_for(lambda: sink_state(SINK) != "RUNNING", "the output rests")
        pactl("suspend-sink", SINK, "1")
        try:
            wait_for(lambda: sink_state(SINK) == "SUSPENDED", "the output is suspended")
            answer = prompt_probe()
            self.assertEqual(sink_state(SINK), "SUSPENDED")
        finally:
            pactl("suspend-sink", SINK, "0")
        self.tell("suspended", answer)
        self.assertEqual((answer["peak"], answer["audible"], answer["fallback"]), (0.0, 0, 0))
        self.assertLess(answer["seconds"], WINDOW)

    def test_only_the_default_output_counts_and_never_the_default_source(self):
        other = pactl("load-module", "module-null-sink", "sink_name=vorli_other").strip()
        try:
            wait_for(lambda: sink_state("vorli_other"), "the other output is there")
            pactl("set-default-sink", SINK)
            pactl("set-default-source", "vorli_other.monitor")
            with Sound(None), Sound(-6, sink="vorli_other"):
                answer = wait_for(lambda: (a := timely_probe())["fallback"] and a, "the output runs")
                self.tell("sound elsewhere", answer)
                self.assertEqual((answer["peak"], answer["audible"]), (0.0, 0))
        finally:
            pactl("unload-module", other)
        wait_for(lambda: sink_state("vorli_other") is None, "the other output is gone")

    def test_an_absent_server_is_no_sound(self):
        answer = probe(PULSE_SERVER=f"unix:{os.environ['XDG_RUNTIME_DIR']}/nobody")
        self.tell("no server", answer)
        self.assertEqual((answer["peak"], answer["audible"], answer["fallback"]), (None, 0, 0))
        self.assertEqual(answer["log"], ["CreateProcessTap failed: 6. Falling back to legacy probe."])
        self.assertLess(answer["seconds"], WINDOW)

    def test_a_server_that_hangs_holds_nobody_up_for_long(self):
        path = os.path.join(os.environ["XDG_RUNTIME_DIR"], "mute.sock")
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(path)
            server.listen()
            answer = probe(PULSE_SERVER=f"unix:{path}")
        os.unlink(path)
        self.tell("server hangs", answer)
        self.assertEqual((answer["audible"], answer["fallback"]), (0, 0))
        self.assertEqual(answer["log"], ["CreateProcessTap failed: 8. Falling back to legacy probe."])
        self.assertGreaterEqual(answer["seconds"], SET_UP_LIMIT)
        self.assertLess(answer["seconds"], SET_UP_LIMIT + STATE_LIMIT + SLACK)

    def test_without_the_sound_library_the_cards_are_asked(self):
        with tempfile.TemporaryDirectory() as folder:
            hollow = os.path.join(folder, "libpulse.so.0")
            subprocess.run(["cc", "-shared", "-x", "c", "-o", hollow, os.devnull], check=True)
            answer = probe(LD_LIBRARY_PATH=folder)
        self.tell("no sound library", answer)
        self.assertEqual((answer["canListen"], answer["audible"], answer["log"]), (0, 0, []))


if SERVER == "pulse":

    class LateSoundTest(SoundServerTest):
        """A player that sends two seconds at a time. Only one of the two servers accepts them like this."""

        def test_is_answered_by_the_fallback(self):
            slow = pactl("load-module", "module-null-sink", "sink_name=vorli_slow").strip()
            try:
                pactl("set-default-sink", "vorli_slow")
                with Sound(-6, sink="vorli_slow", latency=("--latency-msec=2000",)):
                    answer = wait_for(
                        lambda: (a := probe())["peak"] is None and has_fallback(a) and a, "a start that fails"
                    )
            finally:
                pactl("unload-module", slow)
            self.tell("late sound", answer)
            self.assertEqual(answer["log"][0], "AudioDeviceStart failed: 8")
            self.assertEqual((answer["audible"], answer["fallback"]), (1, 1))
            self.assertGreaterEqual(answer["seconds"], SET_UP_LIMIT)
            self.assertLess(answer["seconds"], SET_UP_LIMIT + STATE_LIMIT + SLACK)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=0)
