"""What the windows cost: an opening of the settings, a list of a thousand items, a frame of it, and their memory."""

import statistics

from measuring.gates import gates
from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "openings of the settings beside a bare window's; a thousand startup items; memory before, with and after"
SESSION = ("--compositor", "picom")
LEFT_AFTER = {"closed": "the settings were closed", "list-closed": "the list was closed"}


def _openings(report, result):
    first, *others = result["own"]["opened"]["settings"]
    bare_first, *bare_others = result["bare"]
    report.add("first opening, bare window", "ms", bare_first, digits=1)
    report.add("first opening of the settings", "ms", first, digits=1, **gates("windows", "first opening"))
    report.add("next opening, bare window", "ms", bare_others, digits=1)
    limits = gates("windows", "next opening, besides the bare window's")
    limits = {name: value and value + statistics.median(bare_others) for name, value in limits.items()}
    report.add("next opening of the settings", "ms", others, digits=1, **limits)


def _list(report, result):
    (opened,) = result["own"]["opened"]["list"]
    report.add("1,000 items, from the scan to the list", "ms", opened, digits=1, **gates("windows", "list"))
    frames = sorted(result["own"]["scrolled"])
    report.add("frame of the scrolling list", "us", frames, digits=0, **gates("windows", "scrolled frame"))
    report.add("frame of the scrolling list, 95 of 100", "us", frames[int(0.95 * (len(frames) - 1))], digits=0,
               **gates("windows", "scrolled frame, 95 of 100"))


def _memory(report, result):
    memory = result["own"]["memory"]
    report.add("private dirty before any window", "MiB", memory["before"], digits=1)
    for name, words in (("settings", "with the settings"), ("list", "with the list"),
                        ("list-scrolled", "with the list, scrolled")):
        report.add(f"private dirty {words}", "MiB", memory[name], digits=1)
    for name, words in LEFT_AFTER.items():
        report.add(f"private dirty that stays after {words}", "MiB", memory[name] - memory["before"], digits=1,
                   **gates("windows", "stays"))


def measure(build, quick):
    report = Report("the windows; floor: a bare Qt window of the settings' size")
    with Stage(build) as stage:
        for program in ("vorli_windows_watched", "vorli_bare_window"):
            stage.add(build.program(program, f"bench/{program}"))
        result = stage.run("windows", 4 if quick else 16, options=SESSION)
    for part in (_openings, _list, _memory):
        part(report, result)
    report.note("an opening lasts from the request until the X server has the first frame")
    report.note("a frame of the list is processor time of all threads, for making rows and painting")
    return report
