"""spoken.py PROGRAM FAT_APPLICATION HELPER AUTHORITY: what assistive tools find in every state of the popover on the
real accessibility bus, and what they hear when it changes."""

import os
import shutil
import subprocess
import sys
import unittest

from accessible import Spoken
from popover_parts import Popover
from scripted_bus import ScriptedBus
from sound_server import Sound
from spoken_parts import Listener
from tray_parts import pointer
from waiting import wait_for
from workspace_probe import write

PROGRAM, FAT, HELPER, AUTHORITY = sys.argv[1:5]
HOME, DATA = os.environ["HOME"], os.environ["XDG_DATA_HOME"]
CALM, CRITICAL = (1, 0.0, 0.1), (4, 0.83, 0.86)
WARM = (2, 0.55, 0.6)  # reached from above; from below the ring only comes near it
END = "using the most right now."

WINDOW = ("dialog", "Vorli", "", "")
GEAR = ("push button", "Settings", "", "Open Vorli settings.")
LINK = ("link", "Open Settings", "",
        "Asks for your password so that Vorli's background helper may work.")


def text(words):
    return "label", words, "", ""


def ready(sentence):
    return "push button", "Polish", sentence, "Frees memory and flushes caches. Takes about three seconds."


def resting(sentence):
    return "push button", "Polish (disabled)", sentence, "Your computer doesn't need polishing right now."


def name(application):
    return ("push button", f"Quit {application}", "",
            f"Closes {application} right away. It can still launch later.")


class SpokenTest(unittest.TestCase):
    conduct = verdicts = ""
    helper = "enabled"

    @classmethod
    def setUpClass(cls):
        pointer("mousemove", 60, 500)
        cls.bus = ScriptedBus(HELPER, AUTHORITY, cls.conduct, cls.verdicts)
        cls.addClassCleanup(cls.bus.close)
        cls.vorli = Popover(PROGRAM, DBUS_SYSTEM_BUS_ADDRESS=cls.bus.address)
        cls.addClassCleanup(cls.vorli.terminate)
        wait_for(lambda: cls.vorli.helper_status() == cls.helper, f"a helper that is {cls.helper}", 20)
        cls.spoken = Spoken(cls.vorli.pid)

    def open(self):
        if not self.vorli.window():
            self.vorli.toggle()
        wait_for(self.vorli.has_keyboard, "the keyboard in the popover")

    def find(self, *elements):
        self.spoken.find_only(WINDOW, GEAR, *elements)

    def find_sentence(self, sentence, button, *others):
        self.find(text(sentence), button(sentence), *others)


class RestTest(SpokenTest):
    def start(self, identifier, title, mebibytes):
        program = f"{HOME}/.local/opt/{identifier}/{identifier}"
        os.makedirs(os.path.dirname(program), exist_ok=True)
        shutil.copy(FAT, program)
        write(f"{DATA}/applications/org.example.{identifier}.desktop",
              f"[Desktop Entry]\nType=Application\nName={title}\nExec={program}\n")
        process = subprocess.Popen([program, title, str(mebibytes)])

        def end():
            process.kill()
            process.wait()

        self.addCleanup(end)
        wait_for(lambda: subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"],
                                     capture_output=True).stdout, f"the window of {title}")
        return process

    def tearDown(self):
        pointer("mousemove", 60, 500)
        if self.vorli.window():
            self.vorli.toggle()
            self.vorli.gone()

    def test_each_level_says_how_the_machine_feels(self):
        listener = Listener()
        self.addCleanup(listener.close)
        self.vorli.settle(*CALM)
        self.open()
        self.find_sentence("Your computer feels great.", resting)
        self.vorli.settle(*CRITICAL)
        self.find_sentence("Your computer is full. Time to polish it.", ready)
        self.vorli.settle(*WARM)
        self.find_sentence("Your computer is starting to fill up.", ready)
        for sentence in ("Your computer is starting to fill up.", "Your computer is full. Time to polish it."):
            wait_for(lambda: listener.heard("object:property-change:accessible-name", "label", sentence), sentence)
            wait_for(lambda: listener.heard("object:text-changed:insert", "push button", sentence), sentence)

    def test_a_pointer_on_the_calm_ring_is_reassured(self):
        self.vorli.settle(*CALM)
        self.open()
        x, y, *_ = self.vorli.card(240)
        pointer("mousemove", x + 135, y + 96)
        self.find_sentence("Nothing to polish. Enjoy the calm.", resting)
        pointer("mousemove", 60, 500)
        self.find_sentence("Your computer feels great.", resting)

    def test_culprits_are_named_and_quit_by_their_names(self):
        full = "Your computer is full. Time to polish it."
        first = self.start("paint", "Paint studio", 500)
        self.vorli.settle(*CRITICAL)
        self.open()
        self.find_sentence(full, ready, text(f"Paint studio is {END}"), name("Paint studio"))
        self.vorli.toggle()
        self.vorli.gone()

        self.start("atlas", "Google Atlas", 400)
        self.vorli.settle(*CRITICAL)
        self.open()
        both = (text(f"Paint studio and Atlas are {END}"), name("Paint studio"), name("Atlas"))
        self.find_sentence(full, ready, *both)
        self.spoken.press("push button", "Quit Paint studio")
        answers = (("push button", "Cancel", "", ""), ("push button", "Quit", "", ""))
        self.find_sentence(full, ready, text("Quit Paint studio?"), *answers)
        self.spoken.press("push button", "Cancel")
        self.find_sentence(full, ready, *both)
        self.assertIsNone(first.poll())
        self.spoken.press("push button", "Quit Paint studio")
        self.find_sentence(full, ready, text("Quit Paint studio?"), *answers)
        self.spoken.press("push button", "Quit")
        wait_for(lambda: first.poll() is not None, "the end of the application")


class PolishTest(SpokenTest):
    used_after = 50

    def polish(self, sentence, *others):
        listener = Listener()
        self.addCleanup(listener.close)
        self.vorli.tell("used 50")
        self.vorli.settle(*CRITICAL)
        self.open()
        self.find_sentence("Your computer is full. Time to polish it.",
                           ready if self.helper == "enabled" else resting)
        self.spoken.press("push button", "Polish" if self.helper == "enabled" else "Polish (disabled)")
        if self.helper == "enabled":
            self.find_sentence("Polishing your computer…", resting)
            self.vorli.tell(f"used {self.used_after}")
        self.find_sentence(sentence, resting, *others)
        for told in ("Polishing your computer…", sentence) if self.helper == "enabled" else (sentence,):
            wait_for(lambda: listener.heard("object:property-change:accessible-name", "label", told), told)


class PolishedTest(PolishTest):
    used_after = 39.8  # of 100, so that the truncated figure is 20

    def test_room_to_breathe_and_the_figure(self):
        self.polish("Now, your computer has room to breathe.", text("20 percent lighter"))


class SparedTest(PolishTest):
    def test_held_off_for_the_audio(self):
        with Sound(-6):
            self.polish("A gentle tidy. Held off the deep polish so your audio stays smooth.")


class OutOfReachTest(PolishTest):
    conduct = "purge No helper connection\n"

    def test_out_of_reach_and_the_link(self):
        self.polish("A gentle tidy. Couldn't reach the helper for a full polish.", LINK)


class ApprovalTest(PolishTest):
    verdicts = "purge-memory challenge\n"
    helper = "requiresApproval"

    def test_approval_and_the_link(self):
        self.polish("A gentle tidy. Approve Vorli's helper for a full polish.", LINK)


unittest.main(argv=sys.argv[:1] + sys.argv[5:], warnings="ignore", verbosity=2)
