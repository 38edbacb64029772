"""What many applications and windows add to the program at rest and to a tick."""

import statistics

from measuring.crowd import Crowd
from measuring.gates import gates
from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "what 60 applications add: wake-ups and memory at rest, and processor time of a tick"
PROCESSES = 300
ADDED = {"wake-ups": "1/min", "private dirty": "MiB"}


def _values(phase):
    return {"wake-ups": [window["wakeups_per_minute"] for window in phase["windows"]],
            "private dirty": [phase["memory"]["Private_Dirty"]]}


def measure(build, quick):
    report = Report("60 applications, 40 with a window and 20 with an icon, beside the same session without them")
    with Stage(build) as stage, Crowd(build, PROCESSES):
        stage.add(build.program("vorli_small_application", "bench/vorli_small_application"))
        stage.add(build.bench())
        result = stage.run("applications", *((1, 20, 12) if quick else (3, 60, 60)))
    without, beside = _values(result["without"]), _values(result["with"])
    for name, unit in ADDED.items():
        report.add(f"{name} without them", unit, without[name])
        report.add(f"{name} with them", unit, beside[name])
        report.add(f"{name}, added", unit, statistics.median(beside[name]) - statistics.median(without[name]),
                   **gates("applications", f"{name}, added"))
    times = result["ticks"]
    report.add("refresh() without any application", "us", times["none_us"], digits=0)
    report.add(f"refresh() with {times['applications']}", "us", times["session_us"], digits=0)
    report.add(f"refresh() with {times['applications']}", "x without",
               [full / bare for full, bare in zip(times["session_us"], times["none_us"])], digits=3,
               **gates("applications", "refresh()"))
    report.note("times of a tick are processor time; both kinds take turns in one process")
    return report
