#!/usr/bin/python3
"""A random day: whatever happens to the timer and around it, it goes on, and grows by nothing.

Run by `./test monkey MINUTES [SEED]`. The seed is the date of the day if none is given; the same seed leads to the same
deeds in the same order.
"""

import os
import time
import unittest

from driving.desktop import Desktop
from driving.monkey import Monkey

SEED = int(os.environ.get("MONKEY_SEED") or time.strftime("%Y%m%d"))
MINUTES = float(os.environ.get("MONKEY_MINUTES") or 2)
DEEDS_BETWEEN_REMINDERS = 20


class RandomDay(unittest.TestCase):
    def test_whatever_happens_the_timer_goes_on(self):
        print(f"seed {SEED}, {MINUTES} minutes", flush=True)
        end = time.monotonic() + 60 * MINUTES
        with Desktop() as desktop:
            monkey = Monkey(desktop, SEED)
            try:
                while time.monotonic() < end:
                    monkey.act()
                    if len(monkey.done) % DEEDS_BETWEEN_REMINDERS == 0:
                        monkey.expect_a_reminder()
                monkey.expect_a_reminder()
                monkey.expect_rest()
            except BaseException:
                print("\n".join([f"seed {SEED}, after these deeds:", *monkey.done[-40:], "which were the last of "
                                 f"{len(monkey.done)}, the program had written:", monkey.timer.program.output()]))
                raise
        print(f"{len(monkey.done)} deeds")


if __name__ == "__main__":
    unittest.main()
