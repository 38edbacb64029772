"""Messages that no honest caller sends, and what they leave in memory and in the log."""

import os
import re

from harness.calls import call, finish_tool, start_tool, tool
from harness.rung import promise
from harness.sandbox import with_harmless_levers
from promises.load import RESIDENT, status
from promises.moves import AWAY, make_items
from waiting import wait_for


def fuzz(rung, messages, seed):
    # A sanitizer copies the whole message for each part that is read, so the largest one would take minutes.
    sizes = () if rung.sandbox.build == "shipped" else (1, 8)
    figures = tool(messages, seed, *sizes, name="vorli_helper_fuzz", seconds=3600)
    rung.figure("messages sent", figures["sent"], 0.9 * messages, at_least=True)
    rung.equal("pings without an answer in between", figures["unanswered"], 0)
    # The tool gives an answer up after thirty seconds. A message that stops the daemon would cost all of them.
    rung.figure("the slowest ping in between", figures["slowest_ping"], 2.0, " s", busy=20.0)
    for size in sizes or (1, 8, 31):
        rung.figure(f"a text of {size} MiB is answered ({figures[f'huge_{size}_code']:.0f}) after",
                    figures[f"huge_{size}_time"], 4.0, " s", busy=20.0)


@promise("P14", "Malformed and huge messages do no harm")
def malformed_messages(rung):
    box = rung.sandbox
    box.restart()
    with_harmless_levers()
    call(box, "Ping")
    pid = box.helper_pids()[0]
    # Makes honest calls in between: their small blocks must not keep the memory of the large ones.
    honest = start_tool("many", 5, 3000)
    fuzz(rung, 200000 if rung.options.long else 10000, 1)
    rung.equal("honest calls without an answer meanwhile", finish_tool(honest)["errors"], 0)
    rung.equal("the daemon is the same", box.helper_pids(), [pid])
    call(box, "Ping")
    if box.build == "shipped":
        rung.figure("resident afterwards", status(pid, "VmRSS") / 1024, RESIDENT, " MiB")
    box.terminate_helper()


@promise("P14b", "All methods at once, many users, moves and purges in between, and a clean end")
def everything_at_once(rung):
    box = rung.sandbox
    box.restart(allow_everything=True)
    with_harmless_levers()
    items = make_items(2)
    call(box, "Ping")
    pid = box.helper_pids()[0]
    together = [start_tool("many", 20, 200), start_tool("purges", 40, 5), start_tool("toggle", 40, 20, *items),
                start_tool("churn", 20, 10)]
    many, purges, toggle, churn = (finish_tool(process, seconds=240) for process in together)
    rung.equal("pings, connections without an answer", (many["errors"], churn["errors"]), (0, 0))
    rung.equal("purges and moves without an answer", (purges["other"], toggle["cut_off"]), (0, 0))
    # The other users fill most of the places; the rest is refused.
    rung.figure("moves done", toggle["moved"] + moves_after_the_crowd(box, toggle["moved"], items), 5, at_least=True)
    rung.equal("flush", call(box, "FlushDNS").code, 0)
    rung.equal("a process that is not there", call(box, "KillPID", 999999, 19).code, 3)
    rung.equal("the daemon is the same", box.helper_pids(), [pid])
    box.terminate_helper()


def moves_after_the_crowd(box, done, items):
    """Moves by root, if a slow machine's polkit had no time to judge the moves of the crowd."""
    item = next(iter(items))
    more = 0

    def are_enough():
        nonlocal more
        if done + more < 5:
            # A late move of the crowd may rename it in between.
            source = next(filter(os.path.exists, (item, *(item + ending for ending in AWAY))), item)
            more += call(box, "MoveLaunchAgentPlist", source, item + AWAY[0] if source == item else item).code == 0
        return done + more >= 5

    wait_for(are_enough, "five moves", 60, pause=0.6)  # a user may make twenty requests in ten seconds
    return more


@promise("P21", "Logs cannot be forged")
def honest_log(rung):
    box = rung.sandbox
    box.restart()
    texts = ["plain", "a\nvorli-helper[1]: request=1 caller=\":1.1\" forged", "\x1b[2J\x1b]0;x\x07", "\r\n\r\n", "x" * 10240,
             "\"quoted\" and \\x0a", "\u202e\u00e4\U0001f600", "%s%n%d", "\x7f\x01\x02", "a\tb"]
    mark = len(box.log())
    for text in texts:
        call(box, "MoveLaunchAgentPlist", text, text)
        call(box, "MoveLaunchAgentPlist", f"/etc/xdg/autostart/{text}", "/etc/xdg/autostart/" + text + ".vorli-disabled")
    call(box, "KillPID", -5, 2147483647)
    call(box, "Ping")
    call(box, "Version")
    lines = [line for line in box.log()[mark:].splitlines() if not line.startswith("dbus-daemon")]
    rung.equal("lines for that many requests", len(lines), 2 * len(texts) + 1)
    shape = re.compile(r'vorli-helper\[\d+\]: request=\d+ caller=":1\.\d+" uid=(?:0|unknown) method=(MoveLaunchAgentPlist|KillPID) '
                       r'args=\([ -~]*\) verdict=none exit=\d+ ms=\d+ text="[ -~]*"')
    rung.equal("lines of another shape", [line for line in lines if not shape.fullmatch(line)], [])
    # A request of many kilobytes is logged without its sender, because it is not kept until the sender is known.
    rung.equal("lines without a known user", len([line for line in lines if "uid=unknown" in line]), 2)
    # Room for two arguments of 150 characters, an answer of 120 and what is around them.
    rung.figure("the longest, in bytes", max(len(line.split(": ", 1)[1]) for line in lines), 600)
