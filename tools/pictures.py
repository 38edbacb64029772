#!/usr/bin/python3
"""pictures.py PREFIX OUT: takes the picture at the top of the README, OUT/desktop.png, of the installed program at 2x.

    export GDK_SCALE=2 QT_SCALE_FACTOR=2
    tools/desktop-session.sh --size 1800x1100 --compositor xfwm4 --system-bus PREFIX -- tools/pictures.py PREFIX OUT
    cwebp -q 95 -sharp_yuv OUT/desktop.png -o docs/pictures/desktop.webp
"""

import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "session"))

from process import run  # noqa: E402
from screen import picture, screen_width, windows_of  # noqa: E402
from vorli import PanelMenu, TrayIcon, Vorli  # noqa: E402
from waiting import wait_for  # noqa: E402

WIDTH, HEIGHT = 620, 580  # size of each half

# A desktop's own window: a compositor paints the bare root window black.
BACKDROP = """
import gi
gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk
window = Gtk.Window(type_hint=Gdk.WindowTypeHint.DESKTOP, title="backdrop")
style = Gtk.CssProvider()
style.load_from_data(b"window { background: #7d8f96; }")
window.get_style_context().add_provider(style, Gtk.STYLE_PROVIDER_PRIORITY_USER)
window.set_default_size(4000, 4000)
window.show_all()
Gtk.main()
"""


def picture_at_rest(path, left):
    """Takes pictures until two in a row are equal, and returns the last one."""
    seen = []

    def still():
        picture(path, left, 0, WIDTH, HEIGHT)
        with open(path, "rb") as file:
            seen.append(file.read())
        return len(seen) > 2 and seen[-1] == seen[-2]

    wait_for(still, "a picture at rest", 60, pause=0.5)


def main():
    prefix, out = sys.argv[1:]
    first, second = os.path.join(out, "menu.png"), os.path.join(out, "popover.png")
    backdrop = subprocess.Popen([sys.executable, "-c", BACKDROP])
    wait_for(lambda: windows_of(backdrop.pid), "the backdrop")
    vorli = Vorli(os.path.join(prefix, "bin", "vorli"), os.path.join(out, "vorli.log"))
    try:
        icon = TrayIcon()
        icon.appear()
        wait_for(lambda: vorli.helper_status == "enabled", "the enabled helper", 20)
        left = screen_width() - WIDTH
        menu = PanelMenu(icon)
        picture_at_rest(first, left)
        menu.dismiss()
        icon.click(1)
        wait_for(lambda: windows_of(vorli.process.pid), "the popover")
        wait_for(lambda: vorli.ticks >= 4, "a popover that has unfurled", 30)
        picture(second, left, 0, WIDTH, HEIGHT)
        run("convert", first, second, "+append", os.path.join(out, "desktop.png"))
    finally:
        vorli.end()
        backdrop.kill()
        backdrop.wait()


if __name__ == "__main__":
    main()
