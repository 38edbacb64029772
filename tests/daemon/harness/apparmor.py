"""Evaluates the rules of an AppArmor profile without a kernel that has AppArmor."""

import re

from .sandbox import command


class Profile:
    """Reads the kinds of rules that the daemon's profile has: those that allow files and messages, none that denies."""

    def __init__(self, path):
        text = re.sub(r"(?m)(?:^|\s)#.*$", "", command("/usr/sbin/apparmor_parser", "--preprocess", path))
        head, body = re.split(r"(?m)^profile .*\{$", text)
        variables = re.findall(r"(?m)^(@\{\w+\})\s*=\s*(.*)$", head)
        self._values = {name: [value.rstrip("/") for value in values.split()] for name, values in variables}
        self.rules = [" ".join(rule.split()) for rule in re.split(r",\s*\n", body.rpartition("}")[0]) if rule.strip()]
        files = (re.fullmatch(r"(?:owner )?((?:/|@\{)\S*) ([a-z]+)", rule) for rule in self.rules)
        self._files = [(self._expression(found[1]), found[2]) for found in files if found]
        messages = (re.fullmatch(r"dbus (send|receive) (.*)", rule) for rule in self.rules)
        self._messages = [(found[1], self._conditions(found[2])) for found in messages if found]

    def allows_file(self, path, access):
        """`access` is r, w or rw; the path of a folder ends with a slash."""
        granted = "".join(letters for expression, letters in self._files if expression.fullmatch(path))
        return set(access) <= set(granted)

    def allows_message(self, direction, **fields):
        """`direction` is send or receive, the fields are path, interface and member."""
        return any(way == direction and
                   all(expression.fullmatch(fields[name]) for name, expression in conditions.items())
                   for way, conditions in self._messages)

    def _conditions(self, text):
        pairs = dict(word.split("=", 1) for word in text.split())
        assert pairs.pop("bus") == "system" and set(pairs) <= {"path", "interface", "member"}, text
        return {name: self._expression(value.strip('"')) for name, value in pairs.items()}

    def _expression(self, pattern):
        while "@{" in pattern:
            pattern = re.sub(r"@\{\w+\}", lambda found: "{" + ",".join(self._values[found[0]]) + "}", pattern)
        pieces = {"**": ".*", "*": "[^/]*", "?": "[^/]", "{": "(?:", ",": "|", "}": ")"}
        return re.compile("".join(piece if piece.startswith("[") else pieces.get(piece) or re.escape(piece)
                                  for piece in re.findall(r"\[[^]]*\]|\*\*|.", pattern)))
