"""Shapes of types: how the machine sees a type, without the names of typedefs and classes.

A shape is a letter of Objective-C's type encoding ("i", "Q", "@", "@?" for a block) or a tuple: ("^", shape) for a
pointer, ("[", length, shape) for an array and ("{" or "(", name, members) for a struct or union. The members of a
record behind a pointer are None. "^?" is a pointer to a function.
"""

QUALIFIERS = "rnNoORVA"
SAME = {"t": "c", "T": "S", "l": "q", "L": "Q"}  # spellings that a table uses besides the compiler's
CLOSING = {"{": "}", "(": ")"}


class _Reader:
    def __init__(self, text):
        self.text, self.at = text, 0

    def take(self):
        self.at += 1
        return self.text[self.at - 1]

    def take_until(self, ends):
        start = self.at
        while self.text[self.at] not in ends:
            self.at += 1
        return self.text[start : self.at]

    def next_is(self, letter):
        return self.text[self.at : self.at + 1] == letter

    def shape(self, behind_pointer=False):
        letter = self.take()
        while letter in QUALIFIERS:
            letter = self.take()
        if letter == "^":
            if self.next_is("?"):
                self.take()
                return "^?"
            return ("^", self.shape(behind_pointer=True))
        if letter in CLOSING:
            return self.record(letter, behind_pointer)
        if letter == "[":
            length = int(self.take_until("{([^@?bBcCsSiIlLqQfdvtTZ#:*"))
            element = self.shape()
            self.take()
            return ("[", length, element)
        if letter == "@" and self.next_is("?"):
            self.take()
            return "@?"
        return ("^", "c") if letter == "*" else SAME.get(letter, letter)

    def record(self, letter, behind_pointer):
        name = self.take_until("=" + CLOSING[letter])
        members = []
        if self.take() == "=":
            while not self.next_is(CLOSING[letter]):
                members.append(self.shape(behind_pointer))
            self.take()
        return (letter, name, None if behind_pointer else tuple(members))


def read_shape(encoding):
    """The shape of a type encoding, which has no stack offsets."""
    reader = _Reader(encoding)
    shape = reader.shape()
    if reader.at != len(encoding):
        raise ValueError(f"more than one type: {encoding}")
    return shape


def agree(known, declared, boolean):
    """Whether the declared shape agrees with the known one. `boolean` is the letter of BOOL for the processor."""
    if known == declared:
        return True
    if known == "?":  # the type parameter of a collection
        return declared in ("@", "@?")
    if known == "^?":  # an array of objects, which a table cannot distinguish from a pointer to a function
        return declared == ("^", "@")
    if known == "Z":  # BOOL, or the Boolean of C functions
        return declared in (boolean, "C")
    if known == "@":  # a C function that takes objects of any kind
        return declared == ("^", "v")
    if not isinstance(known, tuple) or not isinstance(declared, tuple) or known[0] != declared[0]:
        return False
    if known[0] == "^":
        return agree(known[1], declared[1], boolean)
    if known[0] == "[":
        return known[1] == declared[1] and agree(known[2], declared[2], boolean)
    return _records_agree(known, declared, boolean)


def _records_agree(known, declared, boolean):
    _, known_name, known_members = known
    _, name, members = declared
    if "?" not in (known_name, name) and known_name != name:  # "?": named by a typedef only
        return False
    if known_members is None or members is None:
        return True
    return len(known_members) == len(members) and all(
        agree(one, other, boolean) for one, other in zip(known_members, members)
    )


def text_of(shape):
    """The shape as an encoding, for messages."""
    if not isinstance(shape, tuple):
        return shape
    if shape[0] == "^":
        return "^" + text_of(shape[1])
    if shape[0] == "[":
        return f"[{shape[1]}{text_of(shape[2])}]"
    members = "" if shape[2] is None else "=" + "".join(map(text_of, shape[2]))
    return f"{shape[0]}{shape[1]}{members}{CLOSING[shape[0]]}"
