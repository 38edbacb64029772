"""peers.py PREFIX OUT SECONDS FLOOR STATUS_ICON: tray and desktop monitors, one after the other, each left alone."""

import os
import shutil
import subprocess
import time

from common import ARGUMENTS, PREFIX, let_pass, write
from measuring.process import Window, cpu_ms, descendants, memory_mb
from vorli import Missing, TrayIcon, until

SETTLE = 8  # seconds
LONGEST = 20
WITHOUT_WINDOW = ("conky",)  # it draws on the desktop's: when it has started cannot be seen
CONKY = os.path.join(os.environ["HOME"], ".conkyrc")


def windows_of_tree(pid):
    for process in descendants(pid):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(process)], capture_output=True,
                               text=True, check=False)
        if found.stdout.split():
            return True
    return False


def shown(process, is_in_tray):
    if process.poll() is not None:
        raise Missing(f"a program that lives (it left with {process.returncode})")
    return bool(TrayIcon().items()) if is_in_tray else windows_of_tree(process.pid)


def measured(command, is_in_tray, seconds):
    until(lambda: not TrayIcon().items(), "an empty tray")
    begun = time.monotonic()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        until(lambda: shown(process, is_in_tray) or command[0] in WITHOUT_WINDOW, "its window", LONGEST, pause=0.01)
        result = {"start_wall_ms": (time.monotonic() - begun) * 1000, "start_cpu_ms": cpu_ms(process.pid)}
        if command[0] in WITHOUT_WINDOW:
            result = {}
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
    """Name, command, and whether it shows itself as an item of the tray."""
    with open(CONKY, "w", encoding="utf-8") as file:
        subprocess.run(["conky", "-C"], stdout=file, check=False)
    yield "Vorli", [os.path.join(PREFIX, "bin", "vorli")], True
    yield "bare Qt tray program", [floor], True
    yield "bare GTK status icon", [status_icon], False
    for name in ("gkrellm", "conky", "psensor", "xfce4-taskmanager", "qps", "gnome-system-monitor"):
        if shutil.which(name):
            yield name, [name], False


def main():
    seconds = float(ARGUMENTS[0])
    results, absent = {}, {}
    for name, command, is_in_tray in programs(*ARGUMENTS[1:3]):
        try:
            results[name] = measured(command, is_in_tray, seconds)
        except Missing as missing:
            absent[name] = str(missing)
    write({"programs": results, "absent": absent})


main()
