"""Clicks at a known time: this process makes them itself, so no program has to start first."""

import ctypes
import time


class Pointer:
    def __init__(self):
        self._x11, self._test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self._x11.XOpenDisplay.restype = ctypes.c_void_p
        self._display = ctypes.c_void_p(self._x11.XOpenDisplay(None))
        if not self._display:
            raise SystemExit("no X server")

    def move(self, x, y):
        self._test.XTestFakeMotionEvent(self._display, -1, x, y, ctypes.c_ulong(0))
        self._x11.XSync(self._display, 0)

    def click(self):
        """Presses and releases the button. Returns the time of the press in microseconds of the monotonic clock."""
        moment = time.monotonic_ns() / 1000
        for is_down in (1, 0):
            self._test.XTestFakeButtonEvent(self._display, 1, is_down, ctypes.c_ulong(0))
        self._x11.XFlush(self._display)
        return moment
