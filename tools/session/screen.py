"""Windows on the session's screen as other programs see them, and pictures of the screen."""

import subprocess

from process import run
from waiting import wait_for


def screens_windows(depth):
    """All windows of the screen, by xwininfo; `depth` is "-children" or "-tree"."""

    def look():
        told = subprocess.run(["xwininfo", "-root", depth], capture_output=True, text=True, check=False)
        return None if told.returncode else told.stdout  # some window was destroyed in the meantime

    return wait_for(look, "a look at all windows")


def found_windows(*search):
    """Ids of the shown windows that xdotool finds."""

    def look():
        command = ["xdotool", "search", "--onlyvisible", *search]
        told = subprocess.run(command, capture_output=True, text=True, check=False)
        return None if "X Error" in told.stderr else (told.stdout.split(),)  # some window was destroyed in the meantime

    return wait_for(look, "a look at the shown windows")[0]


def windows_of(process):
    """Ids of the shown ordinary windows of a process."""
    return found_windows("--all", "--pid", str(process), "--name", ".")


def _is_placed_by_the_window_manager(window):
    told = subprocess.run(["xwininfo", "-id", window], capture_output=True, text=True, check=False).stdout
    return "Override Redirect State: no" in told


def window_of(title):
    """A shown window of that title. Tooltips are left out: GTK gives them the name of their program."""
    return next(filter(_is_placed_by_the_window_manager, found_windows("--name", title)), None)


def place_of(window):
    """Left, top, width and height of the window in pixels, or None if the window has closed in the meantime."""
    command = ["xdotool", "getwindowgeometry", "--shell", window]
    told = subprocess.run(command, capture_output=True, text=True, check=False).stdout
    values = dict(line.split("=") for line in told.splitlines() if "=" in line)
    return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT")) if "HEIGHT" in values else None


def placed_windows(process):
    """(id, left, top, width, height) of each shown window of a process."""
    for window in found_windows("--pid", str(process)):
        if place := place_of(window):
            yield window, *place


def width_of(window):
    """Width of the window in pixels, or 0 if the window has closed in the meantime."""
    place = place_of(window)
    return place[2] if place else 0


def has_keyboard(window):
    told = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True, check=False).stdout
    return told.strip() == window


def give_keyboard(window):
    """Makes the window the active one. Asks again, because a busy window manager drops requests."""

    def is_active():
        if has_keyboard(window):
            return True
        subprocess.run(["xdotool", "windowactivate", window], capture_output=True, check=False)
        return False

    wait_for(is_active, "the keyboard in the window", pause=0.1)


def bring_to_front(title):
    give_keyboard(wait_for(lambda: window_of(title), f"a window {title}"))


def screen_picture(path):
    run("import", "-window", "root", path)


def picture(path, x, y, width, height, zoom=1):
    """Saves a part of the screen as a PNG."""
    run("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage", "-filter", "point",
        "-resize", f"{zoom * 100}%", path)


def window_picture(path, window):
    run("import", "-window", window, path)


def colours_at(x, y, width, height):
    """Number of colours in a part of the screen."""
    return int(run("import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "-format", "%k", "info:-"))


def is_painted(window):
    """Whether the window shows more than one colour."""
    return int(run("import", "-window", window, "-format", "%k", "info:-")) > 1


def screen_width():
    return int(run("xdotool", "getdisplaygeometry").split()[0])
