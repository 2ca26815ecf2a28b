#!/usr/bin/python3
"""The windows on a Wayland compositor that has layers, in front of a film that fills the screen and prints what is
typed into it.

    layer_windows.py SHOWER WINDOW_PROGRAM RESOURCES [TEST...]
"""

import sys
import time
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "desktop"))

from desktop import Desktop  # noqa: E402 (found through the line above)
from shown import KEYLESS_SECONDS, ShownWindows  # noqa: E402
from sway import Sway  # noqa: E402
from waiting import wait_until  # noqa: E402

FILM = """
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window(title="Film")
window.connect("key-press-event", lambda _, event: print(event.string, end="", flush=True))
window.fullscreen()
window.show()
Gtk.main()
"""
SHADOW = 26  # around a window, no part of it


class LayerWindows(ShownWindows):
    command = sys.argv[1:4]

    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(panel=False))
        cls.compositor = cls.enterClassContext(Sway(cls.desktop))
        cls.environment = cls.compositor.environment
        _, _, cls.width, cls.height = cls.compositor.area

    def setUp(self):
        self.point_at(5, self.height - 5)
        self.film = self.start("/usr/bin/python3", "-c", FILM)
        wait_until(lambda: any(each.name == "Film" and each.has("active") for each in self.desktop.windows()), "film")
        self.await_rest()

    def point_at(self, x, y):
        left, top, _, _ = self.compositor.area
        self.desktop.point_at(left + x, top + y)

    def click(self, x, y):
        left, top, _, _ = self.compositor.area
        self.desktop.click(left + x, top + y)

    def await_rest(self):
        """Waits until the screen has stopped to change."""
        def is_at_rest():
            before, self.screen = self.screen, self.compositor.screenshot()
            return before and before.pixels == self.screen.pixels
        self.screen = None
        wait_until(is_at_rest, "the screen to come to rest")
        return self.screen

    def rectangle(self, before):
        """Left, top, right and bottom of what has appeared on the screen."""
        return wait_until(lambda: before.difference(self.await_rest()), "something on the screen")

    def middle_of(self, found):
        """Where in the middle of the screen a part of the window in it is; Wayland does not tell."""
        _, _, window_width, window_height = self.window.extents
        x, y, width, height = found.extents
        return ((self.width - window_width) // 2 + x + width // 2,
                (self.height - window_height) // 2 + y + height // 2)

    def expect_in_film(self, text):
        wait_until(lambda: self.film.output() == text, f"“{text}” in the film")

    def test_every_window_is_in_the_middle_above_a_full_screen_window(self):
        for window, keys in {"popup": "Return", "settings": "Escape", "about": "Escape", "status": "Escape"}.items():
            with self.subTest(window):
                before = self.await_rest()
                self.show(window)
                left, top, right, bottom = self.rectangle(before)
                _, _, width, height = self.window.extents
                self.assertAlmostEqual((left + right) / 2, self.width / 2, delta=3)
                self.assertAlmostEqual((top + bottom) / 2, self.height / 2, delta=3)
                self.assertGreaterEqual(right - left, width - 2 * SHADOW)
                self.assertGreaterEqual(bottom - top, height - 2 * SHADOW)
                self.press_keys(keys)
                wait_until(lambda: not self.windows(), "the window to go")
                self.assertIsNone(before.difference(self.await_rest()))

    def test_popup_answers_by_keys_and_gives_the_keyboard_back(self):
        self.desktop.type("before ")
        self.show("popup", "popup")
        self.press_keys("Return")
        self.expect_lines("answered 1000")
        self.window_is_up()
        self.press_keys("alt+d", "Escape")
        self.expect_lines("answered 1000", "answered -1000 ticked")
        self.assertEqual(self.shower.status(), 0)
        self.desktop.type("after")
        self.expect_in_film("before after")

    def test_popup_takes_no_key_of_somebody_who_is_typing(self):
        for _ in range(10):
            begin = time.monotonic()
            self.shower = self.start(*self.command, "popup")
            wait_until(lambda: any(each.has("active") for each in self.windows()), "the popup")
            self.press_keys("Return")
            was_quick = time.monotonic() - begin < KEYLESS_SECONDS
            if was_quick:
                self.window_is_up()
                self.assertEqual(self.lines(), [])
                self.press_keys("Return")
                self.expect_lines("answered 1000")
                return
            self.end(self.shower)
        self.fail("the machine was never quick enough for this test")

    def test_settings_wait_below_the_alert(self):
        self.show("settings")
        sleep = self.middle_of(self.find("toggle button", "Restart after sleep"))
        self.find("text", "Interval in minutes").focus()
        self.desktop.type("0")
        before = self.await_rest()
        self.press_keys("Return")
        alert = self.window_is_up(2)
        self.assertEqual(alert.role, "alert")
        self.find("label", "Oops")
        self.rectangle(before)
        self.click(*sleep)
        self.press_keys("Return")
        self.expect_lines("minutes = 0", "submitted", "save", "alert answered 1000")
        self.window_is_up()
        self.assertTrue(self.find("text", "Interval in minutes").has("focused"))
        self.click(*sleep)
        self.expect_lines("minutes = 0", "submitted", "save", "alert answered 1000", "restart = 0")

    def test_settings_offer_the_sounds_to_the_keyboard(self):
        self.show("settings")
        self.press_keys("alt+s", "space")
        menu = self.find("menu", None)
        wait_until(lambda: menu.has("showing"), "the picker's menu")
        self.press_keys("Down", "Down", "Return")
        self.expect_lines("sound = 2", "plays")
        self.press_keys("Return")
        self.expect_lines("sound = 2", "plays", "save", "window closes")

    def test_settings_give_the_keyboard_back_when_the_pointer_leaves_them(self):
        self.show("settings")
        field = self.middle_of(self.find("text", "Interval in minutes"))
        self.click(*field)
        self.press_keys("ctrl+a")
        self.desktop.type("25")
        self.point_at(5, self.height - 5)
        self.expect_lines("minutes = 25")
        wait_until(lambda: not self.window.has("active"), "the keyboard to be elsewhere")
        self.desktop.type("film")
        self.expect_in_film("film")
        self.click(*field)
        self.window_is_up()
        self.press_keys("Escape")
        self.expect_lines("minutes = 25", "window closes")

    def test_small_window_that_nobody_asked_for_has_the_keyboard_when_it_is_clicked(self):
        before = self.await_rest()
        self.shower = self.start(*self.command, "unasked")
        self.rectangle(before)
        self.desktop.type("film")
        self.expect_in_film("film")
        self.window = self.windows()[0]
        self.click(*self.middle_of(self.find("toggle button", "Mute")))
        self.expect_lines("picks Mute")
        self.window_is_up()
        self.press_keys("alt+m")
        self.expect_lines("picks Mute", "picks Mute")
        self.assertEqual(self.film.output(), "film")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
