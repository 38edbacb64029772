"""Time from the start of the program until the tray shows a dial with real values."""

from measuring.crowd import Crowd
from measuring.gates import gates
from measuring.report import Report
from measuring.stage import Stage

SUMMARY = "from the start to the first real dial, beside a bare Qt tray program"
PROCESSES = 300


def measure(build, quick):
    report = Report(f"start to the first real dial at {PROCESSES} processes; floor: a bare Qt tray program")
    floor = build.program("vorli_bare_tray", "bench/vorli_bare_tray")
    with Stage(build) as stage, Crowd(build, PROCESSES):
        result = stage.run("start", 5 if quick else 21, stage.add(floor), options=("--panel", "none"))
    for name, key in (("processor", "cpu_ms"), ("wall", "wall_ms")):
        own, bare = ([start[key] for start in result[kind]] for kind in ("vorli", "floor"))
        report.add(f"{name} of the floor", "ms", bare, digits=1)
        report.add(name, "ms", own, digits=1)
        report.add(name, "x floor", [one / other for one, other in zip(own, bare)], **gates("start", name))
    report.note("x floor is of the same round: the two take turns")
    return report
