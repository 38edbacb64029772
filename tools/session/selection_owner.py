#!/usr/bin/python3
"""selection_owner.py NAME: succeeds if a client of the X server owns that selection."""

import ctypes
import sys

x11 = ctypes.CDLL("libX11.so.6")
x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
x11.XInternAtom.restype = ctypes.c_ulong
x11.XGetSelectionOwner.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
x11.XGetSelectionOwner.restype = ctypes.c_ulong

display = x11.XOpenDisplay(None)
if not display:
    sys.exit("no X server")
sys.exit(0 if x11.XGetSelectionOwner(display, x11.XInternAtom(display, sys.argv[1].encode(), 0)) else 1)
