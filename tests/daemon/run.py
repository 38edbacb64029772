#!/usr/bin/python3
"""The part of `run` inside the namespaces."""

import argparse
import os
import signal
import sys

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../tools/session"))

import promises  # noqa: E402, F401
from harness import rung  # noqa: E402
from harness.sandbox import Sandbox  # noqa: E402
from promises.soak import soak  # noqa: E402

# Promises for builds with checks, in less than a minute: parsing, threads, and ends in the middle of something.
CHECKED = ["P3", "P8", "P9", "P10", "P13", "P14", "P14b", "P16", "P18", "P21"]
# The other promises of those builds. Their size and speed are no promises, and the unit does not confine them.
CHECKED_LONG = ["P1", "P2", "P5", "P6", "P6b", "P7", "P11", "P12", "P20", *CHECKED]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--installed", required=True)
    parser.add_argument("--tool", action="append", default=[])
    parser.add_argument("--source", required=True)
    parser.add_argument("--build", required=True)
    parser.add_argument("--program")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--soak", type=float)
    parser.add_argument("promises", nargs="*")
    options = parser.parse_args()
    if options.build != "shipped" and not options.promises:
        options.promises = CHECKED_LONG if options.long else CHECKED
    signal.signal(signal.SIGHUP, signal.SIG_DFL)  # nohup ignores it, and the daemon's targets would inherit that
    sandbox = Sandbox(options.installed, options.tool, options.build, options.program)
    try:
        return soak(sandbox, options) if options.soak else rung.run(sandbox, options)
    finally:
        sandbox.stop()


if __name__ == "__main__":
    sys.exit(main())
