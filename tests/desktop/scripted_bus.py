"""A test's own system bus with a scripted polkit and a scripted daemon, which the bus starts."""

import os
import shutil
import signal
import subprocess
import tempfile

from waiting import wait_for

CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path={folder}/socket</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
  </policy>
</busconfig>
"""


class ScriptedBus:
    def __init__(self, helper, authority, conduct="", verdicts=""):
        """`conduct` scripts the daemon, `verdicts` scripts polkit: each line is a key and a value."""
        self.folder = tempfile.mkdtemp(prefix="vorli-bus-")
        os.mkdir(self._path("services"))
        self._write("bus.conf", CONFIGURATION.format(folder=self.folder))
        self._write("helper", conduct)
        self._write("authority", verdicts)
        self._write("services/com.kv.vorli.helper.service",
                    f"[D-BUS Service]\nName=com.kv.vorli.helper\nExec={helper} {self.folder}\nUser=root\n")
        self.address = f"unix:path={self._path('socket')}"
        with open(self._path("bus.log"), "wb") as log:
            self.processes = [subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "dbus-daemon", "--nofork",
                                                f"--config-file={self._path('bus.conf')}"], stderr=log)]
        wait_for(lambda: self._has_owner("org.freedesktop.DBus"), "the private bus")
        self.processes.append(subprocess.Popen([authority, self.folder, "polkit"],
                                               env={**os.environ, "DBUS_SYSTEM_BUS_ADDRESS": self.address}))
        wait_for(lambda: self._has_owner("org.freedesktop.PolicyKit1"), "the scripted polkit")

    def _path(self, name):
        return os.path.join(self.folder, name)

    def _write(self, name, text):
        with open(self._path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def _has_owner(self, name):
        answer = subprocess.run(
            ["dbus-send", f"--bus={self.address}", "--print-reply=literal", "--dest=org.freedesktop.DBus", "/",
             "org.freedesktop.DBus.NameHasOwner", f"string:{name}"], capture_output=True, text=True, check=False)
        return "true" in answer.stdout

    def requests(self):
        """Requests to the daemon, in order."""
        return [line for line in self._notes() if not line.startswith("pid ")]

    def daemons(self):
        """Process ids of the daemons that the bus has started, in order."""
        return [int(line.split()[1]) for line in self._notes() if line.startswith("pid ")]

    def _notes(self):
        try:
            with open(self._path("helper.log"), encoding="utf-8") as file:
                return file.read().splitlines()
        except FileNotFoundError:
            return []

    def signal_daemon(self, number):
        os.kill(self.daemons()[-1], number)

    def close(self):
        for daemon in self.daemons():
            try:
                os.kill(daemon, signal.SIGKILL)
            except ProcessLookupError:
                pass
        for process in reversed(self.processes):
            process.kill()
            process.wait()
        shutil.rmtree(self.folder)
