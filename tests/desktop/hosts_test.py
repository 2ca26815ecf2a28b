#!/usr/bin/python3
"""The status item in the panels of the usual desktops: legible, used by mouse and keyboard, and still there when the
panel was restarted or gave way to another.

By hand: `MARVELODE_TIMER=build/dev/bin/marvelode-timer tests/desktop/hosts_test.py [CASE]`.
"""

import unittest

from driving.desktop import Desktop
from driving.hosts import Ayatana, Lxqt, Mate, Waybar, Xfce
from driving.timer import AFTER_FIRST_RUN, Timer
from driving.waiting import wait_until

QUIET = AFTER_FIRST_RUN | {"Mute": "true", "PopupAlerts": "false"}


def is_red(red, green, blue, _alpha):
    return red > 180 and green < 60 and blue < 60


def await_legible(host, item):
    """Where the item's text of this moment stands and can be read, as x, y, width and height."""
    return wait_until(lambda: host.legible(item), f"legible text on {host.name}")


class Legible(unittest.TestCase):
    def shows(self, kind, **environment):
        for dark in (False, True):
            with self.subTest(dark=dark), Desktop(panel=False, dark=dark) as desktop, \
                    kind(desktop, dark, **environment) as host:
                self.is_legible_until_due(desktop, host)

    def is_legible_until_due(self, desktop, host):
        timer = Timer(desktop, settings=QUIET | {"TimerInterval": "1500.0"})
        item = timer.item()
        timer.await_description("Break in 25 minutes")
        x, y, width, height = await_legible(host, item)
        before = host.drawn(item)
        self.assertEqual(desktop.screenshot().crop(x, y, width, height).count(is_red), 0)

        timer.store(QUIET | {"TimerInterval": "1.0"})
        item.pick("Restart timer")
        timer.await_description("Break due for")
        x, y, width, height = await_legible(host, item)
        self.assertGreater(desktop.screenshot().crop(x, y, width, height).count(is_red), 10)
        self.assertIsNone(host.legible_picture(before), "the text of before still stands there")
        timer.quit(self)

    def test_on_xfce(self):
        self.shows(Xfce)

    def test_on_lxqt(self):
        self.shows(Lxqt)

    def test_on_mate(self):
        self.shows(Mate)

    def test_on_waybar(self):
        self.shows(Waybar)


class Menu(unittest.TestCase):
    def open(self, desktop, host, item):
        """Opens the menu by a click on the item and returns its left, top, right and bottom on the screen."""
        x, y, width, height = await_legible(host, item)
        below = host.area[1] + host.area[3]
        before = desktop.screenshot().crop(0, below, desktop.width, desktop.height)
        desktop.click(x + width // 2, y + height // 2, host.menu_button)

        def menu():
            changed = desktop.screenshot().crop(0, below, desktop.width, desktop.height).difference(before)
            return changed and changed[3] - changed[1] > 100 and changed
        left, top, right, bottom = wait_until(menu, f"the menu of {host.name}")
        return left, below + top, right, below + bottom

    def works(self, kind):
        with Desktop(panel=False) as desktop, kind(desktop) as host:
            timer = Timer(desktop, settings=AFTER_FIRST_RUN)
            item = timer.item()
            if host.takes_keys:
                self.open(desktop, host, item)
                desktop.press_key("Down", "Down", "Down", "Return")
                timer.await_setting("Mute", "true")
            _, _, right, bottom = self.open(desktop, host, item)
            desktop.click(right - 100, bottom - 15)
            timer.expect_end(self)

    def test_on_xfce(self):
        self.works(Xfce)

    def test_on_lxqt(self):
        self.works(Lxqt)

    def test_on_mate(self):
        self.works(Mate)

    def test_on_waybar(self):
        self.works(Waybar)

    def test_a_click_that_opens_no_menu_opens_the_window(self):
        with Desktop(panel=False) as desktop, Lxqt(desktop) as host:
            timer = Timer(desktop)
            x, y, width, height = await_legible(host, timer.item())
            desktop.click(x + width // 2, y + height // 2)
            self.assertIn("Restart timer", timer.window().texts())
            timer.quit(self)


class Label(unittest.TestCase):
    """Where the panel writes the text itself."""

    def test_on_ayatana(self):
        for dark in (False, True):
            with self.subTest(dark=dark), Desktop(panel=False, dark=dark) as desktop, \
                    Ayatana(desktop, dark) as host:
                timer = Timer(desktop, settings=QUIET | {"TimerInterval": "1500.0"})
                item = timer.item()
                wait_until(lambda: host.legible_label("25m"), "the label beside the icon")
                self.assertIsNone(host.legible_label("24m"))
                timer.store(QUIET | {"TimerInterval": "1.0"})
                item.pick("Restart timer")
                timer.await_description("Break due for")
                wait_until(lambda: host.shows_icon("MarvelodeGrey"), "the grey icon")
                wait_until(lambda: host.legible_label(item.properties["XAyatanaLabel"]), "the label when due")
                timer.quit(self)


class Changes(unittest.TestCase):
    def test_every_panel_draws_it_anew_after_a_restart(self):
        for kind in (Xfce, Lxqt, Mate):
            with self.subTest(kind.name), Desktop(panel=False) as desktop, kind(desktop) as host:
                timer = Timer(desktop)
                await_legible(host, timer.item())
                host.stop()
                host.start()
                await_legible(host, timer.item())
                timer.quit(self)

    def follows(self, *kinds):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop)
            for kind in kinds:
                with kind(desktop) as host:
                    item = timer.item()
                    if kind is Ayatana:
                        wait_until(lambda: host.legible_label(item.properties["XAyatanaLabel"]), "the label")
                    else:
                        await_legible(host, item)
                    self.assertEqual("XAyatanaLabel" in item.properties, kind is Ayatana)
                    if kind is kinds[-1]:
                        timer.quit(self)

    def test_from_xfce_to_mate_to_lxqt(self):
        self.follows(Xfce, Mate, Lxqt)

    def test_from_ayatana_to_waybar(self):
        self.follows(Ayatana, Waybar)


class DoubleDensity(unittest.TestCase):
    def shows(self, kind, size):
        with Desktop(panel=False) as desktop:
            host = kind(desktop)
            host.environment = {**host.environment, "GDK_SCALE": "2"}
            host.size, host.area = size, (0, 0, desktop.width, 2 * 30)
            with host:
                timer = Timer(desktop)
                await_legible(host, timer.item())
                timer.quit(self)

    def test_on_xfce(self):
        self.shows(Xfce, 44)

    def test_on_mate(self):
        self.shows(Mate, 48)


class Words(unittest.TestCase):
    """What tooltips and screen readers say."""

    def test_the_time_left_and_the_time_since(self):
        with Desktop() as desktop:
            timer = Timer(desktop, settings=QUIET | {"TimerInterval": "7200.0"})
            item = timer.item()

            def is_said(words):
                now = item.properties
                return now["IconAccessibleDesc"] == words and now["ToolTip"][2:] == (words, "Marvelode Timer")

            def say(words):
                wait_until(lambda: is_said(words), f"“{words}” in both places")
            say("Break in more than 1 hour")
            for interval, words in (("3540.0", "Break in 59 minutes"), ("50.0", "Break in 1 minute")):
                timer.store(QUIET | {"TimerInterval": interval})
                item.pick("Restart timer")
                say(words)
            timer.store(QUIET | {"TimerInterval": "1.0"})
            item.pick("Restart timer")
            say("Break due for 1 second")
            say("Break due for 2 seconds")
            timer.quit(self)

    def test_they_reach_screen_readers_through_a_panel(self):
        with Desktop(panel=False) as desktop:
            host = Lxqt(desktop)
            host.environment = {**host.environment, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
            with host:
                timer = Timer(desktop, settings=QUIET | {"TimerInterval": "66.0"})

                def is_said(words):
                    return any(each.description == words for window in desktop.windows() for each in window.walk()
                               if each.role == "push button")
                for words in "Break in 2 minutes", "Break in 1 minute":
                    wait_until(lambda: is_said(words), f"“{words}”")
                timer.quit(self)

    def test_they_are_true_also_while_the_countdown_is_off(self):
        with Desktop() as desktop:
            timer = Timer(desktop, settings=QUIET | {"ShowCountdown": "false", "TimerInterval": "66.0"})
            timer.await_description("Break in 2 minutes")
            timer.await_description("Break in 1 minute")
            self.assertEqual(timer.get("Text"), "")

            # Switched on, and off again while it runs.
            timer.store(QUIET | {"TimerInterval": "3.0"})
            timer.item().pick("Restart timer")
            wait_until(lambda: timer.get("Text") == "2", "the countdown")
            timer.store(QUIET | {"ShowCountdown": "false"})
            timer.await_description("Break due for 1 second")
            timer.await_description("Break due for 2 seconds")
            self.assertNotIn("+", timer.get("Text"))
            timer.quit(self)


if __name__ == "__main__":
    unittest.main()
