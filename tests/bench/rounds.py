"""What is measured again and again, the timer and the floors in turn: starts, windows, memory."""

import statistics
from typing import NamedTuple

import costs
import hosts
import life
from start import end, registered
from windows import bare_window, popup, popup_when_due

from driving.desktop import Desktop

ROUNDS, STARTS, WINDOWS = 5, 30, 8


class Round(NamedTuple):
    """One round's figures, in milliseconds and megabytes."""

    memory: costs.Memory
    memory_later: costs.Memory
    bare_memory: costs.Memory
    start: float
    bare_start: float
    window: float
    window_when_due: float
    bare_window: float


def quickest(times, *measures):
    """The least time that each measure gives when they are taken in turn: other load only adds."""
    return [min(each) for each in zip(*([measure() for measure in measures] for _ in range(times)))]


def one_round(timer, floor):
    with Desktop(), Desktop() as desktop:  # the first shares libraries with the timer, as all of a desktop in use do
        item = hosts.settled(desktop, floor("item"))
        memories = life.memories(desktop, item)
        end(item)
        starts = quickest(STARTS, lambda: registered(desktop, timer), lambda: registered(desktop, floor("item")))
        windows = quickest(WINDOWS, lambda: popup(desktop, timer), lambda: popup_when_due(desktop, timer),
                           lambda: bare_window(desktop, floor("window")))
        return Round(*memories, *starts, *windows)


def medians(timer, floor):
    """The median of each figure over all rounds."""
    rounds = [one_round(timer, floor) for _ in range(ROUNDS)]
    return Round(*(median(values) for values in zip(*rounds)))


def median(values):
    if isinstance(values[0], tuple):
        return type(values[0])(*map(statistics.median, zip(*values)))
    return statistics.median(values)
