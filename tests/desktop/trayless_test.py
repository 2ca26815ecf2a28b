#!/usr/bin/python3
"""A desktop that shows no status items: the timer says so, and its small window stands in.

Run as program_test.py is.
"""

import re
import time
import unittest

from gi.repository import GLib

from driving.desktop import Desktop
from driving.notifications import NotificationArea
from driving.other import Other, is_seen
from driving.processes import kilobytes
from driving.timer import AFTER_FIRST_RUN, MENU, Timer
from driving.waiting import wait_until


class LockScreen:
    """GNOME's, as programs see it."""

    NAME, PATH, INTERFACE = "org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver"

    def __init__(self, desktop):
        self._bus = desktop.bus
        desktop.start("/usr/bin/python3", "-m", "dbusmock", "--session", self.NAME, self.PATH, self.INTERFACE)
        wait_until(lambda: self._bus.has_owner(self.NAME), "the lock screen")

    def set(self, is_locked):
        self._mock("AddMethod", "(sssss)", self.INTERFACE, "GetActive", "", "b", f"ret = {is_locked}")
        self._mock("EmitSignal", "(sssav)", self.INTERFACE, "ActiveChanged", "b", [GLib.Variant("b", is_locked)])

    def _mock(self, method, signature, *arguments):
        self._bus.call(self.NAME, self.PATH, "org.freedesktop.DBus.Mock", method, signature, *arguments)


def seconds(window, words):
    """The number of seconds that a label in the window tells of, in those words; nothing if none does."""
    found = (re.fullmatch(words + r" (\d+) seconds", each.name) for each in window.walk() if each.role == "label")
    return next((int(match[1]) for match in found if match), None)


def middle(accessible):
    x, y, width, height = accessible.extents
    return x + width // 2, y + height // 2


class NoTray(unittest.TestCase):
    """A desktop that shows no status items."""

    def test_it_says_so_and_offers_the_menus_main_actions(self):
        with Desktop(panel=False) as desktop:
            notifications = NotificationArea(desktop)
            timer = Timer(desktop, "-TimerInterval", "1200")
            message = notifications.await_message(seconds=6)
            self.assertEqual(message.summary, "Marvelode Timer is running")
            self.assertEqual(list(message.actions), ["default", "Restart timer", "Settings", "Quit"])
            small = timer.window()
            self.assertEqual(small.find("label", "Break in 20 minutes").role, "label")

            wait_until(lambda: timer.get("RemainingSeconds") < 1198, "some time to pass")
            notifications.choose(message, "Restart timer")
            wait_until(lambda: timer.get("RemainingSeconds") >= 1198, "a new interval")

            notifications.choose(message, "Settings")
            settings = wait_until(lambda: next((each for each in desktop.windows()
                                                if each.find("text", "Interval in minutes")), None), "the settings")
            settings.find("push button", "OK").press()
            wait_until(lambda: len(timer.program.helpers()) == 1, "the settings to close")

            timer.window().find("push button", "Hide this window").press()
            timer.await_no_window()
            notifications.choose(message, "default")
            timer.window()
            notifications.choose(message, "Quit")
            timer.expect_end(self)
            self.assertEqual(notifications.messages(), [])

    def test_it_says_nothing_while_the_screen_is_locked(self):
        with Desktop(panel=False) as desktop:
            notifications = NotificationArea(desktop)
            lock = LockScreen(desktop)
            lock.set(True)
            timer = Timer(desktop)
            timer.await_state("Timing")
            time.sleep(4)
            self.assertEqual(notifications.messages(), [])
            self.assertIsNone(desktop.window_of(timer.program))
            lock.set(False)
            notifications.await_message(seconds=6)
            timer.window()
            timer.command("Quit")
            timer.expect_end(self)

    def test_the_small_window_takes_the_keyboard_from_nobody(self):
        with Desktop(panel=False) as desktop:
            other = Other(desktop)
            timer = Timer(desktop)
            small = timer.window()
            wait_until(lambda: is_seen(desktop, small), "the small window to be seen")
            desktop.type("hello")
            wait_until(lambda: other.text() == "hello", "what was typed to arrive")
            self.assertTrue(other.has_keyboard())
            timer.command("Quit")
            timer.expect_end(self)

    def test_the_small_window_is_used_with_the_mouse(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, settings=AFTER_FIRST_RUN)
            small = timer.window()
            for stored in "true", "false":
                desktop.click(*middle(small.find("toggle button", "Mute")))
                timer.await_setting("Mute", stored)
            desktop.click(*middle(small.find("toggle button", "Popup reminders")))
            timer.await_setting("PopupAlerts", "false")
            desktop.click(*middle(small.find("push button", "Hide this window")))
            timer.await_no_window()
            self.assertTrue(timer.program.is_running())
            self.assertEqual(timer.start_again().status(), 0)
            desktop.click(*middle(timer.window().find("push button", "Quit")))
            timer.expect_end(self)

    def test_the_small_window_is_used_with_the_keyboard_alone(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, settings=AFTER_FIRST_RUN)
            small = timer.window()
            wait_until(lambda: timer.start_again().status() == 0, "the second start")
            small = wait_until(lambda: next((each for each in desktop.windows() if each.has("active")), None),
                               "the small window to have the keyboard")

            def focus(name):
                def has_focus():
                    found = next((each for each in small.walk() if each.has("focused")), None)
                    if found and found.name == name:
                        return True
                    desktop.press_key("Tab")
                    return False
                wait_until(has_focus, f"the keyboard on “{name}”")
            for name in [*MENU, "Hide this window"]:
                focus(name)
            focus("Mute")
            desktop.press_key("space")
            timer.await_setting("Mute", "true")
            desktop.press_key("alt+p")
            timer.await_setting("PopupAlerts", "false")
            desktop.press_key("Escape")
            timer.await_no_window()
            self.assertTrue(timer.program.is_running())
            self.assertEqual(timer.start_again().status(), 0)
            small = wait_until(lambda: next((each for each in desktop.windows() if each.has("active")), None),
                               "the small window to have the keyboard")
            focus("Quit")
            desktop.press_key("Return")
            timer.expect_end(self)

    def test_the_small_window_names_everything_and_follows_the_timer(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, "-TimerInterval", "14", settings=AFTER_FIRST_RUN)
            small = timer.window()
            controls = [each.name for each in small.walk() if each.role in ("push button", "toggle button")]
            self.assertEqual(controls, [*MENU, "Hide this window"])
            self.assertTrue(small.find("toggle button", "Popup reminders").has("checked"))
            self.assertFalse(small.find("toggle button", "Mute").has("checked"))
            timer.command("ToggleMute")
            wait_until(lambda: self.has(small, "Mute", "checked"), "the switch to follow")
            first = wait_until(lambda: seconds(small, "Break in"), "the seconds left")
            wait_until(lambda: (seconds(small, "Break in") or first) < first, "fewer seconds")

            # While the popup asks, the menu can do nothing.
            popup = timer.window(role="alert", seconds=20)
            wait_until(lambda: all(self.has(small, name, "sensitive") is False for name in MENU),
                       "the menu to be greyed")
            wait_until(lambda: self.has(small, "Hide this window", "sensitive"), "what hides the window")
            wait_until(lambda: seconds(small, "Break due for"), "the time that it is due for")
            popup.find("push button", "Restart").press()
            wait_until(lambda: self.has(small, "Quit", "sensitive"), "the menu to be usable")
            small.find("push button", "Quit").press()
            timer.expect_end(self)

    def has(self, window, name, state):
        """Whether the window's control is in that state; nothing while the window is just drawn anew."""
        for role in "push button", "toggle button":
            if found := window.find(role, name):
                try:
                    return found.has(state)
                except GLib.Error:
                    return None
        return None

    def test_a_tray_that_appears_later_is_taken_up(self):
        with Desktop(panel=False) as desktop:
            notifications = NotificationArea(desktop)
            timer = Timer(desktop)
            notifications.await_message()
            timer.window()
            desktop.start_panel()
            timer.await_in_panel()
            timer.await_no_window()
            wait_until(lambda: not notifications.messages(), "the message to be taken back")

            # A panel that restarts at once is no reason to say anything; one that stays away is.
            desktop.stop_panel()
            desktop.start_panel()
            timer.await_in_panel()
            self.assertEqual(notifications.messages(), [])
            desktop.stop_panel()
            notifications.await_message()
            timer.window()
            timer.command("Quit")
            timer.expect_end(self)

    def test_nothing_of_the_small_window_stays_in_memory(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            self.assertEqual(timer.start_again().status(), 0)
            timer.window().find("push button", "Hide this window").press()
            timer.await_no_window()
            wait_until(lambda: not timer.program.helpers(), "the helper to end")
            used = kilobytes(timer.program.pid)
            self.assertLessEqual(used["resident"], 8 * 1024, used)
            self.assertLessEqual(used["proportional"], 1.5 * 1024, used)
            self.assertLessEqual(used["unshared"], 1024, used)
            timer.command("Quit")
            timer.expect_end(self)


if __name__ == "__main__":
    unittest.main()
