"""What the tests of the real windows share: a program that has them shown, ways to find and use them, a window of
another program, and the tests that hold on every desktop.

Each script is started as SCRIPT SHOWER WINDOW_PROGRAM RESOURCES [TEST...].
"""

import signal
import socket
import subprocess
import sys
import time
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "desktop"))

from driving.waiting import wait_until  # noqa: E402 (found through the line above)

ALERT = "('alert', <(uint32 7, b'', 0, @ms nothing, 'Message', '', ['OK'], @m(sb) nothing)>)"
PANEL = "('panel', <(uint32 7, 'Title', true, false, false, <(('text', <[('Text', @ms nothing)]>), @a(sv) [])>)>)"
KEYLESS_SECONDS = 0.5
SHOW = sys.argv[1:4]

OTHER_WINDOW = """
import sys
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk
window = Gtk.Window(title="Other")
window.connect("key-press-event", lambda _, event: print(event.string, end="", flush=True))
getattr(window, sys.argv[1])()
window.show()
Gtk.main()
"""


class ShownWindows(unittest.TestCase):
    """`desktop` is where they are shown."""

    environment = {}  # of the programs on the desktop, beside the desktop's own

    def start(self, *command, **environment):
        """Starts a program that ends with the test."""
        program = self.desktop.start(*command, **self.environment, **environment)
        self.addCleanup(self.end, program)
        return program

    def start_other(self, size):
        """Starts a program whose window says what is typed into it; `size` is a method of Gtk.Window."""
        self.other = self.start("/usr/bin/python3", "-c", OTHER_WINDOW, size)
        wait_until(lambda: any(each.name == "Other" and each.has("active") for each in self.desktop.windows()),
                   "the other window to have the keyboard")

    def show(self, *windows, **environment):
        """Shows the windows one after the other, and waits for the first to have the keyboard."""
        self.shower = self.start(*SHOW, *windows, **environment)
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
        """Waits for that many windows; returns the one that has the keyboard and took its time to listen to it."""
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

    def expect_typed(self, text):
        """Waits until exactly that was typed into the other window."""
        wait_until(lambda: self.other.output() == text, f"“{text}”, not “{self.other.output()}”, in the other window")

    def type_through(self, window):
        """Shows a window under the hands of a user who is typing on and on."""
        for _ in range(10):
            self.shower = self.start(*SHOW, window)
            last = begin = time.monotonic()
            longest_pause = 0
            while last - begin < 2:
                self.press_keys("space", "Return")
                now = time.monotonic()
                longest_pause, last = max(longest_pause, now - last), now
            was_quick = longest_pause < KEYLESS_SECONDS - 0.1
            if was_quick and (self.windows() or self.lines()):
                return
            self.end(self.shower)
        self.fail("the machine was never quick enough for this test")


class OnEveryDesktop:
    """Tests of `ShownWindows`."""

    def test_windows_are_told_of_when_they_are_on_the_screen(self):
        for request in ALERT, PANEL:
            ours, its = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
            program = subprocess.Popen(SHOW[1], env={**self.desktop.environment, **self.environment}, stdin=its)
            its.close()
            with self.subTest(request), program, ours:
                ours.settimeout(10)
                ours.send(request.encode())
                self.assertEqual(ours.recv(1000), b"('shown', uint32 7, uint32 0, @mv nothing)")

    def test_popup_takes_no_key_of_somebody_who_is_typing(self):
        self.type_through("popup")
        self.window_is_up()
        self.assertEqual(self.lines(), [])
        self.press_keys("Return")
        self.expect_lines("answered 1000")

    def test_settings_offer_the_sounds_to_the_keyboard(self):
        self.show("settings")
        self.press_keys("alt+s", "space")
        menu = self.find("menu", None)
        wait_until(lambda: menu.has("showing"), "the picker's menu")
        self.press_keys("Down", "Down", "Return")
        self.expect_lines("sound = 2", "plays")
        self.press_keys("Return")
        self.expect_lines("sound = 2", "plays", "save", "window closes")


def main():
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
