#!/usr/bin/python3
"""The reminder's window is always seen, and swallows no keys.

Run as program_test.py is; what is preloaded for two monitors is named as TWO_MONITORS.
"""

import os
import time
import unittest

from driving.desktop import PANEL_HEIGHT, Desktop
from driving.other import COLOUR, Other, is_seen
from driving.timer import QUIET, Timer
from driving.waiting import wait_until

KEYLESS_SECONDS = 0.5


class Popup(unittest.TestCase):
    def start(self, desktop, interval=3):
        timer = Timer(desktop, "-TimerInterval", str(interval), settings=QUIET)
        return timer

    def snooze_and_quit(self, timer, popup):
        popup.find("push button", "Snooze").press()
        timer.await_no_window()
        timer.quit(self)

    def test_it_comes_up_on_the_monitor_with_the_pointer(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "2", settings=QUIET,
                          LD_PRELOAD=os.environ["TWO_MONITORS"])
            half = desktop.width // 2
            for left in half, 0:
                desktop.point_at(left + 50, desktop.height - 50)
                popup = timer.window(role="alert")

                def is_in_the_middle():
                    x, y, width, height = popup.extents
                    return (abs(x + width / 2 - (left + half / 2)) <= 2 and
                            abs(y + height / 2 - desktop.height / 2) <= PANEL_HEIGHT)
                wait_until(is_in_the_middle, "the popup in the middle of the monitor")
                if left > 0:
                    popup.find("push button", "Restart").press()
                    timer.await_no_window()
            self.snooze_and_quit(timer, popup)

    def test_it_stands_above_a_full_screen_window_and_gives_the_keyboard_back(self):
        with Desktop() as desktop:
            timer = self.start(desktop, 6)
            other = Other(desktop, "fullscreen")
            wait_until(lambda: desktop.screenshot().pixel(5, 5)[:3] == COLOUR, "the full screen")
            popup = timer.window()
            wait_until(lambda: is_seen(desktop, popup), "the popup above the full screen")
            wait_until(lambda: popup.has("active"), "the popup to have the keyboard")
            popup.find("push button", "Snooze").press()
            timer.await_no_window()
            other.await_keyboard()
            desktop.type("on I go")
            wait_until(lambda: other.text() == "on I go", "what was typed to arrive")
            timer.command("Quit")
            timer.expect_end(self)

    def test_it_is_on_every_workspace(self):
        with Desktop() as desktop:
            timer = self.start(desktop)
            popup = timer.window()
            for workspace in "1", "2", "0":
                desktop.switch_workspace(workspace)
                wait_until(lambda: is_seen(desktop, popup), f"the popup on workspace {workspace}")
            self.snooze_and_quit(timer, popup)

    def test_it_takes_no_key_in_its_first_half_second(self):
        with Desktop() as desktop:
            other = Other(desktop)
            timer = self.start(desktop, 2)
            for _ in range(10):
                begin = [time.monotonic()]

                def process():
                    """The popup's, as soon as it has the keyboard."""
                    active = desktop.active_window()
                    if not active or active[1] == other.program.pid:
                        begin[0] = time.monotonic()
                        return None
                    return active[1]
                popup = wait_until(process, "the popup to have the keyboard")
                desktop.press_key("Return")
                if time.monotonic() - begin[0] < KEYLESS_SECONDS:
                    wait_until(lambda: time.monotonic() - begin[0] > 2 * KEYLESS_SECONDS, "the key to be heeded")
                    self.assertEqual(timer.program.helpers(), [popup])
                    self.assertEqual(timer.get("State"), "Reminding")
                    desktop.press_key("Return")
                    timer.await_state("Timing")
                    timer.quit(self)
                    return
                desktop.press_key("Return")
                timer.await_state("Timing")
                other.await_keyboard()
            self.fail("the machine was never quick enough for this test")

    def test_the_text_goes_on_counting_while_it_waits(self):
        with Desktop() as desktop:
            timer = self.start(desktop)
            popup = timer.window()
            for seconds in 2, 3, 4:
                timer.await_description(f"Break due for {seconds} seconds")
                self.assertTrue(popup.has("showing"))
                timer.await_in_panel()
            self.snooze_and_quit(timer, popup)


if __name__ == "__main__":
    unittest.main()
