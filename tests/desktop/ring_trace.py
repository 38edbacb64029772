"""ring_trace.py PROGRAM: runs the real program under changing load, with its counters recorded, and computes the ring
of every tick again from the raw readings alone. The two must agree to the last bits of a double."""

import json
import os
import signal
import subprocess
import sys
import tempfile

from waiting import wait_for

TICKS_WANTED, QUIET_TICKS = 12, 4
DEADLINE_SECONDS = 60


def pressure_base(t):
    level = {None: None, 2: "warning", 4: "critical"}.get(t["kernelLevel"], "normal")
    if level is None:
        some, full = t["someStallPercent"] or 0.0, t["fullStallPercent"] or 0.0
        share = 1.0
        if t["availableBytes"] is not None and t["totalBytes"]:
            share = t["availableBytes"] / t["totalBytes"]
        level = "critical" if full >= 10 or share < 0.05 else "warning" if some >= 10 or share < 0.10 else "normal"
    return {"normal": 0.05, "warning": 0.55, "critical": 0.85}[level]


def rate(now, before, key):
    if before is None:
        return 0.0
    seconds = now["memoryAt"] - before["memoryAt"]
    return ((now[key] - before[key]) % 2**64) / seconds if seconds > 0 else 0.0


def cpu_score(now, before):
    if before is None:
        return 0.0
    user, system, idle, nice = ((a - b) % 2**32 for a, b in zip(now["cpu"], before["cpu"]))
    busy = user + system + nice
    u = min(busy / (busy + idle), 1.0) if busy + idle else 0.0
    if u < 0.5:
        return u * 0.1
    if u < 0.75:
        return (u - 0.5) + 0.05
    if u < 0.9:
        return (u - 0.75) * 2.5 + 0.3
    return (min(u, 1.0) - 0.9) * 3.25 + 0.675


def thermal_score(t):
    state = 0
    for zone in t["zones"]:
        for value, trip in ((3, "critical"), (2, "hot"), (1, "passive")):
            if zone[trip] is not None and zone["temperature"] >= zone[trip]:
                state = max(state, value)
    return (0.0, 0.3, 0.7, 1.0)[state]


def target(now, before):
    cores = max(now["cores"], 1.0)
    return min(1.0, max(
        pressure_base(now),
        min(rate(now, before, "decompressions") / 10000.0, 1.0),
        min(rate(now, before, "swapins") / 500.0, 1.0),
        min(rate(now, before, "pageouts") / 2000.0, 1.0),
        min(max((now["load"] - cores) / cores, 0.0), 1.0),
        cpu_score(now, before),
        thermal_score(now)))


def smooth(current, wanted):
    if current is None:
        return wanted
    if current < wanted:
        return current * 0.45 + wanted * 0.55
    return current * 0.85 + wanted * 0.15


def read_ticks(path):
    with open(path, encoding="utf-8") as lines:
        return [json.loads(line) for line in lines if line.endswith("\n")]


def burn():
    return [subprocess.Popen([sys.executable, "-c", "while True: pass"]) for _ in range(os.cpu_count() or 1)]


def collect(program, path):
    """Runs the program until it has written its ticks, all but the first few of them under load."""
    running = subprocess.Popen([program, path])
    load = []

    def enough():
        if running.poll() is not None:
            raise AssertionError(f"the program ended early with status {running.returncode}")
        # A second start, by which a user brings the program to the front, takes a new sample.
        subprocess.run(["gdbus", "call", "--session", "--dest", "com.kv.vorli", "--object-path", "/com/kv/vorli",
                        "--method", "org.freedesktop.Application.Activate", "{}"],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        ticks = read_ticks(path)
        if len(ticks) >= QUIET_TICKS and not load:
            load.extend(burn())
        return len(ticks) >= TICKS_WANTED

    try:
        wait_for(enough, f"{TICKS_WANTED} ticks", DEADLINE_SECONDS, pause=0.4)
    finally:
        for burner in load:
            burner.kill()
            burner.wait()
        running.send_signal(signal.SIGTERM)
        status = running.wait(timeout=10)
    assert status == 0, f"the program ended with status {status}"
    return read_ticks(path)


def main():
    path = os.path.join(tempfile.mkdtemp(prefix="vorli-trace-"), "ticks")
    open(path, "w", encoding="utf-8").close()
    ticks = collect(sys.argv[1], path)
    ring, before, worst = None, None, 0.0
    for number, now in enumerate(ticks):
        worked_out = smooth(ring, target(now, before))
        worst = max(worst, abs(worked_out - now["ring"]))
        assert worst <= 1e-12, f"tick {number}: the program shows {now['ring']!r}, the readings give {worked_out!r}"
        ring, before = now["ring"], now
    rings = [tick["ring"] for tick in ticks]
    # On a busy machine the ring may be high from the start, and falls from there.
    assert len(set(rings)) >= len(rings) // 2, f"the ring hardly moved, nothing was proved: {rings}"
    print(f"ring_trace: {len(ticks)} ticks, ring {min(rings):.3f} to {max(rings):.3f}, worst error {worst:.1e}")


main()
