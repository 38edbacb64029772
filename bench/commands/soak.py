"""The whole program in fast motion for a long time, while its daemon is killed at random."""

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

SUMMARY = ("10,000 fast ticks with a changing dial, openings and polishes while the daemon is killed, then ten minutes of "
           "everything at once for the daemon: nothing grows")
PERIOD_MILLISECONDS = 60
LONGEST_PAUSE = 12.0  # seconds between two kills, at most
SEED = 1
SIZE_FILE = re.compile(r"/proc/\d+/statm$")


def _lasting(sample):
    """Descriptors without those of the largest processes' sizes, of which there are as many as there are such."""
    return sum(not SIZE_FILE.match(file) for file in sample["files"])


def _daemons(program):
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            if os.readlink(f"/proc/{pid}/exe") == program:
                yield int(pid)
        except OSError:
            continue


def _kill_at_random(session, program, ready):
    """Until the session has ended; how many daemons were killed."""
    dice, killed, due = random.Random(SEED), 0, 0.0
    while session.poll() is None:
        if os.path.exists(ready) and time.monotonic() > due:
            due = time.monotonic() + dice.uniform(0.0, LONGEST_PAUSE)
            for pid in _daemons(program):
                try:
                    os.kill(pid, signal.SIGKILL)
                    killed += 1
                except ProcessLookupError:
                    pass
        time.sleep(0.2)
    return killed


def _soak_the_daemon(report, build, seconds):
    """What the daemon's own rung says of it, on a bus and with an authority of its own."""
    words = ["tests/helper/run", "--soak", str(seconds)] + ([] if build.may_build else ["--no-build"])
    done = subprocess.run(words, capture_output=True, text=True, errors="replace", check=False)
    figures = [line.split(maxsplit=1)[1] for line in done.stdout.splitlines() if line.lstrip().startswith(("kept ", "BROKEN "))]
    for figure in figures:
        report.note(f"the daemon in {seconds} s: {figure}")
    if done.returncode != 0 or not figures:
        report.fail(f"the daemon's soak left with {done.returncode}:\n" + (done.stdout + done.stderr)[-2000:])


def measure(build, quick):
    ticks, openings, polishes = (1000, 20, 5) if quick else (10000, 200, 50)
    report = Report(f"{ticks:,} ticks, one each {PERIOD_MILLISECONDS} ms and those of the program itself")
    program = build.program("vorli_soak", "bench/vorli_soak")
    with Stage(build) as stage:
        stage.add(program)
        session = stage.start("soak", ticks, openings, polishes, PERIOD_MILLISECONDS)
        killed = _kill_at_random(session, os.path.join(stage.prefix, "libexec/vorli/vorli-helper"),
                                 os.path.join(stage.out, "ready"))
        result = stage.result(session)
    samples, end = result["samples"], result["samples"][-1]
    warm = samples[2]  # two slices fill every cache
    dirty = [sample["Private_Dirty"] for sample in samples]
    report.add("private dirty", "MiB", dirty, digits=2)
    report.add("growth of private dirty", "KiB", (end["Private_Dirty"] - warm["Private_Dirty"]) * 1024, digits=0,
               **gates("soak", "growth"))
    report.add("descriptors", "", [sample["descriptors"] for sample in samples], digits=0)
    report.add("descriptors kept", "", _lasting(end) - _lasting(warm), digits=0, **gates("soak", "descriptors"))
    report.add("processor time of a tick", "ms", (end["cpu_ms"] - samples[0]["cpu_ms"]) / ticks, digits=2)
    kept = {file: count for file, count in (Counter(end["files"]) - Counter(warm["files"])).items()
            if not SIZE_FILE.match(file)}
    if kept:
        report.note("descriptors more than before: " + ", ".join(f"{count} x {file}" for file, count in kept.items()))
    most = max(sample["processes"] for sample in samples)
    report.note(f"{warm['processes']:,} processes on the machine when it was warm, {most:,} at most: each takes its row")
    report.note(f"{result['openings']} openings of the popover, {result['polishes']} polishes, "
                f"{result['replies']} purges answered, {killed} daemons killed, {result['seconds']:.0f} s")
    if result["exit"] != 0:
        report.fail(f"the program left with {result['exit']}")
    _soak_the_daemon(report, build, 20 if quick else 600)
    return report
