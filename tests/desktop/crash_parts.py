"""The files that a crash leaves behind, and the places that its report is sent to."""

import os

from process import run
from vorli import settings_file
from workspace_probe import write

HOME, CONFIG, DATA = (os.environ[name] for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"))
REPORTS = os.path.join(DATA, "Vorli", "CrashReports")
PENDING_REPORT = os.path.join(REPORTS, "pending", "2020-03-01T09-30-05.123Z.txt")

CLIPBOARD = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk
print(Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD).wait_for_text(), end="")
"""


def store(**settings):
    """Writes the settings of a user who has finished the first steps."""
    lines = ["[General]", "hasCompletedOnboarding=true", "hasSeenDoneScreen=true"]
    write(settings_file(), "\n".join(lines + [f"{name}={value}" for name, value in settings.items()]) + "\n")


def reports(folder):
    """The texts of the crash reports in one of the folders."""
    place = os.path.join(REPORTS, folder)
    texts = []
    for name in sorted(os.listdir(place)) if os.path.isdir(place) else []:
        with open(os.path.join(place, name), encoding="utf-8") as file:
            texts.append(file.read())
    return texts


def clipboard():
    return run("/usr/bin/python3", "-c", CLIPBOARD)


class MailProgram:
    """The user's mail program, which stores the links that it is started with."""

    def __init__(self, test):
        self._links = os.path.join(HOME, "mails")
        program = os.path.join(HOME, "bin", "mail")
        write(program, f'#!/bin/sh\nprintf "%s\\n" "$1" >>"{self._links}"\n', 0o755)
        entry = os.path.join(DATA, "applications", "org.example.Mail.desktop")
        write(entry, f"[Desktop Entry]\nType=Application\nName=Mail\nExec={program} %u\n")
        choice = os.path.join(CONFIG, "mimeapps.list")
        write(choice, "[Default Applications]\nx-scheme-handler/mailto=org.example.Mail.desktop\n")
        write(self._links, "")
        for path in (program, entry, choice, self._links):
            test.addCleanup(os.remove, path)

    def links(self):
        with open(self._links, encoding="utf-8") as file:
            return file.read().splitlines()
