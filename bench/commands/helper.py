"""The root daemon on a private bus, compared with the smallest service that uses the same library."""

import json
import os
import re
import signal
import subprocess
import tempfile

from measuring.gates import gates
from measuring.process import machine_ticks, memory_mb
from measuring.report import Report
from waiting import wait_for

SUMMARY = "ping beside a bare service, cold start, load and memory of the root daemon"
NAME, OBJECT = "com.kv.vorli.helper", "/com/kv/vorli/helper"
# The type is "system": the daemon uses it to recognise the bus that started it.
CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path={0}/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{0}/services</servicedir>
  <limit name="max_connections_per_user">1024</limit>
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


class Bus:
    """A private bus that starts the daemon on demand."""

    def __init__(self, folder, daemon):
        os.mkdir(f"{folder}/services")
        with open(f"{folder}/bus.conf", "w", encoding="utf-8") as file:
            file.write(CONFIGURATION.format(folder))
        with open(f"{folder}/services/{NAME}.service", "w", encoding="utf-8") as file:
            file.write(f"[D-BUS Service]\nName={NAME}\nExec={os.path.abspath(daemon)}\nUser=root\n")
        self.environment = {**os.environ, "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={folder}/bus"}
        self._process = subprocess.Popen(
            ["dbus-daemon", f"--config-file={folder}/bus.conf", "--nofork", "--nopidfile", "--print-address=1"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=self.environment)
        self._process.stdout.readline()

    def run(self, *command):
        return subprocess.run(command, env=self.environment, check=True, capture_output=True, text=True).stdout

    def _ask(self, method):
        """Asks the bus about the daemon's name and returns the answer."""
        return self.run("dbus-send", f"--bus={self.environment['DBUS_SYSTEM_BUS_ADDRESS']}", "--print-reply=literal",
                        "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus", f"org.freedesktop.DBus.{method}",
                        f"string:{NAME}")

    def daemon(self):
        """Process identifier of the running daemon."""
        return int(re.search(r"uint32 (\d+)", self._ask("GetConnectionUnixProcessID"))[1])

    def is_daemon_there(self):
        return "true" in self._ask("NameHasOwner")

    def end(self):
        self._process.terminate()
        self._process.wait()


def _pings(bus, calls, name, path, interface, count):
    return json.loads(bus.run(calls, "call", name, path, interface, str(count)))


def _middle(values, part=0.5):
    return sorted(values)[min(int(part * len(values)), len(values) - 1)]


def _add_pings(report, bus, calls, rounds, count):
    with subprocess.Popen([calls, "serve"], stdout=subprocess.PIPE, text=True, env=bus.environment) as bare:
        address = bare.stdout.readline().strip()
        floor, own = [], []
        try:
            for _ in range(rounds):
                floor.append(_pings(bus, calls, address, "/floor", "test.Floor", count))
                own.append(_pings(bus, calls, NAME, OBJECT, NAME, count))
        finally:
            bare.terminate()
    report.add("ping of the floor", "us", [_middle(each) for each in floor], digits=0)
    report.add("ping", "us", [_middle(each) for each in own], digits=0)
    quietest = min(map(_middle, own)) / min(map(_middle, floor))
    report.add("ping, quietest rounds", "x floor", quietest, **gates("helper", "ping"))
    report.add("ping, p99 of the floor", "us", [_middle(each, 0.99) for each in floor], digits=0)
    report.add("ping, p99", "us", [_middle(each, 0.99) for each in own], digits=0)


def _cold_starts(bus, calls, count):
    """Milliseconds that a ping takes when the daemon has to be started for it."""
    times = []
    for _ in range(count):
        pid = bus.daemon()
        os.kill(pid, signal.SIGKILL)
        wait_for(lambda: not bus.is_daemon_there(), "the end of the daemon", pause=0.001)
        times.append(json.loads(bus.run(calls, "first", NAME, OBJECT, NAME))[0] / 1000)
    return times


def measure(build, quick):
    report = Report("the root daemon; floor: a service of the same bus library with one method that does nothing")
    daemon, calls = build.program("vorli-helper", "src/vorli-helper"), build.program("vorli_bare_calls", "bench/vorli_bare_calls")
    load = build.program("vorli_helper_load", "tests/daemon/tools/vorli_helper_load")
    before = machine_ticks()
    with tempfile.TemporaryDirectory(prefix="vorli-bench.") as folder:
        bus = Bus(folder, daemon)
        try:
            _add_pings(report, bus, calls, 10 if quick else 40, 500)
            many = dict(line.split() for line in bus.run(load, "many", "20", "500").splitlines())
            report.add("calls a second of 20 clients", "1/s", float(many["rate"]), digits=0)
            report.add("p99 of the slowest of them", "ms", float(many["worst_p99"]) * 1000, digits=1)
            report.add("resident after them", "MiB", memory_mb(bus.daemon())["Rss"], digits=1, **gates("helper", "resident"))
            batches = [_cold_starts(bus, calls, 10 if quick else 70) for _ in range(3)]
            report.add("cold start with its first ping", "ms", [start for batch in batches for start in batch], digits=1)
            report.add("cold start, p99 of the quietest third", "ms", min(_middle(batch, 0.99) for batch in batches),
                       digits=1, **gates("helper", "cold start p99"))
        finally:
            bus.end()
    busy, whole = (now - then for now, then in zip(machine_ticks(), before))
    report.note(f"all times are wall times, which other programs can only lengthen, so the quietest rounds count; the "
                f"machine's processors were busy {100 * busy / whole:.0f} % of the time")
    report.note("tests/daemon/run checks what the daemon promises and prints its figures")
    return report
