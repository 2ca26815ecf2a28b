"""What an idle timer costs in each panel, side by side with the floors."""

import contextlib

import idle
from start import spawn

from driving.desktop import Desktop
from driving.hosts import HOSTS
from driving.timer import QUIET, Timer
from driving.waiting import wait_until

OTHERS = [host for host in HOSTS if host.name != "xfce"]


def settled(desktop, *command):
    """A program whose item stands in the tray and that has come to rest."""
    pid = spawn(desktop, *command)
    desktop.status_item(pid)
    idle.await_quiet(pid)
    return pid


def idle_timer(desktop):
    """A timer in the tray that has run before: in a first run it looks at its settings twice as often."""
    timer = Timer(desktop, settings=QUIET)
    timer.item()
    idle.await_quiet(timer.program.pid)
    return timer.program.pid


def lonely_timer(desktop):
    """A timer that no panel asks anything; its user has closed the small window that stands in for the item."""
    timer = Timer(desktop, settings=QUIET)
    timer.window().find("push button", "Hide this window").press()
    wait_until(lambda: not timer.program.helpers(), "the program that showed it to end")
    idle.await_quiet(timer.program.pid)
    return timer.program.pid


def minutes(floor):
    """The median minutes of bare tick, bare item and lonely timer, and of a timer in each panel by its name."""
    with contextlib.ExitStack() as stack:
        desktop = stack.enter_context(Desktop())
        pids = [spawn(desktop, floor("tick")), settled(desktop, floor("item")),
                lonely_timer(stack.enter_context(Desktop(panel=False))), idle_timer(desktop)]
        pids += [idle_timer(shown_by(host, stack)) for host in OTHERS]
        tick, item, lonely, *timers = idle.medians(pids)
        return tick, item, lonely, dict(zip(["xfce", *(host.name for host in OTHERS)], timers))


def shown_by(host, stack):
    """A new desktop with that panel, which ends with it."""
    desktop = stack.enter_context(Desktop(panel=False))
    panel = host(desktop)
    panel.configure()
    panel.start()
    return desktop
