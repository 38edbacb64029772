"""Cost of the popover: a frame, an opening, a minute open, its memory, and no cost at all while it is closed."""

import json
import statistics
import subprocess

from measuring.gates import gates
from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "a frame beside plain painting; a click until it is painted, a minute open, frames while shut, memory"
HAS_LONG_FORM = True
SESSIONS = {"1x": ("--compositor", "picom"),
            "2x": ("--compositor", "picom", "--dpi", "192", "--size", "2560x1600")}
MEMORY = {"resident": "Rss", "proportional": "Pss", "private dirty": "Private_Dirty"}
OPENINGS = 20


def _painting(report, build, quick):
    program = build.program("vorli_popover_bench", "bench/vorli_popover_bench")
    done = subprocess.run([program, "2" if quick else "9"], capture_output=True, text=True, check=True)
    numbers = json.loads(done.stdout)
    for ratio in SESSIONS:
        for moment in ("rest", "polish"):
            own, direct = numbers[f"{moment} {ratio} own"], numbers[f"{moment} {ratio} direct"]
            report.add(f"frame, {moment} {ratio}", "us", own, digits=0, **gates("popover", f"paint {ratio}"))
            report.add(f"frame, {moment} {ratio}, plain painting", "us", direct, digits=0)
            share = statistics.median(own) / statistics.median(direct)
            report.add(f"frame, {moment} {ratio}", "x plain", share, **gates("popover", "share of plain painting"))
        report.add(f"worst frame of a polish {ratio}", "us", max(numbers[f"polish {ratio} own"]), digits=0,
                   **gates("popover", f"worst frame {ratio}"))
        report.add(f"first frame {ratio}", "us", numbers[f"polish {ratio} first"], digits=0)


def _p95(times):
    return sorted(times)[int(0.95 * (len(times) - 1))]


def _first_opening(bare):
    """Limit for the first opening, derived from the first opening of the bare window."""
    times, besides = (gates("popover", f"first opening, {name}")["gate"] for name in ("times the bare window's", "besides that"))
    return times * bare["times"][0][0] + besides


def _clicks(report, ratio, result):
    tick = result["watched"]["tick"]
    limits = gates("popover", "click to first paint, besides a tick")
    limits["gate"] += tick
    report.add(f"one tick {ratio}", "ms", tick)
    for name, kind in ((", bare Qt window", "bare"), ("", "watched")):
        own = limits if kind == "watched" else {}
        called = [time[0] for time in result[kind]["calls"]]
        report.add(f"panel's call to first paint {ratio}{name}", "ms", called, **own)
        report.add(f"panel's call to first paint {ratio}{name}, 95 of 100", "ms", _p95(called), gate=own.get("gate"))
        report.add(f"panel's call until the X server has it {ratio}{name}", "ms", [time[1] for time in result[kind]["calls"]])
        first, *times = [time[0] for time in result[kind]["times"]]
        report.add(f"click to first paint {ratio}{name}", "ms", times, **own)
        report.add(f"click to first paint {ratio}{name}, 95 of 100", "ms", _p95(times), gate=own.get("gate"))
        report.add(f"first click to first paint {ratio}{name}", "ms", first, gate=_first_opening(result["bare"]) if own else None)


def _open(report, ratio, result):
    for name, kind in ((", bare Qt window", "bare"), ("", "installed")):
        program, server = (window["cpu_ms_per_minute"] for window in result[kind]["open"])
        report.add(f"open {ratio}{name}, program", "ms/min", program, digits=0)
        report.add(f"open {ratio}{name}, X server", "ms/min", server, digits=0)
        limits = gates("popover", f"open {ratio}") if kind == "installed" else {}
        report.add(f"open {ratio}{name}, both", "ms/min", program + server, digits=0, **limits)
    report.add(f"frames at rest {ratio}", "1/s", result["watched"]["rest"], digits=0, **gates("popover", "frames at rest"))
    report.add(f"frames while shut {ratio}", "", result["watched"]["shut"], digits=0, **gates("popover", "frames while shut"))


def _memory(report, ratio, result):
    few, many = result["installed"]["few"], result["installed"]["many"]
    for name, key in MEMORY.items():
        report.add(f"{name} {ratio}, bare Qt window", "MiB", result["bare"]["many"][key], digits=1)
        # The limits are for 1x; a picture at 2x has four times as many pixels.
        limits = gates("popover", name) if ratio == "1x" else {}
        report.add(f"{name} {ratio}", "MiB", many[key], digits=1, **limits)
    growth = {name: (many[key] - few[key]) * 1024 for name, key in MEMORY.items()}
    report.add(f"resident {ratio}, growth since the 3rd opening", "KiB", growth["resident"], digits=0)
    report.add(f"private dirty {ratio}, growth since the 3rd opening", "KiB", growth["private dirty"], digits=0,
               **gates("popover", "growth"))


def measure(build, quick, whole_minutes=False):
    report = Report("the popover; floors: plain painting of the same card, and a bare Qt program with a flat window")
    _painting(report, build, quick)
    openings, seconds = (6, 8) if quick else (OPENINGS, 60 if whole_minutes else 15)
    results = {}
    with Stage(build) as stage:
        for program in ("vorli_popover_watched", "vorli_bare_popover"):
            stage.add(build.program(program, f"bench/{program}"))
        for ratio, options in SESSIONS.items():
            results[ratio] = stage.run("popover", openings, seconds, options=options)
    for part in (_clicks, _open, _memory):
        for ratio, result in results.items():
            part(report, ratio, result)
    busy = max(window["machine_busy_percent"] for result in results.values() for window in result["installed"]["open"])
    if seconds < 60:
        report.note(f"a minute open is extrapolated from {seconds} s at rest; --long measures all of it")
    report.note(f"memory after {openings} openings, with the pictures that are kept for 60 s after one")
    report.note("clicks are real ones on the icon and include the panel's work; calls are sent to the program directly")
    report.note(f"the machine's processors were busy {busy:.0f} % of the time at most while it was open")
    return report
