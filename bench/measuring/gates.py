"""What each measure may be at most, and what it should be: bench/gates.json."""

import json
import os

with open(os.path.join(os.path.dirname(os.path.dirname(os.path.realpath(__file__))), "gates.json"),
          encoding="utf-8") as _file:
    _GATES = json.load(_file)


def gates(command, measure):
    """The options of Report.add for a measure of that file; a name that is not in it is a mistake."""
    entry = _GATES[command][measure]
    return {"gate": entry.get("gate"), "aim": entry.get("aim")}
