"""How long programs take from their start to the first pixel of their window on the screen."""

import os
import socket
import time
from pathlib import Path

from driving.waiting import wait_until

from start import DEVICES, end, spawn

POPUP = ("('alert', <(uint32 1, b'{picture}', 1, @ms nothing, 'Marvelode Timer', "
         "'Look around. Take a breath. Stretch.', ['Restart', 'Snooze'], "
         "@m(sb) ('Disable popup notifications', false))>)")


def await_closely(condition):
    """The answer as soon as it is true, and when that was, to half a millisecond."""
    deadline = time.monotonic() + 20
    while not (answer := condition()):
        assert time.monotonic() < deadline, "nothing happened"
        time.sleep(0.0005)
    return answer, time.monotonic()


def helper_of(pid):
    """The program for windows that a timer has started; nothing before it runs."""
    for child in Path(f"/proc/{pid}/task/{pid}/children").read_text().split():
        try:
            if Path(f"/proc/{child}/exe").readlink().name == "marvelode-timer-window":
                return int(child)
        except OSError:
            continue  # it has ended
    return None


def shown(desktop, begin, background):
    return (await_closely(lambda: desktop.centre_pixel() != background)[1] - begin) * 1000


def await_empty(desktop, background):
    wait_until(lambda: desktop.centre_pixel() == background, "the screen to be empty again")


def until_shown(desktop, start):
    """Milliseconds from the start of a program to its window. `start` returns what is to be ended afterwards, a pid, and
    the moment of that start."""
    background = desktop.centre_pixel()
    pid, begin = start()
    took = shown(desktop, begin, background)
    end(pid)
    await_empty(desktop, background)
    return took


def bare_window(desktop, *command):
    """Milliseconds from the start of a program to its window."""
    return until_shown(desktop, lambda: (spawn(desktop, *command), time.monotonic()))


def popup(desktop, timer):
    """Milliseconds from the start of a timer's helper to the popup, while nothing else happens."""
    installed = Path(timer).parents[1]
    helper = str(installed / "libexec/marvelode-timer/marvelode-timer-window")
    request = POPUP.format(picture=installed / "share/marvelode-timer/Marvelode.png")
    ours, its = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)

    def start():
        pid = os.posix_spawn(helper, [helper], desktop.environment,
                             file_actions=[(os.POSIX_SPAWN_DUP2, its.fileno(), 0), *DEVICES[1:]])
        begin = time.monotonic()
        ours.send(request.encode())
        return pid, begin
    with ours, its:
        return until_shown(desktop, start)


def popup_when_due(desktop, timer):
    """The same while the timer tells the panel that a break is due, and the panel shows it."""
    def start():
        pid = spawn(desktop, timer, "-TimerInterval", "1", "-Mute", "true")
        return pid, await_closely(lambda: helper_of(pid))[1]
    return until_shown(desktop, start)
