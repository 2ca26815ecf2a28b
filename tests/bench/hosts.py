"""What an idle timer costs in each panel, side by side with the floors."""

import contextlib

import idle
from start import spawn

from driving.desktop import Desktop
from driving.hosts import HOSTS

OTHERS = [host for host in HOSTS if host.name != "xfce"]


def settled(desktop, *command):
    """A program whose item stands in the tray and that has come to rest."""
    pid = spawn(desktop, *command)
    desktop.status_item(pid)
    idle.await_quiet(pid)
    return pid


def minutes(timer, floor):
    """The median minutes of bare tick, bare item and timer in Xfce's panel, and of the timer in each other one."""
    with contextlib.ExitStack() as stack:
        desktop = stack.enter_context(Desktop())
        pids = [spawn(desktop, floor("tick")), settled(desktop, floor("item")), settled(desktop, timer)]
        pids += [settled(shown_by(host, stack), timer) for host in OTHERS]
        tick, item, *timers = idle.medians(pids)
        return tick, item, dict(zip(["xfce", *(host.name for host in OTHERS)], timers))


def shown_by(host, stack):
    """A new desktop with that panel, which ends with it."""
    desktop = stack.enter_context(Desktop(panel=False))
    panel = host(desktop)
    panel.configure()
    panel.start()
    return desktop
