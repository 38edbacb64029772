#!/usr/bin/python3
"""count_junit.py REPORT: prints "PASSED FAILED" of a report of ctest; a test that did not run is a failed one."""

import sys
import xml.etree.ElementTree as ElementTree

cases = ElementTree.parse(sys.argv[1]).getroot().iter("testcase")
states = [case.get("status") for case in cases]
passed = states.count("run")
print(passed, max(len(states) - passed, 0 if states else 1))
