#!/usr/bin/python3
"""What the user sees when the settings cannot be written: they hold all the same, and none that is stored is lost.

Run as program_test.py is. Disks are mounted in a name space of the test, and vanish with it.
"""

import os
import subprocess
import sys
import unittest

from driving.desktop import Desktop
from driving.timer import AFTER_FIRST_RUN, Timer
from driving.waiting import wait_until


class Disk(unittest.TestCase):
    """The folder of the settings, on a small disk of its own."""

    STORED = AFTER_FIRST_RUN | {"TimerInterval": "1200.0"}

    def store(self, folder):
        """Writes the settings of a user who has some, and returns the file."""
        file = folder / "settings"
        file.write_text("[Settings]\n" + "".join(f"{key}={value}\n" for key, value in self.STORED.items()))
        return file

    def mount(self, desktop, *options):
        """Mounts such a disk where the settings are, and returns the folder."""
        folder = desktop.config / "marvelode-timer"
        folder.mkdir(mode=0o700, exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", *options, "tmpfs", folder], check=True)
        self.addCleanup(subprocess.run, ["umount", "--lazy", folder], check=True)
        return folder

    def expect_mute_to_hold(self, timer):
        """Muting takes effect, is not stored, and leaves what is stored as it was."""
        timer.item().pick("Mute")
        wait_until(lambda: timer.get("Muted"), "“Mute” to take effect")
        self.assertTrue(timer.item().entry("Mute").is_checked)
        self.assertEqual(timer.settings(), self.STORED)
        wait_until(lambda: "Cannot write the settings" in timer.program.output(), "a word about it")

    def test_a_full_disk_costs_no_setting(self):
        desktop = self.enterContext(Desktop())
        folder = self.mount(desktop, "-o", "size=64k")
        self.store(folder)
        self.fill(folder / "ballast")
        timer = Timer(desktop)
        timer.await_description("Break in 20 minutes")
        self.expect_mute_to_hold(timer)
        self.assertEqual(sorted(os.listdir(folder)), ["ballast", "settings"])
        timer.command("ToggleMute")
        timer.command("ToggleMute")
        (folder / "ballast").unlink()
        timer.quit(self)
        self.assertEqual(timer.settings(), self.STORED | {"Mute": "true"})

    def fill(self, file):
        with open(file, "wb", buffering=0) as ballast:
            try:
                while True:
                    ballast.write(bytes(512))
            except OSError:
                pass

    def test_a_read_only_home_costs_no_setting(self):
        desktop = self.enterContext(Desktop())
        folder = self.mount(desktop)
        self.store(folder)
        subprocess.run(["mount", "-o", "remount,ro", folder], check=True)
        timer = Timer(desktop)
        timer.await_description("Break in 20 minutes")
        self.expect_mute_to_hold(timer)
        timer.quit(self)
        self.assertEqual(timer.settings(), self.STORED)

    def test_the_first_run_in_a_read_only_home_is_like_any_other(self):
        desktop = self.enterContext(Desktop())
        self.mount(desktop, "-o", "ro")
        timer = Timer(desktop, "-TimerInterval", "4")
        timer.await_in_panel()
        self.assertEqual((timer.get("Popups"), timer.get("Muted")), (True, False))
        timer.window().find("push button", "Restart").press()
        timer.await_no_window()
        timer.quit(self)
        self.assertEqual(timer.settings(), {})

    def test_a_read_only_settings_file_is_left_alone(self):
        with Desktop() as desktop:
            folder = desktop.config / "marvelode-timer"
            folder.mkdir()
            self.store(folder).chmod(0o400)
            timer = Timer(desktop)
            timer.await_description("Break in 20 minutes")
            self.expect_mute_to_hold(timer)
            timer.quit(self)
            self.assertEqual(timer.settings(), self.STORED)
            self.assertEqual(os.listdir(folder), ["settings"])


def see_mounts_alone():
    """Starts this test anew in a name space of its own."""
    if "MOUNTS_ALONE" not in os.environ:
        os.environ["MOUNTS_ALONE"] = "true"
        rights = [] if os.geteuid() == 0 else ["--map-root-user"]
        os.execvp("unshare", ["unshare", *rights, "--mount", sys.executable, *sys.argv])


if __name__ == "__main__":
    see_mounts_alone()
    unittest.main()
