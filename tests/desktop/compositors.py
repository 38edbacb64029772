"""Wayland compositors without a screen or devices, each in a runtime folder of its own."""

import json
import os
import re
import shutil
import subprocess
import tempfile

import dbus
from waiting import wait_for
from workspace_probe import write

WIDTH, HEIGHT = 1280, 720
# Compositors refuse to run as root, each in its own way. A user namespace hides it from all of them.
ORDINARY_USER = ["unshare", "--user", "--map-user=1000", "--map-group=1000"] if os.geteuid() == 0 else []
NAMES = ("DISPLAY", "XAUTHORITY", "WAYLAND_DISPLAY", "SWAYSOCK", "XDG_RUNTIME_DIR", "XDG_SESSION_TYPE",
         "XDG_CURRENT_DESKTOP")


class Compositor:
    """A running compositor. A subclass has `command`, and `windows` if the compositor lists them."""

    own_environment = {}

    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="vorli-compositor-")
        self.told = f"{self.folder}/environment"
        self.teller = f"{self.folder}/tell"
        write(self.teller, f'#!/bin/sh\nenv >"{self.told}.new" && mv "{self.told}.new" "{self.told}"\n', 0o755)
        own = {**os.environ, "XDG_RUNTIME_DIR": self.folder, "XDG_SESSION_TYPE": "wayland", **self.own_environment}
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "QT_QPA_PLATFORM", "GDK_BACKEND"):
            own.pop(name, None)
        self.log = open(f"{self.folder}/log", "wb")  # pylint: disable=consider-using-with
        self.process = subprocess.Popen(self.command(), env=own, stdout=self.log, stderr=self.log)
        try:
            wait_for(self.is_ready, "the compositor runs the program that it was given", seconds=60)
        except AssertionError as error:
            text = self.log_text()
            self.close()
            raise AssertionError(f"{error}: {text}") from None
        with open(self.told, encoding="utf-8") as file:
            told = dict(line.rstrip("\n").partition("=")[::2] for line in file)
        self.environment = {name: told[name] for name in NAMES if name in told}

    def command(self):
        raise NotImplementedError

    def is_ready(self):
        assert self.process.poll() is None, f"it ended with {self.process.returncode}"
        return os.path.exists(self.told)

    def log_text(self):
        with open(self.log.name, encoding="utf-8", errors="replace") as log:
            return log.read()

    def run(self, *command):
        return subprocess.run(command, env={**os.environ, **self.environment}, capture_output=True, text=True,
                              check=True).stdout

    def windows_of(self, pid):
        return [window for window in self.windows() if window[0] == pid]

    def close(self):
        self.process.terminate()
        self.process.wait(timeout=20)
        self.log.close()
        shutil.rmtree(self.folder)


class Sway(Compositor):
    """A compositor that is based on wlroots."""

    own_environment = {"WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1"}

    def command(self):
        write(f"{self.folder}/config", f"xwayland enable\nfocus_follows_mouse no\n"
                                       f"output HEADLESS-1 resolution {WIDTH}x{HEIGHT}\nexec {self.teller}\n")
        return [*ORDINARY_USER, "sway", "-c", f"{self.folder}/config"]

    def windows(self):
        """Process, application identifier and title of each window."""
        found = []

        def collect(node):
            if node.get("pid") and node["type"] in ("con", "floating_con"):
                found.append((node["pid"], node.get("app_id"), node["name"]))
            for child in node["nodes"] + node["floating_nodes"]:
                collect(child)

        collect(json.loads(self.run("swaymsg", "-t", "get_tree", "-r")))
        return found

    def focus(self, pid):
        self.run("swaymsg", f"[pid={pid}] focus")


class KWin(Compositor):
    """Plasma's compositor without its shell. A program may see the windows if an entry allows it before the start."""

    own_environment = {"KWIN_COMPOSE": "Q", "XDG_CURRENT_DESKTOP": "KDE", "QT_FORCE_STDERR_LOGGING": "1",
                       "QT_LOGGING_RULES": "kwin_scripting.debug=true"}

    def __init__(self):
        self.scripts = 0
        super().__init__()

    def command(self):
        # Runs a copy, which has no file capabilities: a container may refuse them.
        program = shutil.copy(shutil.which("kwin_wayland"), f"{self.folder}/kwin_wayland")
        return [program, "--virtual", "--width", str(WIDTH), "--height", str(HEIGHT), "--xwayland",
                "--socket", "wayland-vorli", "--no-lockscreen", self.teller]

    def script(self, code):
        """Runs the code in the compositor; returns what it printed."""
        self.scripts += 1
        name = f"vorli-{self.scripts}"
        write(f"{self.folder}/{name}.js", f'{code}\nprint("{name} done");\n')
        scripting = dbus.Interface(dbus.SessionBus().get_object("org.kde.KWin", "/Scripting", introspect=False),
                                   "org.kde.kwin.Scripting")
        before = len(self.log_text())
        scripting.loadScript(f"{self.folder}/{name}.js", name)
        scripting.start()
        said = wait_for(lambda: re.search(f"^.*{name} done", self.log_text()[before:], re.MULTILINE), code, 30, 0.05)
        scripting.unloadScript(name)
        return self.log_text()[before:][:said.start()]

    ALL = "var all = workspace.windowList ? workspace.windowList() : workspace.clientList();\n"

    def windows(self):
        """Process, application identifier and title of each window."""
        told = self.script(self.ALL + 'all.forEach(function(each) { if (each.normalWindow || each.dialog)'
                           ' print("window " + JSON.stringify([each.pid, "" + each.resourceClass, each.caption])); });')
        return [tuple(json.loads(each)) for each in re.findall(r"window (\[.*\])", told)]

    def _change(self, pid, change):
        self.script(self.ALL + f"all.forEach(function(each) {{ if (each.pid == {pid}) {{ {change} }} }});")

    def focus(self, pid):
        self._change(pid, "if (workspace.windowList) workspace.activeWindow = each; else workspace.activeClient = each;")

    def minimise(self, pid):
        self._change(pid, "each.minimized = true;")


class Mutter(Compositor):
    """GNOME's compositor without its shell. It lists its windows for no program."""

    own_environment = {"XDG_CURRENT_DESKTOP": "GNOME"}

    def command(self):
        # It ends with the program that it starts, which ends when the pipe is closed.
        pipe = f"{self.folder}/pipe"
        os.mkfifo(pipe)
        self.pipe = os.open(pipe, os.O_RDWR)
        return [*ORDINARY_USER, "mutter", "--headless", "--virtual-monitor", f"{WIDTH}x{HEIGHT}", "--wayland",
                "--wayland-display", "wayland-vorli", "--", "sh", "-c", f'"{self.teller}" && read end <"{pipe}"']

    def close(self):
        os.close(self.pipe)
        super().close()
