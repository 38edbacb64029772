"""The programs that are measured."""

import os
import subprocess
import sys


class Build:
    """A build tree of one preset. Builds each program when it is first needed."""

    def __init__(self, preset, may_build):
        self.preset, self.may_build, self._built = preset, may_build, set()

    @property
    def folder(self):
        return os.path.join("build", self.preset)

    def program(self, target, path):
        """The path of a built program."""
        full = os.path.join(self.folder, path)
        if self.may_build and target not in self._built:
            if not os.path.exists(os.path.join(self.folder, "build.ninja")):
                self._run("cmake", "--preset", self.preset, "-Wno-dev")
            self._run("cmake", "--build", "--preset", self.preset, "--target", target)
            self._built.add(target)
        if not os.path.exists(full):
            sys.exit(f"bench: {full} is missing; build the preset {self.preset} first")
        return full

    def bench(self):
        return self.program("vorli_bench", "bench/vorli_bench")

    def crowd(self):
        return self.program("vorli_crowd", "bench/vorli_crowd")

    def install(self, prefix):
        """Installs the program and the root daemon as users get them."""
        for target, path in (("vorli", "src/vorli"), ("vorli-helper", "src/vorli-helper"),
                             ("vorli_icons", "packaging/linux/icons.stamp")):
            self.program(target, path)
        self._run("cmake", "--install", self.folder, "--prefix", prefix, "--strip")

    @staticmethod
    def _run(*command):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if done.returncode != 0:
            sys.exit("bench: building failed\n" + done.stdout[-4000:])
