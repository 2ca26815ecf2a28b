"""Another program on the desktop, in whose window the user is at work."""

from .waiting import wait_until

COLOUR = (32, 96, 64)

OTHER = """
import sys
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk
window = Gtk.Window(title="Other")
window.override_background_color(0, Gdk.RGBA(32 / 255, 96 / 255, 64 / 255, 1))
window.set_default_size(300, 200)
entry = Gtk.Entry(halign="center", valign="end")
window.add(entry)
if "fullscreen" in sys.argv:
    window.fullscreen()
window.show_all()
Gtk.main()
"""


class Other:
    """Another program, in whose window the user is typing."""

    def __init__(self, desktop, *options):
        self.desktop = desktop
        self.program = desktop.start("/usr/bin/python3", "-c", OTHER, *options)
        self.await_keyboard()
        self.window = wait_until(lambda: next((each for each in desktop.windows() if each.name == "Other"), None),
                                 "the other window's name")

    def has_keyboard(self):
        active = self.desktop.active_window()
        return bool(active) and active[1] == self.program.pid

    def await_keyboard(self):
        wait_until(self.has_keyboard, "the other window to have the keyboard")

    def text(self):
        return self.window.find("text").text


def is_seen(desktop, window):
    """Whether the window is what the screen shows at its place, rather than the other program's."""
    x, y, width, height = window.extents
    picture = desktop.screenshot().crop(x, y, width, height)
    return picture.count(lambda *pixel: pixel[:3] in (COLOUR, (0, 0, 0))) < width * height / 50
