#!/usr/bin/python3
"""The part of `run` inside the namespaces: run.py INSTALLED TOOL... -- [--long] [PROMISE...]"""

import argparse
import sys

sys.dont_write_bytecode = True

import promises  # noqa: E402, F401
from harness import rung  # noqa: E402
from harness.sandbox import Sandbox  # noqa: E402


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--installed", required=True)
    parser.add_argument("--tool", action="append", default=[])
    parser.add_argument("--source", required=True)
    parser.add_argument("--asan")
    parser.add_argument("--tsan")
    parser.add_argument("--long", action="store_true")
    parser.add_argument("promises", nargs="*")
    options = parser.parse_args()
    sandbox = Sandbox(options.installed, options.tool)
    try:
        return rung.run(sandbox, options)
    finally:
        sandbox.stop()


if __name__ == "__main__":
    sys.exit(main())
