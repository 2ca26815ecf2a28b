#!/usr/bin/python3
"""The windows as a user meets them: the real program that shows them on a private display, used through the keyboard
and as assistive software uses it."""

from shown import KEYLESS_SECONDS, OnEveryDesktop, SHOW, ShownWindows, main
from driving.desktop import Desktop
from driving.waiting import wait_until

import os
import signal
import time
import unittest

BROWSER = """[Desktop Entry]
Type=Application
Name=Browser
Exec=sh -c 'echo "$0" "${{XDG_ACTIVATION_TOKEN-without token}}" "${{DESKTOP_STARTUP_ID-without id}}" >{visited}' %u
MimeType=x-scheme-handler/https;
"""


class RealWindows(OnEveryDesktop, ShownWindows):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(panel=False))

    # The popup

    def test_popup_is_an_alert_with_names_in_the_middle_of_the_screen(self):
        self.show("popup")
        self.assertEqual(self.window.role, "alert")
        for text in "Marvelode Timer", "Look around. Take a breath. Stretch.":
            self.find("label", text)
        self.find("push button", "Snooze")
        self.assertFalse(self.find("check box", "Disable popup notifications").has("checked"))
        self.assertTrue(self.find("push button", "Restart").has("focused"))
        x, y, width, height = self.window.extents
        self.assertAlmostEqual(x + width / 2, self.desktop.width / 2, delta=2)
        self.assertAlmostEqual(y + height / 2, self.desktop.height / 2, delta=2)

    def test_popup_answers_by_buttons(self):
        self.show("popup", "popup")
        self.find("push button", "Snooze").press()
        self.expect_lines("answered 1001")
        self.window_is_up()
        self.find("push button", "Restart").press()
        self.expect_lines("answered 1001", "answered 1000")
        self.assertEqual(self.shower.status(), 0)

    def test_popup_answers_by_keys(self):
        self.show("popup", "popup", "popup")
        self.press_keys("Return")
        self.expect_lines("answered 1000")
        self.window_is_up()
        self.press_keys("alt+d", "alt+s")
        self.expect_lines("answered 1000", "answered 1001 ticked")
        self.window_is_up()
        self.press_keys("Tab", "space", "Tab", "space")
        self.expect_lines("answered 1000", "answered 1001 ticked", "answered 1001 ticked")

    def test_popup_keeps_the_tick_when_it_is_closed(self):
        self.show("popup", "popup")
        self.find("check box", "Disable popup notifications").press()
        self.press_keys("Escape")
        self.expect_lines("answered -1000 ticked")
        self.window_is_up()
        self.press_keys("alt+F4")
        self.expect_lines("answered -1000 ticked", "answered -1000")

    def test_popup_stays_above_other_windows(self):
        self.show("popup")
        before = self.desktop.screenshot().crop(*self.window.extents)
        self.start_other("maximize")
        wait_until(lambda: self.desktop.screenshot().pixel(5, self.desktop.height - 5)[:3] != (0, 0, 0),
                   "the other window to cover the screen")
        x, y, width, height = self.window.extents
        after = self.desktop.screenshot().crop(x, y, width, height)
        middle = (width // 2, 12)
        self.assertEqual(before.pixel(*middle), after.pixel(*middle))
        self.find("push button", "Snooze").press()
        self.expect_lines("answered 1001")

    def test_popup_counts_as_closed_when_its_program_is_killed(self):
        self.show("popup")
        [helper] = self.shower.helpers()
        os.kill(helper, signal.SIGKILL)
        self.expect_lines("answered -1000", "error: the window program ended before its window was closed")
        self.assertEqual(self.shower.status(), 0)

    def test_program_ends_with_its_window_and_with_the_resident_program(self):
        self.show("popup", "about")
        [helper] = self.shower.helpers()
        self.press_keys("Return")
        wait_until(lambda: helper not in self.shower.helpers(), "the program to end with its window")
        self.window_is_up()
        self.shower.send(signal.SIGKILL)
        self.shower.status()
        wait_until(lambda: not self.shower.left_behind(), "the program to end with the resident program")

    # The settings

    def test_settings_name_their_controls(self):
        self.show("settings")
        field = self.find("text", "Interval in minutes")
        self.assertEqual(field.text, "10")
        self.assertTrue(self.find("toggle button", "Restart after sleep").has("checked"))
        self.assertFalse(self.find("toggle button", "Auto restart timer").has("sensitive"))
        self.find("combo box", "Reminder sound")
        self.assertTrue(self.find("push button", "OK").has("focused"))

    def test_settings_report_changes_at_once_and_text_when_it_is_complete(self):
        self.show("settings")
        self.press_keys("alt+i")
        self.desktop.type("25")
        self.press_keys("Tab")
        self.expect_lines("minutes = 25")
        self.find("toggle button", "Restart after sleep").press()
        self.expect_lines("minutes = 25", "restart = 0")
        self.press_keys("alt+r")
        self.expect_lines("minutes = 25", "restart = 0", "restart = 1")
        self.find("combo box", "Reminder sound").select(1)
        self.expect_lines("minutes = 25", "restart = 0", "restart = 1", "sound = 1", "plays")

    def test_settings_refuse_text_that_is_no_number(self):
        self.show("settings")
        field = self.find("text", "Interval in minutes")
        field.focus()
        field.type("soon")
        self.press_keys("Tab")
        wait_until(lambda: field.text == "10", "the field to show its value again")
        self.assertEqual(self.lines(), [])

    def test_settings_save_what_was_typed_however_they_are_saved(self):
        save = {"Return": ["submitted", "save"], "alt+o": ["save"], "Tab Tab Return": ["save"],
                "Tab Tab Tab space": ["save"]}
        self.show(*["settings"] * (len(save) + 1))
        expected = []
        for minutes, (keys, lines) in enumerate(save.items(), 11):
            self.press_keys("alt+i")
            self.desktop.type(str(minutes))
            self.press_keys(*keys.split())
            expected += [f"minutes = {minutes}", *lines, "window closes"]
            self.expect_lines(*expected)
            self.window_is_up()
        self.find("text", "Interval in minutes").type("15")
        self.find("push button", "OK").press()
        self.expect_lines(*expected, "minutes = 15", "save", "window closes")

    def test_settings_and_their_alert_are_on_every_workspace(self):
        self.show("settings")
        self.find("text", "Interval in minutes").type("0")
        self.press_keys("Return")
        alert = self.window_is_up(2)
        windows = [alert, *(each for each in self.windows() if each.role != "alert")]
        edges = [(x + width // 2, y + 12) for x, y, width, _ in (each.extents for each in windows)]
        self.addCleanup(self.desktop.switch_workspace, "0")
        for workspace in "1", "0":
            self.desktop.switch_workspace(workspace)
            wait_until(lambda: all(self.desktop.screenshot().pixel(*edge)[:3] != (0, 0, 0) for edge in edges),
                       f"the windows on workspace {workspace}")

    def test_settings_stay_open_below_the_alert(self):
        self.show("settings")
        settings = self.window
        self.find("text", "Interval in minutes").focus()
        self.desktop.type("0")
        self.press_keys("Return")
        alert = self.window_is_up(2)
        self.assertEqual(alert.role, "alert")
        self.find("label", "Oops")
        self.find("label", "Invalid interval")
        x, y, width, _ = settings.extents
        self.desktop.click(x + width // 2, y + 5)
        self.press_keys("Return")
        self.expect_lines("minutes = 0", "submitted", "save", "alert answered 1000")
        self.window_is_up()
        self.assertEqual(self.find("text", "Interval in minutes").text, "0")
        self.find("text", "Interval in minutes").type("12")
        self.press_keys("alt+o")
        wait_until(lambda: not self.shower.is_running(), "the settings to close")

    def test_settings_keep_an_edit_when_they_are_closed(self):
        self.show("settings", "settings", "settings")
        self.press_keys("alt+i")
        self.desktop.type("77")
        self.press_keys("Escape")
        self.expect_lines("minutes = 77", "window closes")
        self.window_is_up()
        self.assertEqual(self.find("text", "Interval in minutes").text, "77")
        self.press_keys("alt+i")
        self.desktop.type("78")
        self.press_keys("alt+F4")
        self.expect_lines("minutes = 77", "window closes", "minutes = 78", "window closes")
        self.window_is_up()
        self.assertEqual(self.find("text", "Interval in minutes").text, "78")

    def test_escape_closes_the_picker_alone(self):
        self.show("settings")
        self.press_keys("alt+s", "space")
        menu = self.find("menu", None)
        wait_until(lambda: menu.has("showing"), "the picker's menu")
        self.press_keys("Escape")
        wait_until(lambda: not menu.has("showing"), "the picker's menu to go")
        self.assertEqual(self.lines(), [])
        self.press_keys("Escape")
        self.expect_lines("window closes")

    # The About box

    def test_about_closes_by_return_and_by_escape(self):
        self.show("about", "about")
        self.assertTrue(self.find("push button", "OK").has("focused"))
        self.find("label", "Version: 1.0.0")
        self.press_keys("Return")
        self.expect_lines("window closes")
        self.window_is_up()
        self.press_keys("Escape")
        self.expect_lines("window closes", "window closes")

    def test_about_opens_links_in_the_browser(self):
        visited = self.desktop.folder / "visited"
        applications = self.desktop.home / ".local/share/applications"
        applications.mkdir(parents=True)
        (applications / "browser.desktop").write_text(BROWSER.format(visited=visited))
        (self.desktop.config / "mimeapps.list").write_text(
            "[Default Applications]\nx-scheme-handler/https=browser.desktop\n")
        self.show("about")
        self.press_keys("shift+Tab", "Return")
        wait_until(visited.exists, "the browser")
        wait_until(lambda: visited.read_text().strip(), "the address")
        self.assertEqual(visited.read_text().strip(), "https://marvelode.example/support without token without id")
        self.assertEqual(self.lines(), [])


    # The small window

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


class ByHand(unittest.TestCase):
    def test_it_says_what_it_is_for(self):
        with Desktop(panel=False) as desktop:
            program = desktop.start(SHOW[1])
            self.assertEqual(program.status(), 1)
            self.assertIn("start marvelode-timer", program.output())


if __name__ == "__main__":
    main()
