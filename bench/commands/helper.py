"""The root daemon on a bus of its own, beside the least that a service of the same library costs."""

import json
import os
import re
import signal
import subprocess
import tempfile
import time

from measuring.gates import gates
from measuring.process import memory_mb
from measuring.report import Report

SUMMARY = "ping beside a bare service, cold start, load and memory of the root daemon"
NAME, OBJECT = "com.kv.vorli.helper", "/com/kv/vorli/helper"
# Of the kind "session": one of the kind "system" starts services by a set-uid program that knows no other bus.
CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
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

    def daemon(self):
        """The process identifier of the daemon that runs now."""
        reply = self.run("dbus-send", f"--address={self.environment['DBUS_SYSTEM_BUS_ADDRESS']}", "--print-reply",
                         "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                         "org.freedesktop.DBus.GetConnectionUnixProcessID", f"string:{NAME}")
        return int(re.search(r"uint32 (\d+)", reply)[1])

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
        for _ in range(rounds):
            floor.append(_pings(bus, calls, address, "/floor", "test.Floor", count))
            own.append(_pings(bus, calls, NAME, OBJECT, NAME, count))
        bare.terminate()
    report.add("ping of the floor", "us", [_middle(each) for each in floor], digits=0)
    report.add("ping", "us", [_middle(each) for each in own], digits=0)
    report.add("ping", "x floor", [_middle(one) / _middle(bare) for one, bare in zip(own, floor)],
               **gates("helper", "ping"))
    report.add("ping, p99 of the floor", "us", [_middle(each, 0.99) for each in floor], digits=0)
    report.add("ping, p99", "us", [_middle(each, 0.99) for each in own], digits=0)


def _cold_starts(bus, calls, count):
    """Milliseconds of a ping whose daemon has to be started."""
    times = []
    for _ in range(count):
        pid = bus.daemon()
        os.kill(pid, signal.SIGKILL)
        while os.path.exists(f"/proc/{pid}"):
            time.sleep(0.001)
        times.append(json.loads(bus.run(calls, "first", NAME, OBJECT, NAME))[0] / 1000)
    return times


def measure(build, quick):
    report = Report("the root daemon; floor: a service of the same bus library with one method that does nothing")
    daemon, calls = build.program("vorli-helper", "src/vorli-helper"), build.program("vorli_bare_calls", "bench/vorli_bare_calls")
    load = build.program("vorli_helper_load", "tests/helper/tools/vorli_helper_load")
    with tempfile.TemporaryDirectory(prefix="vorli-bench.") as folder:
        bus = Bus(folder, daemon)
        try:
            _add_pings(report, bus, calls, 3 if quick else 11, 500 if quick else 3000)
            many = dict(line.split() for line in bus.run(load, "many", "20", "500").splitlines())
            report.add("calls a second of 20 clients", "1/s", float(many["rate"]), digits=0)
            report.add("p99 of the unluckiest of them", "ms", float(many["worst_p99"]) * 1000, digits=1)
            report.add("resident after them", "MiB", memory_mb(bus.daemon())["Rss"], digits=1, **gates("helper", "resident"))
            starts = _cold_starts(bus, calls, 20 if quick else 200)
            report.add("cold start with its first ping", "ms", starts, digits=1)
            report.add("cold start, p99", "ms", _middle(starts, 0.99), digits=1, **gates("helper", "cold start p99"))
        finally:
            bus.end()
    report.note("tests/helper/run shows what the daemon promises, with its figures")
    return report
