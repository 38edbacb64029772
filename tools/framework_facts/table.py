"""The table of facts: one line of JSON for each name, [kind, name, facts]."""

import json


def read_table(path):
    """Facts by kind and name."""
    with open(path, encoding="utf-8") as file:
        rows = [json.loads(line) for line in file if line.strip()]
    return {(kind, name): facts for kind, name, facts in rows}


def write_table(path, table):
    with open(path, "w", encoding="utf-8") as file:
        for (kind, name), facts in sorted(table.items()):
            file.write(json.dumps([kind, name, facts], sort_keys=True, ensure_ascii=False) + "\n")
