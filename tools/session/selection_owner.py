#!/usr/bin/python3
"""selection_owner.py NAME: succeeds if a client of the X server owns that selection."""

import sys

sys.dont_write_bytecode = True  # many users run this from the same folder

from x11 import Display  # noqa: E402

with Display() as display:
    sys.exit(0 if display.selection_owner(sys.argv[1]) else 1)
