"""Inside the scratch root: the program that ./run installs works, and ./run --remove leaves nothing of it."""

import os
import signal
import subprocess

from builds import build_of, make_newer
from waiting import wait_for

HELPER = "/usr/local/libexec/vorli/vorli-helper"
LOAD = "/run/check/vorli_helper_load"
SETTINGS = "/root/.config/Vorli/Vorli.ini"
# Settings, and the folders of crash reports and of the log.
OF_THE_USER = [os.path.dirname(SETTINGS), SETTINGS, "/root/.local/share/Vorli", "/root/.local/state/Vorli",
               "/root/.local/state/Vorli/Logs/diagnostics.log"]


class Display:
    """Starts an X server for the program."""

    def __enter__(self):
        reading, writing = os.pipe()
        # -noreset: the first program's end would refuse the next one's connection.
        self._server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-nolisten", "tcp", "-noreset"],
                                        pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            self.name = f":{number.readline().strip()}"
        return self

    def __exit__(self, *_):
        self._server.kill()
        self._server.wait()


def processes_of(program):
    found = []
    for entry in os.listdir("/proc"):
        try:
            if entry.isdigit() and os.readlink(f"/proc/{entry}/exe") == program:
                found.append(int(entry))
        except OSError:
            pass
    return found


def is_up(program):
    """Whether the program runs by now and waits for a signal that ends it."""
    terminate = 1 << (signal.SIGTERM - 1)
    for process in processes_of(program):
        try:
            with open(f"/proc/{process}/status", encoding="ascii") as file:
                masks = dict(line.split(":\t") for line in file.read().splitlines() if line.startswith("Sig"))
        except (FileNotFoundError, ProcessLookupError):
            continue  # it has ended in the meantime
        if (int(masks["SigCgt"], 16) | int(masks["SigBlk"], 16)) & terminate:
            return True
    return False


class Installation:
    """Installs under one prefix with ./run, and removes again."""

    def __init__(self, source, prefix, display):
        self.script = [f"{source}/run", "--prefix", prefix]
        self.program = f"{prefix}/bin/vorli"
        # Without a session bus: its services would leave files of their own.
        self.environment = {**os.environ, "DISPLAY": display, "HOME": "/root", "DBUS_SESSION_BUS_ADDRESS": "disabled:"}

    def start(self):
        """Waits until the program runs; returns the process of ./run."""
        running = subprocess.Popen(self.script, env=self.environment, text=True, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT)
        wait_for(lambda: is_up(self.program) or running.poll() is not None, "the program", 300)
        return running

    def end(self, running):
        """Asks the program to quit; returns the exit code and output of ./run."""
        for process in processes_of(self.program):
            os.kill(process, signal.SIGTERM)
        output, _ = running.communicate(timeout=30)
        return running.returncode, output

    def remove(self, *options):
        return subprocess.run([*self.script, "--remove", *options], env=self.environment, capture_output=True, text=True,
                              timeout=60, check=False)


def check_newer(check, ping, source, installation):
    """Checks that a newer build replaces the installed one while calls keep coming."""
    newer = make_newer(f"{source}/build/package/src/vorli-helper")
    calls = subprocess.Popen([LOAD, "hammer", "1000000", "4000"], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    code, output = installation.end(installation.start())
    check("./run replaces the daemon with a newer build", code == 0 and build_of(HELPER) == newer, output)
    check("a call is answered", ping()[0] == "answer", ping())
    answering = [build_of(f"/proc/{process}/exe") for process in processes_of(HELPER)]
    check("by the newer one", answering == [newer], (answering, newer))
    calls.terminate()  # prints how many were lost, and ends
    output, errors = calls.communicate(timeout=30)
    figures = dict(line.split() for line in output.splitlines())
    check(f"of {figures.get('count', '?')} calls meanwhile none is lost", float(figures.get("lost", -1)) == 0, errors)


def check_prefix(check, ping, left, source, prefix):
    """`ping` calls the daemon; `left` lists our files in the whole system."""
    with Display() as display:
        installation = Installation(source, prefix, display.name)
        running = installation.start()
        check(f"./run starts the program under {prefix}", processes_of(installation.program),
              "" if running.poll() is None else running.stdout.read())
        check("its daemon answers", ping()[0] == "answer", ping())
        daemon = os.stat(HELPER).st_ino
        code, output = installation.end(running)
        check("./run ends when the program does", code == 0, output)
        check("its terminal is quiet", all(line.startswith(("run: ", "set-up: ")) for line in output.splitlines()), output)

        code, output = installation.end(installation.start())
        check("a second ./run leaves the daemon that is current alone", code == 0 and os.stat(HELPER).st_ino == daemon,
              output)

        check_newer(check, ping, source, installation)

        os.makedirs(os.path.dirname(SETTINGS), exist_ok=True)
        with open(SETTINGS, "a", encoding="utf-8"):
            pass
        running = installation.start()
        done = installation.remove()
        check("./run --remove works while the program runs", done.returncode == 0, done.stdout + done.stderr)
        check("and ends it", running.wait(30) == 0 and not processes_of(installation.program))
        running.stdout.close()
        check("settings and logs stay, and nothing else", left() == OF_THE_USER, left())
        check("the daemon leaves by itself", wait_for(lambda: not processes_of(f"{HELPER} (deleted)"), "its end", 30))
        check("a call fails with an error", ping()[0] == "error", ping())

        again = installation.remove()
        check("a second removal says that there is nothing", again.returncode == 1 and "nothing under" in again.stderr,
              again.stderr)
        installation.end(installation.start())
        done = installation.remove("--settings")
        check("with --settings nothing is left", done.returncode == 0 and left() == [], (done.stderr, left()))
