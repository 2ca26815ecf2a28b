"""Waiting for something to become true, never for a time to pass."""

import time


def wait_until(condition, what, seconds=10):
    """Asks `condition()` again and again until its answer is true, and returns that answer."""
    deadline = time.monotonic() + seconds
    while not (answer := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {seconds} seconds for {what}")
        time.sleep(0.02)
    return answer
