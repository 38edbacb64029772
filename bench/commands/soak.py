"""Runs the whole program for a long time in fast motion, and kills its daemon at random."""

import functools
import math
import operator
import os
import random
import re
import signal
import subprocess
import time
from collections import Counter

from measuring.gates import gates
from measuring.report import Report
from measuring.stage import Stage
from waiting import wait_for

SUMMARY = ("10,000 fast ticks with a changing dial, openings and polishes while the daemon is killed, then ten minutes of "
           "everything at once for the daemon, attackers included: nothing grows")
PERIOD_MILLISECONDS = 60
LONGEST_PAUSE = 12.0  # seconds between two kills, at most
SEED = 1
SIZE_FILE = re.compile(r"/proc/\d+/statm$")
EARLY = slice(2, 5)  # of the samples: the first two fill the caches
LEAST_SWING = 0.5  # of the ring; with less, the dial did not change


def _lasting(sample):
    """Counts descriptors by their targets. Leaves out the open size files of the largest processes, whose number varies
    with the processes."""
    return Counter(file for file in sample["files"] if not SIZE_FILE.match(file))


def _add_growth(report, samples):
    """Compares the end with the lowest of several early samples: what one of them had for a moment, such as a connection
    to the daemon, must not hide growth."""
    early, end = samples[EARLY], samples[-1]
    dirty = [sample["Private_Dirty"] for sample in samples]
    report.add("private dirty", "MiB", dirty, digits=2)
    report.add("growth of private dirty", "KiB", (dirty[-1] - min(dirty[EARLY])) * 1024, digits=0,
               **gates("soak", "growth"))
    report.add("descriptors", "", [sample["descriptors"] for sample in samples], digits=0)
    least = min(_lasting(sample).total() for sample in early)
    report.add("descriptors kept", "", _lasting(end).total() - least, digits=0, **gates("soak", "descriptors"))
    report.add("threads", "", [sample["threads"] for sample in samples], digits=0)
    cpu, ticks = (end[key] - samples[0][key] for key in ("cpu_ms", "ticks"))
    report.add("processor time of a tick", "ms", cpu / ticks, digits=2)
    before = functools.reduce(operator.and_, map(_lasting, early))  # the lowest count of each kind
    if kept := _lasting(end) - before:
        report.note("descriptors more than before: " + ", ".join(f"{count} x {file}" for file, count in kept.items()))
    most = max(sample["processes"] for sample in samples)
    report.note(f"{early[0]['processes']:,} processes on the machine when it was warm, {most:,} at most: each needs a row")


def _add_events(report, result, asked, killed):
    """Fails the soak when something happened less often than requested: then it proves nothing."""
    for name, count in asked.items():
        if result[name] < count:
            report.fail(f"only {result[name]} of {count} {name} happened")
    swing = max(result["rings"]) - min(result["rings"])
    report.note(f"{result['openings']} openings of the popover, {result['polishes']} polishes, "
                f"{result['replies']} purges answered, {killed} daemons killed, {result['seconds']:.0f} s; "
                f"the ring moved over {swing:.2f}")
    if swing < LEAST_SWING:
        report.fail(f"the dial hardly moved: the ring's values lay within {swing:.2f}")
    if killed == 0:
        report.fail("no daemon was killed")
    if result["replies"] == 0:
        report.fail("no purge was answered")
    if result["exit"] != 0:
        report.fail(f"the program exited with {result['exit']}")


def _daemons(program):
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            if os.readlink(f"/proc/{pid}/exe") == program:
                yield int(pid)
        except OSError:
            continue


def _kill_at_random(session, program, ready):
    """Waits for the end of the session; returns how many daemons were killed."""
    dice, killed, due = random.Random(SEED), 0, 0.0

    def has_ended():
        nonlocal killed, due
        if os.path.exists(ready) and time.monotonic() > due:
            due = time.monotonic() + dice.uniform(0.0, LONGEST_PAUSE)
            for pid in _daemons(program):
                try:
                    os.kill(pid, signal.SIGKILL)
                    killed += 1
                except ProcessLookupError:
                    pass
        return session.poll() is not None

    wait_for(has_ended, "the end of the session", math.inf, pause=0.2)
    return killed


def _soak_the_daemon(report, build, seconds):
    """Result of the daemon's own soak, on a private bus with a private polkit."""
    words = ["tests/daemon/run", "--soak", str(seconds)] + ([] if build.may_build else ["--no-build"])
    done = subprocess.run(words, capture_output=True, text=True, errors="replace", check=False)
    figures = [line.split(maxsplit=1)[1] for line in done.stdout.splitlines() if line.lstrip().startswith(("kept ", "BROKEN "))]
    for figure in figures:
        report.note(f"the daemon in {seconds} s: {figure}")
    if done.returncode != 0 or not figures:
        report.fail(f"the daemon's soak exited with {done.returncode}:\n" + (done.stdout + done.stderr)[-2000:])


def measure(build, quick):
    ticks, openings, polishes = (1000, 20, 5) if quick else (10000, 200, 50)
    report = Report(f"{ticks:,} ticks, one every {PERIOD_MILLISECONDS} ms and the program's own")
    program = build.program("vorli_soak", "bench/vorli_soak")
    with Stage(build) as stage:
        stage.add(program)
        session = stage.start("soak", ticks, openings, polishes, PERIOD_MILLISECONDS)
        killed = _kill_at_random(session, os.path.join(stage.prefix, "libexec/vorli/vorli-helper"),
                                 os.path.join(stage.out, "ready"))
        result = stage.result(session)
    _add_growth(report, result["samples"])
    _add_events(report, result, {"openings": openings, "polishes": polishes}, killed)
    _soak_the_daemon(report, build, 20 if quick else 600)
    return report
