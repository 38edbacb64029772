"""One contract for both sides, and no other way in."""

import os
import re
import subprocess
import time
import xml.etree.ElementTree as ElementTree

from harness.calls import call, introspection
from harness.rung import promise
from harness.sandbox import HELPER, NAME, command

METHODS = [
    ("Ping", [], ["s"]), ("Version", [], ["s"]), ("PurgeMemory", [], ["i", "s"]), ("FlushDNS", [], ["i", "s"]),
    ("KillPID", ["i", "i"], ["i", "s"]), ("DumpBTM", [], ["i", "s"]),
    ("MoveLaunchAgentPlist", ["s", "s"], ["i", "s"]),
]
CONTRACT = f"src/contract/{NAME}.xml"
CALL = ("/usr/bin/gdbus", "call", "--system", "-d", NAME, "-o", "/com/kv/vorli/helper", "-m")
PEER = "org.freedesktop.DBus.Peer"
ACTIONS = ["purge-memory", "flush-dns", "move-startup-item"]


def methods_of(text):
    for interface in ElementTree.fromstring(text).iter("interface"):
        if interface.get("name") == NAME:
            return [(method.get("name"),
                     [argument.get("type") for argument in method.iter("arg") if argument.get("direction") == "in"],
                     [argument.get("type") for argument in method.iter("arg") if argument.get("direction") == "out"])
                    for method in interface.iter("method")], list(interface.iter("signal")), list(interface.iter("property"))
    raise AssertionError("no interface")


def shipped(rung, path):
    with open(f"{rung.options.source}/{path}", encoding="utf-8") as file:
        return file.read()


@promise("P23", "Both sides follow one contract")
def one_contract(rung):
    box = rung.sandbox
    box.restart()
    rung.equal("the contract's file", methods_of(shipped(rung, CONTRACT)), (METHODS, [], []))
    live, signals, properties = methods_of(introspection())
    rung.equal("what the running daemon reports of itself", (sorted(live), signals, properties), (sorted(METHODS), [], []))
    rung.equal("its version", call(box, "Version").text, "1.2.3")
    allowed = re.findall(rf'send_interface="{NAME}" send_member="(\w+)"', shipped(rung, f"packaging/linux/{NAME}.conf"))
    rung.equal("what the bus lets through", allowed, [name for name, _, _ in METHODS])
    rung.holds("the standard ping is answered", "()" in command(*CALL, f"{PEER}.Ping"))
    actions = re.findall(r'<action id="([^"]*)"', shipped(rung, f"packaging/linux/{NAME}.policy"))
    rung.equal("actions", actions, [f"{NAME}.{action}" for action in ACTIONS])

    generated = f"{rung.options.source}/build/package/packaging/linux/generated/helper_contract/"
    subprocess.run(["/usr/bin/sdbus-c++-xml2cpp", f"{rung.options.source}/{CONTRACT}",
                    "--adaptor=helper_contract/HelperAdaptor.h", "--proxy=helper_contract/HelperProxy.h"],
                   cwd=made_folder(), check=True, capture_output=True)
    for file in ("HelperAdaptor.h", "HelperProxy.h"):
        with open(generated + file, encoding="utf-8") as built, \
                open(f"/run/vorli-test/contract/helper_contract/{file}", encoding="utf-8") as fresh:
            rung.holds(f"{file} is what the contract's file gives", built.read() == fresh.read())
    for interface, member in (("org.freedesktop.DBus.Properties", "GetAll"), (PEER, "Quit"), (NAME, "Quit"), (NAME, "ping")):
        reply = subprocess.run([*CALL, f"{interface}.{member}", *([NAME] if member == "GetAll" else [])],
                               capture_output=True, text=True)
        rung.holds(f"{interface}.{member} is refused by the bus", "AccessDenied" in reply.stderr)


def made_folder():
    os.makedirs("/run/vorli-test/contract/helper_contract", exist_ok=True)
    return "/run/vorli-test/contract"


@promise("P22", "Its presence can be checked without a prompt and without starting it")
def read_without_starting(rung):
    box = rung.sandbox
    box.restart()
    start = time.monotonic()
    names = command("/usr/bin/gdbus", "call", "--system", "-d", "org.freedesktop.DBus", "-o", "/org/freedesktop/DBus", "-m",
                    "org.freedesktop.DBus.ListActivatableNames")
    rung.figure("asking the bus took", (time.monotonic() - start) * 1000, 50, " ms", busy=500)
    rung.holds("the bus could start it", f"'{NAME}'" in names)
    rung.equal("its name has no owner", box.owner_of(NAME), None)
    actions = command("/usr/bin/pkaction")
    rung.equal("polkit knows its actions", sorted(line for line in actions.split() if line.startswith(NAME)),
               sorted(f"{NAME}.{action}" for action in ACTIONS))
    rung.equal("daemons started by all that", box.helper_pids(), [])


@promise("P24", "No back door")
def no_back_door(rung):
    text = command("/usr/bin/strings", "-d", "-n", "3", HELPER)
    switches = set(re.findall(r"(?m)^--[a-z][a-z-]*=?$", text))
    # A compiled comparison contains the text in parts of eight bytes.
    switches = sorted(word for word in switches if not any(other != word and other.startswith(word) for other in switches))
    rung.equal("switches in the program", switches, ["--build-id", "--idle-milliseconds=", "--version"])
    names = sorted(set(re.findall(r"(?m)^[A-Z]+(?:_[A-Z]+)+$", text)))
    # The daemon sets one of them to what the bus said at the start; it reads the others and removes them.
    rung.equal("names of variables in the program", names,
               ["DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE", "DBUS_SYSTEM_BUS_ADDRESS", "JOURNAL_STREAM",
                "SYSTEMD_EXEC_PID"])
    rung.equal("words of a back door in the program",
               re.findall(r"(?i)\w*(?:bypass|insecure|no_?auth|skip_?auth|allow_?all|for_?test)\w*", text), [])
    sources = subprocess.run(["/usr/bin/grep", "-rnE", "getCredsUid|getCredsPid|getCredsGid|unix-process",
                              f"{rung.options.source}/src"], capture_output=True, text=True)
    rung.equal("places that judge a caller by its process", sources.stdout, "")
    rung.equal("what another caller may use of the program, by its mode", oct(os.stat(HELPER).st_mode & 0o7777), "0o755")
    for arguments in (["--no-auth"], ["--idle-milliseconds=x"], ["--idle-milliseconds="], ["x"]):
        done = subprocess.run([HELPER, *arguments], capture_output=True)
        rung.equal(f"{arguments} ends it with", done.returncode, 2)
