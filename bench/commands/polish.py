"""Whole polishes, without the daemon's work, and the time after them."""

import subprocess

from measuring.gates import gates
from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "processor time of a whole ceremony without the purge, wake-ups while its calm decays, and when that ends"
BUSY_LOOPS = 5


def _add_end_of_calm(report, build, seconds):
    """Measures the clock of the calm alone, in a process of its own instead of the installed program."""
    calm = build.program("vorli_calm", "bench/vorli_calm")
    loops = [subprocess.Popen(["/bin/sh", "-c", "while :; do :; done"]) for _ in range(BUSY_LOOPS)]
    try:
        late = subprocess.run([calm, str(seconds)], check=True, capture_output=True, text=True).stdout
    finally:
        for loop in loops:
            loop.kill()
            loop.wait()
    report.add(f"end of a calm of {seconds} s beside {BUSY_LOOPS} busy loops, late by", "ms", float(late), digits=0,
               **gates("polish", "end of the calm beside busy loops"))


def measure(build, quick):
    seconds = 30 if quick else 300
    report = Report("polishes; the daemon's own work is another process and not counted")
    with Stage(build) as stage:
        result = stage.run("polish", 1 if quick else 5, seconds)
    for place, name in ((0, "Vorli"), (1, "X server")):
        quiet = [windows[place]["cpu_ms"] for windows in result["quiet"]]
        report.add(f"15 quiet seconds, {name}", "ms", quiet, digits=1)
        report.add(f"15 seconds of a polish of the menu, {name}", "ms",
                   [windows[place]["cpu_ms"] for windows in result["ceremonies"]], digits=1)
        report.add(f"a ceremony in the popover, {name}", "ms",
                   [windows[place]["cpu_ms"] for windows in result["popover"]], digits=1)
    for key, name in (("idle", "idle before"), ("decay", "decay")):
        limits = {what: gates("polish", f"decay, {what}") if key == "decay" else {}
                  for what in ("wake-ups", "processor time")}
        report.add(f"wake-ups, {seconds} s of {name}", "1/min", result[key]["wakeups_per_minute"], digits=1,
                   **limits["wake-ups"])
        report.add(f"processor time, {seconds} s of {name}", "ms/min", result[key]["cpu_ms_per_minute"], digits=1,
                   **limits["processor time"])
        report.note(f"{name}: the machine's processors were busy {result[key]['machine_busy_percent']:.0f} % of the time")
    _add_end_of_calm(report, build, seconds)
    if result["exit"] != 0:
        report.fail(f"the program exited with {result['exit']}")
    return report
