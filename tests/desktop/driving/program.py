"""A program that a test has started: what it says, what it starts and how it ends."""

import os
import subprocess
from pathlib import Path

from . import processes
from .waiting import wait_until


class Program:
    """A program that was started on a desktop."""

    def __init__(self, command, environment, log):
        self.log = log
        self._folder = os.path.dirname(os.path.realpath(command[0]))
        with open(log, "wb") as file:
            self.process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=file,
                                             stderr=subprocess.STDOUT, preexec_fn=processes.end_with_parent)
        self.pid = self.process.pid

    def is_running(self):
        return self.process.poll() is None

    def output(self):
        """What it has written so far, errors included."""
        return Path(self.log).read_text(errors="replace")

    def send(self, number):
        self.process.send_signal(number)

    def status(self, seconds=10):
        """Its exit status, negative for a signal; waits for it to end."""
        wait_until(lambda: not self.is_running(), "the program to end", seconds)
        return self.process.returncode

    def helpers(self):
        """The pids of the programs that it has started and that are still running."""
        return [pid for pid in processes.descendants(self.pid) if processes.executable(pid)]

    def left_behind(self):
        """The processes of its folder that are still running although it has ended, by pid."""
        processes.reap()
        running = {pid: processes.executable(pid) for pid in processes.descendants()}
        return {pid: path for pid, path in running.items() if path.startswith(self._folder + "/")}
