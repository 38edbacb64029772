#!/usr/bin/python3
"""visit.py PREFIX OUT: uses the installed Vorli for a few minutes in a private desktop session.

Goes through the first steps as a new user, looks at the dial at rest and under load, opens the menu, polishes once
through the real daemon, opens the about panel, and leaves pictures, OUT/report.json and a summary.
"""

import json
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "session"))

from screen import is_painted, picture, screen_width, window_picture, windows_of  # noqa: E402
from vorli import (  # noqa: E402
    FirstSteps, Load, PanelMenu, TrayIcon, Vorli, become_new_user, free_memory_bytes, installed_at_home, is_stored,
)
from waiting import Missing, wait_for  # noqa: E402

WARMING, RESTING = 0.55, 0.35


def tell(text):
    print(f"visit: {text}", flush=True)


def idle_seconds():
    """The time that an average processor has been idle since the start of the machine."""
    with open("/proc/uptime", encoding="ascii") as file:
        return float(file.read().split()[1]) / os.cpu_count()


class Visit:
    def __init__(self, prefix, out):
        self.out = out
        become_new_user()
        self.vorli = Vorli(installed_at_home(prefix), os.path.join(out, "vorli.log"))
        self.icon = TrayIcon()
        self.report = {}

    def path(self, name):
        return os.path.join(self.out, name)

    def picture_of_panel(self, name):
        x, _ = self.icon.centre()
        picture(self.path(name), max(0, x - 100), 0, 120, 30, zoom=5)

    def rest(self):
        self.icon.appear()
        wait_for(lambda: self.vorli.ticks >= 1, "the first look at the machine")
        wait_for(lambda: self.vorli.helper_status == "enabled", "the enabled helper", 20)
        self.report["helperStatus"] = self.vorli.helper_status
        self.first_steps()
        self.let_the_machine_rest()
        self.settle()
        self.picture_of_panel("rest.png")
        tell(f"at rest: ring {self.vorli.ring:.3f}, helper {self.report['helperStatus']}")

    def first_steps(self):
        steps = FirstSteps(self.vorli.process.pid)
        window_picture(self.path("first-steps.png"), steps.window)
        steps.press("Return")
        wait_for(lambda: is_stored("hasCompletedOnboarding"), "the end of the helper step")
        steps.press("Return")
        steps.gone()
        wait_for(lambda: is_stored("hasSeenDoneScreen"), "the end of the first steps")
        tell("went through the first steps")

    def load(self):
        tell("all processors busy until the dial warms")
        with Load():
            wait_for(lambda: self.vorli.ring >= WARMING, "the warming dial", 180, pause=0.5)
            self.settle()
            self.picture_of_panel("load.png")
            tell(f"under load: ring {self.vorli.ring:.3f}")
        self.let_the_machine_rest()

    def let_the_machine_rest(self):
        """Waits until the dial is cool: it still shows a build just before, or the load of the visit itself."""
        if self.vorli.ring < RESTING:
            return
        tell(f"ring {self.vorli.ring:.3f}: letting the machine rest, three minutes at most")
        for _ in range(9):
            before = idle_seconds()
            try:
                wait_for(lambda: self.vorli.ring < RESTING, "the cool dial", 20, pause=0.5)
                return
            except Missing:
                if idle_seconds() - before < 5:
                    break
        tell("something else keeps the processors busy")

    def settle(self):
        """Waits until the panel's picture no longer changes: it follows the value, at most four times a second."""
        seen = []

        def still():
            self.picture_of_panel("settling.png")
            with open(self.path("settling.png"), "rb") as file:
                seen.append(file.read())
            return len(seen) > 2 and seen[-1] == seen[-2] == seen[-3]

        wait_for(still, "a dial at rest", pause=0.3)
        os.unlink(self.path("settling.png"))

    def polish(self):
        self.report["ringBefore"] = self.vorli.ring
        menu = PanelMenu(self.icon)
        x, _ = self.icon.centre()
        left = max(0, min(menu.x, x) - 40)
        picture(self.path("menu.png"), left, 0, screen_width() - left, menu.y + menu.height + 30, zoom=2)
        free, ticks = free_memory_bytes(), self.vorli.ticks
        menu.choose("Polish Now")
        tell("pressed Polish Now")
        self.report["purge"] = wait_for(lambda: self.vorli.reply("purgeMemory"), "the answer to purgeMemory", 25)
        self.report["freedBytes"] = free_memory_bytes() - free
        self.report["flush"] = wait_for(lambda: self.vorli.reply("flushDNS"), "the answer to flushDNS", 6)
        wait_for(lambda: self.vorli.ticks > ticks, "the look at the machine after the polish")
        self.report["ringAfter"] = self.vorli.ring

    def about(self):
        PanelMenu(self.icon).choose("About Vorli")
        window = wait_for(lambda: windows_of(self.vorli.process.pid), "the about panel")[0]
        wait_for(lambda: is_painted(window), "the about panel's contents")
        window_picture(self.path("about.png"), window)

    def cost(self):
        self.report["ticks"] = self.vorli.ticks
        self.report["cpuMilliseconds"] = round(self.vorli.processor_milliseconds(), 1)
        self.report["rssKB"] = self.vorli.memory_kilobytes("Rss")
        self.report["pssKB"] = self.vorli.memory_kilobytes("Pss")

    def run(self):
        try:
            self.rest()
            self.load()
            self.polish()
            self.about()
            self.cost()
        finally:
            code = self.vorli.end()
        if code != 0:
            raise Missing(f"a clean end: Vorli left with {code}")
        order = ("ringBefore", "ringAfter", "helperStatus", "flush", "purge", "freedBytes", "ticks", "cpuMilliseconds",
                 "rssKB", "pssKB")
        with open(self.path("report.json"), "w", encoding="utf-8") as file:
            json.dump({name: self.report[name] for name in order}, file, indent=2)
            file.write("\n")
        self.summary()

    def summary(self):
        report = self.report
        print(f"""
  ring before the polish    {report['ringBefore']:.3f}
  ring after the polish     {report['ringAfter']:.3f}
  helper                    {report['helperStatus']}
  DNS cache                 exit {report['flush']['exitCode']}: {report['flush']['output']}
  memory                    exit {report['purge']['exitCode']}: {report['purge']['output']}
  free memory rose by       {report['freedBytes'] / 2**20:.0f} MiB
  looks at the machine      {report['ticks']}
  processor time            {report['cpuMilliseconds']:.0f} ms
  resident, proportional    {report['rssKB'] / 1024:.1f} MiB, {report['pssKB'] / 1024:.1f} MiB
""")


def main():
    prefix, out = sys.argv[1:3]
    try:
        Visit(prefix, out).run()
    except Missing as missing:
        print(f"visit: {missing}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
