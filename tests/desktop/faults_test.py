#!/usr/bin/python3
"""What the user sees when something around the timer breaks: no setting is lost, and the cycle goes on.

Run as program_test.py is. Disks are mounted where nobody else sees them, and go with the test.
"""

import os
import signal
import socket
import subprocess
import sys
import time
import unittest

from driving.desktop import Desktop
from driving.notifications import NotificationArea
from driving.timer import AFTER_FIRST_RUN, Timer
from driving.waiting import wait_until

QUIET = AFTER_FIRST_RUN | {"Mute": "true"}
FAKE_TIME = "/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1"


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

            # It goes with the screen once more, and comes back with it.
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


class Clock(unittest.TestCase):
    """The wall clock, set; what the machine counts by itself goes on."""

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
            timer.await_description("Break due for more than 2 hours")
            self.assertEqual(timer.get("State"), "Timing")
            self.set_clock(-3)
            timer.await_description("Break in more than 3 hours")
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
            timer.await_description("Break now")  # it is due, although the clock says that it lies ahead
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
            timer.await_description("Break due for more than")
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


class Disk(unittest.TestCase):
    """The folder of the settings, on a small disk of its own."""

    STORED = AFTER_FIRST_RUN | {"TimerInterval": "1200.0"}

    def store(self, folder):
        """Writes the settings of a user who has some, and gives the file."""
        file = folder / "settings"
        file.write_text("[Settings]\n" + "".join(f"{key}={value}\n" for key, value in self.STORED.items()))
        return file

    def mount(self, desktop, *options):
        """Puts such a disk where the settings are, and gives the folder."""
        folder = desktop.config / "marvelode-timer"
        folder.mkdir(mode=0o700, exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", *options, "tmpfs", folder], check=True)
        self.addCleanup(subprocess.run, ["umount", "--lazy", folder], check=True)
        return folder

    def expect_mute_to_hold(self, timer):
        """Muting takes effect, is not stored, and hurts nothing of what is."""
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


def see_mounts_alone():
    """Starts this test anew in a name space of its own."""
    if "MOUNTS_ALONE" not in os.environ:
        os.environ["MOUNTS_ALONE"] = "true"
        rights = [] if os.geteuid() == 0 else ["--map-root-user"]
        os.execvp("unshare", ["unshare", *rights, "--mount", sys.executable, *sys.argv])


if __name__ == "__main__":
    see_mounts_alone()
    unittest.main()
