#!/usr/bin/python3
"""Tests how ./test runs, counts and ends its steps, with rungs that take a moment."""

import os
import pathlib
import pty
import shutil
import signal
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
RUNGS = """
# shellcheck shell=bash
needed_by_static=() needed_by_elsewhere=() needed_by_asan=()
rung_static() { ahead && step "first" %(first)s; }
beside_elsewhere=yes
prepare_elsewhere() { must "prepared there" %(prepared)s; }
rung_elsewhere() { %(elsewhere)s; }
rung_asan() { step "second" %(second)s; }
"""
STEPS = {"first": "true", "prepared": "true", "elsewhere": 'step "there" true', "second": "true"}


class TestCommand(unittest.TestCase):
    def setUp(self):
        signal.alarm(100)  # ends this process
        self.addCleanup(signal.alarm, 0)
        self.tree = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.tree)
        shutil.copytree(ROOT / "tools/testing", self.tree / "tools/testing")
        shutil.copy(ROOT / "test", self.tree)
        self.write("tools/setup", "#!/bin/sh\n").chmod(0o755)

    def write(self, name, text):
        path = self.tree / name
        path.write_text(text)
        return path

    def write_rungs(self, **steps):
        self.write("tools/testing/rungs.sh", RUNGS % (STEPS | steps))

    def start(self, *rungs, **steps):
        self.write_rungs(**steps)
        return subprocess.Popen(["./test", *rungs], cwd=self.tree, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                text=True)

    def run_rungs(self, *rungs, **steps):
        command = self.start(*rungs, **steps)
        try:
            said, _ = command.communicate(timeout=60)
        finally:
            command.terminate()
        return command.returncode, said

    def test_each_step_is_counted(self):
        status, said = self.run_rungs("static", "asan")
        self.assertEqual((status, said.splitlines()[-1]), (0, "2 passed, 0 failed"))

    def test_a_log_with_counts_counts_as_many(self):
        status, said = self.run_rungs("asan", second='sh -c "echo 5 passed, 2 failed"')
        self.assertEqual((status, said.splitlines()[-2:]), (1, ["failed: second", "5 passed, 2 failed"]))

    def test_a_step_that_fails_after_good_counts_has_failed(self):
        status, said = self.run_rungs("asan", second='sh -c "echo 5 passed, 0 failed; exit 3"')
        self.assertEqual((status, said.splitlines()[-1]), (1, "5 passed, 1 failed"))

    def test_a_skipped_test_has_failed(self):
        status, said = self.run_rungs("asan", second='echo "OK (skipped=1)"')
        self.assertEqual((status, said.splitlines()[-1]), (1, "1 passed, 1 failed"))

    def test_a_rung_runs_beside_the_next_ones(self):
        os.mkfifo(self.tree / "one")
        os.mkfifo(self.tree / "two")
        # Each of the two waits for the other.
        status, said = self.run_rungs("elsewhere", "asan", elsewhere='step "there" sh -c "echo >one; cat two"',
                                      second='sh -c "cat one; echo >two"')
        self.assertEqual((status, said.splitlines()[-1]), (0, "2 passed, 0 failed"), said)

    def test_a_failure_beside_the_others_is_a_failure_of_all(self):
        status, said = self.run_rungs("elsewhere", "asan",
                                      elsewhere='step "there" sh -c "echo BROKEN a leg; echo 1 passed, 1 failed"')
        self.assertEqual((status, said.splitlines()[-2:]), (1, ["failed: there", "2 passed, 1 failed"]))
        self.assertIn("| BROKEN a leg", said)

    def test_a_rung_that_ends_without_its_counts_has_failed(self):
        status, said = self.run_rungs("elsewhere", "asan", elsewhere='step "there" true; kill -KILL $$')
        self.assertEqual((status, said.splitlines()[-2:]), (1, ["failed: elsewhere", "1 passed, 1 failed"]))

    def test_failures_on_both_sides_are_named(self):
        status, said = self.run_rungs("elsewhere", "asan", elsewhere='step "there" true; kill -KILL $$', second="false")
        self.assertEqual((status, said.splitlines()[-3:]),
                         (1, ["failed: second", "failed: elsewhere", "0 passed, 2 failed"]))

    def test_a_rung_that_fails_after_good_counts_has_failed(self):
        status, said = self.run_rungs("elsewhere", "asan", elsewhere='step "there" true; trap "exit 1" EXIT')
        self.assertEqual((status, said.splitlines()[-2:]), (1, ["failed: elsewhere", "2 passed, 1 failed"]))

    def test_each_named_rung_runs_once_and_in_the_one_order(self):
        status, said = self.run_rungs("asan", "elsewhere", "static", "asan")
        self.assertEqual((status, [line.split(",")[0] for line in said.splitlines() if line.startswith("== ")]),
                         (0, ["== static", "== elsewhere", "== asan", "== elsewhere"]))

    def test_a_suite_of_python_that_fails_before_its_first_test_has_failed(self):
        status, said = self.run_rungs("asan", second='sh -c "echo Ran 0 tests in 0s; echo; echo FAILED \\(errors=1\\)"')
        self.assertEqual((status, said.splitlines()[-1]), (1, "0 passed, 1 failed"))

    def test_a_suite_of_python_without_a_test_has_failed(self):
        status, said = self.run_rungs("asan", second='sh -c "echo Ran 0 tests in 0s; echo; echo OK"')
        self.assertEqual((status, said.splitlines()[-1]), (1, "0 passed, 1 failed"))

    def test_a_preparation_that_fails_leaves_its_rung_out(self):
        status, said = self.run_rungs("elsewhere", elsewhere='step "there" true', prepared="false")
        self.assertEqual((status, said.splitlines()[-2:]), (1, ["failed: prepared there", "0 passed, 1 failed"]))

    def test_the_last_rung_has_nothing_to_run_beside(self):
        status, said = self.run_rungs("elsewhere")
        self.assertEqual(status, 0)
        self.assertNotIn("beside", said)

    def test_later_rungs_are_prepared_ahead(self):
        os.mkfifo(self.tree / "pipe")
        # The first step ends only once the later rung has been prepared.
        status, said = self.run_rungs("static", "elsewhere", first="cat pipe",
                                      prepared='sh -c "test -e made || { touch made; echo >pipe; }"')
        self.assertEqual((status, said.splitlines()[-1]), (0, "2 passed, 0 failed"), said)

    def test_everything_ends_with_the_command(self):
        for end in (signal.SIGTERM, signal.SIGKILL):
            running, other = self.tree / f"running-{end}", self.tree / f"other-{end}"
            os.mkfifo(running)
            os.mkfifo(other)
            command = self.start("elsewhere", "asan",
                                 elsewhere=f'step "there" sh -c "exec >{running}; sleep 1000"',
                                 second=f'sh -c "exec >{other}; sleep 1000"')
            with open(running, encoding="utf-8") as pipe, open(other, encoding="utf-8") as other_pipe:
                command.send_signal(end)
                command.wait(timeout=60)
                # A pipe ends with the last process that has it open.
                self.assertEqual((pipe.read(), other_pipe.read()), ("", ""))
            command.stdout.close()

    def test_the_keys_of_a_terminal_end_everything(self):
        running = self.tree / "running"
        os.mkfifo(running)
        self.write_rungs(second=f'sh -c "exec >{running}; sleep 1000"')
        child, terminal = pty.fork()
        if child == 0:
            os.chdir(self.tree)
            os.execv("./test", ["./test", "asan"])
        with open(running, encoding="utf-8") as pipe:
            os.write(terminal, b"\x03")
            self.assertEqual(pipe.read(), "")
        os.waitpid(child, 0)
        os.close(terminal)


if __name__ == "__main__":
    unittest.main()
