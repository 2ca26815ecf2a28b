#!/usr/bin/python3
"""What the user sees when a program beside the timer ends or is silent: no setting is lost, and the cycle goes on.

Run as program_test.py is.
"""

import os
import signal
import socket
import time
import unittest

from driving.desktop import Desktop
from driving.notifications import NotificationArea
from driving.timer import AFTER_FIRST_RUN, QUIET, Timer
from driving.waiting import wait_until


def kill(*pids):
    for pid in pids:
        os.kill(pid, signal.SIGKILL)


class Helpers(unittest.TestCase):
    """The programs that show windows, killed."""

    def test_the_popup_counts_as_snoozed_and_the_cycle_goes_on(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "2", settings=QUIET)
            timer.window()
            kill(*timer.program.helpers())
            timer.await_no_window()
            self.assertEqual(timer.get("State"), "Reminding")
            timer.await_description("Break due for")
            wait_until(lambda: timer.item().entry("Restart timer").is_enabled, "the menu to be usable")
            timer.item().pick("Restart timer")
            timer.window().find("push button", "Restart").press()
            timer.await_state("Timing")
            timer.quit(self)

    def test_the_settings_close_unsaved_and_open_again(self):
        with Desktop() as desktop:
            timer = Timer(desktop, settings=QUIET)
            timer.item().pick("Settings")
            timer.window().find("text", "Interval in minutes").type("25")
            kill(*timer.program.helpers())
            timer.await_no_window()
            self.assertNotIn("TimerInterval", timer.settings())
            timer.item().pick("Settings")
            settings = timer.window()
            settings.find("text", "Interval in minutes").type("30")
            settings.find("push button", "OK").press()
            timer.await_setting("TimerInterval", "1800.0")
            timer.await_description("Break in 30 minutes")
            timer.quit(self)

    def test_the_small_window_comes_back_when_it_is_asked_for(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, settings=QUIET)
            timer.window()
            kill(*timer.program.helpers())
            timer.await_no_window()
            self.assertEqual(timer.start_again().status(), 0)
            self.assertIn("Break in 10 minutes", timer.window().texts())
            timer.command("Quit")
            timer.expect_end(self)


class Panel(unittest.TestCase):
    def test_without_it_the_small_window_stands_in(self):
        with Desktop() as desktop:
            notifications = NotificationArea(desktop)
            timer = Timer(desktop, "-TimerInterval", "1200", settings=QUIET)
            timer.await_in_panel()
            desktop.stop_panel()
            notifications.await_message()
            small = timer.window()
            small.find("toggle button", "Mute").press()
            timer.await_setting("Mute", "false")
            desktop.start_panel()
            timer.await_in_panel()
            timer.await_no_window()
            self.assertFalse(timer.item().entry("Mute").is_checked)
            self.assertLess(timer.get("RemainingSeconds"), 1199)
            timer.quit(self)


class SessionBus(unittest.TestCase):
    def test_the_program_ends_with_it_and_leaves_nothing(self):
        for interval in "1200", "1":
            with self.subTest(interval=interval), Desktop(panel=False) as desktop:
                timer = Timer(desktop, "-TimerInterval", interval, settings=AFTER_FIRST_RUN)
                wait_until(timer.program.helpers, "a window")  # the small one, or the popup
                if interval == "1":
                    timer.await_state("Reminding")
                else:
                    timer.command("ToggleMute")
                    timer.await_setting("Mute", "true")
                before = timer.settings()
                desktop.stop_session_bus()
                timer.expect_end(self)
                self.assertEqual(timer.settings(), before)


class Display(unittest.TestCase):
    def test_reminders_wait_until_it_is_back(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, "-test", settings=QUIET)
            timer.await_state("Timing")
            desktop.stop_display()
            timer.await_state("Reminding", seconds=40)
            due = time.monotonic()
            wait_until(lambda: timer.get("RemainingSeconds") <= -7, "a reminder that nobody sees, and another")
            self.assertGreater(time.monotonic() - due, 5)
            self.assertEqual(timer.get("State"), "Reminding")
            self.assertIn("no display", timer.program.output())
            self.assertEqual(timer.settings()["PopupAlerts"], "true")
            desktop.start_display()
            wait_until(lambda: (desktop.active_window() or (0, 0))[1] in timer.program.helpers(), "the popup")

            # The display server ends a second time and comes back.
            desktop.stop_display()
            wait_until(lambda: not timer.program.helpers(), "the popup to go")
            desktop.start_display()
            wait_until(lambda: (desktop.active_window() or (0, 0))[1] in timer.program.helpers(), "the popup")
            self.press_until_timing(desktop, timer)
            timer.command("Quit")
            timer.expect_end(self)

    def press_until_timing(self, desktop, timer):
        """Presses the popup's default button; it takes no keys at first."""
        def is_timing():
            desktop.press_key("Return")
            return timer.get("State") == "Timing"
        wait_until(is_timing, "the next interval")


class SystemBus(unittest.TestCase):
    def test_its_end_goes_unnoticed(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "5", settings=QUIET)
            timer.await_in_panel()
            desktop.stop_system_bus()
            popup = timer.window()
            timer.await_description("Break due for")
            popup.find("push button", "Snooze").press()
            timer.await_no_window()
            timer.quit(self)

    def test_one_that_never_answers_delays_nothing(self):
        with Desktop() as desktop, socket.socket(socket.AF_UNIX) as silent:
            path = desktop.folder / "silent"
            silent.bind(str(path))
            silent.listen()
            timer = Timer(desktop, "-TimerInterval", "2", settings=QUIET, DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={path}")
            timer.await_in_panel()
            timer.window().find("push button", "Snooze").press()
            timer.await_no_window()
            timer.quit(self)


class Sound(unittest.TestCase):
    def test_without_a_server_the_popup_comes_all_the_same(self):
        with Desktop() as desktop:
            server, address = self.start_server(desktop)
            timer = Timer(desktop, "-TimerInterval", "3", settings=AFTER_FIRST_RUN | {"AlertSound": "'Bowl'"},
                          PULSE_SERVER=f"unix:{address}")
            popup = timer.window()
            wait_until(lambda: len(timer.program.helpers()) == 2, "the sound beside the popup")
            server.send(signal.SIGKILL)
            server.status()
            wait_until(lambda: len(timer.program.helpers()) == 1, "the sound to end")
            wait_until(lambda: "Bowl" in timer.program.output(), "a word about it")
            popup.find("push button", "Restart").press()
            timer.await_no_window()
            timer.await_state("Timing")
            timer.window().find("push button", "Snooze").press()
            timer.await_no_window()
            wait_until(lambda: timer.item().entry("Quit").is_enabled, "the menu to be usable")
            timer.quit(self)

    def start_server(self, desktop):
        folder = desktop.folder / "sound"
        folder.mkdir()
        script = folder / "server.pa"
        script.write_text("load-module module-null-sink sink_name=loudspeaker\n"
                          f"load-module module-native-protocol-unix socket={folder}/server auth-anonymous=1\n")
        server = desktop.start("pulseaudio", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "-n", "-F",
                               str(script))
        wait_until((folder / "server").exists, "the sound server")
        return server, folder / "server"


if __name__ == "__main__":
    unittest.main()
