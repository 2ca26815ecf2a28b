"""How much memory the timer takes: when it has just come to rest, and after it has shown all its windows."""

from driving.timer import QUIET, Timer
from driving.waiting import wait_until

import costs
import idle

POPUPS = 10


def memories(desktop, floor):
    """Its memory before and after ten popups, the settings window and the small window; and at first that of `floor`, a
    program that runs beside it, so that both share libraries with the same others."""
    timer = Timer(desktop, settings=QUIET)
    timer.await_in_panel()
    idle.await_quiet(timer.program.pid)
    before, bare = costs.memory(timer.program.pid), costs.memory(floor)
    show_popups(timer)
    show_settings(timer)
    show_small_window(timer)
    timer.command("Restart")  # what holds nothing goes back at the beginning of a turn
    idle.await_quiet(timer.program.pid)
    after = costs.memory(timer.program.pid)
    timer.command("Quit")
    timer.program.status()
    return before, after, bare


def show_popups(timer):
    timer.edit({"TimerInterval": "1"})
    timer.command("Restart")
    for _ in range(POPUPS - 1):
        answer(timer, "Restart")
    popup = timer.window()
    timer.edit({"TimerInterval": "600"})
    popup.find("push button", "Restart").press()
    timer.await_no_window()


def answer(timer, button):
    timer.window().find("push button", button).press()
    timer.await_no_window()


def show_settings(timer):
    timer.command("ShowSettings")
    timer.window()
    timer.desktop.press_key("Escape")
    timer.await_no_window()


def show_small_window(timer):
    timer.start_again().status()
    timer.window()
    timer.desktop.press_key("Escape")
    timer.await_no_window()
