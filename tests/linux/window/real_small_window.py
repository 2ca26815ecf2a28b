#!/usr/bin/python3
"""The small window as a user meets it: it changes in place, under whatever the user is doing."""

from shown import KEYLESS_SECONDS, SHOW, ShownWindows, main
from driving.desktop import Desktop
from driving.waiting import wait_until

import signal
import time


class RealSmallWindow(ShownWindows):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(panel=False))

    def test_small_window_changes_in_place(self):
        self.show("status")
        self.find("push button", "Restart timer").focus()
        number, _ = self.desktop.active_window()
        words = self.find("label", "Break in 9 minutes").extents
        left, top, width, height = self.window.extents
        before = self.desktop.screenshot().crop(left, top, width, height)
        self.shower.send(signal.SIGUSR1)
        frames = []

        def is_changed():
            frames.append(self.desktop.screenshot().crop(left, top, width, height).difference(before))
            return self.window.find("label", "Break in 8 minutes") and any(frames)
        wait_until(is_changed, "the words to change")
        for _ in range(10):
            is_changed()
        for changed in filter(None, frames):
            self.assertGreaterEqual(changed[0], words[0] - left)
            self.assertGreaterEqual(changed[1], words[1] - top)
            self.assertLessEqual(changed[2], words[0] - left + words[2])
            self.assertLessEqual(changed[3], words[1] - top + words[3])
        self.assertTrue(self.find("push button", "Restart timer").has("focused"))
        self.assertEqual(self.desktop.active_window()[0], number)
        self.press_keys("space")
        self.expect_lines("picks Restart timer")

    def test_small_window_changes_under_a_pressed_button(self):
        self.show("status")
        restart, entry = self.find("push button", "Restart timer"), self.find("push button", "Quit")
        x, y, width, height = restart.extents
        self.desktop.hold_button(x + width // 2, y + height // 2)
        self.shower.send(signal.SIGUSR1)
        wait_until(lambda: self.window.find("label", "Break in 8 minutes"), "the words to change")
        self.shower.send(signal.SIGUSR2)
        wait_until(lambda: not entry.has("sensitive"), "the entry to take no input")
        self.desktop.release_button()
        self.expect_lines("picks Restart timer")
        self.shower.send(signal.SIGUSR2)
        wait_until(lambda: entry.has("sensitive"), "the entry to take input")
        entry.press()
        self.expect_lines("picks Restart timer", "picks Quit")

    def test_small_window_keeps_the_keyboard_on_the_entry_that_was_picked(self):
        self.show("status")
        self.find("toggle button", "Mute").focus()
        for is_on in True, False, True:
            self.press_keys("space")
            wait_until(lambda: self.find("toggle button", "Mute").has("checked") == is_on, "the switch")
            wait_until(lambda: self.find("toggle button", "Mute").has("focused"), "the keyboard on the switch")
        self.expect_lines(*["picks Mute"] * 3)
        self.press_keys("Tab", "space")
        self.expect_lines(*["picks Mute"] * 3, "picks Quit")
        self.assertEqual(self.shower.status(), 0)

    def test_small_window_that_nobody_asked_for_leaves_the_keyboard(self):
        self.start_other("maximize")
        self.shower = self.start(*SHOW, "unasked")
        wait_until(self.windows, "the small window")
        time.sleep(KEYLESS_SECONDS)
        self.desktop.type("other")
        self.expect_typed("other")


if __name__ == "__main__":
    main()
