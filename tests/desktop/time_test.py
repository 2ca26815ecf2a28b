#!/usr/bin/python3
"""What the user sees when the clock is set, the machine sleeps or the program is stopped: no reminder is lost.

Run as program_test.py is.
"""

import os
import signal
import time
import unittest

from driving.clocks import Clocks
from driving.desktop import Desktop
from driving.timer import QUIET, Timer
from driving.waiting import wait_until

FAKE_TIME = "/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1"


class Sleep(unittest.TestCase):
    def test_logind_is_heard_again_when_it_is_back(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "1200", settings=QUIET)
            timer.await_in_panel()
            desktop.stop_logind()
            timer.command("ToggleMute")
            timer.await_setting("Mute", "false")
            desktop.start_logind()
            wait_until(lambda: timer.get("RemainingSeconds") < 1198, "some time to pass")
            desktop.wake()
            wait_until(lambda: timer.get("RemainingSeconds") >= 1198, "a new interval")
            timer.quit(self)


    def test_a_sleep_of_which_nobody_tells_ends_with_a_new_interval(self):
        with Desktop() as desktop:
            desktop.stop_system_bus()
            clocks = Clocks(desktop.folder / "plan")
            timer = Timer(desktop, "-TimerInterval", "1200", settings=QUIET, **clocks.environment)
            timer.await_in_panel()
            clocks.pass_time(600)
            wait_until(lambda: 0 < timer.get("RemainingSeconds") < 600, "some time to pass")
            clocks.sleep(8 * 3600)
            wait_until(lambda: timer.get("RemainingSeconds") >= 1198, "a new interval", 3)
            timer.await_description("Break in 20 minutes")
            timer.quit(self)

    def test_a_sleep_that_is_told_of_late_is_one_wake(self):
        with Desktop() as desktop:
            clocks = Clocks(desktop.folder / "plan")
            timer = Timer(desktop, "-TimerInterval", "1200", settings=QUIET, **clocks.environment)
            timer.await_in_panel()
            clocks.pass_time(600)
            clocks.sleep(8 * 3600)
            wait_until(lambda: timer.get("RemainingSeconds") >= 1198, "a new interval", 3)
            clocks.pass_time(30)
            desktop.wake()
            wait_until(lambda: timer.get("RemainingSeconds") < 1168, "the interval to go on")
            timer.quit(self)


class Clock(unittest.TestCase):
    """The wall clock is set; the monotonic clock goes on."""

    def start(self, desktop, *arguments, settings=QUIET):
        self.offset = desktop.folder / "offset"
        self.set_clock(0)
        return Timer(desktop, *arguments, settings=settings, LD_PRELOAD=FAKE_TIME, DONT_FAKE_MONOTONIC="1",
                     FAKETIME_DONT_FAKE_MONOTONIC="1", FAKETIME_TIMESTAMP_FILE=str(self.offset), FAKETIME_NO_CACHE="1",
                     NO_FAKE_STAT="1")

    def set_clock(self, hours):
        """Sets the program's clock that much ahead of the true time."""
        new = self.offset.with_suffix(".new")
        new.write_text(f"{hours * 3600:+d}\n")
        new.replace(self.offset)

    def test_set_by_hours_it_shortens_and_lengthens_nothing(self):
        with Desktop() as desktop:
            timer = self.start(desktop, "-TimerInterval", "8")
            timer.await_state("Timing")
            self.set_clock(3)
            wait_until(lambda: timer.get("Text").startswith("+>"), "the text that follows the clock")
            self.assertIn(timer.item().description[:len("Break in ")], ("Break in ", "Break now"))
            self.assertGreaterEqual(timer.get("RemainingSeconds"), 0)
            self.assertEqual(timer.get("State"), "Timing")
            self.set_clock(-3)
            wait_until(lambda: timer.get("Text").startswith(">"), "the text that follows the clock")
            self.assertLess(timer.get("RemainingSeconds"), 9)
            popup = timer.window()
            self.assertLess(time.monotonic() - timer.begin, 12)
            self.assertGreaterEqual(time.monotonic() - timer.begin, 8)
            self.set_clock(0)
            timer.await_description("Break due for")

            # The next interval is as long as it should be, whatever the clock does.
            popup.find("push button", "Restart").press()
            timer.await_no_window()
            timer.await_description("Break in")
            begin = time.monotonic()
            self.set_clock(-5)
            timer.window(seconds=15).find("push button", "Snooze").press()
            self.assertGreaterEqual(time.monotonic() - begin, 6)
            self.assertEqual(timer.get("State"), "Reminding")
            timer.await_no_window()
            timer.await_description("Break due for")  # although the clock says that it lies ahead
            self.assertLess(timer.get("RemainingSeconds"), 0)
            timer.quit(self)
            self.assertEqual(timer.settings(), QUIET)

    def test_a_day_asleep_ends_with_a_new_interval(self):
        with Desktop() as desktop:
            timer = self.start(desktop, "-TimerInterval", "1200")
            timer.await_in_panel()
            wait_until(lambda: timer.get("RemainingSeconds") < 1198, "some time to pass")
            self.sleep_for_a_day(desktop, timer)
            timer.await_description("Break in 20 minutes")
            wait_until(lambda: timer.get("RemainingSeconds") >= 1198, "a new interval")
            timer.quit(self)

    def test_a_day_asleep_with_the_popup_up_ends_with_the_popup_and_a_new_interval(self):
        with Desktop() as desktop:
            timer = self.start(desktop, "-TimerInterval", "3")
            popup = timer.window()
            self.sleep_for_a_day(desktop, timer)
            timer.await_state("Timing")
            popup.find("push button", "Snooze").press()
            timer.await_no_window()
            timer.window().find("push button", "Snooze").press()
            timer.await_no_window()
            timer.quit(self)

    def sleep_for_a_day(self, desktop, timer):
        desktop.fall_asleep()
        timer.program.send(signal.SIGSTOP)
        self.set_clock(24)
        timer.program.send(signal.SIGCONT)
        desktop.wake()

    def test_a_day_asleep_of_which_nobody_tells_is_made_up_for(self):
        with Desktop() as desktop:
            desktop.stop_logind()
            timer = self.start(desktop, "-TimerInterval", "6")
            timer.await_in_panel()
            self.set_clock(24)
            timer.await_description("Break in")
            timer.window().find("push button", "Restart").press()
            timer.await_no_window()
            timer.await_description("Break in")
            timer.quit(self)


class Stopped(unittest.TestCase):
    def test_a_reminder_that_was_missed_comes_when_the_program_goes_on(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "3", settings=QUIET)
            timer.await_in_panel()
            timer.program.send(signal.SIGSTOP)
            wait_until(lambda: time.monotonic() - timer.begin > 5, "the interval to pass")
            self.assertEqual(timer.program.helpers(), [])
            timer.program.send(signal.SIGCONT)
            popup = timer.window(seconds=3)
            timer.await_description("Break due for")

            # The same with the popup's own program.
            for helper in timer.program.helpers():
                os.kill(helper, signal.SIGSTOP)
                os.kill(helper, signal.SIGCONT)
            popup.find("push button", "Snooze").press()
            timer.await_no_window()
            timer.quit(self)


if __name__ == "__main__":
    unittest.main()
