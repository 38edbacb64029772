"""Checks a condition repeatedly until it holds or a deadline has passed."""

import time


def wait_for(condition, seconds, what, pause=0.002):
    """Returns the first true value of `condition`. Raises AssertionError, naming `what`, at the deadline."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() >= deadline:
            raise AssertionError(f"not within {seconds} s: {what}")
        time.sleep(pause)


def let_pass(seconds):
    """Waits while something is measured, such as an idle process."""
    time.sleep(seconds)
