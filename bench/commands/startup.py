"""A scan of the startup items, compared with the floor and with other programs that list the same files."""

import json
import os
import statistics
import subprocess
import tempfile

from measuring.counts import instructions_per_pass, syscalls_per_pass
from measuring.gates import gates
from measuring.packages import need
from measuring.refreshes import compile_peer, cpu_ms, difference_of_runs
from measuring.report import Report
from measuring.startup_set import StartupSet

SUMMARY = "a scan of a thousand startup files beside reading them once, and beside other ways to list them"
SIZE = 1000


def _json(*command):
    return json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)


def _add_scan(report, bench, files, rounds):
    run = _json(bench, "scan", str(rounds), files.root)
    if run["files"] != files.files:
        report.fail(f"the floor read {run['files']} of {files.files} files")
    if run["shown"] + run["hidden"] != files.items:
        report.fail(f"the scan found {run['shown'] + run['hidden']} of {files.items} items")
    ratios = [scan / floor for scan, floor in zip(run["scan_us"], run["floor_us"])]
    report.add(f"floor at {files.files:,} files", "us", run["floor_us"], digits=0)
    report.add("scan", "us", run["scan_us"], digits=0)
    report.add("scan", "x floor", ratios, **gates("startup", "scan"))
    for kind in ("floor", "scan"):
        calls = syscalls_per_pass(bench, kind, files.root) / files.files
        report.add(kind, "syscalls/file", calls)
    report.add("scan", "instructions/file", instructions_per_pass(bench, "scan", files.root) / files.files, digits=0)
    return statistics.median(run["scan_us"]) / 1000


def _add_peers(report, files, scan_ms, rounds):
    with tempfile.TemporaryDirectory(prefix="vorli-bench.") as folder:
        loop = difference_of_runs(compile_peer(folder, "gkeyfile_loop", "glib-2.0"), *files.folders())
        listing = ["systemctl", "--no-pager", "--root=" + files.root, "list-unit-files"]
        ways = {
            "GKeyFile loop": loop,
            "systemctl, both managers": lambda: cpu_ms(listing) + cpu_ms([*listing, "--global"]),
        }
        for name, way in ways.items():
            times = [way() for _ in range(rounds)]
            report.add(name, "ms", times)
            report.add("scan", f"x {name}", scan_ms / statistics.median(times))


def _add_lateness(report, bench, files, seconds):
    run = _json(bench, "late", str(seconds), files.root)
    report.add("timer, no scan: worst", "ms late", max(run["quiet_us"]) / 1000)
    report.add("timer beside scans: worst", "ms late", max(run["beside_us"]) / 1000,
               **gates("startup", "timer beside scans"))
    report.note(f"timer: every 2 ms on the main thread for {seconds} s, while another thread makes {run['scans']} scans")


def measure(build, quick):
    need("startup")
    report = Report("one scan of the startup items; times are processor time, x floor is of the same round")
    bench = build.program("vorli_startup_bench", os.path.join("bench", "vorli_startup_bench"))
    with StartupSet(SIZE // 10 if quick else SIZE) as files:
        scan_ms = _add_scan(report, bench, files, 10 if quick else 60)
        _add_peers(report, files, scan_ms, 2 if quick else 5)
        _add_lateness(report, bench, files, 1 if quick else 10)
    report.note("floor: listing the folders, and opening, reading and closing each file once")
    report.note("the GKeyFile loop reads every file and looks at two keys; systemctl knows no entries, and no units "
                "of the user's own")
    return report
