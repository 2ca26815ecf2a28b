#!/usr/bin/python3
"""The settings as a user meets them, used through the keyboard and as assistive software uses them."""

from shown import ShownWindows, main
from driving.desktop import Desktop
from driving.waiting import wait_until



class RealSettings(ShownWindows):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(panel=False))

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


if __name__ == "__main__":
    main()
