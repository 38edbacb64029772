"""Whole polishes without what the daemon does, and the time after them."""

from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "processor time of a whole ceremony without the purge, and wake-ups while its calm decays"


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
        report.add(f"wake-ups, {seconds} s of {name}", "1/min", result[key]["wakeups_per_minute"], digits=1)
        report.add(f"processor time, {seconds} s of {name}", "ms/min", result[key]["cpu_ms_per_minute"], digits=1)
        report.note(f"{name}: the machine's processors were busy {result[key]['machine_busy_percent']:.0f} % of the time")
    if result["exit"] != 0:
        report.fail(f"the program left with {result['exit']}")
    return report
