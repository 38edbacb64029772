#!/usr/bin/env python3
"""Tests of tools/desktop-session.sh, on which the desktop tests rely. Needs root for the private system bus."""

import glob
import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
BARE = ("--wm", "none", "--panel", "none", "--notify", "none", "--audio", "none")

POLICY = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE policyconfig PUBLIC "-//freedesktop//DTD polkit Policy Configuration 1.0//EN"
  "http://www.freedesktop.org/software/polkit/policyconfig-1.dtd">
<policyconfig>
  <action id="com.kv.vorli.helper.test">
    <description>test</description>
    <message>test</message>
    <defaults><allow_any>no</allow_any><allow_inactive>no</allow_inactive><allow_active>yes</allow_active></defaults>
  </action>
</policyconfig>
"""


def session(*arguments, **options):
    return subprocess.run(
        [os.path.join(ROOT, "tools/desktop-session.sh"), *arguments], capture_output=True, text=True, check=False, **options
    )


def carrying(mark):
    """Ids of the processes with the mark in their environment."""
    found = []
    for path in glob.glob("/proc/[0-9]*/environ"):
        try:
            with open(path, "rb") as file:
                if f"VORLI_SESSION_MARK={mark}".encode() in file.read().split(b"\0"):
                    found.append(path.split("/")[2])
        except OSError:
            continue
    return found


class DesktopSessionTest(unittest.TestCase):
    def testExitCodeIsTheCommands(self):
        self.assertEqual(session(*BARE, "--", "sh", "-c", "exit 7").returncode, 7)

    def testTimeLimitGives124(self):
        self.assertEqual(session(*BARE, "--timeout", "1", "--", "sleep", "60").returncode, 124)

    def testWrongCallGives64(self):
        for arguments in (("--panel", "dock", "--", "true"), ("--nonsense", "--", "true"), (), ("--size",)):
            self.assertEqual(session(*arguments).returncode, 64, arguments)

    def testHomeBusAndDisplayAreItsOwn(self):
        names = ("HOME", "XDG_RUNTIME_DIR", "DBUS_SESSION_BUS_ADDRESS", "XDG_CONFIG_HOME")
        run = session(*BARE, "--", "sh", "-c", "; ".join(f'echo "${name}"' for name in names))
        for name, value in zip(names, run.stdout.splitlines(), strict=True):
            self.assertIn("/tmp/vorli-session.", value, name)

    def testNothingIsLeftBehind(self):
        # A child that leaves its process group and ignores SIGTERM.
        child = "setsid sh -c 'trap \"\" TERM; sleep 600' & echo $VORLI_SESSION_MARK $VORLI_SESSION_DIR"
        run = session("--audio", "none", "--", "sh", "-c", child)
        mark, folder = run.stdout.split()
        self.assertEqual(carrying(mark), [])
        self.assertFalse(os.path.exists(folder))

    def testHomeIsKeptWhenGiven(self):
        with tempfile.TemporaryDirectory() as home:
            self.assertEqual(session(*BARE, "--home", home, "--", "sh", "-c", "echo kept > $HOME/file").returncode, 0)
            self.assertTrue(os.path.exists(os.path.join(home, "file")))

    def testItsUserHasFinishedTheFirstSteps(self):
        finished = "[General]\nhasCompletedOnboarding=true\nhasSeenDoneScreen=true\n"
        show = ("--", "sh", "-c", "cat $XDG_CONFIG_HOME/Vorli/Vorli.ini")
        self.assertEqual(session(*BARE, *show).stdout, finished)
        with tempfile.TemporaryDirectory() as home:
            settings = os.path.join(home, ".config/Vorli/Vorli.ini")
            os.makedirs(os.path.dirname(settings))
            with open(settings, "w", encoding="utf-8") as file:
                file.write("[General]\n")
            self.assertEqual(session(*BARE, "--home", home, *show).stdout, "[General]\n")

    def testLogsAreKeptWhenAsked(self):
        with tempfile.TemporaryDirectory() as logs:
            session(*BARE, "--keep-logs", logs, "--", "true")
            self.assertIn("x-server", os.listdir(logs))


class SystemBusTest(unittest.TestCase):
    def setUp(self):
        self.assertEqual(os.geteuid(), 0, "the private system bus needs root")
        self.prefix = tempfile.mkdtemp(prefix="vorli-prefix-")
        self.addCleanup(shutil.rmtree, self.prefix)
        for path, text in (
            ("share/dbus-1/system-services/com.kv.vorli.helper.service", "[D-BUS Service]\nName=com.kv.vorli.helper\nExec=/elsewhere/vorli-helper\nUser=root\n"),
            ("share/dbus-1/system.d/com.kv.vorli.helper.conf", "<busconfig/>\n"),
            ("share/polkit-1/actions/com.kv.vorli.helper.policy", POLICY),
        ):
            self.write(path, text)

    def write(self, path, text):
        full = os.path.join(self.prefix, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write(text)

    def run_with_bus(self, command):
        return session(*BARE, "--system-bus", self.prefix, "--", "sh", "-c", command)

    def testUserOfTheSessionSitsAtTheMachine(self):
        run = self.run_with_bus("id -un; exec pkcheck --action-id com.kv.vorli.helper.test --process $$")
        self.assertEqual((run.returncode, run.stdout), (0, "nobody\n"), run.stderr)

    def testSameUserOutsideTheSessionDoesNot(self):
        command = [os.path.join(ROOT, "tools/desktop-session.sh"), *BARE, "--system-bus", self.prefix, "--",
                   "sh", "-c", "echo $DBUS_SYSTEM_BUS_ADDRESS; read line"]
        with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as running:
            address = running.stdout.readline().strip()
            check = ["setpriv", "--reuid", "nobody", "--regid", "nogroup", "--clear-groups", "sh", "-c",
                     "exec pkcheck --action-id com.kv.vorli.helper.test --process $$"]
            outside = subprocess.run(check, env={**os.environ, "DBUS_SYSTEM_BUS_ADDRESS": address},
                                     capture_output=True, text=True, check=False)
            running.communicate("\n")
        self.assertEqual((outside.returncode, outside.stderr), (1, "Not authorized.\n"))

    def testControlGroupOfTheSessionIsRemoved(self):
        run = self.run_with_bus("grep ^0:: /proc/self/cgroup")
        group = run.stdout.strip().removeprefix("0::")
        self.assertRegex(group, r"/user\.slice/user-\d+\.slice/session-vorli\d+\.scope$")
        with tempfile.TemporaryDirectory() as mount:
            script = f"mount -t cgroup2 none {mount} && test ! -e {mount}{group}"
            self.assertEqual(subprocess.call(["unshare", "--mount", "sh", "-c", script]), 0)

    def testPrefixWithoutTheDaemonIsNamed(self):
        run = session(*BARE, "--system-bus", "/nonexistent", "--", "true")
        self.assertEqual(run.returncode, 70)
        self.assertIn("no helper is installed under /nonexistent", run.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=1)
