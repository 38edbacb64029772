"""A table of measures with their gates."""

import json
import platform
import statistics
import time


class Row:
    """One measurement: its values, and the limit (gate) and goal (aim) of their median."""

    def __init__(self, name, unit, values, gate=None, aim=None, digits=2):
        self.name, self.unit, self.gate, self.aim, self.digits = name, unit, gate, aim, digits
        self.values = list(values) if isinstance(values, (list, tuple)) else [values]

    @property
    def median(self):
        return statistics.median(self.values)

    @property
    def verdict(self):
        if self.gate is not None and self.median > self.gate:
            return "MISSED"
        if self.aim is not None and self.median <= self.aim:
            return "aim"
        return "gate" if self.gate is not None else "" if self.aim is None else "above aim"

    def cells(self):
        def number(value):
            return "" if value is None else f"{value:,.{self.digits}f}"

        lone = len(self.values) == 1
        return [
            self.name, self.unit, "" if lone else number(min(self.values)), number(self.median),
            "" if lone else number(max(self.values)), number(self.gate), number(self.aim), self.verdict,
        ]

    def as_json(self):
        return {"name": self.name, "unit": self.unit, "min": min(self.values), "median": self.median,
                "max": max(self.values), "gate": self.gate, "aim": self.aim, "verdict": self.verdict}


class Report:
    HEAD = ["measure", "unit", "min", "median", "max", "gate", "aim", ""]

    def __init__(self, title):
        self.title, self.rows, self.notes, self.failures = title, [], [], []

    def add(self, *arguments, **options):
        self.rows.append(Row(*arguments, **options))

    def note(self, text):
        self.notes.append(text)

    def fail(self, text):
        """Records something worse than a missed gate."""
        self.failures.append(text)

    def missed(self):
        return [f"{row.name} ({row.unit})" for row in self.rows if row.verdict == "MISSED"] + self.failures

    def show(self):
        table = [self.HEAD, *(row.cells() for row in self.rows)]
        widths = [max(len(line[column]) for line in table) for column in range(len(self.HEAD))]
        print(f"\n{self.title}")
        for line in table:
            left = [line[column].ljust(widths[column]) for column in (0, 1)]
            right = [line[column].rjust(widths[column]) for column in range(2, 7)]
            print("  " + "  ".join([*left, *right, line[7]]).rstrip())
        for note in self.notes:
            print(f"  {note}")
        if self.missed():
            print("  missed: " + ", ".join(self.missed()))

    def save(self, path):
        record = {"title": self.title, "kernel": platform.release(), "at": time.strftime("%Y-%m-%dT%H:%M:%S%z"),
                  "rows": [row.as_json() for row in self.rows], "notes": self.notes, "missed": self.missed()}
        with open(path, "w", encoding="utf-8") as file:
            json.dump(record, file, indent=2)
            file.write("\n")
        print(f"  -> {path}")
