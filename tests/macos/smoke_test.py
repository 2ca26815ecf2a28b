#!/usr/bin/python3
"""Uses the program as a person does, by mouse and keyboard, and takes a picture of everything it shows.

smoke_test.py PROGRAM FOLDER-FOR-PICTURES
"""

import os
import pathlib
import plistlib
import re
import subprocess
import sys
import time

ENTRIES = ["About Marvelode Timer", "-", "Restart timer", "Mute", "Popup reminders", "Settings", "-", "Quit"]
STRIP = (50, 28)  # the size of the status item
INTERVAL = 12  # seconds


def run(*command, check=True):
    return subprocess.run(command, check=check, capture_output=True, text=True).stdout


def windows():
    """Position and size of every window on screen, by its number."""
    found = {}
    # failures mean that there is none, or that one went away meanwhile
    for number in run("xdotool", "search", "--onlyvisible", "--name", ".*", check=False).split():
        geometry = dict(re.findall(r"(\w+)=(-?\d+)",
                                   run("xdotool", "getwindowgeometry", "--shell", number, check=False)))
        if geometry:
            found[number] = tuple(int(geometry[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
    return found


def wait_for(what, condition, seconds=15):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


def with_size(test):
    """The first window whose width and height pass the test. GNUstep keeps pictures in windows at the left edge."""
    return next((place for place in windows().values() if place[0] > 0 and test(place[2], place[3])), None)


def dialog():
    """The alert or panel that is up."""
    return with_size(lambda width, height: width > 190 and height > 120)


class Hands:
    def __init__(self, pictures):
        self.pictures = pictures
        pictures.mkdir(parents=True, exist_ok=True)

    def picture(self, name):
        time.sleep(0.5)  # until everything has been drawn
        run("import", "-window", "root", str(self.pictures / f"{name}.png"))

    def pick(self, entry):
        """Presses the mouse on the status item, moves to the entry and lets go."""
        x, y, _, _ = wait_for("the status item", lambda: with_size(lambda *size: size == STRIP))
        run("xdotool", "mousemove", str(x + 25), str(y + 14), "mousedown", "1")
        left, top, width, height = wait_for(
            "the menu", lambda: with_size(lambda w, h: 140 < w < 300 and 140 < h < 300))
        self.picture("menu")
        row = height / (len(ENTRIES) + 1)  # the first row is the menu's title
        middle = top + row * (ENTRIES.index(entry) + 1.5)
        run("xdotool", "mousemove", str(left + width // 2), str(round(middle)))
        time.sleep(0.3)
        run("xdotool", "mouseup", "1")

    def key(self, *keys):
        time.sleep(0.3)
        run("xdotool", "key", *keys)


def main():
    program, hands = sys.argv[1], Hands(pathlib.Path(sys.argv[2]))
    process = subprocess.Popen([program, "-Version", "1.0.0", "-PopupAlerts", "YES", "-ShowCountdown", "YES",
                                "-TimerInterval", str(INTERVAL)])
    try:
        hands.pick("Settings")
        wait_for("the settings", dialog)
        hands.picture("settings")
        hands.key("2", "5", "Return")
        wait_for("the settings to close", lambda: not dialog())

        hands.pick("About Marvelode Timer")
        wait_for("the about box", dialog)
        hands.picture("about")
        hands.key("Return")
        wait_for("the about box to close", lambda: not dialog())

        wait_for("the reminder", dialog)
        hands.picture("reminder")
        hands.key("Return")
        wait_for("the reminder to close", lambda: not dialog())

        hands.pick("Quit")
        assert process.wait(10) == 0, "the program ended badly"
        process = None
    finally:
        if process:
            hands.picture("failure")
            process.kill()
            process.wait()
    stored = plistlib.loads((pathlib.Path(os.environ["HOME"]) / "Defaults" / "MarvelodeTimer.plist").read_bytes())
    assert float(stored["TimerInterval"]) == 25 * 60, stored


if __name__ == "__main__":
    main()
