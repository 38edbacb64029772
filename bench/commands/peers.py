"""Comparison with popular programs: one refresh of the process table, and idling in a desktop session."""

import statistics

from measuring.crowd import Crowd
from measuring.gates import gates
from measuring.packages import need
from measuring.refreshes import Refreshes
from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "one refresh of the process table by other programs, and tray and desktop monitors side by side"
SIZES = (300, 2000, 10000)
WITH_TABLE = ("xfce4-taskmanager", "qps", "gnome-system-monitor")  # they show a window with a table of processes
COLUMNS = (("start, wall", "ms", "start_wall_ms"), ("start, processor", "ms", "start_cpu_ms"),
           ("idle processor", "ms/min", "cpu_ms_per_minute"), ("idle wake-ups", "1/min", "wakeups_per_minute"),
           ("resident", "MiB", "Rss"), ("proportional", "MiB", "Pss"), ("private dirty", "MiB", "Private_Dirty"))


def _add_refreshes(report, refreshes, size, rounds):
    times = {name: [] for name in (*refreshes.quick, *refreshes.slow)}
    for _ in range(rounds):
        for name, one in refreshes.quick.items():  # in turn, so that a disturbance affects all of them
            times[name].append(one())
    for name, one in refreshes.slow.items():
        times[name].append(one())
    own = statistics.median(times["enumerate()"])
    for name, values in times.items():
        report.add(f"{name} at {size:,}", "ms", values)
        if name not in ("floor", "enumerate()", "refresh()"):
            report.add(f"enumerate() at {size:,}", f"x {name}", own / statistics.median(values), **gates("peers", name))


def _add_programs(report, result):
    programs = result["programs"]
    for label, unit, key in COLUMNS:
        for name, figures in programs.items():
            if key in figures:
                report.add(f"{label}: {name}", unit, figures[key], digits=1)
    for name, reason in result["absent"].items():
        report.fail(f"{name} was not measured: {reason}")
    own = programs.get("Vorli")
    if not own:
        return
    for name, figures in programs.items():
        if name.startswith(("Vorli", "bare")):
            continue
        for label, key in (("idle processor time", "cpu_ms_per_minute"), ("wake-ups", "wakeups_per_minute")):
            if own[key] >= figures[key]:
                report.fail(f"not ahead of {name} in {label}")
        # Proportional memory would mislead: the panel shares its toolkit's pages with only some of these programs.
        if name in WITH_TABLE and any(own[key] >= figures[key] for key in ("Rss", "Private_Dirty")):
            report.fail(f"not below {name} in memory")


def measure(build, quick):
    need("peers")
    report = Report("other programs in the same run; times are processor time unless they say wall")
    refreshes = Refreshes(build.bench())
    try:
        for size in SIZES[:1] if quick else SIZES:
            with Crowd(build, size):
                _add_refreshes(report, refreshes, size, 2 if quick else 5)
        floor = build.program("vorli_bare_tray", "bench/vorli_bare_tray")
        with Stage(build) as stage, Crowd(build, SIZES[0]):
            result = stage.run("peers", 10 if quick else 30, stage.add(floor), stage.add(refreshes.status_icon()),
                               options=("--no-activation",))
        _add_programs(report, result)
    finally:
        refreshes.close()
    report.note("start: until the icon or a window is there, which is checked every few hundredths of a second: wall times "
                "are coarse, and processor time includes the wait for the next check")
    report.note("ps: one whole run; top, htop and btop draw what they read; the loops and Vorli do not")
    report.note("the monitors run one after the other with their own settings; proportional memory is measured while no "
                "other program of the same toolkit runs, except the panel, which uses GTK")
    return report
