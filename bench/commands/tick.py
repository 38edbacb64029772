"""enumerate() and refresh(), compared with the floor, with 300, 2,000 and 10,000 processes."""

import json
import statistics
import subprocess

from measuring.counts import instructions_per_pass, syscalls_per_pass
from measuring.crowd import Crowd
from measuring.gates import gates
from measuring.packages import need
from measuring.report import Report

SUMMARY = "one look at all processes, and one whole tick, beside the floor of the same run"

KINDS = ("enumerate", "refresh")
SIZES = (300, 2000, 10000)
ATTEMPTS = 3  # the best one counts: other programs disturb the measurement
ROUNDS = {300: 60, 2000: 24, 10000: 18}  # each with all six orders


def _ratios(run, name):
    return [own / floor for own, floor in zip(run[name + "_us"], run["floor_us"])]


def _attempt(bench, rounds):
    done = subprocess.run([bench, "tick", str(rounds)], check=True, capture_output=True, text=True)
    return json.loads(done.stdout)


def _best(bench, size, rounds):
    """The attempt with the lowest ratios. Stops early when every aim is reached."""
    attempts = []
    for _ in range(ATTEMPTS):
        attempts.append(_attempt(bench, rounds))
        medians = [statistics.median(_ratios(attempts[-1], name)) for name in KINDS]
        if all(median <= gates("tick", f"{name}() at {size}")["aim"] for median, name in zip(medians, KINDS)):
            break
    return min(attempts, key=lambda run: statistics.median(_ratios(run, "refresh")))


def _add_times(report, run, size):  # with the gates of the requested size
    of = f"at {run['processes']:,}"
    report.add(f"floor {of}", "us", run["floor_us"], digits=0)
    for name in KINDS:
        report.add(f"{name}() {of}", "us", run[name + "_us"], digits=0)
        report.add(f"{name}() {of}", "x floor", _ratios(run, name), **gates("tick", f"{name}() at {size}"))
    for name in KINDS:
        report.add(f"{name}() {of}", "allocations", run[name + "_allocations"], digits=0)


def _add_counts(report, bench, processes):
    of = f"at {processes:,}"
    each, besides = gates("tick", "syscalls per process"), gates("tick", "syscalls besides")
    report.add(f"refresh() {of}", "syscalls", syscalls_per_pass(bench, "refresh"), digits=0,
               **{limit: each[limit] * processes + besides[limit] for limit in each})
    for name in KINDS:
        limits = gates("tick", "instructions per process") if name == "refresh" else {}
        report.add(f"{name}() {of}", "instructions/process", instructions_per_pass(bench, name) / processes, digits=0,
                   **limits)


def measure(build, quick):
    need("tick")
    report = Report("one tick; times are processor time, x floor is of the same round")
    bench = build.bench()
    sizes = [300] if quick else SIZES
    for size in sizes:
        with Crowd(build, size):
            run = _best(bench, size, 12 if quick else ROUNDS[size])
            _add_times(report, run, size)
            _add_counts(report, bench, run["processes"])
    report.note("floor: listing /proc, and opening, reading and closing PID/stat of every process")
    return report
