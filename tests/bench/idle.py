"""What programs cost while nothing happens, measured side by side in the same minutes."""

import statistics
import time
from typing import NamedTuple

import costs

MINUTES, APART = 5, 15  # five minutes that overlap: each begins so many seconds after the one before


class Minute(NamedTuple):
    """What a program costs in a minute."""

    wakeups: float
    milliseconds: float


def read(pids):
    return [Minute(costs.wakeups(pid), costs.milliseconds(pid)) for pid in pids]


def minutes(pids):
    """What each program has cost in each of five minutes."""
    steps = 60 // APART
    readings, begin = [read(pids)], time.monotonic()
    for step in range(1, steps + MINUTES):
        time.sleep(max(0, begin + step * APART - time.monotonic()))
        readings.append(read(pids))
    return [[Minute(*(after - before for before, after in zip(earlier, later)))
             for earlier, later in zip(before, after)]
            for before, after in zip(readings, readings[steps:])]


def medians(pids):
    """The median minute of each program."""
    return [Minute(*map(statistics.median, zip(*each))) for each in zip(*minutes(pids))]


def await_quiet(pid):
    """Waits until the program has done all that there is to do at first: until it sleeps for most of a second."""
    for _ in range(100):
        before = costs.wakeups(pid)
        time.sleep(0.7)
        if costs.wakeups(pid) - before <= 1:
            return
    raise AssertionError("the program does not come to rest")
