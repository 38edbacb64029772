"""Waits while something is measured, such as an idle process."""

import time


def let_pass(seconds):
    time.sleep(seconds)
