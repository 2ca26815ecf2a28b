#!/usr/bin/python3
"""The real program on a real desktop: in a panel's tray, with windows on a screen, used by hand.

CTest names the program in the environment as MARVELODE_TIMER. By hand: `MARVELODE_TIMER=build/dev/bin/marvelode-timer
tests/desktop/program_test.py [CASE]`, with the options of Python's unittest.
"""

import os
import signal
import stat
import time
import unittest
from pathlib import Path

from driving import processes
from driving.desktop import PANEL_HEIGHT, TRAY_PICTURE, Desktop
from driving.picture import Picture
from driving.timer import AFTER_FIRST_RUN, Timer
from driving.waiting import wait_until

RESOURCES = Path(__file__).resolve().parents[2] / "resources"


def is_red(red, green, blue, _alpha):
    return red > 180 and green < 110 and blue < 110


class TestMode(unittest.TestCase):
    def test_a_life_from_start_to_quit(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-test", settings=AFTER_FIRST_RUN)
            item = timer.item()

            # The item stands in the panel, and its text can be read there.
            timer.await_in_panel()
            self.assertEqual(item.description, "Break in 1 minute")

            # The break is due after 30 seconds: text in red, and the popup.
            popup = timer.window(seconds=40, role="alert")
            self.assertGreaterEqual(time.monotonic() - timer.begin, 30)
            self.assertLess(time.monotonic() - timer.begin, 33)
            self.assertEqual([each for each in popup.texts() if each],
                             ["Marvelode Timer", "Information", "Marvelode Timer", "Look around. Take a breath. Stretch.",
                              "Disable popup notifications", "Snooze", "Restart"])
            self.assertTrue(popup.find("push button", "Restart").has("focused"))
            self.assertFalse(popup.find("check box").has("checked"))
            timer.await_description("Break due for")
            x, y = timer.await_in_panel()
            picture = desktop.screenshot().crop(x, y, TRAY_PICTURE, TRAY_PICTURE)
            self.assertGreater(picture.count(is_red), 10)

            # Snoozed, it comes back five seconds later.
            popup.find("push button", "Snooze").press()
            snoozed = time.monotonic()
            timer.await_no_window()
            popup = timer.window(seconds=15)
            self.assertGreaterEqual(time.monotonic() - snoozed, 4.5)
            self.assertLess(time.monotonic() - snoozed, 8)

            # A popup whose process is killed counts as snoozed.
            for helper in timer.program.helpers():
                os.kill(helper, signal.SIGKILL)
            killed = time.monotonic()
            timer.await_no_window()
            self.assertTrue(timer.program.is_running())
            popup = timer.window(seconds=15)
            self.assertGreaterEqual(time.monotonic() - killed, 4.5)

            # No more popups, and a new interval.
            check_box = popup.find("check box", "Disable popup notifications")
            check_box.press()
            wait_until(lambda: check_box.has("checked"), "the tick")
            popup.find("push button", "Restart").press()
            timer.await_no_window()
            timer.await_description("Break in 1 minute")
            timer.await_setting("PopupAlerts", "false")

            # The menu's switches.
            self.assertFalse(item.entry("Mute").is_checked)
            for mark, stored in ((True, "true"), (False, "false")):
                item.pick("Mute")
                wait_until(lambda: item.entry("Mute").is_checked == mark, "the check mark of “Mute”")
                timer.await_setting("Mute", stored)
            for mark, stored in ((True, "true"), (False, "false")):
                item.pick("Popup reminders")
                wait_until(lambda: item.entry("Popup reminders").is_checked == mark, "the check mark of “Popup reminders”")
                timer.await_setting("PopupAlerts", stored)

            # The settings refuse 0 minutes, which is what they show in test mode, and take 25.
            item.pick("Settings")
            settings = timer.window(role="frame")
            self.assertFalse(any(each.is_enabled for each in item.entries() if not each.is_separator))
            field = settings.find("text", "Interval in minutes")
            self.assertEqual(field.text, "0")
            settings.find("push button", "OK").press()
            oops = timer.window(role="alert")
            self.assertIn("Oops", oops.texts())
            self.assertIn("Invalid interval", oops.texts())
            oops.find("push button", "OK").press()
            wait_until(lambda: not desktop.window_of(timer.program, "alert"), "the alert to close")
            self.assertNotIn("TimerInterval", timer.settings())
            field.type("25")
            settings.find("push button", "OK").press()
            timer.await_no_window()
            timer.await_setting("TimerInterval", "1500.0")

            # About.
            wait_until(lambda: item.entry("About Marvelode Timer").is_enabled, "the menu to be usable")
            item.pick("About Marvelode Timer")
            about = timer.window()
            texts = about.texts()
            for text in ("Marvelode Timer", "Version: test", "Build: test", "License", "Support development"):
                self.assertIn(text, texts)
            about.find("push button", "OK").press()
            timer.await_no_window()

            # Waking from sleep begins a new interval.
            timer.await_description("Break in 9 seconds", seconds=30)
            desktop.wake()
            timer.await_description("Break in 1 minute")

            timer.quit(self)


class StatusItem(unittest.TestCase):
    def test_the_picture_shows_where_there_is_no_text(self):
        with Desktop() as desktop:
            timer = Timer(desktop, settings=AFTER_FIRST_RUN | {"ShowCountdown": "false"})
            offered, _ = max(timer.item().pictures())
            picture = Picture.of_file(RESOURCES / f"status/Marvelode-{offered}.png")
            wait_until(lambda: desktop.picture_in_panel(picture), "the window of the icon")
            timer.quit(self)

    def test_the_text_can_be_read_on_a_dark_panel(self):
        with Desktop(dark=True) as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            self.assertEqual(timer.item().description, "Break in 10 minutes")
            timer.quit(self)

    def test_the_item_returns_to_a_panel_that_was_restarted(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            desktop.stop_panel()
            desktop.start_panel()
            timer.await_in_panel()
            timer.quit(self)

    def test_the_item_waits_for_a_panel_that_comes_later(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop)
            desktop.start_panel()
            timer.await_in_panel()
            timer.quit(self)


class ByHand(unittest.TestCase):
    """The mouse in the panel and the keyboard in the windows."""

    def open_menu(self, desktop, timer):
        """Opens the menu with a click on the item and returns its left, top, right and bottom on the screen."""
        x, y = timer.await_in_panel()
        empty = desktop.screenshot()
        desktop.click(x + TRAY_PICTURE // 2, y + TRAY_PICTURE // 2)

        def menu():
            rectangle = desktop.screenshot().crop(0, PANEL_HEIGHT, desktop.width, desktop.height - PANEL_HEIGHT) \
                .difference(empty.crop(0, PANEL_HEIGHT, desktop.width, desktop.height - PANEL_HEIGHT))
            return rectangle and rectangle[3] - rectangle[1] > 100 and rectangle
        left, top, right, bottom = wait_until(menu, "the menu on the screen")
        return left, top + PANEL_HEIGHT, right, bottom + PANEL_HEIGHT

    def test_the_menu_is_used_with_the_keyboard(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            self.open_menu(desktop, timer)
            desktop.press_key("Down", "Down", "Down", "Return")
            timer.await_setting("Mute", "true")
            self.open_menu(desktop, timer)
            desktop.press_key("Up", "Return")
            timer.expect_end(self)

    def test_the_menu_is_used_with_the_mouse(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            _, _, right, bottom = self.open_menu(desktop, timer)
            desktop.click(right - 100, bottom - 15)
            timer.expect_end(self)

    def test_return_presses_the_default_button(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "3")
            popup = timer.window()
            wait_until(lambda: popup.has("active"), "the popup to have the keyboard")

            def press_return():  # the popup does not take keys at once, so that it swallows none of a user who is typing
                desktop.press_key("Return")
                return not desktop.window_of(timer.program)
            wait_until(press_return, "Return to close the popup")
            timer.await_description("Break in")
            timer.quit(self)

    def test_minutes_are_typed_and_confirmed_with_return(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.item().pick("Settings")
            settings = timer.window()
            field = settings.find("text", "Interval in minutes")
            self.assertEqual(field.text, "10")
            wait_until(lambda: settings.has("active"), "the settings to have the keyboard")
            field.focus()
            desktop.press_key("ctrl+a")
            desktop.type("45")
            desktop.press_key("Return")
            timer.await_no_window()
            timer.await_setting("TimerInterval", "2700.0")
            timer.await_description("Break in 45 minutes")
            timer.quit(self)


class Cycle(unittest.TestCase):
    def test_a_wake_while_the_popup_is_up_begins_a_new_interval(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "3")
            popup = timer.window()
            timer.await_description("Break due for")
            desktop.wake()
            timer.await_description("Break in")
            popup.find("push button", "Snooze").press()
            timer.await_no_window()
            timer.window().find("push button", "Snooze").press()  # of the interval that the wake began
            timer.quit(self)

    def test_without_popups_it_restarts_by_itself(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "2",
                          settings=AFTER_FIRST_RUN | {"PopupAlerts": "false", "AutoRestart": "true", "Mute": "true"})
            timer.item()
            for _ in range(2):
                before = timer.get("RemainingSeconds")

                def has_begun_anew():
                    nonlocal before
                    previous, before = before, timer.get("RemainingSeconds")
                    return before > previous

                wait_until(has_begun_anew, "the next interval")
            self.assertEqual(timer.program.helpers(), [])
            timer.quit(self)


class Settings(unittest.TestCase):
    def test_a_first_run_stores_the_defaults_for_its_owner_only(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            self.assertEqual({key: value for key, value in timer.settings().items() if key != "Version"},
                             {"AutoRestart": "true", "PopupAlerts": "true", "ResartOnWake": "true",
                              "ShowCountdown": "true"})
            self.assertEqual(stat.S_IMODE(timer.settings_file.stat().st_mode), 0o600)
            timer.quit(self)

    def test_an_edit_by_hand_is_noticed(self):
        with Desktop() as desktop:
            timer = Timer(desktop, settings=AFTER_FIRST_RUN)
            timer.await_description("Break in 10 minutes")
            timer.store(AFTER_FIRST_RUN | {"TimerInterval": "1800.0"})
            timer.item().pick("Restart timer")
            timer.await_description("Break in 30 minutes")
            timer.quit(self)

    def test_a_value_on_the_command_line_is_not_stored(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "1500")
            timer.await_description("Break in 25 minutes")
            self.assertNotIn("TimerInterval", timer.settings())
            timer.quit(self)


class End(unittest.TestCase):
    def test_signals_end_it_cleanly(self):
        with Desktop(panel=False) as desktop:
            for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
                with self.subTest(number.name):
                    timer = Timer(desktop)
                    timer.await_setting("PopupAlerts", "true")
                    timer.program.send(number)
                    timer.expect_end(self)
                    timer.settings_file.unlink()

    def test_a_signal_closes_the_popup_with_it(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "1")
            timer.window()
            timer.program.send(signal.SIGTERM)
            timer.expect_end(self)

    def test_without_a_session_bus_it_says_so(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, DBUS_SESSION_BUS_ADDRESS=f"unix:path={desktop.folder}/nothing")
            self.assertGreater(timer.program.status(), 0)
            self.assertIn("session bus", timer.program.output())

    def test_it_ends_with_its_session_bus(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop)
            timer.await_setting("PopupAlerts", "true")
            desktop.session_bus_process.kill()
            desktop.session_bus_process.wait()
            timer.expect_end(self)


class Harness(unittest.TestCase):
    def test_nothing_of_a_desktop_outlives_it(self):
        before = processes.descendants()
        with Desktop() as desktop:
            Timer(desktop).await_in_panel()
            folder = desktop.folder
            self.assertGreater(len(processes.descendants()), 5)
        self.assertEqual(processes.descendants(), before)
        self.assertFalse(folder.exists())

    def test_a_picture_is_found_only_where_it_is(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            other = Picture.of_file(RESOURCES / "status/MarvelodeGrey-48.png")
            self.assertIsNone(desktop.picture_in_panel(other))
            self.assertEqual(desktop.screenshot().crop(0, 0, 1, PANEL_HEIGHT).height, PANEL_HEIGHT)


if __name__ == "__main__":
    unittest.main()
