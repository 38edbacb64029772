"""Reads the files of the tree: their includes, and their code without comments and literals."""

import os
import re
from dataclasses import dataclass, field

CODE_SUFFIXES = (".h", ".cpp", ".mm")

_COMMENT_OR_LITERAL = re.compile(
    r"""//[^\n]*
      | /\*.*?\*/
      | R"(?P<fence>[^(\s]*)\(.*?\)(?P=fence)"
      | "(?:\\.|[^"\\\n])*"
      | (?<![0-9A-Za-z_])'(?:\\.|[^'\\\n])+'   # not the separator of 1'000'000
    """,
    re.VERBOSE | re.DOTALL,
)
_INCLUDE = re.compile(r'^[ \t]*#[ \t]*(?:include|import)[ \t]*(<[^>\n]+>|"[^"\n]+")', re.MULTILINE)


@dataclass(frozen=True)
class Include:
    line: int
    target: str
    quoted: bool


@dataclass
class SourceFile:
    path: str  # path from the root of the tree, with slashes
    text: str
    code: str = field(init=False)  # the same lines with comments and literals blanked
    includes: list = field(init=False)

    def __post_init__(self):
        self.code = _COMMENT_OR_LITERAL.sub(_blank, self.text)
        self.includes = [
            Include(self.text.count("\n", 0, match.start()) + 1, match[1][1:-1], match[1][0] == '"')
            for match in _INCLUDE.finditer(self.text)
            if self.code[match.start() : match.start(1)].strip().startswith("#")
        ]

    @property
    def name(self):
        return os.path.splitext(os.path.basename(self.path))[0]

    def line_of(self, offset):
        return self.text.count("\n", 0, offset) + 1


def _blank(match):
    return re.sub(r"[^\n]", " ", match[0])


def read_tree(root, folder, suffixes=CODE_SUFFIXES):
    """Every file below `folder` with one of the suffixes, in the order of their paths."""
    found = []
    for parent, folders, names in os.walk(os.path.join(root, folder)):
        folders[:] = sorted(name for name in folders if name != "__pycache__")
        for name in sorted(names):
            if name.endswith(suffixes):
                full = os.path.join(parent, name)
                with open(full, encoding="utf-8") as file:
                    found.append(SourceFile(os.path.relpath(full, root).replace(os.sep, "/"), file.read()))
    return found
