"""What the tests of the real windows share: a program that lets them be shown, and ways to find and use them."""

import signal
import time
import unittest

from waiting import wait_until

KEYLESS_SECONDS = 0.5


class ShownWindows(unittest.TestCase):
    """`desktop` is where they are shown, `command` the program that asks for them and the first of its arguments."""

    environment = {}  # of the programs on the desktop, beside the desktop's own

    def start(self, *command):
        """Starts a program that ends with the test."""
        program = self.desktop.start(*command, **self.environment)
        self.addCleanup(self.end, program)
        return program

    def show(self, *windows):
        """Lets the windows be shown one after the other, and waits for the first to have the keyboard."""
        self.shower = self.start(*self.command, *windows)
        self.window_is_up()

    def end(self, program):
        """Ends a program that was started, and waits for its windows to go."""
        if program.is_running():
            program.send(signal.SIGTERM)
        program.status()
        wait_until(lambda: not self.windows(), "the windows to go")

    def windows(self):
        return [each for each in self.desktop.windows() if each.name == "Marvelode Timer"]

    def window_is_up(self, count=1):
        """Waits for that many windows; gives the one that has the keyboard and took its time to listen to it."""
        def active():
            windows = self.windows()
            return len(windows) == count and next((each for each in windows if each.has("active")), None)
        self.window = wait_until(active, f"window {count}")
        time.sleep(KEYLESS_SECONDS)
        return self.window

    def find(self, role, name):
        found = self.window.find(role, name)
        self.assertTrue(found, f"no {role} “{name}” in\n{self.window.outline()}")
        return found

    def press_keys(self, *keys):
        for key in keys:
            self.desktop.press_key(key)

    def lines(self):
        return self.shower.output().splitlines()

    def expect_lines(self, *lines):
        """Waits until exactly these lines were printed."""
        try:
            wait_until(lambda: self.lines() == list(lines), "the lines", 5)
        except AssertionError:
            self.assertEqual(self.lines(), list(lines))
