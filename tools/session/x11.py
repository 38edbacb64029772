"""Calls the session's X server itself: for what no command does, or for moments in which no command could start."""

import ctypes
import time

DISPLAY, NUMBER, IMAGE = ctypes.c_void_p, ctypes.c_ulong, ctypes.c_void_p  # a window and an atom are numbers
INT, UNSIGNED = ctypes.c_int, ctypes.c_uint
EVERY_PLANE, WHOLE_PIXELS = 2**64 - 1, 2


def _function(library, name, result, *arguments):
    function = getattr(library, name)
    function.restype, function.argtypes = result, arguments
    return function


_X11 = ctypes.CDLL("libX11.so.6")
_open = _function(_X11, "XOpenDisplay", DISPLAY, ctypes.c_char_p)
_close = _function(_X11, "XCloseDisplay", INT, DISPLAY)
_sync = _function(_X11, "XSync", INT, DISPLAY, INT)
_flush = _function(_X11, "XFlush", INT, DISPLAY)
_root = _function(_X11, "XDefaultRootWindow", NUMBER, DISPLAY)
_atom = _function(_X11, "XInternAtom", NUMBER, DISPLAY, ctypes.c_char_p, INT)
_owner = _function(_X11, "XGetSelectionOwner", NUMBER, DISPLAY, NUMBER)
_image = _function(_X11, "XGetImage", IMAGE, DISPLAY, NUMBER, INT, INT, UNSIGNED, UNSIGNED, NUMBER, INT)
_pixel = _function(_X11, "XGetPixel", NUMBER, IMAGE, INT, INT)
_drop_image = _function(_X11, "XDestroyImage", INT, IMAGE)
_grab_key = _function(_X11, "XGrabKey", INT, DISPLAY, INT, UNSIGNED, NUMBER, INT, INT, INT)
_let_key_go = _function(_X11, "XUngrabKey", INT, DISPLAY, INT, UNSIGNED, NUMBER)


class Display:
    """A connection to the server, which ends with the block or with the process."""

    def __init__(self):
        self._display = _open(None)
        if not self._display:
            raise SystemExit("no X server")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        _close(self._display)

    def selection_owner(self, name):
        """The window that owns the selection, as a number, or 0."""
        return _owner(self._display, _atom(self._display, name.encode(), False))

    def pixel(self, x, y):
        """The colour of one place of the screen."""
        image = _image(self._display, _root(self._display), x, y, 1, 1, EVERY_PLANE, WHOLE_PIXELS)
        value = _pixel(image, 0, 0)
        _drop_image(image)
        return value >> 16 & 255, value >> 8 & 255, value & 255

    def grab_key(self, place, modifiers):
        """Takes a key of the keyboard, given by its place, from all other programs."""
        asynchronous = 1
        _grab_key(self._display, place, modifiers, _root(self._display), False, asynchronous, asynchronous)
        _sync(self._display, False)

    def let_key_go(self, place, modifiers):
        _let_key_go(self._display, place, modifiers, _root(self._display))
        _sync(self._display, False)


class Pointer(Display):
    """Clicks at a known time: this process makes them itself, so no program has to start first."""

    def __init__(self):
        super().__init__()
        test = ctypes.CDLL("libXtst.so.6")
        self._motion = _function(test, "XTestFakeMotionEvent", INT, DISPLAY, INT, INT, INT, NUMBER)
        self._button = _function(test, "XTestFakeButtonEvent", INT, DISPLAY, UNSIGNED, INT, NUMBER)

    def move(self, x, y):
        self._motion(self._display, -1, x, y, 0)
        _sync(self._display, False)

    def click(self):
        """Presses and releases the button. Returns the time of the press in microseconds of the monotonic clock."""
        moment = time.monotonic_ns() / 1000
        for is_down in (True, False):
            self._button(self._display, 1, is_down, 0)
        _flush(self._display)
        return moment
