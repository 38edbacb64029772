#!/usr/bin/python3
"""Tests how the results of ctest are counted: a program of GoogleTest is one test for ctest, and many for us."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

COUNTER = pathlib.Path(__file__).resolve().parents[2] / "tools/testing/count_junit.py"


def case(status, output=""):
    return f'<testcase name="one" status="{status}"><system-out>{output}</system-out></testcase>'


def counted(*cases):
    with tempfile.NamedTemporaryFile("w", suffix=".xml") as report:
        report.write(f"<testsuite>{''.join(cases)}</testsuite>")
        report.flush()
        run = subprocess.run([sys.executable, COUNTER, report.name], capture_output=True, text=True, check=True)
    return run.stdout.strip()


class CountJunit(unittest.TestCase):
    def test_a_script_is_one_test(self):
        self.assertEqual(counted(case("run"), case("run", "fine\n"), case("fail", "bad\n")), "2 1")

    def test_a_program_counts_as_many_tests_as_it_ran(self):
        self.assertEqual(counted(case("run", "[==========] 12 tests ran.\n[  PASSED  ] 12 tests.\n"),
                                 case("run", "[  PASSED  ] 1 test.\n")), "13 0")

    def test_its_failures_are_counted_one_by_one(self):
        self.assertEqual(counted(case("fail", "[  FAILED  ] A.b (0 ms)\n[  PASSED  ] 10 tests.\n"
                                              "[  FAILED  ] 2 tests, listed below:\n[  FAILED  ] A.b\n")), "10 2")

    def test_a_skipped_test_has_failed(self):
        self.assertEqual(counted(case("run", "[  PASSED  ] 3 tests.\n[  SKIPPED ] 1 test, listed below:\n")), "3 1")

    def test_a_suite_of_python_counts_the_tests_of_all_its_sessions(self):
        self.assertEqual(counted(case("run", "Ran 5 tests in 2.1s\n\nOK\nRan 1 test in 0.1s\n\nOK\n")), "6 0")
        self.assertEqual(counted(case("fail", "Ran 5 tests in 2.1s\n\nFAILED (failures=1, errors=2)\n"
                                              "Ran 4 tests in 1.0s\n\nOK\n")), "6 3")
        self.assertEqual(counted(case("run", "Ran 5 tests in 2.1s\n\nOK (skipped=1)\n")), "4 1")

    def test_a_test_that_fails_twice_takes_none_from_the_others(self):
        self.assertEqual(counted(case("fail", "Ran 1 test in 2.1s\n\nFAILED (failures=1, errors=1)\n"
                                              "Ran 4 tests in 1.0s\n\nOK\n")), "4 2")
        self.assertEqual(counted(case("fail", "Ran 0 tests in 2.1s\n\nFAILED (errors=1)\n")), "0 1")

    def test_a_session_without_a_test_has_failed(self):
        self.assertEqual(counted(case("run", "Ran 0 tests in 0.0s\n\nOK\n")), "0 1")
        self.assertEqual(counted(case("run", "Ran 0 tests in 0.0s\n\nOK\nRan 4 tests in 1.0s\n\nOK\n")), "4 1")

    def test_a_session_that_does_not_start_has_failed(self):
        self.assertEqual(counted(case("fail", "Ran 5 tests in 2.1s\n\nOK\nno session\n")), "5 1")

    def test_a_program_that_dies_after_its_tests_has_failed(self):
        self.assertEqual(counted(case("fail", "[  PASSED  ] 10 tests.\nleaked\n")), "10 1")
        self.assertEqual(counted(case("fail", "[ RUN      ] A.b\n")), "0 1")

    def test_a_program_that_finds_no_test_has_failed(self):
        self.assertEqual(counted(case("run", "[==========] 0 tests ran.\n[  PASSED  ] 0 tests.\n")), "0 1")

    def test_what_was_not_run_has_failed(self):
        self.assertEqual(counted(case("notrun"), case("disabled"), case("run")), "1 2")
        self.assertEqual(counted(), "0 1")


if __name__ == "__main__":
    unittest.main(verbosity=2)
