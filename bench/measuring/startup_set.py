"""A thousand startup files of every kind, like those of packages and users."""

import os
import tempfile

ENTRY = """[Desktop Entry]
Type=Application
Version=1.0
Name=Example {n}
Name[de]=Beispiel {n}
Name[fr]=Exemple {n}
Comment=Keeps example {n} ready in the background
Exec={program} --background %U
Icon=example-{n}
Terminal=false
Categories=Utility;Network;
X-GNOME-Autostart-enabled=true
"""
SERVICE = """[Unit]
Description=Example daemon {n}
Documentation=man:example(8)
After=network.target

[Service]
Type=simple
ExecStart={program} --foreground
Restart=on-failure

[Install]
WantedBy=default.target
"""
TIMER = """[Unit]
Description=Run example {n} every day

[Timer]
OnCalendar=daily
Persistent=true

[Install]
WantedBy=timers.target
"""
PROGRAMS = ("/bin/true", "/bin/sh", "/opt/example/run", "example-daemon")  # present, present, missing, without a path


class StartupSet:
    """Files below a folder that stands in for the root of the disk; `items` is how many rows they make."""

    def __init__(self, size):
        self._folder = tempfile.TemporaryDirectory(prefix="vorli-startup.")
        self.root, self.items, self.files = self._folder.name, 0, 0
        tenth = size // 10
        self._entries("home/.config/autostart", "own", 2 * tenth)
        self._entries("etc/xdg/autostart", "shared", 2 * tenth)
        self._units("home/.config/systemd/user", "home/.config/systemd/user", "mine", tenth)
        self._units("usr/lib/systemd/user", "etc/systemd/user", "packaged-user", tenth)
        self._units("etc/systemd/system", "etc/systemd/system", "local", tenth)
        self._units("usr/lib/systemd/system", "etc/systemd/system", "packaged", tenth)
        self._timers("usr/lib/systemd/system", "etc/systemd/system", "nightly", tenth)
        self._applications(2 * tenth)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._folder.cleanup()

    def folders(self):
        """The folders of the entries and units."""
        return [os.path.join(self.root, folder) for folder in
                ("home/.config/autostart", "etc/xdg/autostart", "home/.config/systemd/user", "usr/lib/systemd/user",
                 "etc/systemd/system", "usr/lib/systemd/system")]

    def _write(self, folder, name, text):
        path = os.path.join(self.root, folder)
        os.makedirs(path, exist_ok=True)
        with open(os.path.join(path, name), "w", encoding="utf-8") as file:
            file.write(text)

    def _want(self, folder, target, name):
        path = os.path.join(self.root, folder, target + ".wants")
        os.makedirs(path, exist_ok=True)
        os.symlink("../" + name, os.path.join(path, name))

    def _entries(self, folder, kind, count):
        for n in range(count):
            self._write(folder, f"{kind}-{n}.desktop", ENTRY.format(n=n, program=PROGRAMS[n % len(PROGRAMS)]))
        self.files += count
        self.items += count

    def _units(self, folder, wanting, kind, count):
        for n in range(count):
            name = f"{kind}-{n}.service"
            self._write(folder, name, SERVICE.format(n=n, program=PROGRAMS[n % len(PROGRAMS)]))
            self._want(wanting, "default.target", name)
        self.files += count
        self.items += count

    def _timers(self, folder, wanting, kind, count):
        """Adds a timer and its service, which make one row."""
        for n in range(count):
            self._write(folder, f"{kind}-{n}.timer", TIMER.format(n=n))
            self._write(folder, f"{kind}-{n}.service", SERVICE.format(n=n, program=PROGRAMS[n % len(PROGRAMS)]))
            self._want(wanting, "timers.target", f"{kind}-{n}.timer")
        self.files += 2 * count
        self.items += count

    def _applications(self, count):
        """Adds installed applications, among which the scan looks up programs; they are not startup files."""
        for n in range(count):
            self._write("usr/share/applications", f"application-{n}.desktop", ENTRY.format(n=n, program="example"))
