"""The installed program while nothing happens, compared with a bare Qt program with an icon in the tray."""

import os

from measuring.crowd import Crowd
from measuring.gates import gates
from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "processor time, wake-ups and memory of the installed program while nothing happens"
PROCESSES = 300
MEMORY = {"resident": "Rss", "proportional": "Pss", "private dirty": "Private_Dirty"}


def _qt_programs():
    """Number of programs that share Qt's pages now: each one lowers the proportional memory of the others."""
    count = 0
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{pid}/maps", encoding="utf-8", errors="replace") as file:
                count += "libQt6Core" in file.read()
        except OSError:
            continue
    return count


def _note_conditions(report, result, others_with_qt):
    others = max(window["machine_busy_percent"] for window in result["idle"])
    report.note(f"{result['processes']} processes; the machine's processors were busy {others:.0f} % of the time at most")
    if others > 25:
        report.note("the machine was not quiet: what other programs do moves the dial, and each new picture is a wake-up")
    if result["openings"]:
        report.note(f"memory after {result['openings']} openings of the popover")
    else:
        report.note("this build has no popover: memory is that of a program that was never opened")
    report.note(f"{others_with_qt} other Qt programs ran at the start; they lower the proportional memory")


def measure(build, quick):
    report = Report("idle, popover shut; floor: a bare Qt tray program with 13 ready pictures, a new one every 15 s")
    floor = build.program("vorli_bare_tray", "bench/vorli_bare_tray")
    others_with_qt = _qt_programs()
    with Stage(build) as stage, Crowd(build, PROCESSES):
        result = stage.run("idle", 1 if quick else 3, 20 if quick else 60, stage.add(floor))
    for name, unit, key in (("processor", "ms/min", "cpu_ms_per_minute"), ("wake-ups", "1/min", "wakeups_per_minute")):
        report.add(f"{name} of the floor", unit, [window[key] for window in result["floor"]], digits=1)
        report.add(name, unit, [window[key] for window in result["idle"]], digits=1,
                   **gates("idle", name))
    for name, key in MEMORY.items():
        report.add(f"{name} of the floor", "MiB", result["floor_memory"][key], digits=1)
        report.add(name, "MiB", result["memory"][key], digits=1, **gates("idle", name))
    _note_conditions(report, result, others_with_qt)
    return report
