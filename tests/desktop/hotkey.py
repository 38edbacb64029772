#!/usr/bin/python3
"""hotkey.py PROGRAM: a real key from a real X server reaches the program, whatever has the focus."""

import os
import subprocess
import sys
import unittest

import tray_parts
from process import Process
from waiting import holds, wait_for

PROGRAM = sys.argv.pop(1)
PLACE_OF_Z = 52


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def key(combination):
    run("xdotool", "key", combination)


class HotkeyTest(unittest.TestCase):
    def setUp(self):
        run("setxkbmap", "us")

    def start(self, combo="opt+shift+C"):
        program = Process(PROGRAM, combo)
        self.addCleanup(program.kill)
        return program

    def registered(self, combo="opt+shift+C"):
        program = self.start(combo)
        program.expect("registered")
        return program

    def reaches(self, program, combination, what):
        before = program.count("press")
        key(combination)
        wait_for(lambda: program.count("press") == before + 1, what)

    def test_the_default_is_free_here(self):
        self.reaches(self.registered(), "alt+shift+c", "the key")

    def test_another_program_may_have_the_focus(self):
        program = self.registered()
        other = subprocess.Popen(["xmessage", "-title", "other", "hello"])
        self.addCleanup(other.wait)
        self.addCleanup(other.terminate)
        run("xdotool", "search", "--sync", "--onlyvisible", "--name", "^other$", "windowactivate", "--sync")
        self.reaches(program, "alt+shift+c", "the key past another program")

    def test_the_lock_keys_make_no_difference(self):
        program = self.registered()
        for locks in (["Num_Lock"], ["Caps_Lock"], ["Num_Lock", "Caps_Lock"]):
            for lock in locks:
                key(lock)
            self.reaches(program, "alt+shift+c", f"the key under {locks}")
            for lock in locks:
                key(lock)

    def test_a_second_layout_makes_no_difference(self):
        run("setxkbmap", "us,ru", "-option", "grp:menu_toggle")
        program = self.registered()
        self.reaches(program, "alt+shift+c", "the key under the first layout")
        key("Menu")
        run("xdotool", "keydown", "Alt_L", "keydown", "Shift_L", "key", "54", "keyup", "Shift_L", "keyup", "Alt_L")
        wait_for(lambda: program.count("press") == 2, "the key under the second layout")

    def test_a_changed_layout_is_followed(self):
        program = self.registered("opt+shift+Y")
        run("setxkbmap", "de")  # y and z are exchanged
        self.turn(program)
        run("xdotool", "keydown", "Alt_L", "keydown", "Shift_L", "key", "52", "keyup", "Shift_L", "keyup", "Alt_L")
        wait_for(lambda: program.count("press") == 1, "the key at its new place")
        run("xdotool", "keydown", "Alt_L", "keydown", "Shift_L", "key", "29", "keyup", "Shift_L", "keyup", "Alt_L")
        holds(lambda: program.count("press") == 1, "the old place means nothing", 0.3)

    def holder(self):
        # The same physical key, whatever the layout's letter for it.
        holder = Process("/usr/bin/python3", os.path.join(tray_parts.HERE, "key_holder.py"), str(PLACE_OF_Z))
        self.addCleanup(holder.kill)
        holder.expect("held")
        return holder

    def half_a_second(self, program):
        before = program.count("half a second")
        program.tell("")
        wait_for(lambda: program.count("half a second") == before + 1, "half a second")

    def turn(self, program):
        """Lets the program read all events of a change of the layout; the first half second reads only some."""
        for _ in range(2):
            self.half_a_second(program)

    def test_a_program_that_follows_a_layout_later_leaves_the_key(self):
        holder = self.holder()
        program = self.registered("opt+shift+Y")
        run("setxkbmap", "de")  # puts y where the other program has its key
        program.expect("refused")
        holder.tell("")
        holder.expect("free")
        self.half_a_second(program)
        wait_for(lambda: program.count("registered") == 2, "the key at its new place")
        run("xdotool", "keydown", "Alt_L", "keydown", "Shift_L", "key", "52", "keyup", "Shift_L", "keyup", "Alt_L")
        wait_for(lambda: program.count("press") == 1, "the key")

    def test_a_key_that_stays_with_another_program_is_not_tried_for_ever(self):
        holder = self.holder()
        program = self.registered("opt+shift+Y")
        run("setxkbmap", "de")
        program.expect("refused")
        self.turn(program)
        holder.tell("")
        holder.expect("free")
        for _ in range(4):
            self.half_a_second(program)
        self.assertEqual(program.count("registered"), 1)

    def test_a_layout_may_cost_the_key_and_the_next_one_gives_it_back(self):
        self.holder()
        program = self.registered("opt+shift+Y")
        run("setxkbmap", "de")  # puts y where the other program has its key
        program.expect("refused")
        run("setxkbmap", "us")
        wait_for(lambda: program.count("registered") == 2, "the key again")
        self.reaches(program, "alt+shift+y", "the key at its first place")

    def test_a_held_key_is_one_press(self):
        program = self.registered()
        run("xset", "r", "rate", "100", "50")
        run("xdotool", "keydown", "Alt_L", "keydown", "Shift_L", "keydown", "c", "sleep", "1", "keyup", "c",
            "keyup", "Shift_L", "keyup", "Alt_L")
        wait_for(lambda: program.count("press") == 1, "the key")
        holds(lambda: program.count("press") == 1, "no repeats", 0.3)

    def test_other_modifiers_are_other_keys(self):
        program = self.registered()
        for other in ("shift+c", "alt+c", "ctrl+alt+shift+c"):
            key(other)
        holds(lambda: program.count("press") == 0, "none of them", 0.3)

    def test_a_key_that_another_program_has_is_refused(self):
        self.registered("ctrl+opt+K")
        self.start("ctrl+opt+K").expect("refused")

    def test_a_key_that_the_keyboard_lacks_is_not_said_to_be_anothers(self):
        run("xmodmap", "-e", "clear mod4")  # removes the Super key; the next set-up restores it
        self.start("cmd+J").expect("not parsed")

    def test_a_refused_key_is_free_again_when_its_holder_ends(self):
        holder = Process(PROGRAM, "cmd+J")
        holder.expect("registered")
        holder.kill()
        self.reaches(self.registered("cmd+J"), "super+j", "the key")


if __name__ == "__main__":
    unittest.main()
