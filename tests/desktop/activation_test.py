#!/usr/bin/python3
"""Windows that the user asked for come to the front on Wayland, where a program has to show the compositor the token
that the user's click was given."""

import re
import unittest

from gi.repository import GLib

from driving.desktop import Desktop
from driving.notifications import NotificationArea
from driving.sway import Sway
from driving.timer import AFTER_FIRST_RUN, NAME, PATH, PROGRAM, Timer
from driving.waiting import wait_until

APPLICATION = "org.freedesktop.Application"


class Activation(unittest.TestCase):
    def setUp(self):
        self.desktop = self.enterContext(Desktop(panel=False))
        self.compositor = self.enterContext(Sway(self.desktop))
        self.notifications = NotificationArea(self.desktop)
        self.timer = Timer(self.desktop, settings=AFTER_FIRST_RUN, WAYLAND_DEBUG="1",
                           XDG_ACTIVATION_TOKEN="used-at-start", **self.compositor.environment)
        self.item = self.timer.item_without_panel()

    def tokens(self):
        """The tokens that were shown to the compositor so far, but for those that come from itself."""
        return re.findall(r'-> xdg_activation_v1[@#]\d+\.activate\("([a-z-]+)"', self.timer.program.output())

    def expect_tokens(self, *tokens):
        wait_until(lambda: self.tokens() == list(tokens), f"{tokens}, not {self.tokens()}")

    def close_window(self, button):
        self.timer.window().find("push button", button).press()
        self.timer.await_no_window()

    def test_the_panel_hands_one_on_before_a_pick(self):
        self.item.provide_activation_token("from-the-panel")
        self.item.pick("About Marvelode Timer")
        self.expect_tokens("from-the-panel")
        self.close_window("OK")
        self.item.pick("Settings")
        self.close_window("OK")
        self.expect_tokens("from-the-panel")

    def test_the_desktop_sends_one_with_an_action(self):
        self.desktop.bus.call(NAME, PATH, APPLICATION, "ActivateAction", "(sava{sv})", "show-about", [],
                              {"activation-token": GLib.Variant("s", "with-the-action")})
        self.expect_tokens("with-the-action")

    def test_the_second_start_leaves_its_own_to_the_first(self):
        second = self.desktop.start(PROGRAM, XDG_ACTIVATION_TOKEN="of-the-second",
                                    **self.compositor.environment)
        self.assertEqual(second.status(), 0)
        self.expect_tokens("of-the-second")

    def test_the_notification_sends_one_before_an_action(self):
        message = self.notifications.await_message()
        self.close_window("Hide this window")
        self.notifications.hand_out(message, "from-the-message")
        self.notifications.choose(message, "default")
        self.expect_tokens("from-the-message")


if __name__ == "__main__":
    unittest.main()
