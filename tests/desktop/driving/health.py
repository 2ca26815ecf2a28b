"""What must hold of the running program at any time, whatever happens around it."""

import os

from . import processes
from .waiting import wait_until

MOST_WINDOWS = 2  # the small one, and a modal one
MOST_SOUNDS = 2   # the reminder's, and that of a choice in the settings
DESCRIPTORS = 8   # more than at first: while helpers run and calls are answered
KILOBYTES = 1024  # more than at first, of memory of its own
KEYS = {"Version", "Mute", "PopupAlerts", "AutoRestart", "ResartOnWake", "ShowCountdown", "TimerInterval", "AlertSound"}
INTERVAL = 30


def state(pid):
    """The letter by which the kernel tells what a process does; nothing if it has gone."""
    try:
        with open(f"/proc/{pid}/stat") as file:
            return file.read().rpartition(")")[2].split()[0]
    except OSError:
        return None


class Health:
    """Of a timer that has just started."""

    def __init__(self, timer):
        self._timer = timer
        self._pid = timer.program.pid
        self._descriptors = self._count_descriptors()
        self._memory = self._own_memory()

    def check(self):
        """Raises AssertionError if something is not as it should be."""
        self._check_answers()
        self._check_children()
        self._check_settings()
        wait_until(lambda: self._count_descriptors() <= self._descriptors + DESCRIPTORS, "descriptors to be closed")

    def check_at_rest(self):
        """The same when no window is up and no sound is played: nothing may have grown."""
        self.check()
        wait_until(lambda: self._count_descriptors() <= self._descriptors, "all descriptors to be closed")
        grown = self._own_memory() - self._memory
        assert grown <= KILOBYTES, f"its memory has grown by {grown} KiB"

    def _check_answers(self):
        state, left = self._timer.get("State"), self._timer.get("RemainingSeconds")
        if state == self._timer.get("State"):
            assert left <= (0 if state == "Reminding" else INTERVAL), f"{left} seconds left while {state}"

    def _check_children(self):
        """None has ended without the program's taking note, and there are no more than can be of use."""
        def are_in_order():
            children = processes.descendants(self._pid)
            names = [os.path.basename(processes.executable(each)) for each in children]
            return (all(state(each) != "Z" for each in children)
                    and names.count("marvelode-timer-window") <= MOST_WINDOWS
                    and names.count("marvelode-timer-sound") <= MOST_SOUNDS)
        wait_until(are_in_order, "the program's children to be in order", 5)

    def _check_settings(self):
        def are_told_as_stored():
            stored = self._timer.settings()
            return all(stored.get(key, "false") == str(self._timer.get(told)).lower()
                       for key, told in (("Mute", "Muted"), ("PopupAlerts", "Popups")))
        stored = self._timer.settings()
        assert stored and set(stored) <= KEYS, f"the settings are damaged: {stored}"
        wait_until(are_told_as_stored, f"what is told to be what is stored: {stored}", 5)

    def _count_descriptors(self):
        return len(os.listdir(f"/proc/{self._pid}/fd"))

    def _own_memory(self):
        return processes.kilobytes(self._pid)["unshared"]
