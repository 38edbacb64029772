"""Pauses for the scripts that drive a program: only here, between two checks of a condition, until a deadline."""

import math
import time


class Missing(AssertionError):
    """Something that a user would see or get did not appear."""


def wait_for(condition, what, seconds=20.0, pause=0.02):
    """Returns the first true value of `condition`; fails with `what` if there is none in time."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise Missing(f"not within {seconds:g} s: {what}")
        time.sleep(pause)


def settled(look, what, seconds=20.0, pause=0.2):
    """Returns the first true value that `look` returns twice in a row."""
    last = None

    def comes_again():
        nonlocal last
        before, last = last, look()
        return last if last == before else None

    return wait_for(comes_again, what, seconds, pause)


def holds(condition, what, seconds, pause=0.02):
    """Fails if a check of `condition` within that time finds it false."""
    end = time.monotonic() + seconds

    def lasted():
        if not condition():
            raise Missing(f"{what} did not last for {seconds:g} s")
        return time.monotonic() >= end

    wait_for(lasted, what, math.inf, pause)
