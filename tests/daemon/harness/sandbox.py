"""A private system for the daemon, made inside new mount, pid, ipc and cgroup namespaces.

The daemon is really installed, into a /usr/local that exists only here. The bus listens where a system bus listens.
polkitd is the real one with the shipped policy; the login sessions that it reads are faked.
"""

import os
import shutil
import signal
import socket
import subprocess

from waiting import wait_for

NAME = "com.kv.vorli.helper"
OBJECT = "/com/kv/vorli/helper"
SOCKET = "/run/dbus/system_bus_socket"
HELPER = "/usr/local/libexec/vorli/vorli-helper"
SERVICE_FILE = f"/usr/local/share/dbus-1/system-services/{NAME}.service"
FOLDERS = ("/etc/xdg/autostart", "/etc/systemd/system", "/etc/systemd/user")
LEVERS = ("/proc/sys/vm/drop_caches", "/proc/sys/vm/compact_memory")
WORK = "/run/vorli-test"
TOOLS = f"{WORK}/tools"
STANDINS = f"{WORK}/standins"  # copies: not every user may be allowed to read this folder
SYNC_BEGINS = "sync begins\n"
USERS = (*range(4001, 4021), *range(5001, 5301), 4000000000)
CGROUP = "/sys/fs/cgroup"
POLICY = "/usr/share/dbus-1/system.d/org.freedesktop.PolicyKit1.conf"

BUS_CONFIGURATION = f"""<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path={SOCKET}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>/usr/local/share/dbus-1/system-services</servicedir>
  <limit name="service_start_timeout">10000</limit>
  <limit name="max_connections_per_user">1024</limit>
  <limit name="max_completed_connections">4096</limit>
  <limit name="max_incomplete_connections">512</limit>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus.Introspectable"/>
  </policy>
  <policy user="root">
    <allow own_prefix="test"/>
    <allow send_destination_prefix="test"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus.Monitoring"/>
    <allow own="org.freedesktop.resolve1"/>
    <allow own="uk.org.thekelleys.dnsmasq"/>
    <allow own="org.freedesktop.NetworkManager.dnsmasq"/>
    <allow own="org.freedesktop.PolicyKit1"/>
    <allow send_destination="org.freedesktop.resolve1"/>
    <allow send_destination="uk.org.thekelleys.dnsmasq"/>
    <allow send_destination="org.freedesktop.NetworkManager.dnsmasq"/>
    <allow send_destination="org.freedesktop.PolicyKit1"/>
  </policy>
  <include>{POLICY}</include>
  <includedir>/etc/dbus-1/system.d</includedir>
</busconfig>
"""


def command(*words, **options):
    """Runs a command that must succeed; returns its output."""
    done = subprocess.run(words, text=True, capture_output=True, **options)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(words)}: exit {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def stuck_sync(milliseconds=None):
    """The environment of a daemon whose sync() takes that long, or never ends. The log then has SYNC_BEGINS."""
    words = [f"LD_PRELOAD={TOOLS}/libvorli_stuck_sync.so", "ASAN_OPTIONS=verify_asan_link_order=0"]
    return words if milliseconds is None else [*words, f"VORLI_TEST_SYNC_MILLISECONDS={milliseconds}"]


def listens():
    """Whether the bus listens: its socket's file exists shortly before that."""
    with socket.socket(socket.AF_UNIX) as caller:
        return caller.connect_ex(SOCKET) == 0


def send(pid, number):
    """Sends a signal to a process of the daemon, unless the process has ended since it was looked up."""
    try:
        os.kill(pid, number)
    except ProcessLookupError:
        pass


class Sandbox:
    """The system of one run. `restart` gives each promise a new bus, polkitd and daemon."""

    def __init__(self, installed, tools, build="shipped", program=None):
        self.installed = installed  # the result of an installation with DESTDIR
        self.tools = tools
        self.build = build
        self.program = program  # from another build than the shipped one
        self.bus = None
        self.polkitd = None
        self.helper_log = f"{WORK}/helper.log"
        self._mount()

    # -- the file system ---------------------------------------------------------------------------------------

    def _mount(self):
        command("mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", "/run")
        for folder in FOLDERS:
            os.makedirs(folder, exist_ok=True)
            command("mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", folder)
        command("mount", "-t", "cgroup2", "none", CGROUP)
        actions = "/usr/share/polkit-1/actions"
        shipped = sorted(os.listdir(actions))
        kept = {name: open(f"{actions}/{name}", encoding="utf-8").read() for name in shipped}
        for folder in (actions, "/etc/polkit-1/rules.d", "/usr/local", "/etc/dbus-1/system.d"):
            command("mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", folder)
        for name, text in kept.items():
            write(f"{actions}/{name}", text)
        if os.path.exists("/dev/log"):  # so that the daemon logs to the bus's log
            command("mount", "--bind", "/dev/null", "/dev/log")
        os.makedirs("/run/dbus")
        os.makedirs(TOOLS)
        for tool in self.tools:
            shutil.copy(tool, TOOLS)
        shutil.copytree(f"{os.path.dirname(os.path.dirname(os.path.abspath(__file__)))}/standins", STANDINS)
        command("chmod", "-R", "a+rX", STANDINS)
        self._add_users()
        self.install()

    def _add_users(self):
        for file, line in (("passwd", "u{0}:x:{0}:{0}::/nonexistent:/bin/sh\n"), ("group", "u{0}:x:{0}:\n")):
            text = open(f"/etc/{file}", encoding="utf-8").read()
            write(f"{WORK}/{file}", text + "".join(line.format(uid) for uid in USERS))
            command("mount", "--bind", f"{WORK}/{file}", f"/etc/{file}")

    def install(self):
        # Does not overwrite the old files: a daemon killed inside sync() may keep its program busy for a while.
        command("cp", "-a", "--remove-destination", f"{self.installed}/.", "/")
        if self.program:
            self.use_daemon(self.program)

    def set_service(self, arguments=(), environment=()):
        """Sets the command that starts the daemon: the shipped one, with arguments after it and variables before it."""
        words = ["/usr/bin/env", *environment] if environment else []
        shipped = open(f"{self.installed}{SERVICE_FILE}", encoding="utf-8").read()
        line = "Exec=" + " ".join([*words, *self.program_words(), *arguments])
        lines = [line if old.startswith("Exec=") else old for old in shipped.splitlines()]
        write(SERVICE_FILE, "\n".join(lines) + "\n")

    def program_words(self):
        """The words that start the daemon's program."""
        # A sanitizer needs its memory at fixed addresses.
        return ["/usr/bin/setarch", "-R", HELPER] if self.build == "tsan" else [HELPER]

    def use_daemon(self, program):
        """Replaces the daemon's program as a package manager does."""
        shutil.copy(program, HELPER + ".new")
        os.rename(HELPER + ".new", HELPER)

    def allow_everything(self):
        """Allows every action of the daemon to everybody, as an administrator may do."""
        write("/etc/polkit-1/rules.d/50-test.rules", "polkit.addRule(function(action, subject) {\n"
              f'  if (action.id.indexOf("{NAME}.") == 0) return polkit.Result.YES;\n}});\n')

    def clear_folders(self):
        for folder in FOLDERS:
            for name in os.listdir(folder):
                path = f"{folder}/{name}"
                shutil.rmtree(path) if os.path.isdir(path) and not os.path.islink(path) else os.unlink(path)

    # -- bus, polkit, daemon -----------------------------------------------------------------------------------

    def start_bus(self, **limits):
        """`limits` replaces limits of the bus, by their names."""
        assert self.bus is None
        if os.path.exists(SOCKET):
            os.unlink(SOCKET)
        lines = "".join(f'  <limit name="{name}">{value}</limit>\n' for name, value in limits.items())
        write(f"{WORK}/bus.conf", BUS_CONFIGURATION.replace("</busconfig>", lines + "</busconfig>"))
        log = open(self.helper_log, "ab")
        self.bus = subprocess.Popen(
            ["/usr/bin/dbus-daemon", f"--config-file={WORK}/bus.conf", "--nofork", "--nopidfile"],
            stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        wait_for(listens, "the bus listens", pause=0.002)

    def stop_bus(self):
        if self.bus:
            self.bus.kill()
            self.bus.wait()
            self.bus = None

    def start_polkit(self):
        assert self.polkitd is None
        self.polkitd = subprocess.Popen(["/usr/lib/polkit-1/polkitd", "--no-debug"], stdin=subprocess.DEVNULL,
                                        stdout=open(f"{WORK}/polkit.log", "ab"), stderr=subprocess.STDOUT)
        wait_for(lambda: self.owner_of("org.freedesktop.PolicyKit1"), "polkit owns its name")

    def stop_polkit(self):
        if self.polkitd:
            self.polkitd.kill()
            self.polkitd.wait()
            self.polkitd = None

    @staticmethod
    def _ask_bus(method, name):
        done = subprocess.run(
            ["/usr/bin/dbus-send", f"--bus=unix:path={SOCKET}", "--print-reply=literal", "--reply-timeout=2000",
             "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus", f"org.freedesktop.DBus.{method}",
             f"string:{name}"], capture_output=True, text=True)
        return done.stdout.split()[-1] if done.returncode == 0 else None

    def owner_of(self, name):
        return self._ask_bus("GetNameOwner", name)

    def pid_of(self, name):
        pid = self._ask_bus("GetConnectionUnixProcessID", name)
        assert pid is not None, f"{name} has no owner on the bus"
        return int(pid)

    def helper_pids(self):
        """Processes that run the daemon's program, replaced or not."""
        found = []
        for entry in os.listdir("/proc"):
            if not entry.isdigit():
                continue
            try:
                target = os.readlink(f"/proc/{entry}/exe")
                state = open(f"/proc/{entry}/stat", encoding="utf-8").read().rpartition(")")[2].split()[0]
            except OSError:
                continue
            if target.split(" (deleted)")[0] == HELPER and state != "Z":
                found.append(int(entry))
        return found

    def stop_helper(self):
        """Kills the daemon and waits until the bus has noticed, so that the next call starts another one."""
        pids, owner = self.helper_pids(), self.owner_of(NAME)
        for pid in pids:
            send(pid, signal.SIGCONT)
            send(pid, signal.SIGKILL)
        wait_for(lambda: not self.helper_pids(), "the daemon has gone", pause=0.002)
        if pids and owner:
            wait_for(lambda: self.owner_of(NAME) != owner, "the bus has noticed")

    def terminate_helper(self):
        """Ends the daemon as a service manager would, so that its last lines are in the log."""
        for pid in self.helper_pids():
            send(pid, signal.SIGTERM)
        wait_for(lambda: not self.helper_pids(), "the daemon has left", 30)

    def restart(self, arguments=(), environment=(), with_polkit=True, allow_everything=False, **bus_limits):
        self.stop()
        self.install()
        self.set_service(arguments, environment)
        self.clear_folders()
        for lever in LEVERS:
            while os.path.ismount(lever):
                command("umount", lever)
        if os.path.exists("/etc/polkit-1/rules.d/50-test.rules"):
            os.unlink("/etc/polkit-1/rules.d/50-test.rules")
        if allow_everything:
            self.allow_everything()
        self.start_bus(**bus_limits)
        if with_polkit:
            self.start_polkit()

    def stop(self):
        self.stop_helper()
        self.stop_polkit()
        self.stop_bus()

    def log(self):
        try:
            with open(self.helper_log, encoding="utf-8", errors="backslashreplace") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    # -- login sessions ----------------------------------------------------------------------------------------

    def add_session(self, uid, session, active=True, seat="seat0", remote=False):
        """Writes the files that logind has for a session; `in_session` puts a process into it."""
        for folder in ("sessions", "users", "seats", "machines"):
            os.makedirs(f"/run/systemd/{folder}", exist_ok=True)
        state = "active" if active else "online"
        write(f"/run/systemd/sessions/{session}",
              f"UID={uid}\nUSER=u{uid}\nACTIVE={int(active)}\nIS_DISPLAY=1\nSTATE={state}\nREMOTE={int(remote)}\n"
              f"TYPE=x11\nCLASS=user\nSCOPE=session-{session}.scope\n" + (f"SEAT={seat}\n" if seat else ""))
        write(f"/run/systemd/users/{uid}",
              f"NAME=u{uid}\nSTATE={state}\nDISPLAY={session}\nSESSIONS={session}\nACTIVE_SESSIONS="
              f"{session if active else ''}\nONLINE_SESSIONS={session}\nSEATS={seat or ''}\n")
        if seat and active:
            write(f"/run/systemd/seats/{seat}",
                  f"IS_SEAT0=1\nCAN_MULTI_SESSION=1\nACTIVE={session}\nACTIVE_UID={uid}\nSESSIONS={session}\n"
                  f"UIDS={uid}\n")
        os.makedirs(self._scope(uid, session), exist_ok=True)

    def _scope(self, uid, session):
        return f"{CGROUP}/user.slice/user-{uid}.slice/session-{session}.scope"

    def as_user(self, uid, session=None):
        """Arguments that start a command as that user, in that session."""
        words = []
        if session:
            words = ["/bin/sh", "-c", f'echo $$ > {self._scope(uid, session)}/cgroup.procs && exec "$@"', "sh"]
        return [*words, "/usr/bin/setpriv", f"--reuid={uid}", f"--regid={uid}", "--clear-groups"]


def write(path, text, mode=0o644):
    if os.path.islink(path):  # a mask is a link to /dev/null, which must keep its mode
        os.unlink(path)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    os.chmod(path, mode)


def with_harmless_levers():
    """Binds plain files over the memory levers until the next restart, for tests of something else than their work."""
    for lever in LEVERS:
        plain = f"{WORK}/{os.path.basename(lever)}"
        write(plain, "", 0o600)
        command("mount", "--bind", plain, lever)
