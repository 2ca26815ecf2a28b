#!/usr/bin/python3
"""The windows on a Wayland compositor that has layers: those that the break cycle waits for stand above everything,
the small window is a window like any other program's."""

from shown import KEYLESS_SECONDS, OnEveryDesktop, PANEL, SHOW, ShownWindows, main
from driving.desktop import Desktop
from driving.sway import Sway
from driving.waiting import wait_until

import socket
import subprocess
import time

SHADOW = 26  # around a window, no part of it


class LayerWindows(OnEveryDesktop, ShownWindows):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(panel=False))
        cls.compositor = cls.enterClassContext(Sway(cls.desktop))
        cls.environment = cls.compositor.environment
        _, _, cls.width, cls.height = cls.compositor.area

    def setUp(self):
        self.point_at(5, self.height - 5)

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

    def expect_in_the_middle(self, window, key):
        """Shows the window above the other one, and closes it."""
        before = self.await_rest()
        self.show(window)
        left, top, right, bottom = self.rectangle(before)
        _, _, width, height = self.window.extents
        self.assertAlmostEqual((left + right) / 2, self.width / 2, delta=3)
        self.assertAlmostEqual((top + bottom) / 2, self.height / 2, delta=3)
        self.assertGreaterEqual(right - left, width - 2 * SHADOW)
        self.assertGreaterEqual(bottom - top, height - 2 * SHADOW)
        self.press_keys(key)
        wait_until(lambda: not self.windows(), "the window to go")
        self.assertIsNone(before.difference(self.await_rest()))

    def test_windows_that_the_cycle_waits_for_are_in_the_middle_above_a_full_screen_window(self):
        self.start_other("fullscreen")
        for window, key in {"popup": "Return", "settings": "Escape", "about": "Escape"}.items():
            with self.subTest(window):
                self.expect_in_the_middle(window, key)

    # The popup

    def test_popup_leaves_the_keyboard_for_half_a_second(self):
        self.start_other("fullscreen")
        for _ in range(10):
            typed = self.other.output()
            begin = time.monotonic()
            self.shower = self.start(*SHOW, "popup")
            wait_until(self.windows, "the popup")
            self.desktop.press_key("x")
            was_quick = time.monotonic() - begin < KEYLESS_SECONDS
            if was_quick:
                self.expect_typed(typed + "x")
                self.window_is_up()
                self.press_keys("Return")
                self.expect_lines("answered 1000")
                self.expect_typed(typed + "x")
                return
            self.end(self.shower)
        self.fail("the machine was never quick enough for this test")

    def test_popup_answers_by_keys_and_gives_the_keyboard_back(self):
        self.start_other("fullscreen")
        self.desktop.type("before ")
        self.show("popup", "popup")
        self.press_keys("Return")
        self.expect_lines("answered 1000")
        self.window_is_up()
        self.press_keys("alt+d", "Escape")
        self.expect_lines("answered 1000", "answered -1000 ticked")
        self.assertEqual(self.shower.status(), 0)
        self.desktop.type("after")
        self.expect_typed("before after")

    # The other windows

    def test_small_window_is_in_the_middle_above_a_window(self):
        self.start_other("maximize")
        self.expect_in_the_middle("status", "Escape")

    def test_small_window_counts_as_shown_when_the_compositor_has_answered(self):
        ours, its = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        program = subprocess.Popen(SHOW[1], env={**self.desktop.environment, **self.environment}, stdin=its)
        its.close()
        with program, ours:
            ours.settimeout(10)
            ours.send(PANEL.encode())
            self.assertIn(b"'shown', uint32 7", ours.recv(1000))
            with self.compositor.stopped():
                ours.send(PANEL.replace("uint32 7", "uint32 8").encode())
                ours.settimeout(1)
                with self.assertRaises(TimeoutError):
                    ours.recv(1000)
            ours.settimeout(10)
            self.assertIn(b"'shown', uint32 8", ours.recv(1000))

    def test_windows_are_as_dark_as_the_user_likes_them(self):
        settings = self.desktop.config / "glib-2.0/settings/keyfile"
        settings.parent.mkdir(parents=True)
        settings.write_text("[org/gnome/desktop/interface]\ncolor-scheme='prefer-dark'\n")
        for backend, is_dark in {"memory": False, "keyfile": True}.items():
            with self.subTest(backend):
                self.show("about", GSETTINGS_BACKEND=backend)
                _, _, _, height = self.window.extents
                colour = self.await_rest().pixel(self.width // 2, (self.height - height) // 2 + SHADOW + 10)
                self.assertEqual(max(colour[:3]) < 128, is_dark, colour)
                self.press_keys("Escape")
                self.expect_lines("window closes")

    def test_settings_are_seen_on_every_workspace(self):
        self.start_other("fullscreen")
        self.show("settings")
        _, _, width, height = self.window.extents
        inside = ((self.width - width) // 2 + 2 * SHADOW, (self.height - height) // 2 + 2 * SHADOW,
                  width - 4 * SHADOW, height - 4 * SHADOW)
        before = self.await_rest()
        self.addCleanup(self.compositor.switch_workspace, "1")
        self.compositor.switch_workspace("2")
        self.rectangle(before)
        self.assertIsNone(before.crop(*inside).difference(self.screen.crop(*inside)))
        self.press_keys("Escape")
        self.expect_lines("window closes")

    def test_settings_give_the_keyboard_back_when_the_pointer_leaves_them(self):
        self.start_other("fullscreen")
        self.show("settings")
        field = self.middle_of(self.find("text", "Interval in minutes"))
        self.click(*field)
        self.press_keys("ctrl+a")
        self.desktop.type("25")
        self.point_at(5, self.height - 5)
        self.expect_lines("minutes = 25")
        wait_until(lambda: not self.window.has("active"), "the keyboard to be elsewhere")
        self.desktop.type("other")
        self.expect_typed("other")
        self.click(*field)
        self.window_is_up()
        self.press_keys("Escape")
        self.expect_lines("minutes = 25", "window closes")
        self.desktop.type("!")
        self.expect_typed("other!")

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
        self.click(*self.middle_of(self.find("push button", "OK")))
        self.expect_lines("minutes = 0", "submitted", "save", "alert answered 1000")
        self.window_is_up()
        self.assertTrue(self.find("text", "Interval in minutes").has("focused"))
        self.click(*sleep)
        self.expect_lines("minutes = 0", "submitted", "save", "alert answered 1000", "restart = 0")

    def test_small_window_that_nobody_asked_for_takes_no_key_of_somebody_who_is_typing(self):
        self.start_other("maximize")
        self.type_through("unasked")
        self.assertEqual(self.lines(), [])
        self.window_is_up()
        self.press_keys("alt+m")
        self.expect_lines("picks Mute")


if __name__ == "__main__":
    main()
