"""The session's sound server, and a player for it."""

import array
import math
import subprocess
import tempfile

from waiting import wait_for

SINK = "vorli_null"
RATE = 44100


def pactl(*arguments):
    return subprocess.run(["pactl", *arguments], check=True, capture_output=True, text=True).stdout


def sink_state(sink):
    rows = [row.split("\t") for row in pactl("list", "short", "sinks").splitlines()]
    return next((row[-1] for row in rows if row[1] == sink), None)


class Sound:
    """Plays a 440 Hz sine of `decibels` below full scale, or digital silence, until the end of the block."""

    def __init__(self, decibels, sink=SINK, latency=("--latency-msec=50",)):
        self.decibels, self.sink, self.latency = decibels, sink, latency

    def __enter__(self):
        height = 0.0 if self.decibels is None else 10 ** (self.decibels / 20) * 32767
        period = [round(height * math.sin(2 * math.pi * 440 * i / RATE)) for i in range(RATE)]
        self.file = tempfile.TemporaryFile()
        for _ in range(60):
            array.array("h", period).tofile(self.file)
        self.file.seek(0)
        raw = ("--raw", "--format=s16le", f"--rate={RATE}", "--channels=1", f"--device={self.sink}")
        self.player = subprocess.Popen(["pacat", "--playback", *raw, *self.latency], stdin=self.file)
        wait_for(lambda: sink_state(self.sink) == "RUNNING", f"{self.sink} runs")
        return self

    def until_heard(self):
        """Waits until the monitor has the sound, which is shortly after the output has started."""
        command = ["parec", "--raw", f"--device={self.sink}.monitor", "--latency-msec=20"]
        with subprocess.Popen(command, stdout=subprocess.PIPE) as recorder:
            try:
                wait_for(lambda: any(recorder.stdout.read(1024)), "the sound")
            finally:
                recorder.kill()

    def __exit__(self, *_):
        self.player.terminate()
        self.player.wait()
        self.file.close()
