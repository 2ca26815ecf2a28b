"""The clocks of one program, which a test sets. Only the resident program heeds them."""

import mmap
import os
import struct

SIZE = 4096  # as much as the plan of faults needs, whose first numbers these are


class Clocks:
    def __init__(self, path):
        path.write_bytes(bytes(SIZE))
        with open(path, "r+b") as file:
            self._plan = mmap.mmap(file.fileno(), SIZE)
        self.environment = {"LD_PRELOAD": os.path.abspath(os.environ["FAILING_CALLS"]), "MARVELODE_FAULT_PLAN": str(path)}
        self._passed = self._asleep = self._set = 0

    def pass_time(self, seconds):
        """Sets all clocks ahead, as if the program had not run for that long."""
        self._passed += seconds
        self._write()

    def sleep(self, seconds):
        """Sets those ahead that count sleep."""
        self._asleep += seconds
        self._write()

    def set_wall_clock(self, seconds):
        """Sets the clock that a person reads that much ahead of the others; negative for behind."""
        self._set = seconds
        self._write()

    def _write(self):
        struct.pack_into("qqq", self._plan, 0, self._passed, self._asleep, self._set)
