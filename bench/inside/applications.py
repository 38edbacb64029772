"""applications.py PREFIX OUT WINDOWS SECONDS ROUNDS: the program at rest without other applications, then with many."""

import json
import os
import re
import shutil
import subprocess
from contextlib import contextmanager

from common import ARGUMENTS, PREFIX, let_pass, let_the_dial_rest, started, write
from measuring.process import Window, memory_mb
from vorli import stored
from waiting import wait_for

APPLICATIONS, WITH_WINDOW = 60, 40  # the others have an icon
SETTLE = 20  # seconds
REMEMBERED = 120  # seconds: launches are written to the disk half a minute after the last one


def install():
    """The paths of the applications, each of them with an entry of its own."""
    folder = os.path.join(os.environ["HOME"], ".local", "opt", "small")
    entries = os.path.join(os.environ["XDG_DATA_HOME"], "applications")
    for path in (folder, entries):
        os.makedirs(path, exist_ok=True)
    programs = [os.path.join(folder, f"small-{n}") for n in range(APPLICATIONS)]
    for n, program in enumerate(programs):
        shutil.copy(os.path.join(PREFIX, "bin", "vorli_small_application"), program)
        with open(os.path.join(entries, f"org.example.Small{n}.desktop"), "w", encoding="utf-8") as file:
            file.write(f"[Desktop Entry]\nType=Application\nName=Small {n}\nExec={program}\n")
    return programs


@contextmanager
def running(programs):
    processes = [subprocess.Popen([program, os.path.basename(program), "window" if n < WITH_WINDOW else "icon"],
                                  stdin=subprocess.PIPE)
                 for n, program in enumerate(programs)]
    try:
        yield
    finally:
        for process in processes:
            process.stdin.close()
            process.wait(10)


def remembered():
    """Number of the applications whose launch the program has seen."""
    return len(set(re.findall(r"org\.example\.Small\d+", stored("bundleLastActivation") or "")))


def at_rest(vorli, count, seconds):
    let_pass(SETTLE)
    let_the_dial_rest(vorli)
    results = []
    for _ in range(count):
        window = Window(vorli.process.pid)
        let_pass(seconds)
        results.append(window.result())
    return {"windows": results, "memory": memory_mb(vorli.process.pid)}


def ticks(rounds):
    told = subprocess.run([os.path.join(PREFIX, "bin", "vorli_bench"), "session", str(rounds)], check=True,
                          capture_output=True, text=True).stdout
    result = json.loads(told)
    if result["applications"] < APPLICATIONS:
        raise SystemExit(f"only {result['applications']} applications are known")
    return result


def main():
    count, seconds, rounds = int(ARGUMENTS[0]), float(ARGUMENTS[1]), int(ARGUMENTS[2])
    programs = install()
    vorli = started()
    result = {"without": at_rest(vorli, count, seconds)}
    with running(programs):
        wait_for(lambda: remembered() == APPLICATIONS, "the launch of each application in the settings", REMEMBERED,
                 pause=1)
        result["with"] = at_rest(vorli, count, seconds)
        result["ticks"] = ticks(rounds)
        if vorli.end() != 0:
            raise SystemExit("the program did not exit cleanly")
    write(result)


main()
