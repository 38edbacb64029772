"""windows.py PREFIX OUT OPENINGS: the windows of a program that opens them itself, compared with a bare window."""

import os
import re
import subprocess

from common import ARGUMENTS, OUT, PREFIX, started, write
from waiting import wait_for

LIMIT = 300  # seconds


def readings(text):
    """Milliseconds from each "open" line to the next frame, by name; and the numbers of the other lines."""
    waiting, opened, memory, scrolled = None, {}, {}, []
    for line in text.splitlines():
        word, *rest = line.split()[:3] or [""]
        if word == "open":
            waiting = (rest[0], int(rest[1]))
        elif word == "frame" and waiting and int(rest[0]) >= waiting[1]:
            opened.setdefault(waiting[0], []).append((int(rest[1]) - waiting[1]) / 1000)
            waiting = None
        elif word == "memory":
            memory[rest[0]] = int(rest[1]) / 1024
        elif word == "scrolled":
            scrolled.append(int(rest[0]))
    return {"opened": opened, "memory": memory, "scrolled": scrolled}


def has_ended(text):
    return re.search(r"^end$", text, re.MULTILINE)


def own(openings):
    vorli = started("vorli_windows_watched", [openings])
    wait_for(lambda: has_ended(vorli.log_text()), "the end of the tour", LIMIT)
    result = readings(vorli.log_text())
    if vorli.end() != 0:
        raise SystemExit("the program did not exit cleanly")
    return result


def bare(openings):
    log = os.path.join(OUT, "bare.log")
    with open(log, "w", encoding="utf-8") as file:
        program = subprocess.Popen([os.path.join(PREFIX, "bin", "vorli_bare_window"), str(openings)],
                                   stdin=subprocess.DEVNULL, stdout=file)

    def text():
        with open(log, encoding="utf-8") as file:
            return file.read()

    try:
        wait_for(lambda: has_ended(text()), "the end of the bare windows", LIMIT)
        return readings(text())["opened"]["bare"]
    finally:
        program.terminate()
        program.wait(10)


def main():
    openings = int(ARGUMENTS[0])
    write({"own": own(openings), "bare": bare(openings)})


main()
