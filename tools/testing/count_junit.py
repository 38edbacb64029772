#!/usr/bin/python3
"""count_junit.py REPORT: prints "PASSED FAILED" for a report of ctest. A test that was not run counts as failed."""

import sys
import xml.etree.ElementTree as ElementTree

cases = ElementTree.parse(sys.argv[1]).getroot().iter("testcase")
states = [case.get("status") for case in cases]
passed = states.count("run")
print(passed, max(len(states) - passed, 0 if states else 1))
