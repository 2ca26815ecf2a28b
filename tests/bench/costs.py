"""What the kernel knows of the costs of a program: of its process and of those that it has started."""

import contextlib
import os
import re
import time
from pathlib import Path
from typing import NamedTuple

from driving import processes


class Memory(NamedTuple):
    """In megabytes: what is resident, the program's share of it, and what is the program's alone."""

    resident: float
    proportional: float
    unshared: float


_seen = {}  # by process and thread


def family(pid):
    return [pid, *processes.descendants(pid)]


def memory(pid):
    each = [processes.kilobytes(member) for member in family(pid)]
    return Memory(*(sum(sizes[kind] for sizes in each) / 1024 for kind in Memory._fields))


def wakeups(pid):
    """How often its threads have gone to sleep so far, and so woken up; those that have ended, as far as it was seen."""
    seen = _seen.setdefault(pid, {})
    for thread in threads(pid):
        with contextlib.suppress(OSError):  # it has just ended
            status = (thread / "status").read_text()
            seen[thread] = int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", status, re.MULTILINE)[1])
    return sum(seen.values())


def milliseconds(pid):
    """The time that it has spent on a processor so far, with what it has started and what of that has ended."""
    return sum(time.clock_gettime(clock(member)) for member in family(pid)) * 1000 + of_the_ended(pid)


def clock(pid):
    """The kernel's number for the clock of all threads of a process, with those that have ended."""
    return ~pid << 3 | 2


def threads(pid):
    return [thread for member in family(pid) for thread in Path(f"/proc/{member}/task").iterdir()]


def of_the_ended(pid):
    ticks = Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[13:15]
    return sum(map(int, ticks)) * 1000 / os.sysconf("SC_CLK_TCK")
