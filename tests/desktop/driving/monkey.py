"""Somebody who does this and that to a desktop and to the timer on it, by chance but not at random: the same seed
leads to the same deeds in the same order, although not at the same moments."""

import os
import random
import signal
import time

from gi.repository import GLib

from .clocks import Clocks
from .health import Health
from .timer import AFTER_FIRST_RUN, Timer
from .waiting import wait_until

KEYS = ["Return", "Escape", "space", "Tab", "Down", "alt+s", "alt+r", "1", "0", "BackSpace"]
METHODS = ["Restart", "ToggleMute", "TogglePopups", "ShowSettings", "ShowAbout", "ShowMenu"]
HOURS = [-24, -3, -1, 0, 0, 1, 3, 24]
SETTINGS = AFTER_FIRST_RUN | {"Version": "'test'", "Mute": "false", "AlertSound": "'Sonar'"}


def one_of(things, chance):
    return things[int(chance * len(things))]


class Monkey:
    def __init__(self, desktop, seed):
        self.desktop = desktop
        self.done = []  # the names of its deeds
        self._random = random.Random(seed)
        self._clocks = Clocks(desktop.folder / "plan")
        self._begin = time.monotonic()
        self._logind_runs = self._panel_runs = True
        self.start(SETTINGS)

    def start(self, settings=None):
        self._may_end = self._popups_were_off = False
        self._clocks.set_wall_clock(0)
        self.timer = Timer(self.desktop, "-test", settings=settings, **self._clocks.environment)
        self.timer.await_state("Timing")
        if self._panel_runs:
            self.timer.await_in_panel()
        self.health = Health(self.timer)

    def act(self):
        """Does something, and checks that all is well."""
        deed = self._random.choices(list(self.DEEDS), list(self.DEEDS.values()))[0]
        chance = self._random.random()  # whatever the deed: what it makes of it must not change the next one
        self.done.append(f"{time.monotonic() - self._begin:7.2f}  {deed.__name__} {chance:.3f}")
        deed(self, chance)
        if self._may_end and not self.timer.program.is_running():
            assert self.timer.program.status() == 0, "its end failed"
            self.start()
        self.health.check()
        self._popups_were_off |= not self.timer.get("Popups")

    # What happens to the program

    def pass_time(self, chance):
        self._clocks.pass_time(one_of([1, 5, 5, 31, 31, 40], chance))

    def set_the_clock(self, chance):
        self._clocks.set_wall_clock(3600 * one_of(HOURS, chance))

    def stop_the_program(self, chance):
        self.timer.program.send(signal.SIGSTOP)
        time.sleep(chance / 2)
        self.timer.program.send(signal.SIGCONT)

    def end_the_program(self, chance):
        number = one_of([signal.SIGTERM, signal.SIGINT, signal.SIGKILL], chance)
        self.timer.program.send(number)
        assert self.timer.program.status() == (-number if number == signal.SIGKILL else 0)
        self._reap()
        self.start()

    def kill_a_helper(self, chance):
        self._send_to_helper(signal.SIGKILL, chance)

    def stop_a_helper(self, chance):
        self._send_to_helper(signal.SIGSTOP, chance)

    def go_on_with_a_helper(self, chance):
        self._send_to_helper(signal.SIGCONT, chance)

    def _send_to_helper(self, number, chance):
        helpers = self.timer.program.helpers()
        if helpers:
            try:
                os.kill(one_of(helpers, chance), number)
            except ProcessLookupError:
                pass  # it has ended meanwhile

    # What happens to the desktop

    def sleep_and_wake(self, chance):
        if self._logind_runs:
            self.desktop.fall_asleep()
        self.timer.program.send(signal.SIGSTOP)
        self._clocks.sleep(int(24 * 3600 * chance))
        self.timer.program.send(signal.SIGCONT)
        if self._logind_runs:
            self.desktop.wake()

    def restart_logind(self, _):
        (self.desktop.stop_logind if self._logind_runs else self.desktop.start_logind)()
        self._logind_runs = not self._logind_runs

    def restart_the_panel(self, _):
        (self.desktop.stop_panel if self._panel_runs else self.desktop.start_panel)()
        self._panel_runs = not self._panel_runs

    def restart_the_session_bus(self, _):
        self.desktop.stop_session_bus()
        assert self.timer.program.status() == 0, self.timer.program.output()
        self._reap()
        self.desktop.start_session_bus_again()
        self._panel_runs = True
        self.start()

    def edit_the_settings(self, chance):
        self.timer.edit({"Mute": one_of(["true", "false"], chance)})

    # What the user does

    def press_a_key(self, chance):
        self._may_end = True  # the key may press “Quit”
        self.desktop.press_key(one_of(KEYS, chance))

    def click(self, chance):
        self._may_end = True
        self.desktop.click(int(self.desktop.width * (0.3 + 0.4 * chance)),
                           int(self.desktop.height * (0.3 + 0.4 * (chance * 1000 % 1))))

    def start_it_once_more(self, _):
        """It asks for a window, and is told after half a minute if the program that would show it was stopped."""
        again = self.timer.start_again()
        status = again.status(40)
        assert status == 0 or (status == 1 and "cannot show its menu" in again.output()), again.output()

    def pick_an_entry(self, chance):
        item = self.timer.item_without_panel()
        entry = item.entry(one_of(["Mute", "Popup reminders", "Restart timer", "Settings"], chance))
        if entry.is_enabled:
            item.pick(entry.label)

    def call_a_method(self, chance):
        self._command(one_of(METHODS, chance))

    def _command(self, method):
        """Whether it was done; the program may be busy."""
        try:
            self.timer.command(method)
            return True
        except GLib.Error as error:
            assert "org.marvelode.Timer.Error.Busy" in str(error), error
            return False

    DEEDS = {pass_time: 30, set_the_clock: 4, stop_the_program: 4, end_the_program: 1, kill_a_helper: 10,
             stop_a_helper: 5, go_on_with_a_helper: 5, sleep_and_wake: 4, restart_logind: 1, restart_the_panel: 2,
             restart_the_session_bus: 1, edit_the_settings: 4, press_a_key: 15, click: 5, start_it_once_more: 3,
             pick_an_entry: 6, call_a_method: 15}

    # What must hold at any time

    def expect_a_reminder(self):
        """It is never stuck: once windows are closed, one comes by itself. A break that fell due while popups were off
        waits for the user, who restarts."""
        self.close_all_windows()
        if not self.timer.get("Popups"):
            assert self._command("TogglePopups")
        if self._popups_were_off:
            assert self._command("Restart")
            self._popups_were_off = False
        item = self.timer.item_without_panel()

        def is_reminded():
            return self.timer.get("State") == "Reminding" and not item.entry("Restart timer").is_enabled
        for _ in range(12):
            self._clocks.pass_time(5)
            try:
                wait_until(is_reminded, "a reminder", 1)
                return
            except AssertionError:
                continue
        raise AssertionError("no reminder comes any more")

    def close_all_windows(self):
        """Ends the programs that show them; the timer takes that for the user's closing them."""
        def is_idle():
            for helper in self.timer.program.helpers():
                try:
                    os.kill(helper, signal.SIGKILL)
                except ProcessLookupError:
                    pass
            return not self.timer.program.helpers() and self.timer.item_without_panel().entry("Quit").is_enabled
        wait_until(is_idle, "all windows to be closed")

    def expect_rest(self):
        """Nothing has grown, and nothing is left when it ends."""
        if not self._panel_runs:
            self.restart_the_panel(0)
        self.close_all_windows()
        self.health.check_at_rest()
        wait_until(lambda: self._command("Quit"), "“Quit” to be accepted")
        assert self.timer.program.status() == 0, self.timer.program.output()
        self._reap()

    def _reap(self):
        """Sounds and windows end with the program, at once or soon."""
        wait_until(lambda: not self.timer.program.left_behind(), "what the program started to end")
