#!/usr/bin/python3
"""The program under the restrictions of its systemd unit: windows and sounds lack nothing.

Run as program_test.py is.
"""

import subprocess
import unittest
from pathlib import Path

from driving.clocks import Clocks
from driving.desktop import Desktop
from driving.timer import PROGRAM, QUIET, Timer
from driving.waiting import wait_until

PROJECT = Path(__file__).resolve().parents[2]
UNIT = str(PROJECT / "packaging/linux/systemd/marvelode-timer.service.in")
CONFINED = str(Path(__file__).with_name("driving") / "confined")


class Unit(unittest.TestCase):
    def test_the_filter_works(self):
        script = "import socket; socket.socket(socket.AF_UNIX); socket.socket(socket.AF_INET)"
        result = subprocess.run([CONFINED, UNIT, "/usr/bin/python3", "-c", script], capture_output=True, text=True)
        self.assertIn("Address family not supported", result.stderr)

    def test_windows_and_sounds_lack_nothing(self):
        with Desktop() as desktop:
            server = desktop.folder / "server"
            script = desktop.folder / "server.pa"
            script.write_text("load-module module-null-sink norewinds=1\n"
                              f"load-module module-native-protocol-unix socket={server} auth-anonymous=1\n")
            sounds = desktop.start("pulseaudio", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                                   "--log-level=info", "-n", "-F", str(script))
            wait_until(server.exists, "the sound server")
            clocks = Clocks(desktop.folder / "plan")
            timer = Timer(desktop, "-TimerInterval", "60", run_by=[CONFINED, UNIT], PULSE_SERVER=f"unix:{server}",
                          settings=QUIET | {"Mute": "false", "AlertSound": "'Sonar'"}, **clocks.environment)
            timer.await_in_panel()
            clocks.pass_time(60)
            timer.window().find("push button", "Snooze").press()
            timer.await_no_window()
            timer.command("ShowSettings")
            timer.window().find("push button", "OK").press()
            timer.await_no_window()
            wait_until(lambda: "Freeing input" in sounds.output(), "a sound to be played to its end")
            self.assertEqual(timer.program.output(), "")
            timer.quit(self)


if __name__ == "__main__":
    unittest.main()
