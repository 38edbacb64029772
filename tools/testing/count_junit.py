#!/usr/bin/python3
"""count_junit.py REPORT: prints "PASSED FAILED" for a report of ctest. A test that was not run counts as failed.

A program of GoogleTest, or of Python's unittest, counts as many tests as its summaries say, which it prints last. A
skipped test in it counts as failed.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree


def summed(output, word):
    """The number of tests in GoogleTest's lines `[  WORD  ] N tests`."""
    return sum(map(int, re.findall(rf"^\[  {word} +\] (\d+) tests?\b", output, re.MULTILINE)))


def counts_of_python(output):
    """PASSED and FAILED by the endings of Python's suites: `Ran N tests in ...`, then `FAILED (failures=1)` or `OK`."""
    passed = failed = 0
    for count, rest in re.findall(r"^Ran (\d+) tests? in (.*?)(?=^Ran \d|\Z)", output, re.MULTILINE | re.DOTALL):
        ending = "".join(re.findall(r"^(?:FAILED|OK) \(.*\)$", rest, re.MULTILINE))
        bad = sum(map(int, re.findall(r"\b(?:failures|errors|skipped|unexpected successes)=(\d+)", ending)))
        passed += max(int(count) - bad, 0)  # a test may fail and then its cleaning up, too
        failed += bad or int(count == "0")
    return passed, failed


def counts_of(case):
    output = case.findtext("system-out") or ""
    passed, failed = counts_of_python(output)
    passed += summed(output, "PASSED")
    failed += summed(output, "FAILED") + summed(output, "SKIPPED")
    if case.get("status") != "run":
        return passed, failed or 1  # it crashed, took too long or was not run
    if "[  PASSED  ] 0 tests." in output:
        return passed, failed or 1
    return (passed, failed) if passed + failed else (1, 0)


def main():
    counts = [counts_of(case) for case in ElementTree.parse(sys.argv[1]).getroot().iter("testcase")]
    print(sum(passed for passed, _ in counts), sum(failed for _, failed in counts) if counts else 1)


if __name__ == "__main__":
    main()
