"""peers.py PREFIX OUT SECONDS FLOOR STATUS_ICON: tray and desktop monitors, one after the other, each left alone."""

import os
import shutil
import subprocess
import time

from common import ARGUMENTS, PREFIX, let_pass, write
from measuring.process import Window, cpu_ms, descendants, memory_mb
from screen import found_windows, place_of
from vorli import TrayIcon
from waiting import Missing, wait_for

SETTLE = 8  # seconds
LONGEST = 20
CONKY = "conky"  # its window names no process, and exists before it shows anything
CONKY_EMPTY = 5  # height in pixels of the empty window


def shown(name, process, is_in_tray):
    if process.poll() is not None:
        raise Missing(f"it exited with {process.returncode}")
    if is_in_tray:
        return bool(TrayIcon().items())
    if name == CONKY:
        return any(place and place[3] > CONKY_EMPTY for place in map(place_of, found_windows("--class", "^Conky$")))
    return any(found_windows("--pid", str(each)) for each in descendants(process.pid))


def measured(name, command, is_in_tray, seconds):
    wait_for(lambda: not TrayIcon().items(), "an empty tray")
    begun = time.monotonic()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        wait_for(lambda: shown(name, process, is_in_tray), "its window", LONGEST, pause=0.01)
        result = {"start_wall_ms": (time.monotonic() - begun) * 1000, "start_cpu_ms": cpu_ms(process.pid)}
        let_pass(SETTLE)
        window = Window(process.pid)
        let_pass(seconds)
        return {**result, **window.result(), **memory_mb(process.pid)}
    finally:
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def programs(floor, status_icon):
    """Name and command of each program, and whether it appears as an item of the tray."""
    yield "Vorli", [os.path.join(PREFIX, "bin", "vorli")], True
    yield "bare Qt tray program", [floor], True
    yield "bare GTK status icon", [status_icon], False
    for name in ("gkrellm", CONKY, "psensor", "xfce4-taskmanager", "qps", "gnome-system-monitor"):
        yield name, [name], False


def main():
    seconds = float(ARGUMENTS[0])
    results, absent = {}, {}
    for name, command, is_in_tray in programs(*ARGUMENTS[1:3]):
        if not shutil.which(command[0]):
            absent[name] = "it is not installed"
            continue
        try:
            results[name] = measured(name, command, is_in_tray, seconds)
        except Missing as missing:
            absent[name] = str(missing)
    write({"programs": results, "absent": absent})


main()
