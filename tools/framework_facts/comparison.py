"""Differences between a declaration and the facts about it."""

from .shapes import agree, read_shape, text_of

# A BOOL is a type of its own on one processor and a signed char on the other.
BOOLEAN = {"arm64": "B", "x86_64": "c"}


def differences(declaration, known, processor):
    """Yields a sentence for each difference. `known` is the declaration's entry in the table, or None."""
    if known is None:
        return ["nothing is known of it"]
    if "unconfirmed" in known:
        return []
    facts = declaration.facts
    found = []
    for key, check in _CHECKS.items():
        if key in facts and (key in known or key in _ALSO_WHEN_UNKNOWN):
            found.extend(check(facts[key], known.get(key), processor))
    return found


def _shapes(declared, known, processor):
    wanted = [read_shape(encoding) for encoding in known]
    boolean = BOOLEAN[processor]
    if len(wanted) != len(declared) or not all(agree(one, other, boolean) for one, other in zip(wanted, declared)):
        yield f"is ({' '.join(map(text_of, declared))}), should be ({' '.join(map(text_of, wanted))})"


def _blocks(declared, known, processor):
    for place, encodings in known.items():
        if place not in declared:
            yield f"has no block at place {place}"
            continue
        for difference in _shapes(declared[place], encodings, processor):
            yield f"the block at place {place} {difference}"


def _classes(declared, known, _):
    for place, (name, wanted) in enumerate(zip(declared, known)):
        if wanted and name != wanted:
            yield f"has {name or 'no object'} at place {place}, should have {wanted}"


def _protocols(declared, known, _):
    for name in declared:
        if name not in known:
            yield f"does not adopt {name}"


def _value(declared, known, _):
    # A table may have a 32-bit value with or without its sign.
    both_numbers = isinstance(declared, int) and isinstance(known, int)
    if declared != known and not (both_numbers and (declared - known) % (1 << 32) == 0):
        yield f"is {declared!r}, should be {known!r}"


def _type(declared, known, _):
    if declared != read_shape(known):
        yield f"its type is {text_of(declared)}, should be {known}"


def _alignment(declared, known, _):
    if declared > known:
        yield f"is aligned to {declared} bytes, should be packed to {known}"


def _same(what):
    def check(declared, known, _):
        if declared != known:
            yield f"{what} is {declared}, should be {known}"

    return check


_CHECKS = {
    "shapes": _shapes,
    "classes": _classes,
    "blocks": _blocks,
    "superclass": _same("the superclass"),
    "protocols": _protocols,
    "optional": _same("optional"),
    "variadic": _same("variadic"),
    "value": _value,
    "type": _type,
    "fields": _same("the list of fields"),
    "alignment": _alignment,
    "since": _same("the first version of macOS"),
}
_ALSO_WHEN_UNKNOWN = {"since"}  # an annotation that nothing confirms is a difference
