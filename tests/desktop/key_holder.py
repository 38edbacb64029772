#!/usr/bin/python3
"""key_holder.py PLACE: another program that has Alt and Shift with one physical key, until a line on its input."""

import sys

from x11 import Display

PLACE, SHIFT_AND_ALT = int(sys.argv[1]), 9

with Display() as display:
    display.grab_key(PLACE, SHIFT_AND_ALT)
    print("held", flush=True)
    sys.stdin.readline()
    display.let_key_go(PLACE, SHIFT_AND_ALT)
    print("free", flush=True)
    sys.stdin.read()
