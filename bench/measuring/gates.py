"""Limit (gate) and goal (aim) of each measurement, from bench/gates.json."""

import json
import os

with open(os.path.join(os.path.dirname(os.path.dirname(os.path.realpath(__file__))), "gates.json"),
          encoding="utf-8") as _file:
    _GATES = json.load(_file)


def gates(command, measure):
    """The options of Report.add for a measurement of that file. Raises an error for an unknown name."""
    entry = _GATES[command][measure]
    return {"gate": entry.get("gate"), "aim": entry.get("aim")}
