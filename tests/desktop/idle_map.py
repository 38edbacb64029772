"""idle_map.py PROGRAM: the activations that the whole program remembers, on a real disk and in real time."""

import os
import re
import subprocess
import sys
import time
import unittest

from screen import bring_to_front, window_of
from vorli import Vorli
from waiting import wait_for
from workspace_probe import write

HOME, DATA = os.environ["HOME"], os.environ["XDG_DATA_HOME"]
SETTINGS = f"{os.environ['XDG_CONFIG_HOME']}/Vorli/Vorli.ini"
MOST_ENTRIES, QUIET_SECONDS = 200, 30
# A coarse timer of the main loop may fire a twentieth too early.
LEAST_WAIT = QUIET_SECONDS * 0.95
LONG_AGO = 1_600_000_000
APPLICATIONS = {"org.example.First": "First", "org.example.Second": "Second", "org.example.Quiet": "Quiet"}

WINDOW_SCRIPT = """
import gi, sys
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
Gtk.Window(title=sys.argv[0].rsplit("/", 1)[1]).show_all()
Gtk.main()
"""


def stored_text():
    with open(SETTINGS, encoding="utf-8") as file:
        return re.search(r"^bundleLastActivation=(.*)$", file.read(), re.MULTILINE)[1]


def stored():
    """The map on the disk: seconds by identifier, of the entries that are dates."""
    mark, *items = stored_text().split(", ")
    assert mark == "@@Dictionary", mark
    pairs = zip(items[::2], items[1::2])
    return {name: float(value.removeprefix("@@Date ")) for name, value in pairs if value.startswith("@@Date ")}


class IdleMap(unittest.TestCase):
    def setUp(self):
        for identifier, title in APPLICATIONS.items():
            write(f"{DATA}/tools/{title}", WINDOW_SCRIPT)
            write(f"{DATA}/applications/{identifier}.desktop",
                  f"[Desktop Entry]\nType=Application\nName={title}\nExec=python3 {DATA}/tools/{title}\n")
            window = subprocess.Popen(["/usr/bin/python3", f"{DATA}/tools/{title}"])
            self.addCleanup(window.wait)
            self.addCleanup(window.kill)
            wait_for(lambda t=title: window_of(f"^{t}$"), f"the window {title}")

    def start(self):
        vorli = Vorli(sys.argv[1], f"{HOME}/vorli.log")
        self.addCleanup(vorli.end)
        wait_for(lambda: vorli.ticks >= 1, "its first look at the machine")
        return vorli

    def test_a_burst_is_written_once_bounded_and_outlives_the_program(self):
        old = {f"old.{i}": f"@@Date {LONG_AGO + i}.000000" for i in range(230)}
        known = {**old, "org.example.Quiet": f"@@Date {LONG_AGO + 1000}.000000", "a.number": f"{LONG_AGO + 1001}"}
        with open(SETTINGS, encoding="utf-8") as file:
            others = file.read()
        write(SETTINGS, others + "bundleLastActivation=@@Dictionary, "
                        + ", ".join(f"{name}, {value}" for name, value in known.items()) + "\n")
        before = stored()
        self.assertEqual(len(before), 231)
        bring_to_front("^First$")
        vorli = self.start()

        states = [before]

        def written():
            now = stored()
            if now != states[-1]:
                states.append(now)
            return len(states) > 1

        for title in ("Second", "First", "Second", "First"):
            began = time.monotonic()
            bring_to_front(f"^{title}$")
            self.assertFalse(written())
        wait_for(written, "the map on the disk", QUIET_SECONDS + 30)
        waited = time.monotonic() - began
        after = states[1]
        print(f"written {waited:.1f} s after the last activation")
        self.assertGreaterEqual(waited, LEAST_WAIT)
        self.assertEqual(len(after), MOST_ENTRIES)
        self.assertEqual({name for name in after if name.startswith("old.")}, {f"old.{i}" for i in range(34, 230)})
        self.assertEqual(after["org.example.Quiet"], LONG_AGO + 1000, "what ran already keeps its date")
        self.assertIn(f"a.number, @@Date {LONG_AGO + 1001}.000000", stored_text())
        for identifier in ("org.example.First", "org.example.Second"):
            self.assertAlmostEqual(after[identifier], time.time(), delta=waited + 30)

        bring_to_front("^Second$")  # too late to be stored
        self.assertEqual(vorli.end(), 0)
        self.assertEqual(stored(), after)
        again = self.start()
        self.assertEqual(again.end(), 0)
        self.assertEqual(stored(), after)
        self.assertEqual(len(states), 2)


unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
