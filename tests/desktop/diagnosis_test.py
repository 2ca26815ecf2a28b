#!/usr/bin/python3
"""What the program tells for a report of a fault, on a desktop where it runs and where it does not.

Run as program_test.py is.
"""

import unittest

from driving.desktop import Desktop
from driving.timer import PROGRAM, QUIET, Timer
from driving.waiting import wait_until

XFCE_PANEL = "^(panel-.*|wrapper-2.0), which gets the text in a picture$"  # from 4.20 on the second


class Diagnosis(unittest.TestCase):
    def diagnose(self, desktop):
        """What is said of each subject; nothing private is among it."""
        program = desktop.start(PROGRAM, "--diagnose")
        self.assertEqual(program.status(), 0, program.output())
        for private in (desktop.environment["HOME"], str(desktop.folder), "unix:"):
            self.assertNotIn(private, program.output())
        return dict(line.split(": ", 1) for line in program.output().splitlines())

    def test_it_works_without_a_timer(self):
        with Desktop() as desktop:
            said = self.diagnose(desktop)
            self.assertEqual(said["Timer"], "does not run")
            self.assertRegex(said["Panel"], XFCE_PANEL)
            self.assertEqual(said["System bus"], "answers, with a login manager")
            self.assertEqual(said["Windows"], "their program is there")
            self.assertIn("Version=1.0.0", said["Program"])
            self.assertIn(", X display", said["Desktop"])

    def test_it_asks_the_timer_that_runs(self):
        with Desktop() as desktop:
            timer = Timer(desktop, settings=QUIET)
            timer.await_in_panel()
            timer.settings_file.write_text("[Settings\n")
            damaged = timer.settings_file.with_name("settings.damaged")
            wait_until(damaged.exists, "the damaged settings to be kept")
            said = self.diagnose(desktop)
            self.assertEqual(said["Timer version"], "1.0.0")
            self.assertRegex(said["Timer panel"], XFCE_PANEL)
            self.assertEqual(said["Timer display"], "X")
            self.assertEqual(said["Timer waking"], "told by clocks and system bus")
            self.assertEqual(said["Timer settings"], "no problem", "it has written them anew")
            self.assertIn("s ago: The settings are damaged: ", said["Timer problem"])
            self.assertIn("'Muted': <true>", said["Timer properties"])
            desktop.stop_panel()
            timer.window()  # the small one
            self.assertEqual(self.diagnose(desktop)["Timer panel"], "none, so a small window stands in")
            timer.command("Quit")
            timer.expect_end(self)

    def test_it_is_answered_where_there_is_no_bus(self):
        with Desktop() as desktop:
            desktop.stop_system_bus()
            desktop.stop_session_bus()
            said = self.diagnose(desktop)
            self.assertIn("Could not connect", said["Session bus"])
            self.assertNotIn("Panel", said)


if __name__ == "__main__":
    unittest.main()
