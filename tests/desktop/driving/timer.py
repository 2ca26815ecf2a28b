"""The program on a desktop, as tests start it and ask it."""

import os
import time

from .statusitem import StatusItem
from .waiting import wait_until

NAME = "org.marvelode.Timer"
PATH = "/org/marvelode/Timer"
PROGRAM = os.path.abspath(os.environ["MARVELODE_TIMER"])

# What the settings hold after a first run; during a first run, switches that are turned off turn on again.
AFTER_FIRST_RUN = {"Version": "'1.0.0'", "ShowCountdown": "true", "PopupAlerts": "true", "AutoRestart": "false",
                   "ResartOnWake": "true"}
QUIET = AFTER_FIRST_RUN | {"Mute": "true"}

# The menu's entries from top to bottom.
MENU = ["About Marvelode Timer", "Restart timer", "Mute", "Popup reminders", "Settings", "Quit"]


class Timer:
    """The program, started on a desktop, and what can be asked of it there."""

    def __init__(self, desktop, *arguments, settings=None, run_by=(), **environment):
        self.desktop = desktop
        self.settings_file = desktop.config / "marvelode-timer/settings"
        if settings is not None:
            self.settings_file.parent.mkdir(mode=0o700)
            self.store(settings)
        self.begin = time.monotonic()
        self.program = desktop.start(*run_by, PROGRAM, *arguments, **environment)

    def item(self):
        return self.desktop.status_item(self.program.pid)

    def item_without_panel(self):
        """The status item as it waits for a panel; waits for the program to be there."""
        wait_until(lambda: self.desktop.bus.has_owner(NAME), "the program on the bus")
        return StatusItem(self.desktop.bus, NAME, "/StatusNotifierItem")

    def command(self, method):
        """Calls a method of the program, as a script does; raises GLib.Error if the program refuses."""
        self.desktop.bus.call(NAME, PATH, NAME, method)

    def get(self, property_name):
        """A property that scripts can read."""
        return self.desktop.bus.get(NAME, PATH, NAME, property_name)

    def await_state(self, state, seconds=10):
        wait_until(lambda: self.desktop.bus.has_owner(NAME) and self.get("State") == state, f"“{state}”", seconds)

    def start_again(self, *arguments):
        """Starts the program once more on the same desktop."""
        return self.desktop.start(PROGRAM, *arguments)

    def store(self, settings):
        """Replaces the settings file, as a text editor does."""
        lines = [f"{key}={value}\n" for key, value in settings.items()]
        self.settings_file.write_text("[Settings]\n" + "".join(lines))

    def edit(self, changes):
        """Changes stored settings as an editor does that replaces the file."""
        new = self.settings_file.with_suffix(".new")
        lines = [f"{key}={value}\n" for key, value in (self.settings() | changes).items()]
        new.write_text("[Settings]\n" + "".join(lines))
        new.replace(self.settings_file)

    def settings(self):
        """The text of the settings file."""
        try:
            lines = self.settings_file.read_text().splitlines()
        except FileNotFoundError:
            return {}
        return dict(line.split("=", 1) for line in lines if "=" in line)

    def window(self, seconds=10, role=None):
        """The window that is up; waits for it."""
        return wait_until(lambda: self.desktop.window_of(self.program, role), "a window", seconds)

    def await_no_window(self):
        wait_until(lambda: not self.desktop.window_of(self.program), "the window to close")

    def await_description(self, beginning, seconds=10):
        item = self.item()
        wait_until(lambda: item.description.startswith(beginning), f"“{beginning}”, not “{item.description}”", seconds)

    def await_in_panel(self):
        """Where the item's picture of this moment is drawn in the panel."""
        item = self.item()
        return wait_until(lambda: self.desktop.item_in_panel(item), "the item's picture in the panel")

    def await_setting(self, key, value):
        wait_until(lambda: self.settings().get(key) == value, f"{key}={value} to be stored, not {self.settings()}")

    def quit(self, test):
        """Quits from the menu; nothing may be left."""
        self.item().pick("Quit")
        self.expect_end(test)

    def expect_end(self, test):
        test.assertEqual(self.program.status(), 0, self.program.output())
        test.assertEqual(self.program.left_behind(), {})
