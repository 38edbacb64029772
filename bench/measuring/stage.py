"""The installed program in private desktop sessions."""

import json
import os
import shutil
import subprocess
import sys
import tempfile


class Stage:
    """An installation that any user can read, and a folder for the results of the scripts in bench/inside."""

    def __init__(self, build):
        if os.geteuid() != 0:
            sys.exit("bench: a private system bus with the root daemon needs root")
        self._build = build

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="vorli-bench.")
        self.prefix, self.out = os.path.join(self.folder, "prefix"), os.path.join(self.folder, "out")
        os.makedirs(self.out)
        os.chmod(self.folder, 0o755)
        os.chmod(self.out, 0o1777)
        for source in ("bench/inside", "bench/measuring", "tools/session"):
            shutil.copytree(source, os.path.join(self.folder, os.path.basename(source)))
        self._build.install(self.prefix)
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.folder)

    def add(self, program):
        """Puts another program beside the installed one and returns its path."""
        return shutil.copy(program, os.path.join(self.prefix, "bin"))

    def start(self, script, *arguments, options=(), seconds=3600):
        """Runs bench/inside/SCRIPT.py PREFIX OUT ARGUMENT... in a session of its own."""
        environment = {**os.environ, "PYTHONDONTWRITEBYTECODE": "1",
                       "PYTHONPATH": f"{self.folder}/session:{self.folder}"}
        return subprocess.Popen(
            ["tools/desktop-session.sh", "--system-bus", self.prefix, "--timeout", str(seconds), *options, "--",
             "/usr/bin/python3", f"{self.folder}/inside/{script}.py", self.prefix, self.out, *map(str, arguments)],
            env=environment, stdin=subprocess.DEVNULL)

    def result(self, process):
        if process.wait() != 0:
            log = os.path.join(self.out, "vorli.log")
            if os.path.exists(log):
                with open(log, encoding="utf-8", errors="replace") as file:
                    print(file.read()[-3000:], file=sys.stderr)
            sys.exit("bench: the session failed")
        with open(os.path.join(self.out, "result.json"), encoding="utf-8") as file:
            return json.load(file)

    def run(self, script, *arguments, **options):
        return self.result(self.start(script, *arguments, **options))
