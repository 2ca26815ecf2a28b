"""What was measured, beside its goals."""

from dataclasses import dataclass


@dataclass
class Figure:
    """What the timer was measured to take, and what a floor took; each goal is the most that it may be."""

    name: str
    value: float
    unit: str = ""
    floor: float | None = None
    most: float | None = None        # in the same unit
    most_times: float | None = None  # of the floor

    @property
    def times(self):
        return None if self.floor is None else self.value / self.floor

    @property
    def is_met(self):
        """Whether it keeps to its goals; nothing where it has none."""
        goals = [(self.value, self.most), (self.times, self.most_times)]
        kept = [value <= most for value, most in goals if most is not None]
        return all(kept) if kept else None

    def cells(self):
        return [self.name, amount(self.value, self.unit), amount(self.floor, self.unit), amount(self.times),
                self._goal(), {True: "ok", False: "missed", None: ""}[self.is_met]]

    def _goal(self):
        if self.most_times is not None:
            return f"≤ {self.most_times:g} times"
        return "" if self.most is None else f"≤ {self.most:g} {self.unit}".rstrip()


def amount(value, unit=""):
    return "" if value is None else f"{value:.2f} {unit}".rstrip()


def table(rows):
    """Rows of texts as lines of aligned columns, the first one to the left."""
    widths = [max(map(len, column)) for column in zip(*rows)]
    return "\n".join("  ".join([row[0].ljust(widths[0]), *map(str.rjust, row[1:], widths[1:])]).rstrip()
                     for row in rows)


def report(figures):
    """The table of all figures."""
    return table([["", "timer", "floor", "times", "goal", ""], *(each.cells() for each in figures)])


def status(figures):
    """The exit status: 1 if any goal is missed."""
    return int(any(each.is_met is False for each in figures))
