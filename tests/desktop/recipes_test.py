#!/usr/bin/python3
"""The scripts in docs/recipes.md, each taken from there and tried on the real program.

Run as program_test.py is.
"""

import json
import os
import re
import signal
import unittest
from pathlib import Path

from driving.clocks import Clocks
from driving.desktop import Desktop
from driving.sway import Sway
from driving.timer import QUIET, Timer
from driving.waiting import wait_until

PAGE = (Path(__file__).resolve().parents[2] / "docs/recipes.md").read_text()
RECIPES = {name: text for name, text in re.findall(r"^```\w+ (\S+)\n(.*?)^```$", PAGE, re.MULTILINE | re.DOTALL)}
INTERVAL = 1200
NO_WINDOWS = QUIET | {"PopupAlerts": "false", "AutoRestart": "true"}


class Recipes(unittest.TestCase):
    def setUp(self):
        self.desktop = self.enterContext(Desktop())
        self.bin = self.desktop.folder / "bin"
        self.bin.mkdir()
        for name, text in RECIPES.items():
            self.write(name, text)
        self.variables = {"PATH": f"{self.bin}:{os.environ['PATH']}", "HOME": str(self.desktop.folder)}

    def write(self, name, text):
        script = self.bin / name
        script.write_text(text if text.startswith("#!") else "#!/bin/sh\n" + text)
        script.chmod(0o755)

    def stand_in(self, name):
        """Puts a script in that program's place which notes how it was called; returns its notes."""
        notes = self.desktop.folder / f"{name}.calls"
        self.write(name, f'echo "$@" >>{notes}\n')
        return lambda: notes.read_text().splitlines() if notes.exists() else []

    def start_timer(self, settings=QUIET, interval=INTERVAL):
        self.clocks = Clocks(self.desktop.folder / "plan")
        timer = Timer(self.desktop, "-TimerInterval", str(interval), settings=settings, **self.clocks.environment)
        timer.await_state("Timing")
        return timer

    def start_recipe(self, name):
        return self.desktop.start(str(self.bin / name), **self.variables)

    def await_listener(self):
        def is_heard():
            rules = self.desktop.bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                          "org.freedesktop.DBus.Debug.Stats", "GetAllMatchRules")[0]
            return any("path='/org/marvelode/Timer'" in rule for of_one in rules.values() for rule in of_one)
        wait_until(is_heard, "the script to listen")

    def test_the_screen_is_locked_at_a_break_and_not_before(self):
        calls = self.stand_in("loginctl")
        timer = self.start_timer()
        self.start_recipe("lock-the-screen")
        self.await_listener()
        timer.command("ToggleMute")
        timer.await_setting("Mute", "false")
        timer.command("ToggleMute")
        self.assertEqual(calls(), [])
        for times in (1, 2):
            self.clocks.pass_time(INTERVAL)
            wait_until(lambda: len(calls()) == times, "the screen to be locked")
            timer.window().find("push button", "Restart").press()
            timer.await_state("Timing")
        self.assertEqual(calls(), ["lock-session"] * 2)

    def test_breaks_are_counted_even_if_the_next_interval_begins_at_once(self):
        self.start_timer(NO_WINDOWS)
        self.start_recipe("count-breaks")
        self.await_listener()
        notes = self.desktop.folder / "breaks"
        for times in (1, 2, 3):
            self.clocks.pass_time(INTERVAL)
            wait_until(lambda: notes.exists() and len(notes.read_text().splitlines()) == times, f"{times} breaks")
        [command] = re.findall(r"`(grep -c [^`]*)`", PAGE)
        count = self.desktop.start("sh", "-c", command, **self.variables)
        count.status()
        self.assertEqual(count.output(), "3\n")

    def test_the_music_is_paused_at_a_break(self):
        path, interface, mock = "/org/mpris/MediaPlayer2", "org.mpris.MediaPlayer2.Player", "org.freedesktop.DBus.Mock"
        players = ["org.mpris.MediaPlayer2.first", "org.mpris.MediaPlayer2.second"]
        for player in players:
            self.desktop.start("/usr/bin/python3", "-m", "dbusmock", player, path, interface)
            wait_until(lambda: self.desktop.bus.has_owner(player), player)
            self.desktop.bus.call(player, path, mock, "AddMethod", "(sssss)", interface, "Pause", "", "", "")
        self.start_timer()
        self.write("listen", "at-break pause-the-music\n")
        self.start_recipe("listen")
        self.await_listener()
        self.clocks.pass_time(INTERVAL)
        for player in players:
            wait_until(lambda: [call[1] for call in self.desktop.bus.call(player, path, mock, "GetCalls")[0]] == ["Pause"],
                       "the player to be paused")

    def test_a_break_is_told_of_a_minute_ahead_once(self):
        calls = self.stand_in("notify-send")
        sleeps = self.desktop.folder / "sleeps"
        self.write("sleep", f'echo "$1" >>{sleeps}\nexec /bin/sleep 0.1\n')

        def slept(which):
            return wait_until(lambda: sleeps.exists() and which(sleeps.read_text().split()), "the script to sleep")
        timer = self.start_timer()
        recipe = self.start_recipe("notify-before-break")
        slept(lambda spans: spans[0] == "60")
        self.assertEqual(calls(), [])
        self.clocks.pass_time(INTERVAL - 30)
        wait_until(calls, "the notice")
        slept(lambda spans: spans.count("5") > 5)
        self.assertEqual(calls(), ["A break in a minute"])
        timer.command("Restart")
        slept(lambda spans: spans[-1] != "5")
        self.clocks.pass_time(INTERVAL - 30)
        wait_until(lambda: len(calls()) == 2, "the next notice")
        timer.quit(self)
        self.assertNotEqual(recipe.status(), None)
        self.assertFalse(self.desktop.bus.has_owner("org.marvelode.Timer"), "it must not start the timer")

    def test_a_break_that_is_due_is_not_announced(self):
        calls = self.stand_in("notify-send")
        timer = self.start_timer()
        self.clocks.pass_time(INTERVAL)
        timer.await_state("Reminding")
        sleeps = self.desktop.folder / "sleeps"
        self.write("sleep", f'echo "$1" >>{sleeps}\nexec /bin/sleep 0.1\n')
        self.start_recipe("notify-before-break")
        wait_until(lambda: sleeps.exists() and len(sleeps.read_text().split()) > 2, "the script to sleep")
        self.assertEqual(calls(), [])

    def expect_hold(self, command, begin):
        """Reminders are held by `command` from when `begin` has started a program until that has ended."""
        timer = self.start_timer()
        with timer.settings_file.open("a") as file:
            file.write(f"[Desktop]\nHoldCommand={command}\n")
        timer.get("Muted")  # which has it read the file
        holding = begin()
        self.clocks.pass_time(INTERVAL)
        wait_until(lambda: timer.get("Held"), "the hold")
        holding.process.kill()
        holding.process.wait()
        self.clocks.pass_time(60)
        timer.window()
        self.assertEqual(timer.program.output(), "")

    def test_a_camera_in_use_holds(self):
        [command] = re.findall("^HoldCommand=(fuser .*)$", PAGE, re.MULTILINE)
        camera = self.desktop.folder / "camera"
        camera.write_text("")
        self.expect_hold(command.replace("/dev/video0", str(camera)),
                         lambda: self.desktop.start("tail", "-f", str(camera)))

    def test_a_program_that_runs_holds(self):
        [command] = re.findall("^HoldCommand=(pgrep .*)$", PAGE, re.MULTILINE)
        program = self.bin / "zoom"
        program.symlink_to("/bin/sleep")
        self.expect_hold(command, lambda: self.desktop.start(str(program), "600"))

    def test_waybar_shows_the_module_while_the_timer_runs(self):
        recipe = self.start_recipe("marvelode-waybar")
        self.assertEqual((recipe.status() is not None, recipe.output()), (True, ""))
        timer = self.start_timer()
        recipe = self.start_recipe("marvelode-waybar")
        recipe.status()
        self.assertEqual(json.loads(recipe.output()), {"text": timer.get("Text"), "class": "Timing"})
        configuration = self.desktop.folder / "waybar.json"
        module = RECIPES["waybar-configuration"].replace('"interval": 5', '"interval": 1')
        configuration.write_text(f'{{"modules-left": ["custom/marvelode"], "height": 28, {module}}}')
        style = self.desktop.folder / "style.css"
        style.write_text("window { background: #262626; } #custom-marvelode { color: white; }"
                         " #custom-marvelode.Reminding { color: red; }")
        with Sway(self.desktop) as sway:
            self.desktop.start("waybar", "--config", str(configuration), "--style", str(style),
                               **sway.environment, **self.variables)

            def shows(matches):
                return sway.screenshot().crop(0, 0, 100, 28).count(matches) > 10

            def is_red(red, green, *_):
                return red > 160 and green < 60
            wait_until(lambda: shows(lambda red, green, *_: red > 160 and green > 160), "the module")
            self.clocks.pass_time(INTERVAL)
            wait_until(lambda: shows(is_red), "the module in red")
            timer.program.send(signal.SIGKILL)
            timer.program.status()
            wait_until(lambda: not shows(is_red), "no module")


if __name__ == "__main__":
    unittest.main()
