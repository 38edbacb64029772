"""Inside the scratch root: scratch_root.py PACKAGE SOURCE

Installs, upgrades, removes and purges the package, then installs and removes by ./run of the source tree.
"""

import os
import stat
import subprocess
import sys

from run_script import LOAD, check_prefix
from waiting import wait_for

NAME = "com.kv.vorli.helper"
HELPER = "/usr/libexec/vorli/vorli-helper"
ITEM = "/etc/systemd/system/vorli-test.service"
NOBODY = ["/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
FILES = [
    "/usr/bin/vorli", HELPER, "/usr/lib/systemd/system/vorli-helper.service",
    f"/usr/share/dbus-1/system-services/{NAME}.service", f"/usr/share/dbus-1/system.d/{NAME}.conf",
    f"/usr/share/polkit-1/actions/{NAME}.policy", "/usr/share/applications/com.kv.vorli.desktop",
    "/usr/share/dbus-1/services/com.kv.vorli.service", "/usr/share/metainfo/com.kv.vorli.metainfo.xml",
    "/usr/share/icons/hicolor/48x48/apps/com.kv.vorli.png", "/usr/share/doc/vorli/copyright",
    "/usr/share/doc/vorli/changelog.Debian.gz", "/usr/share/doc/vorli/SECURITY.md",
    "/usr/share/doc/vorli/vorli-helper.apparmor",
]
# The package manager's records and the system's logs may keep mentioning it.
BOOKS = ("/var/lib/dpkg/", "/var/log/", "/var/cache/")
passed = failed = 0


def check(what, condition, detail=""):
    global passed, failed
    if condition:
        passed += 1
    else:
        failed += 1
    print(f"{'kept  ' if condition else 'BROKEN'} {what}{'' if condition else f': {detail}'}", flush=True)


def run(*words, **options):
    return subprocess.run(words, capture_output=True, text=True, check=False, **options)


def dpkg(*words):
    done = run("dpkg", *words, env={**os.environ, "DEBIAN_FRONTEND": "noninteractive", "LC_ALL": "C.UTF-8"})
    return done.returncode == 0, done.stdout + done.stderr


def status():
    return run("dpkg-query", "-W", "-f", "${db:Status-Abbrev}", "vorli").stdout.strip()


def comes(condition):
    """Whether the condition becomes true within thirty seconds."""
    try:
        return bool(wait_for(condition, "", 30))
    except AssertionError:
        return False


def ask_bus(method):
    return run("dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
               f"org.freedesktop.DBus.{method}")


def bus_lists(method):
    return NAME in ask_bus(method).stdout


def call(*words, user=()):
    """Kind, code, seconds and text of the answer to a call."""
    return (run(*user, LOAD, "call", *words).stdout.rstrip("\n").split(" ", 3) + [""] * 4)[:4]


def helper_pids():
    found = []
    for entry in os.listdir("/proc"):
        try:
            if entry.isdigit() and os.readlink(f"/proc/{entry}/exe").split(" (deleted)")[0] == HELPER:
                found.append(int(entry))
        except OSError:
            pass
    return found


def without_a_running_system(package):
    """Installs as during the creation of an image, with neither bus nor service manager."""
    done, text = dpkg("-i", package)
    check("it installs where nothing runs", done and status() == "ii", text)
    done, text = dpkg("--purge", "vorli")
    check("and is purged", done and status() != "ii", text)


def installed(package):
    check("before: nothing is known of it", not bus_lists("ListActivatableNames"))
    done, text = dpkg("-i", package)
    check("it installs", done and status() == "ii", text)
    there = run("dpkg", "-L", "vorli").stdout.split("\n")
    check("with all its files", not [path for path in FILES if path not in there or not os.path.isfile(path)],
          [path for path in FILES if path not in there])
    loose = [path for path in there if path and not os.path.islink(path) and
             (os.stat(path).st_uid, os.stat(path).st_gid, os.stat(path).st_mode & 0o6022) != (0, 0, 0)]
    check("writable by root alone, and without set-user bits", not loose, loose)
    check("its files are as they were packed", run("dpkg", "--verify", "vorli").stdout == "")
    for program in ("/usr/bin/vorli", HELPER):
        text = run("ldd", program).stdout
        check(f"{program} finds its libraries", "=>" in text and "not found" not in text, text)
    check("the bus can start the daemon", comes(lambda: bus_lists("ListActivatableNames")))
    check("and has not", helper_pids() == [])
    check("polkit has its actions", comes(lambda: f"{NAME}.move-startup-item" in run("pkaction").stdout))

    check("anybody may ping", call("Ping", user=NOBODY)[0] == "answer", call("Ping", user=NOBODY))
    check("it runs as root", [os.stat(f"/proc/{pid}").st_uid for pid in helper_pids()] == [0])
    check("its contract's version", call("Version")[3] == "1.2.3")
    reply = call("PurgeMemory", user=NOBODY)
    check("a user who is not at the machine needs a password to purge", reply[:2] == ["answer", "201"], reply)
    with open(ITEM, "w", encoding="utf-8") as file:
        file.write("x")
    reply = call("MoveLaunchAgentPlist", ITEM, ITEM + ".vorli-disabled", user=NOBODY)
    check("and moves nothing", reply[:2] == ["answer", "200"] and os.path.exists(ITEM), reply)
    reply = call("MoveLaunchAgentPlist", ITEM, ITEM + ".vorli-disabled")
    check("root does", reply[:2] == ["answer", "0"] and os.path.exists(ITEM + ".vorli-disabled"), reply)


def newer(package):
    """Makes the same package with a higher version."""
    folder = "/run/check/newer"
    run("dpkg-deb", "-R", package, folder)
    with open(f"{folder}/DEBIAN/control", encoding="utf-8") as file:
        text = file.read()
    version = next(line.split()[1] for line in text.splitlines() if line.startswith("Version:"))
    with open(f"{folder}/DEBIAN/control", "w", encoding="utf-8") as file:
        file.write(text.replace(f"Version: {version}", f"Version: {version}.1"))
    run("dpkg-deb", "--root-owner-group", "-Zgzip", "-z1", "-b", folder, f"{folder}.deb")
    return f"{folder}.deb", f"{version}.1"


def upgraded(package):
    package, version = newer(package)
    before = helper_pids()
    hammer = subprocess.Popen([LOAD, "hammer", "1000000", "4000"], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    done, text = dpkg("-i", package)
    check("it upgrades while calls keep coming", done and status() == "ii", text)
    check("to the newer version", run("dpkg-query", "-W", "-f", "${Version}", "vorli").stdout == version)
    check("the older daemon leaves by itself, a new one answers",
          comes(lambda: helper_pids() and not set(before) & set(helper_pids())), (before, helper_pids()))
    hammer.terminate()  # prints its figures and ends
    output, errors = hammer.communicate(timeout=30)
    figures = dict(line.split() for line in output.splitlines())
    check(f"of {figures.get('count', '?')} calls none is lost", float(figures.get("lost", -1)) == 0, errors)
    check("a paused item stays paused", os.path.exists(ITEM + ".vorli-disabled"))


def removed():
    check("before: the daemon runs", call("Ping")[0] == "answer" and len(helper_pids()) == 1)
    done, text = dpkg("--remove", "vorli")
    check("it is removed", done and status() != "ii", text)
    check("the daemon leaves by itself", comes(lambda: not helper_pids()), helper_pids())
    check("the bus does not know it any more",
          comes(lambda: not bus_lists("ListActivatableNames") and not bus_lists("ListNames")))
    check("nor does polkit", comes(lambda: NAME not in run("pkaction").stdout))
    reply = call("Ping")
    check("a call fails with an error", reply[0] == "error" and "ServiceUnknown" in reply[3], reply)
    check("a paused item stays paused", os.path.exists(ITEM + ".vorli-disabled"))


def left():
    """Files that have our name or mention it, among all files that changed in the whole system.

    Other packages rewrite their caches when an application is installed or removed; caches that no longer mention it do
    not count.
    """
    upper, found = "/run/check/upper", []
    for folder, folders, names in os.walk(upper):
        for name in folders + names:
            path = f"{folder}/{name}".removeprefix(upper)
            kind = os.lstat(upper + path).st_mode
            if stat.S_ISCHR(kind) or path.startswith(BOOKS):  # overlayfs marks a removed file like this
                continue
            if "vorli" in name.lower():
                found.append(path)
            elif stat.S_ISREG(kind):
                with open(upper + path, "rb") as file:
                    if b"vorli" in file.read().lower():
                        found.append(path)
    return sorted(found)


def purged():
    done, text = dpkg("--purge", "vorli")
    check("it is purged", done and status() == "", (text, status()))
    os.unlink(ITEM + ".vorli-disabled")
    check("nothing of it is left in the whole system", left() == [], left())
    folders = ("/usr/libexec/vorli", "/usr/share/vorli", "/usr/share/doc/vorli")
    check("nor a folder of its own", not any(map(os.path.exists, folders)))


def removed_with_items(package):
    """Checks that a purge lists the items that stay paused."""
    dpkg("-i", package)
    with open(ITEM + ".vorli-removed", "w", encoding="utf-8") as file:
        file.write("x")
    done, text = dpkg("--purge", "vorli")
    check("a purge names what stays put away", done and f"stays put away: {ITEM}.vorli-removed" in text, text)
    os.unlink(ITEM + ".vorli-removed")


def beside_an_older_one(package):
    """Checks that a daemon registered without the package answers in its place, and that installing says so."""
    service = f"/usr/local/share/dbus-1/system-services/{NAME}.service"
    os.makedirs(os.path.dirname(service), exist_ok=True)
    with open(service, "w", encoding="utf-8") as file:
        file.write(f"[D-BUS Service]\nName={NAME}\nExec=/bin/false\nUser=root\n")
    done, text = dpkg("-i", package)
    check("it says that another helper takes precedence", done and "takes precedence over its own" in text, text)
    os.unlink(service)
    done, text = dpkg("-i", package)
    check("and not when none does", done and "takes precedence" not in text, text)
    dpkg("--purge", "vorli")


def main():
    package, source = sys.argv[1:]
    without_a_running_system(package)
    bus = subprocess.Popen(["/usr/bin/dbus-daemon", "--system", "--nofork", "--nopidfile"], stderr=subprocess.DEVNULL)
    check("the system bus answers", comes(lambda: ask_bus("GetId").returncode == 0))
    polkit = subprocess.Popen(["/usr/lib/polkit-1/polkitd", "--no-debug"], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
    check("polkit answers", comes(lambda: run("pkaction").returncode == 0))
    installed(package)
    upgraded(package)
    removed()
    removed_with_items(package)
    beside_an_older_one(package)
    purged()
    for prefix in ("/usr/local", "/opt/of-its-own"):
        check_prefix(check, lambda: call("Ping"), left, source, prefix)
    for process in (polkit, bus):
        process.kill()
        process.wait()
    print(f"{passed + 1} passed, {failed} failed")  # one more: lintian
    sys.exit(1 if failed else 0)


main()
