"""polish.py PREFIX OUT CEREMONIES WINDOW_SECONDS: the cost of polishes, then wake-ups compared with an idle program's.

Measures polishes from the menu, and those in the popover with all that it draws. A press on the popover's ring
polishes only when the ring is not calm, so the processors are kept busy before it.
"""

from common import ARGUMENTS, choose, let_pass, started, write, x_server
from measuring.process import Window
from process import run
from screen import placed_windows
from vorli import Load, TrayIcon
from waiting import wait_for

CEREMONY = 15.0  # seconds: the longest polish with its flash
BETWEEN = 6.0  # seconds: the daemon does not purge more often than every 5 s
SETTLE = 20.0
WARM = 0.65  # not calm, and still not after the tick that may come before the press
UNROLLED = 1.0  # seconds until the popover has its whole height
AFTER = 9.0  # seconds of the hold and the rise of the ring
BEGINS, ENDS = "setting isReleasing=true", "posted auto-close notification"
POPOVER_WIDTH = 318
RING_X, RING_Y = 24 + 135, 16 + 96  # in the popover's window below the icon, whose shadow lies around the card


def popover_place(vorli):
    shown = placed_windows(vorli.process.pid)
    return next(((x, y) for _, x, y, width, _ in shown if width == POPOVER_WIDTH), None)


def press_the_ring(vorli):
    x, y = wait_for(lambda: popover_place(vorli), "the popover")
    run("xdotool", "mousemove", str(x + RING_X), str(y + RING_Y), "click", "1")


def ceremony(vorli, pids):
    """Measures a polish in the popover, from the press until the ring has risen again."""
    TrayIcon().click(1)
    let_pass(UNROLLED)
    with Load():
        wait_for(lambda: vorli.ring >= WARM, "a warm ring", 180, pause=0.5)
    begun, ended = (vorli.log_text().count(line) for line in (BEGINS, ENDS))
    windows = [Window(pid) for pid in pids]
    press_the_ring(vorli)
    wait_for(lambda: vorli.log_text().count(BEGINS) > begun, "the start of the ceremony")
    wait_for(lambda: vorli.log_text().count(ENDS) > ended, "the end of the ceremony", 40)
    let_pass(AFTER)
    return [window.result() for window in windows]


def measured(pids, seconds):
    windows = [Window(pid) for pid in pids]
    let_pass(seconds)
    return [window.result() for window in windows]


def main():
    ceremonies, seconds = int(ARGUMENTS[0]), float(ARGUMENTS[1])
    vorli = started()
    pids = [vorli.process.pid, x_server()]
    let_pass(SETTLE)
    result = {"quiet": [measured(pids, CEREMONY) for _ in range(3)], "idle": measured(pids[:1], seconds)[0],
              "ceremonies": []}
    for _ in range(ceremonies):
        answers = vorli.log_text().count("purgeMemory reply")
        windows = [Window(pid) for pid in pids]
        choose(vorli, "Polish Now")
        let_pass(CEREMONY)
        result["ceremonies"].append([window.result() for window in windows])
        wait_for(lambda: vorli.log_text().count("purgeMemory reply") > answers, "the answer to purgeMemory", 25)
        let_pass(BETWEEN)
    result["popover"] = []
    for _ in range(min(ceremonies, 3)):
        result["popover"].append(ceremony(vorli, pids))
        let_pass(BETWEEN)
    result["decay"] = measured(pids[:1], seconds)[0]
    result["exit"] = vorli.end()
    write(result)


main()
