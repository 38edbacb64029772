"""logins.py PROBE: the session manager of XFCE starts what is not paused, and nothing else, at each login."""

import os
import subprocess
import sys
import unittest

from waiting import holds, wait_for

# A session of one program that ends at once, so that only the entries are started.
SESSION = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-session" version="1.0">
  <property name="general" type="empty">
    <property name="FailsafeSessionName" type="string" value="Failsafe"/>
    <property name="SaveOnExit" type="bool" value="false"/>
  </property>
  <property name="startup" type="empty">
    <property name="ssh-agent" type="empty"><property name="enabled" type="bool" value="false"/></property>
    <property name="gpg-agent" type="empty"><property name="enabled" type="bool" value="false"/></property>
  </property>
  <property name="sessions" type="empty">
    <property name="Failsafe" type="empty">
      <property name="IsFailsafe" type="bool" value="true"/>
      <property name="Count" type="int" value="1"/>
      <property name="Client0_Command" type="array"><value type="string" value="true"/></property>
      <property name="Client0_Priority" type="int" value="15"/>
      <property name="Client0_PerScreen" type="bool" value="false"/>
    </property>
  </property>
</channel>
"""


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


class Logins(unittest.TestCase):
    def setUp(self):
        home = os.environ["HOME"]
        self.mine = os.path.join(os.environ["XDG_CONFIG_HOME"], "autostart")
        self.shared = os.path.join(home, "shared", "autostart")
        self.started = os.path.join(home, "started")
        os.makedirs(self.started)
        # Nothing that this machine starts is started, and the probe sees the same folders as the session.
        self.environment = {**os.environ, "XDG_CONFIG_DIRS": os.path.dirname(self.shared), "XDG_CURRENT_DESKTOP": "XFCE"}
        write(os.path.join(os.environ["XDG_CONFIG_HOME"], "xfce4/xfconf/xfce-perchannel-xml/xfce4-session.xml"), SESSION)

    def entry(self, folder, name, mark=None):
        command = f"/usr/bin/touch {self.started}/{mark or name}"
        write(os.path.join(folder, f"{name}.desktop"), f"[Desktop Entry]\nType=Application\nName={name}\nExec={command}\n")

    def log_in(self, expected):
        """Checks that this login starts these entries and no others."""
        for name in os.listdir(self.started):
            os.remove(os.path.join(self.started, name))
        session = subprocess.Popen(["xfce4-session"], env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            wait_for(lambda: expected <= set(os.listdir(self.started)), f"the session starts {sorted(expected)}", 30)
            holds(lambda: expected == set(os.listdir(self.started)), "nothing else", 1.0)
        finally:
            session.terminate()
            session.wait(30)

    def press(self, verb, name):
        done = subprocess.run([sys.argv[1], verb, name], env=self.environment, stdout=subprocess.PIPE, text=True, timeout=30, check=True)
        state = dict(line.split("\t") for line in done.stdout.splitlines())
        self.assertEqual(state[name], "off" if verb == "pause" else "on", done.stdout)

    def files(self):
        found = {}
        for folder in (self.mine, self.shared):
            for name in os.listdir(folder):
                path = os.path.join(folder, name)
                with open(path, encoding="utf-8") as file:
                    found[path] = (os.lstat(path).st_ino, os.lstat(path).st_mtime_ns, file.read())
        return found

    def test_paused_entries_wait_until_they_are_resumed(self):
        self.entry(self.mine, "always")
        self.entry(self.mine, "mine")
        self.entry(self.mine, "over", "over-mine")
        self.entry(self.shared, "over", "over-shared")
        self.entry(self.shared, "shared")
        self.entry(os.path.join(os.environ["HOME"], "dotfiles"), "link")
        os.symlink("../../dotfiles/link.desktop", os.path.join(self.mine, "link.desktop"))
        everything = {"always", "mine", "over-mine", "shared", "link"}
        before = self.files()
        self.log_in(everything)

        for name in ("mine", "over", "shared", "link"):
            self.press("pause", name)
        self.log_in({"always"})

        for name in ("mine", "over", "shared", "link"):
            self.press("resume", name)
        self.log_in(everything)
        self.assertEqual(self.files(), before)


unittest.main(argv=sys.argv[:1], verbosity=2)
