#!/usr/bin/python3
"""The popup and the About box as a user meets them: the real program that shows them on a private display, used through
the keyboard and as assistive software uses it."""

from shown import KEYLESS_SECONDS, OnEveryDesktop, SHOW, ShownWindows, main
from driving.desktop import Desktop
from driving.picture import Picture
from driving.waiting import wait_until

import contextlib
import os
import signal
import tempfile
import time
import unittest
from pathlib import Path

BROWSER = """[Desktop Entry]
Type=Application
Name=Browser
Exec=sh -c 'echo "$0" "${{XDG_ACTIVATION_TOKEN-no token}}" "${{DESKTOP_STARTUP_ID-no id}}" "${{GTK_MODULES-no modules}}" \
    "${{GIO_USE_VFS-no files}}" "${{NO_AT_BRIDGE-no bridge}}" "${{AT_SPI_BUS_ADDRESS-no bus}}" >{visited}' %u
MimeType=x-scheme-handler/https;
"""

ICON_THEME = """[Icon Theme]
Name=Icons
Directories=64x64/apps

[64x64/apps]
Size=64
"""
WIDE_FONTS = """<fontconfig>
  <match target="pattern">
    <edit name="family" mode="assign" binding="strong"><string>DejaVu Sans Mono</string></edit>
  </match>
</fontconfig>
"""
RED, BLUE = (255, 0, 0, 255), (0, 0, 255, 255)


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

    def test_a_screen_reader_hears_of_the_popup_and_of_its_button(self):
        news = {("alert", "Marvelode Timer"), ("push button", "Restart")}
        with self.desktop.screen_reader() as reader:
            self.show("popup")
            with contextlib.suppress(AssertionError):
                wait_until(lambda: news <= set(reader.heard()), "the news")
            self.assertLessEqual(news, set(reader.heard()))

    def test_popup_is_found_by_assistive_software_through_one_connection_to_the_display(self):
        self.show("popup", LD_PRELOAD=os.environ["ONE_DISPLAY"], DBUS_SESSION_BUS_ADDRESS="unix:path=/nowhere")

    def test_popup_is_not_told_to_assistive_software_if_the_user_wants_none(self):
        background = self.desktop.centre_pixel()
        self.start(*SHOW, "popup", NO_AT_BRIDGE="1")
        wait_until(lambda: self.desktop.centre_pixel() != background, "the popup")
        time.sleep(KEYLESS_SECONDS)
        self.assertEqual(self.windows(), [])

    def test_popup_is_written_in_the_fonts_that_the_user_has_chosen(self):
        def width():
            self.show("popup")
            _, _, width, _ = self.find("label", "Look around. Take a breath. Stretch.").extents
            self.end(self.shower)
            return width
        usual = width()
        fonts = self.desktop.home / ".config/fontconfig/fonts.conf"
        fonts.parent.mkdir(parents=True)
        fonts.write_text(WIDE_FONTS)
        self.addCleanup(fonts.unlink)
        self.assertGreater(width(), usual * 1.1)

    def test_popup_and_warning_show_of_which_kind_they_are(self):
        def sign_of(name, red, green, blue):
            x, y, width, height = self.find("image", name).extents
            return self.desktop.screenshot().crop(x, y, width, height).count(
                lambda *pixel: pixel[:3] == (red, green, blue))
        self.show("popup", "settings")
        self.assertGreater(sign_of("Information", 0x1C, 0x71, 0xD8), 100)
        self.press_keys("Return")
        self.window_is_up()
        self.find("text", "Interval in minutes").type("0")
        self.press_keys("alt+o")
        self.window_is_up(2)
        self.assertGreater(sign_of("Warning", 0xF5, 0xC2, 0x11), 100)

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

    # The application's icon

    def data_folder(self):
        """A folder for all data of programs, of which it only has the kinds of files."""
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        (folder / "mime").symlink_to("/usr/share/mime")
        return folder

    def install_icon(self, data, theme, size, colour):
        icons = data / f"icons/{theme}/{size}x{size}/apps"
        icons.mkdir(parents=True)
        Picture(size, size, bytes(colour * size ** 2)).save(icons / "org.marvelode.Timer.png")

    def shows_icon(self, colour):
        popup = self.desktop.screenshot().crop(*self.window.extents)
        return popup.count(lambda *pixel: pixel == colour) > 64 ** 2 * 3 // 4  # a sign covers the rest

    def show_popup_with_installed_icon(self, size):
        data = self.data_folder()
        self.install_icon(data, "hicolor", size, RED)
        self.show("popup", XDG_DATA_DIRS=str(data))

    def test_popup_goes_on_showing_an_installed_icon_that_the_icon_theme_lacks(self):
        self.show_popup_with_installed_icon(64)
        self.assertTrue(self.shows_icon(RED))

    def test_popup_shows_a_larger_installed_icon_if_its_own_size_is_missing(self):
        self.show_popup_with_installed_icon(256)
        self.assertTrue(self.shows_icon(RED))

    def test_popup_ends_up_with_the_icon_of_the_user_s_theme_as_its_window_does(self):
        data = self.data_folder()
        for theme, colour in ("hicolor", RED), ("Adwaita", BLUE):
            self.install_icon(data, theme, 64, colour)
            (data / f"icons/{theme}/index.theme").write_text(ICON_THEME)
        self.show("popup", XDG_DATA_DIRS=str(data))
        wait_until(lambda: self.shows_icon(BLUE), "the theme's icon in the popup")
        number, _ = self.desktop.active_window()
        wait_until(lambda: self.desktop.window_icon(number).pixel(0, 0) == BLUE, "the theme's icon of the window")

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

    def browser_was_opened(self, **environment):
        """Follows a link in the About box; returns what the browser was given."""
        visited = self.desktop.folder / "visited"
        visited.unlink(missing_ok=True)
        applications = self.desktop.home / ".local/share/applications"
        applications.mkdir(parents=True, exist_ok=True)
        (applications / "browser.desktop").write_text(BROWSER.format(visited=visited))
        (self.desktop.config / "mimeapps.list").write_text(
            "[Default Applications]\nx-scheme-handler/https=browser.desktop\n")
        self.show("about", **environment)
        self.press_keys("shift+Tab", "Return")
        wait_until(visited.exists, "the browser")
        wait_until(lambda: visited.read_text().strip(), "the address")
        self.assertEqual(self.lines(), [])
        return visited.read_text().strip()

    def test_about_opens_links_in_the_browser(self):
        self.assertEqual(self.browser_was_opened(GTK_MODULES="of-the-user", GIO_USE_VFS="of-the-user", NO_AT_BRIDGE="0"),
                         "https://marvelode.example/support no token no id of-the-user of-the-user 0 no bus")

    def test_about_sets_no_variable_for_the_browser(self):
        self.assertEqual(self.browser_was_opened(),
                         "https://marvelode.example/support no token no id no modules no files no bridge no bus")


class ByHand(unittest.TestCase):
    def test_it_says_what_it_is_for(self):
        with Desktop(panel=False) as desktop:
            program = desktop.start(SHOW[1])
            self.assertEqual(program.status(), 1)
            self.assertIn("start marvelode-timer", program.output())


if __name__ == "__main__":
    main()
