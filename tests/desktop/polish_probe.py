"""One running program that polishes, and its output so far."""

import os
import time

from process import Process
from waiting import Missing, wait_for

# The two timelines, in seconds from the start of the ring's drain.
FULL = {"grow": 2.65, "shrink": 3.25, "close": 5.65, "rise": 10.65, "end": 15.05}
GENTLE = {"grow": 1.3, "shrink": 1.9, "close": 3.1, "rise": 3.5, "end": 6.5}
CALM_RISE = 0.9
# No step may be early. On a busy machine a step is late by the scheduler's delay; each step waits for the one before.
CLOCK_GRAIN, LATENESS = 0.001, 1.5
FRAME = 0.016
# With this many busy processes, no turn measures the program alone: frames are reported but not judged.
CROWD = 1000

APPROVE = "A gentle tidy. Approve Vorli's helper for a full polish."
OUT_OF_REACH = "A gentle tidy. Couldn't reach the helper for a full polish."
SPARED = "A gentle tidy. Held off the deep polish so your audio stays smooth."
POLISHED = "Now, your computer has room to breathe."
BUDGET_EXCEEDED = (
    "popover: handleTap: helper exceeded 2.650000s display budget; treating as optimistic success and letting "
    "actual reclaim land in background"
)


def event(line):
    """Time, word and value of a printed line."""
    at, word, value = line.split("\t")
    return float(at), word, value


class PolishProbe:
    def __init__(self, program, name, **environment):
        self.name = name
        self._process = Process(program, environment=environment, parse=event)
        self.events, self.send = self._process.lines, self._process.tell

    def close(self):
        try:
            self._process.terminate(10)
        except Missing as missing:
            print(f"{self.name}: {missing}, and was killed", flush=True)

    def values(self, word, since=0.0):
        return [value for at, what, value in list(self.events) if what == word and at >= since]

    def time_of(self, word, value=None, since=0.0):
        """Time of the first such line, or None."""
        return next((at for at, what, told in list(self.events)
                     if what == word and at >= since and value in (None, told)), None)

    def logged(self, text, since=0.0):
        return any(text in line for line in self.values("log", since))

    def expect(self, word, value=None, since=0.0, seconds=20):
        """Waits for the line and returns its time."""
        return wait_for(lambda: self.time_of(word, value, since), f"{self.name}: {word} {value or ''}", seconds)

    def expect_log(self, text, seconds=20):
        try:
            wait_for(lambda: self.logged(text), f"{self.name}: the line {text}", seconds)
        except AssertionError:
            print("\n".join(f"{at:.3f}\t{word}\t{value}" for at, word, value in self.events), flush=True)
            raise

    def open(self, helper):
        """Waits until the start is over and the helper has this status, and shows the popover."""
        wait_for(lambda: self.values("helper")[-1:] == [helper], f"{self.name}: a helper that is {helper}")
        self.send("open")
        self.expect("state", "critical")

    def press(self):
        self.pressed = time.monotonic()
        self.send("press")
        self.started = self.expect("ring", "0.000000", self.pressed)

    def finish(self):
        self.crowd = 0

        def is_over():
            self.crowd = max(self.crowd, sum(name.isdigit() for name in os.listdir("/proc")))
            return self.time_of("releasing", "0", self.started)

        wait_for(is_over, f"{self.name}: the end of the polish", FULL["end"] + 5 * LATENESS, 0.2)

    def sentence(self):
        """The sentence that is shown when the ring grows."""
        grown = self.time_of("scale", "1.08", self.pressed)
        return [value for at, word, value in self.events if word == "sentence" and self.pressed <= at <= grown][-1]

    def figure(self):
        """The figure beside the sentence, or None."""
        grown = self.time_of("scale", "1.08", self.pressed)
        told = [int(value) for at, word, value in self.events
                if word == "percentage" and self.pressed <= at <= grown][-1]
        return None if told < 0 else told

    def samples(self):
        """The memory before the work and at the sentence, as (total, free)."""
        grown = self.time_of("scale", "1.08", self.pressed)
        told = [tuple(int(number) for number in value.split()) for at, word, value in self.events
                if word == "sample" and self.started <= at <= grown]
        return told[0], told[-1]

    def times(self):
        """Times of the steps, in seconds from the start of the drain."""
        since = self.started
        return {name: at - since for name, at in {
            "grow": self.time_of("scale", "1.08", since),
            "shrink": self.time_of("scale", "1.00", since),
            "close": self.time_of("close", None, since),
            "rise": self.time_of("ring", "1.000000", since),
            "end": self.time_of("releasing", "0", since),
        }.items()}

    def calm_rise(self):
        """How long the calm took to rise. It begins when the ring grows; its first value may be shown later."""
        return self.time_of("calm", "1.000000", self.pressed) - self.time_of("scale", "1.08", self.pressed)

    def listened(self):
        """Seconds for which the audio probe held up the press, and seconds of these in which no processor was free."""
        return tuple(float(number) for number in self.values("probe", self.pressed)[-1].split())

    def long_turns(self):
        """Turns after the audio probe that took the thread half a frame or longer: start, work, blocked, unserved."""
        return [tuple(float(number) for number in value.split()) for value in self.values("long", self.pressed)]

    def turns_of_too_much_work(self):
        """Turns that a user would notice. One lost frame does not count: the same work takes twice as long while other
        programs use the processor and its caches, and while purged pages are read again."""
        return [] if self.crowd >= CROWD else [turn for turn in self.long_turns() if turn[1] > 3 * FRAME]

    def _share_of_turns(self, is_long):
        turns = int(self.values("turns", self.pressed)[-1].split()[0])
        return 0 if self.crowd >= CROWD else sum(map(is_long, self.long_turns())) / turns

    def working_share(self):
        """The share of all turns that worked for longer than a frame."""
        return self._share_of_turns(lambda turn: turn[1] > FRAME)

    def blocked_share(self):
        """The share of all turns that were blocked for longer than a frame."""
        return self._share_of_turns(lambda turn: turn[2] > FRAME)

    def print_times(self, told):
        times = self.times()
        steps = ", ".join(f"{name} {times[name]:.3f} ({seconds:g})" for name, seconds in told.items())
        print(f"{self.name}: {steps}; the calm rose in {self.calm_rise():.3f} ({CALM_RISE:g})", flush=True)

    def print_frames(self):
        count, work, most_work, blocked, unserved = self.values("turns", self.pressed)[-1].split()
        beats, median, most, longest = self.values("beat", self.pressed)[-1].split()
        print(f"{self.name}: {count} turns of {float(work) * 1000:.0f} ms of work in all; the longest worked"
              f" {float(most_work) * 1000:.1f} ms, was blocked {float(blocked) * 1000:.1f} ms, waited for a processor"
              f" {float(unserved) * 1000:.1f} ms; {beats} gaps of the beat: median {float(median) * 1000:.1f},"
              f" 99 % {float(most) * 1000:.1f}, longest {float(longest) * 1000:.1f} ms; {self.crowd} processes", flush=True)
        for at, work, blocked, unserved in sorted(self.long_turns(), key=lambda turn: turn[1] + turn[2])[-4:]:
            print(f"{self.name}:   at {at - self.started:.2f} s: worked {work * 1000:.1f} ms,"
                  f" blocked {blocked * 1000:.1f} ms, unserved {unserved * 1000:.1f} ms", flush=True)
