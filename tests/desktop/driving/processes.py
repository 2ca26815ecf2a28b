"""The processes that a test has started, directly or not: all of them, even those whose parent has gone."""

import ctypes
import os
import signal

from .waiting import wait_until

PR_SET_PDEATHSIG = 1
PR_SET_CHILD_SUBREAPER = 36
C_LIBRARY = ctypes.CDLL(None, use_errno=True)


def end_with_parent():
    """Makes the kernel end this process, before it executes another program, when its parent ends."""
    C_LIBRARY.prctl(PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def adopt_orphans():
    """Makes this process the parent of every descendant that loses its own."""
    C_LIBRARY.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def descendants(pid=None):
    """The pids of all processes below `pid` (this process by default), parents before their children."""
    children = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat") as file:
                    parent = int(file.read().rpartition(")")[2].split()[1])
            except (FileNotFoundError, ProcessLookupError):
                continue
            children.setdefault(parent, []).append(int(name))

    def below(parent):
        return [each for child in children.get(parent, []) for each in [child, *below(child)]]
    return below(pid or os.getpid())


def executable(pid):
    """The path of the program that the process runs; empty for one that has ended."""
    try:
        return os.readlink(f"/proc/{pid}/exe")
    except OSError:
        return ""


def reap():
    """Reaps every adopted process that has ended."""
    for pid in descendants():
        if not executable(pid):
            try:
                os.waitpid(pid, os.WNOHANG)
            except ChildProcessError:
                pass


def end_descendants():
    """Ends whatever is still running below this process, politely at first."""
    for number, patience in ((signal.SIGTERM, 3), (signal.SIGKILL, 3)):
        for pid in reversed(descendants()):
            try:
                os.kill(pid, number)
            except ProcessLookupError:
                pass

        def all_gone():
            reap()
            return not descendants()
        try:
            wait_until(all_gone, "processes to end", patience)
            return
        except AssertionError:
            continue
    left = {pid: executable(pid) for pid in descendants()}
    raise AssertionError(f"left behind: {left}")


def kilobytes(pid):
    """How much memory the process takes, by kind."""
    with open(f"/proc/{pid}/smaps_rollup") as file:
        sizes = dict(line.split(":") for line in file.read().splitlines()[1:])
    size = {key: int(value.split()[0]) for key, value in sizes.items()}
    return {"resident": size["Rss"], "proportional": size["Pss"],
            "unshared": size["Private_Clean"] + size["Private_Dirty"]}
