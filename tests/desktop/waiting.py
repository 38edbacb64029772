"""The one place where a desktop test pauses: between two looks at a condition, until a deadline."""

import time


def until(condition, what, seconds=10.0, pause=0.02):
    """Returns the first true value of `condition`; fails with `what` when none came in time."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds:g} s: {what}")
        time.sleep(pause)


def holds(condition, what, seconds, pause=0.02):
    """Fails when `condition` is false at any look within that time."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if not condition():
            raise AssertionError(f"not for {seconds:g} s: {what}")
        time.sleep(pause)
