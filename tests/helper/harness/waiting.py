"""Looks at a condition again and again until it holds or a deadline has passed."""

import time


def wait_for(condition, seconds, what, pause=0.002):
    """What `condition` gave when it held. AssertionError, naming `what`, when it never did."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() >= deadline:
            raise AssertionError(f"not within {seconds} s: {what}")
        time.sleep(pause)


def let_pass(seconds):
    """For what is measured over a span, such as the quiet of an idle process."""
    time.sleep(seconds)
