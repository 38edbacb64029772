"""Runs promises, and prints their figures and the result."""

import sys
import time
import traceback

PROMISES = []
# Messages about a fault from a sanitizer's or the language's run-time.
COMPLAINTS = ("AddressSanitizer", "LeakSanitizer", "runtime error", "ThreadSanitizer", "terminate called",
              "broken invariant")


def complaints(text):
    return [line for line in text.splitlines() if any(word in line for word in COMPLAINTS)][:20]


def promise(name, text):
    """Marks a function that tests one promise. It is called with a Rung."""

    def register(function):
        PROMISES.append((name, text, function))
        return function

    return register


class Rung:
    """Argument of a promise: the sandbox, and `figure` to compare a measured value with its target."""

    def __init__(self, sandbox, options):
        self.sandbox = sandbox
        self.options = options
        self.broken = []

    def figure(self, what, value, target, unit="", at_least=False, busy=None):
        """`busy` is the limit on a busy machine, for a figure that depends on the machine's speed. A build with checks
        only prints such a figure, because its speed is no promise."""
        limit = target if busy is None else busy
        is_judged = busy is None or self.sandbox.build == "shipped"
        kept = not is_judged or (value >= limit if at_least else value <= limit)
        relation = ">=" if at_least else "<="
        shown = f"{value:.4g}" if value != int(value) else str(int(value))
        accepted = "" if busy is None else f", on a busy machine {busy:g}{unit}" if is_judged else ", not judged in this build"
        self._tell(kept, f"{what}: {shown}{unit} (target {relation} {target:g}{unit}{accepted})")

    def equal(self, what, value, target):
        kept = value == target
        shown = value if not kept or len(str(value)) < 60 else "as it should be"
        self._tell(kept, f"{what}: {shown}" + ("" if shown is not value else f" (target {target})"))

    def holds(self, what, condition):
        self._tell(bool(condition), what)

    def _tell(self, kept, line):
        if not kept:
            self.broken.append(line)
        print(f"      {'kept  ' if kept else 'BROKEN'} {line}", flush=True)


def chosen(options):
    known = [name for name, _, _ in PROMISES]
    unknown = [name for name in options.promises if name not in known]
    if unknown:
        sys.exit(f"tests/daemon/run: there is no promise {', '.join(unknown)}; the promises are {', '.join(known)}")
    return [entry for entry in PROMISES if not options.promises or entry[0] in options.promises]


def run(sandbox, options):
    """Runs the selected promises; returns 0 if all were kept."""
    passed = failed = 0
    for name, text, function in chosen(options):
        print(f"{name}  {text}", flush=True)
        start = time.monotonic()
        rung = Rung(sandbox, options)
        mark = len(sandbox.log())
        try:
            function(rung)
        except Exception:  # the run continues with the next promise
            rung.broken.append("an exception")
            traceback.print_exc(file=sys.stdout)
        try:
            sandbox.stop()
        except Exception:
            rung.broken.append("the sandbox could not be cleared")
            traceback.print_exc(file=sys.stdout)
        log = sandbox.log()[mark:]
        rung.equal("complaints of the daemon's run-time", complaints(log), [])
        seconds = time.monotonic() - start
        if rung.broken:
            failed += 1
            print("      the daemon's log:", *log.splitlines()[-40:], sep="\n      | ", flush=True)
        else:
            passed += 1
        print(f"      {'FAILED' if rung.broken else 'ok'} in {seconds:.1f} s", flush=True)
    print(f"{passed} passed, {failed} failed", flush=True)
    return 1 if failed else 0
