"""polish.py PREFIX OUT CEREMONIES WINDOW_SECONDS: the cost of polishes, then wake-ups beside those of an idle time."""

from common import ARGUMENTS, choose, let_pass, started, write
from measuring.process import Window
from vorli import run, until

CEREMONY = 15.0  # seconds: the longest polish with its flash
BETWEEN = 6.0  # seconds: the daemon does not purge more often than every 5 s
SETTLE = 20.0


def x_server():
    """The process that draws the session's screen."""
    return int(run("sh", "-c", "for p in /proc/[0-9]*; do [ \"$(cat $p/comm)\" = Xvfb ] && grep -qz \"$VORLI_SESSION_MARK\" "
                   "$p/environ 2>/dev/null && basename $p; done; true").split()[0])


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
        until(lambda: vorli.log_text().count("purgeMemory reply") > answers, "the answer to purgeMemory", 25)
        let_pass(BETWEEN)
    choose(vorli, "Polish Now")
    let_pass(CEREMONY)
    result["decay"] = measured(pids[:1], seconds)[0]
    result["exit"] = vorli.end()
    write(result)


main()
