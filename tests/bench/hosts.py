"""What an idle timer costs in each panel, side by side with the floors."""

import contextlib
import statistics

import idle
from start import spawn

from driving.desktop import Desktop
from driving.hosts import HOSTS
from driving.timer import QUIET, Timer
from driving.waiting import wait_until

PAIRS = 3
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


def mean(minutes):
    return idle.Minute(*map(statistics.mean, zip(*minutes)))


def lonely_minutes(floor):
    """The median minutes of a bare tick and of a lonely timer, each the mean of several: what a tick costs depends on
    what else wakes up at its moment in the second. No panel runs beside them: what does leaves less of a program in the
    processor's caches, the more of it the more there is."""
    with contextlib.ExitStack() as stack:
        desktops = [stack.enter_context(Desktop(panel=False)) for _ in range(PAIRS)]
        medians = idle.medians([spawn(desktop, floor("tick")) for desktop in desktops] +
                               [lonely_timer(desktop) for desktop in desktops])
        return mean(medians[:PAIRS]), mean(medians[PAIRS:])


def minutes(floor):
    """The median minutes of bare tick and bare item, and of a timer in each panel by its name."""
    with contextlib.ExitStack() as stack:
        desktop = stack.enter_context(Desktop())
        pids = [spawn(desktop, floor("tick")), settled(desktop, floor("item")), idle_timer(desktop)]
        pids += [idle_timer(shown_by(host, stack)) for host in OTHERS]
        tick, item, *timers = idle.medians(pids)
        return tick, item, dict(zip(["xfce", *(host.name for host in OTHERS)], timers))


def shown_by(host, stack):
    """A new desktop with that panel, which ends with it."""
    desktop = stack.enter_context(Desktop(panel=False))
    panel = host(desktop)
    panel.configure()
    panel.start()
    return desktop
