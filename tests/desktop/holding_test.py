#!/usr/bin/python3
"""Reminders held back by the real services of desktops, and by a real full-screen window.

Run as program_test.py is. The services are in the packages that packaging/dependencies lists.
"""

import signal
import unittest
from pathlib import Path

from driving.clocks import Clocks
from driving.desktop import Desktop
from driving.other import Other
from driving.sway import Sway
from driving.timer import QUIET, Timer
from driving.waiting import wait_until

NOTIFICATIONS = "org.freedesktop.Notifications"
XFCE = next(Path("/usr/lib").glob("*/xfce4/notifyd/xfce4-notifyd"), Path("xfce4-notifyd"))
INTERVAL = 1200
SNOOZE = 60


class Held(unittest.TestCase):
    """The timer on a desktop, one step before its reminder."""

    def setUp(self):
        self.desktop = self.enterContext(Desktop())
        self.clocks = Clocks(self.desktop.folder / "plan")

    def start(self, hold_while, **environment):
        file = self.desktop.config / "marvelode-timer/settings"
        file.parent.mkdir(mode=0o700)
        settings = QUIET | {"TimerInterval": f"{INTERVAL}.0"}
        file.write_text("[Settings]\n" + "".join(f"{key}={value}\n" for key, value in settings.items()) +
                        f"[Desktop]\nHoldWhile={hold_while}\n")
        self.timer = Timer(self.desktop, **self.clocks.environment, **environment)
        self.item = self.timer.item()
        self.timer.await_description("Break in 20 minutes")

    def expect_hold(self, reason):
        """An interval passes, and the reminder is held back."""
        self.clocks.pass_time(INTERVAL)
        wait_until(lambda: self.timer.get("HeldReason") == reason, f"a hold by: {reason}")
        self.timer.await_description("Break due for ")
        self.assertTrue(self.item.description.endswith(f" (held: {reason})"), self.item.description)
        self.assertEqual(self.timer.program.helpers(), [])

    def expect_reminder(self):
        """A snooze passes, and the window is there."""
        self.clocks.pass_time(SNOOZE)
        self.timer.window().find("push button", "Restart").press()
        wait_until(lambda: not self.timer.get("Held"), "the end of the hold")
        self.timer.await_no_window()
        self.timer.quit(self)

    def start_service(self, *command, **environment):
        service = self.desktop.start(*command, **environment)
        wait_until(lambda: self.desktop.bus.has_owner(NOTIFICATIONS), command[0])
        return service

    def run_command(self, *command):
        program = self.desktop.start(*command)
        self.assertEqual(program.status(), 0, program.output())

    def test_by_xfces_switch(self):
        self.start_service(str(XFCE))
        switch = "xfconf-query", "--channel", "xfce4-notifyd", "--property", "/do-not-disturb"
        self.run_command(*switch, "--create", "--type", "bool", "--set", "true")
        self.start("do-not-disturb")
        self.expect_hold("do not disturb")
        self.run_command(*switch, "--set", "false")
        self.expect_reminder()

    def test_by_a_paused_dunst(self):
        self.start_service("dunst")
        self.run_command("dunstctl", "set-paused", "true")
        self.start("do-not-disturb")
        self.expect_hold("do not disturb")
        self.run_command("dunstctl", "set-paused", "false")
        self.expect_reminder()

    def test_by_makos_mode(self):
        with Sway(self.desktop) as sway:
            self.start_service("mako", **sway.environment)
            self.set_modes("default", "do-not-disturb")
            self.start("do-not-disturb")
            self.expect_hold("do not disturb")
            self.set_modes("default")
            self.expect_reminder()

    def set_modes(self, *modes):
        self.desktop.bus.call(NOTIFICATIONS, "/fr/emersion/Mako", "fr.emersion.Mako", "SetModes", "(as)", list(modes))

    def test_by_gnomes_switch(self):
        folder = self.desktop.config / "glib-2.0/settings"
        folder.mkdir(parents=True)
        (folder / "keyfile").write_text("[org/gnome/desktop/notifications]\nshow-banners=false\n")
        self.start("do-not-disturb", GSETTINGS_BACKEND="keyfile", XDG_CURRENT_DESKTOP="ubuntu:GNOME")
        self.expect_hold("do not disturb")
        (folder / "keyfile").unlink()
        self.expect_reminder()

    def test_not_by_gnomes_switch_on_another_desktop(self):
        folder = self.desktop.config / "glib-2.0/settings"
        folder.mkdir(parents=True)
        (folder / "keyfile").write_text("[org/gnome/desktop/notifications]\nshow-banners=false\n")
        self.start("do-not-disturb", GSETTINGS_BACKEND="keyfile")
        self.clocks.pass_time(INTERVAL - SNOOZE)
        self.expect_reminder()

    def test_by_a_full_screen_window(self):
        other = Other(self.desktop, "fullscreen")
        self.start("full-screen")
        self.expect_hold("a full-screen window")
        other.program.process.kill()
        self.expect_reminder()

    def test_not_by_a_window_of_another_size(self):
        Other(self.desktop)
        self.start("full-screen")
        self.clocks.pass_time(INTERVAL - SNOOZE)
        self.expect_reminder()

    def test_full_screen_is_unknown_on_wayland(self):
        with Sway(self.desktop) as sway:
            self.start("full-screen", **sway.environment)
            self.clocks.pass_time(INTERVAL)
            wait_until(lambda: self.timer.program.helpers(), "the reminder")
            wait_until(lambda: "this session cannot tell of \"full-screen\"" in self.timer.program.output(),
                       "the reason")
            self.timer.program.send(signal.SIGTERM)
            self.timer.expect_end(self)


if __name__ == "__main__":
    unittest.main()
