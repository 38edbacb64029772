"""What the popover costs: processor time of a frame beside plain painting of the same picture."""

import json
import statistics
import subprocess

from measuring.report import Report

SUMMARY = "a frame of the popover at rest and at the worst moment of a polish, beside plain painting"
OF_DIRECT = 0.35
AIM_MICROSECONDS = {"1x": 300.0, "2x": 2000.0}


def measure(build, quick):
    program = build.program("vorli_popover_bench", "bench/vorli_popover_bench")
    rounds = "30" if quick else "150"
    done = subprocess.run([program, rounds], capture_output=True, text=True, check=True)
    numbers = json.loads(done.stdout)
    report = Report("one frame of the popover, processor time")
    for ratio in ("1x", "2x"):
        for moment in ("rest", "polish"):
            own, direct = numbers[f"{moment} {ratio} own"], numbers[f"{moment} {ratio} direct"]
            report.add(f"{moment} {ratio}", "us", own, aim=AIM_MICROSECONDS[ratio], digits=0)
            report.add(f"{moment} {ratio}, plain painting", "us", direct, digits=0)
            share = statistics.median(own) / statistics.median(direct)
            report.add(f"{moment} {ratio}, share of plain painting", "", share, gate=OF_DIRECT)
        report.add(f"first frame {ratio}", "us", numbers[f"polish {ratio} first"], digits=0)
    return report
