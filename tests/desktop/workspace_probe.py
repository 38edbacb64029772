"""Tools of the workspace's tests: the probe, and the window manager's list."""

import json
import os
import re
import subprocess

from process import Process
from waiting import wait_for


def write(path, text, mode=0o644):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    os.chmod(path, mode)


class Probe:
    """The probe of the workspace, and its lines so far."""

    def __init__(self, program, **environment):
        self.process = Process(program, environment=environment, parse=json.loads)
        self.lines, self.tell = self.process.lines, self.process.tell
        wait_for(lambda: any("ready" in line for line in self.lines), "the probe is ready")

    def ask(self, command, key):
        seen = len(self.lines)
        self.tell(command)
        return wait_for(lambda: next((line for line in self.lines[seen:] if key in line), None), command)[key]

    def running(self):
        return {application["id"]: application for application in self.ask("list", "list")}

    def appears(self, identifier):
        """Waits for the application. Where windows cannot be seen, new processes are looked for every 15 seconds."""
        return wait_for(lambda: self.running().get(identifier), f"{identifier} is running", seconds=40)

    def events(self, kind):
        return [line["application"]["id"] for line in self.lines if line.get("event") == kind and "application" in line]

    def front(self):
        front = self.ask("front", "front")
        return front["id"] if front else None

    def logged(self):
        return [line["log"] for line in self.lines if "log" in line]

    def look(self):
        """Runs one tick of the monitor and returns its conclusions from the session's processes."""
        seen = len(self.lines)
        self.ask("look", "look")
        return next(line for line in self.lines[seen:] if "look" in line)

    def close(self):
        self.process.end_input()


def client_list():
    told = subprocess.run(["xprop", "-root", "_NET_CLIENT_LIST"], capture_output=True, text=True, check=True).stdout
    return re.findall(r"0x[0-9a-f]+", told)
