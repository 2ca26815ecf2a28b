#!/usr/bin/python3
"""The windows in a Wayland session where no window can be put into a layer: GNOME's, which has X11 as well, and others.
Sway stands for both; the virtual display that it is shown on is the session's X11.
"""

from shown import SHOW, ShownWindows, main
from driving.desktop import Desktop
from driving.sway import Sway
from driving.waiting import wait_until

import os

GNOME = {"XDG_CURRENT_DESKTOP": "ubuntu:GNOME", "GDK_BACKEND": None}


class WaylandWindows(ShownWindows):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(panel=False))
        cls.compositor = cls.enterClassContext(Sway(cls.desktop))

    def is_on_x11(self, window, **environment):
        """Shows the window, and looks for it on the X11 display."""
        self.environment = {**self.compositor.environment, **environment}
        self.show(window)
        found = self.desktop._xdotool("search", "--onlyvisible", "--name", "^Marvelode Timer$", check=False).stdout
        self.end(self.shower)
        return bool(found)

    def test_on_gnome_what_must_be_seen_is_shown_through_x11(self):
        for window in "popup", "settings", "about":
            with self.subTest(window):
                self.assertTrue(self.is_on_x11(window, **GNOME))

    def test_on_gnome_the_small_window_is_like_any_other_program_s(self):
        self.assertFalse(self.is_on_x11("status", **GNOME))

    def test_on_gnome_without_x11_the_popup_is_shown_all_the_same(self):
        self.assertFalse(self.is_on_x11("popup", **GNOME, DISPLAY=None))
        self.assertFalse(self.is_on_x11("popup", **GNOME | {"DISPLAY": ":9999"}), "which nobody serves")

    def test_elsewhere_and_if_the_user_says_so_the_popup_is_shown_on_wayland(self):
        self.assertFalse(self.is_on_x11("popup", GDK_BACKEND=None))
        self.assertFalse(self.is_on_x11("popup", **GNOME | {"GDK_BACKEND": "wayland"}))

    def test_a_popup_that_lost_the_keyboard_comes_back_after_a_minute(self):
        self.environment = self.compositor.environment
        for window, comes_back in (("popup", True), ("settings", False)):
            with self.subTest(window):
                self.show(window, LD_PRELOAD=os.environ["NO_LAYERS"])
                self.start_other("maximize")
                wait_until(lambda: not self.windows()[0].has("active"), "the other window to have the keyboard")
                if comes_back:
                    self.window_is_up()
                else:
                    with self.assertRaises(AssertionError):
                        wait_until(lambda: self.windows()[0].has("active"), "the window to come back", 8)
                self.end(self.shower)
                self.end(self.other)


if __name__ == "__main__":
    main()
