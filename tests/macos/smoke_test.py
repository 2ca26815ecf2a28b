#!/usr/bin/python3
"""Uses the program as a person does, by mouse and keyboard, and takes a picture of everything it shows.

smoke_test.py PROGRAM FOLDER-FOR-PICTURES

Nothing here counts on time: whatever is done next waits until what was done before can be seen on screen.
"""

import contextlib
import os
import pathlib
import plistlib
import re
import subprocess
import sys
import time

ENTRIES = ["About Marvelode Timer", "-", "Restart timer", "Mute", "Popup reminders", "Settings", "-", "Quit"]
STRIP = (50, 28)  # the size of the status item
SNOOZE = (135, 21)  # how far that button stands from the alert's right and lower edges
PATIENCE = 30  # seconds


def run(*command, check=True):
    return subprocess.run(command, check=check, capture_output=True).stdout


def windows():
    """Position and size of every window on screen, by its number. GNUstep keeps pictures at the left edge."""
    found = {}
    # failures mean that there is none, or that one went away meanwhile
    for number in run("xdotool", "search", "--onlyvisible", "--name", ".*", check=False).decode().split():
        geometry = dict(re.findall(r"(\w+)=(-?\d+)",
                                   run("xdotool", "getwindowgeometry", "--shell", number, check=False).decode()))
        if geometry and int(geometry["X"]) > 0:
            found[number] = tuple(int(geometry[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
    return found


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


def look_at(place):
    """The colours at that position and size of the screen."""
    left, top, width, height = place
    return run("import", "-window", "root", "-crop", f"{width}x{height}+{left}+{top}", "-depth", "8", "rgb:-")


def wait_until_still(what, place):
    """Waits until something has been drawn there, and no more is being drawn."""
    def is_still():
        before = look_at(place)
        time.sleep(0.2)
        return len(set(zip(*[iter(before)] * 3))) > 1 and before == look_at(place)
    wait_for(f"{what} to be drawn", is_still)


def wait_for_window(what, fits):
    """The number and the place of the first window whose width and height fit, once it is drawn."""
    number = wait_for(what, lambda: next((each for each, place in windows().items() if fits(*place[2:])), None))

    def place_twice():
        place = windows().get(number)
        return place if place == windows().get(number) else None
    place = wait_for(f"{what} to stand", place_twice)
    wait_until_still(what, place)
    return number, place


def wait_until_gone(what, number):
    wait_for(f"{what} to go", lambda: number not in windows())


def is_dialog(width, height):
    return width > 190 and height > 120


class Hands:
    def __init__(self, pictures):
        self.pictures = pictures
        pictures.mkdir(parents=True, exist_ok=True)

    def picture(self, name):
        run("import", "-window", "root", str(self.pictures / f"{name}.png"))

    def pick(self, entry):
        """Presses the mouse on the status item, moves to the entry and lets go; returns when the menu is gone."""
        _, (x, y, _, _) = wait_for_window("the status item", lambda *size: size == STRIP)
        run("xdotool", "mousemove", str(x + 25), str(y + 14), "mousedown", "1")
        menu, (left, top, width, height) = wait_for_window("the menu", lambda w, h: 140 < w < 300 and 140 < h < 300)
        row = height / (len(ENTRIES) + 1)  # the first row is the menu's title
        place = (left, round(top + row * (ENTRIES.index(entry) + 1)), width, round(row))
        before = look_at(place)
        run("xdotool", "mousemove", str(left + width // 2), str(place[1] + place[3] // 2))
        wait_for(f"{entry} to be marked", lambda: look_at(place) != before)
        self.picture("menu")
        run("xdotool", "mouseup", "1")
        wait_until_gone("the menu", menu)

    def dialog(self, name):
        """Waits for the alert or panel to come up and to take input, and takes its picture."""
        number, place = wait_for_window(name, is_dialog)
        wait_for(f"{name} to have the keyboard",
                 lambda: run("xdotool", "getwindowfocus", check=False).decode().strip() == number)
        self.picture(name)
        return number, place

    def click(self, x, y):
        run("xdotool", "mousemove", str(x), str(y), "mousedown", "1")
        time.sleep(0.2)  # a person's click takes that long, and GNUstep's buttons overlook shorter ones
        run("xdotool", "mouseup", "1")


@contextlib.contextmanager
def started(program, interval, hands):
    """Starts the program with that work interval, in seconds; it must have ended well when the block ends."""
    process = subprocess.Popen([program, "-Version", "1.0.0", "-PopupAlerts", "YES", "-ShowCountdown", "YES",
                                "-TimerInterval", str(interval)])
    try:
        yield
        assert process.wait(PATIENCE) == 0, "the program ended badly"
    except BaseException:
        hands.picture("failure")
        raise
    finally:
        process.kill()
        process.wait()


def main():
    program, hands = sys.argv[1], Hands(pathlib.Path(sys.argv[2]))

    with started(program, 3600, hands):  # no reminder comes between
        hands.pick("Settings")
        settings, place = hands.dialog("settings")
        before = look_at(place)
        run("xdotool", "key", "2", "5")
        wait_for("the minutes to be typed", lambda: look_at(place) != before)
        wait_until_still("the minutes", place)
        run("xdotool", "key", "Return")
        wait_until_gone("the settings", settings)

        hands.pick("About Marvelode Timer")
        about, _ = hands.dialog("about")
        run("xdotool", "key", "Return")
        wait_until_gone("the about box", about)

        hands.pick("Quit")
    stored = plistlib.loads((pathlib.Path(os.environ["HOME"]) / "Defaults" / "MarvelodeTimer.plist").read_bytes())
    assert float(stored["TimerInterval"]) == 25 * 60, stored

    with started(program, 2, hands):
        reminder, _ = hands.dialog("reminder")
        run("xdotool", "key", "Return")
        wait_until_gone("the reminder", reminder)

        again, (left, top, width, height) = hands.dialog("reminder")  # Return restarted the timer
        hands.click(left + width - SNOOZE[0], top + height - SNOOZE[1])
        wait_until_gone("the second reminder", again)

        hands.pick("Quit")  # snoozing takes a minute


if __name__ == "__main__":
    main()
