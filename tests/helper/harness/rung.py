"""Promises, their figures and the result of a run."""

import time
import traceback

PROMISES = []


def promise(name, text):
    """Marks a function that keeps, or breaks, one promise. It gets a Rung."""

    def register(function):
        PROMISES.append((name, text, function))
        return function

    return register


class Rung:
    """What a promise works with: the sandbox, and `figure` to lay a measured value beside its target."""

    def __init__(self, sandbox, options):
        self.sandbox = sandbox
        self.options = options
        self.broken = []

    def figure(self, what, value, target, unit="", at_least=False):
        kept = value >= target if at_least else value <= target
        relation = ">=" if at_least else "<="
        shown = f"{value:.6g}" if isinstance(value, float) else str(value)
        self._tell(kept, f"{what}: {shown}{unit} (target {relation} {target}{unit})")

    def equal(self, what, value, target):
        self._tell(value == target, f"{what}: {value} (target {target})")

    def holds(self, what, condition):
        self._tell(bool(condition), what)

    def _tell(self, kept, line):
        if not kept:
            self.broken.append(line)
        print(f"      {'kept  ' if kept else 'BROKEN'} {line}", flush=True)


def run(sandbox, options):
    """0 when every promise that was asked for was kept."""
    chosen = [entry for entry in PROMISES if not options.promises or entry[0] in options.promises]
    assert chosen, "no such promise"
    passed = failed = 0
    for name, text, function in chosen:
        print(f"{name}  {text}", flush=True)
        start = time.monotonic()
        rung = Rung(sandbox, options)
        mark = len(sandbox.log())
        try:
            function(rung)
        except Exception:  # the run goes on with the next promise
            rung.broken.append("an exception")
            traceback.print_exc()
        try:
            sandbox.stop()
        except Exception:
            rung.broken.append("the sandbox could not be cleared")
            traceback.print_exc()
        seconds = time.monotonic() - start
        if rung.broken:
            failed += 1
            print("      the daemon's log:", *sandbox.log()[mark:].splitlines()[-40:], sep="\n      | ", flush=True)
        else:
            passed += 1
        print(f"      {'FAILED' if rung.broken else 'ok'} in {seconds:.1f} s", flush=True)
    print(f"{passed} passed, {failed} failed", flush=True)
    return 1 if failed else 0
