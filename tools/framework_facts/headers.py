"""Reads declarations out of framework headers with the compiler's own parser."""

import ctypes
import glob
import os
import re
from dataclasses import dataclass

import clang.cindex as cindex
from clang.cindex import CursorKind, TypeKind

LIBRARY = "/usr/lib/llvm-19/lib/libclang-19.so.1"
OWN_HEADERS = "/usr/lib/llvm-19/lib/clang/19"  # the library does not find them from its own folder

LETTERS = {
    TypeKind.VOID: "v", TypeKind.BOOL: "B", TypeKind.CHAR_S: "c", TypeKind.SCHAR: "c", TypeKind.CHAR_U: "C",
    TypeKind.UCHAR: "C", TypeKind.SHORT: "s", TypeKind.USHORT: "S", TypeKind.INT: "i", TypeKind.UINT: "I",
    TypeKind.LONG: "q", TypeKind.ULONG: "Q", TypeKind.LONGLONG: "q", TypeKind.ULONGLONG: "Q",
    TypeKind.FLOAT: "f", TypeKind.DOUBLE: "d", TypeKind.OBJCID: "@", TypeKind.OBJCCLASS: "#", TypeKind.OBJCSEL: ":",
    TypeKind.OBJCOBJECTPOINTER: "@", TypeKind.BLOCKPOINTER: "@?",
}


@dataclass(frozen=True)
class Declaration:
    """One declaration; `facts` has the keys of the table."""

    kind: str  # class, protocol, method, function, constant, extern, macro, struct
    name: str
    place: str  # file and line
    facts: dict


class ParseError(Exception):
    """The headers do not compile; the text gives the reason."""


def read_headers(root, arguments):
    """The declarations in all headers below `root`, which are parsed as one Objective-C++ source."""
    if not cindex.Config.loaded:
        cindex.Config.set_library_file(LIBRARY)
    paths = sorted(glob.glob(f"{root}/**/*.h", recursive=True))
    source = os.path.join(root, "every header.mm")
    text = "".join(f'#import "{path}"\n' for path in paths)
    unit = cindex.Index.create().parse(
        source, args=["-resource-dir", OWN_HEADERS, *arguments, "-x", "objective-c++", f"-isystem{root}"],
        unsaved_files=[(source, text)],
        options=cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD,
    )
    errors = [str(diagnostic) for diagnostic in unit.diagnostics if diagnostic.severity >= cindex.Diagnostic.Error]
    if errors:
        raise ParseError("\n".join(errors))
    return list(_Walk(os.path.realpath(root)).declarations(unit.cursor))


def kind_of(type_):
    """The cursor's kind, or None if the Python library has no name for it, as for a collection's type parameter."""
    try:
        return type_.kind
    except ValueError:
        return None


def shape_of(type_, behind_pointer=False):
    """The shape of a compiler's type; see shapes.py."""
    canonical = type_.get_canonical()
    kind = kind_of(canonical)
    if kind == TypeKind.OBJCOBJECTPOINTER and canonical.spelling.startswith("Class"):
        return "#"
    if kind in LETTERS:
        return LETTERS[kind]
    if kind == TypeKind.ENUM:
        return shape_of(canonical.get_declaration().enum_type)
    if kind in (TypeKind.POINTER, TypeKind.INCOMPLETEARRAY):
        target = canonical.get_pointee() if kind == TypeKind.POINTER else canonical.element_type
        if kind_of(target.get_canonical()) in (TypeKind.FUNCTIONPROTO, TypeKind.FUNCTIONNOPROTO):
            return "^?"
        if target.kind == TypeKind.OBJCSEL:  # a selector is a pointer to the compiler and a letter in encodings
            return ":"
        return ("^", shape_of(target, behind_pointer=True))
    if kind == TypeKind.CONSTANTARRAY:
        return ("[", canonical.element_count, shape_of(canonical.element_type))
    if kind == TypeKind.RECORD:
        return _record_shape(canonical.get_declaration(), behind_pointer)
    return "@"  # a type parameter


def _fields(cursor):
    return [child for child in cursor.get_children() if child.kind == CursorKind.FIELD_DECL]


def _record_shape(cursor, behind_pointer=False):
    letter = "(" if cursor.kind == CursorKind.UNION_DECL else "{"
    name = cursor.spelling if re.fullmatch(r"\w+", cursor.spelling or "") else "?"
    members = None if behind_pointer else tuple(shape_of(field.type) for field in _fields(cursor))
    return (letter, name, members)


def class_of(type_):
    """Name of the class behind an object, or behind a pointer to one; "id" for any, "" for no object."""
    if "instancetype" in type_.spelling:
        return "instancetype"
    canonical = type_.get_canonical()
    while kind_of(canonical) in (TypeKind.POINTER, TypeKind.INCOMPLETEARRAY):
        canonical = canonical.get_pointee() if kind_of(canonical) == TypeKind.POINTER else canonical.element_type
        canonical = canonical.get_canonical()
    if kind_of(canonical) != TypeKind.OBJCOBJECTPOINTER:
        return "id" if shape_of(canonical) == "@" else ""
    name = re.match(r"(?:(?:const|__\w+)\s+)*(\w+)", canonical.spelling)
    return name[1] if name else "id"


class _Version(ctypes.Structure):
    _fields_ = [("major", ctypes.c_int), ("minor", ctypes.c_int), ("patch", ctypes.c_int)]


class _Availability(ctypes.Structure):
    _fields_ = [("platform", cindex._CXString), ("introduced", _Version), ("deprecated", _Version),
                ("obsoleted", _Version), ("unavailable", ctypes.c_int), ("message", cindex._CXString)]


def _introduced(cursor):
    """Version of macOS in the declaration's own annotation, or None."""
    found = (_Availability * 8)()
    ignored = ctypes.c_int(), cindex._CXString(), ctypes.c_int(), cindex._CXString()
    count = cindex.conf.lib.clang_getCursorPlatformAvailability(
        cursor, *(ctypes.byref(value) for value in ignored), found, ctypes.c_int(len(found))
    )
    for entry in found[: min(count, len(found))]:
        if entry.platform.spelling == b"macos":
            version = entry.introduced
            parts = [version.major, max(version.minor, 0), max(version.patch, 0)]
            return ".".join(map(str, parts[: 3 if parts[2] else 2]))
    return None


class _Walk:
    def __init__(self, root):
        self.root = root

    def place(self, cursor):
        return f"{os.path.relpath(os.path.realpath(cursor.location.file.name), self.root)}:{cursor.location.line}"

    def is_ours(self, cursor):
        file = cursor.location.file
        return file is not None and os.path.realpath(file.name).startswith(self.root + os.sep)

    def declarations(self, parent):
        for cursor in parent.get_children():
            if cursor.kind in (CursorKind.LINKAGE_SPEC, CursorKind.UNEXPOSED_DECL):
                yield from self.declarations(cursor)
            elif self.is_ours(cursor):
                yield from self.one(cursor)

    def one(self, cursor):
        kind = cursor.kind
        if kind == CursorKind.OBJC_INTERFACE_DECL:
            yield from self.container(cursor, "class", cursor.spelling)
        elif kind == CursorKind.OBJC_PROTOCOL_DECL:
            yield from self.container(cursor, "protocol", f"<{cursor.spelling}>")
        elif kind == CursorKind.OBJC_CATEGORY_DECL:
            extended = next(child for child in cursor.get_children() if child.kind == CursorKind.OBJC_CLASS_REF)
            yield from self.members(cursor, extended.spelling)
        elif kind == CursorKind.FUNCTION_DECL:
            variadic = kind_of(cursor.type) == TypeKind.FUNCTIONPROTO and cursor.type.is_function_variadic()
            yield self.callable(cursor, "function", cursor.spelling, {"variadic": variadic})
        elif kind == CursorKind.ENUM_DECL:
            for constant in cursor.get_children():
                if constant.kind == CursorKind.ENUM_CONSTANT_DECL:
                    facts = {"value": constant.enum_value, "type": shape_of(cursor.enum_type)}
                    yield Declaration("constant", constant.spelling, self.place(constant), facts)
        elif kind == CursorKind.VAR_DECL:
            facts = {"shapes": [shape_of(cursor.type)], "classes": [class_of(cursor.type)],
                     "since": _introduced(cursor)}
            yield Declaration("extern", cursor.spelling, self.place(cursor), facts)
        elif kind in (CursorKind.STRUCT_DECL, CursorKind.UNION_DECL):
            yield from self.record(cursor)
        elif kind == CursorKind.MACRO_DEFINITION:
            yield from self.macro(cursor)

    def container(self, cursor, kind, name):
        children = list(cursor.get_children())
        facts = {"protocols": [child.spelling for child in children if child.kind == CursorKind.OBJC_PROTOCOL_REF]}
        if kind == "class":
            above = [child.spelling for child in children if child.kind == CursorKind.OBJC_SUPER_CLASS_REF]
            facts["superclass"] = above[0] if above else None
            facts["since"] = _introduced(cursor)
        yield Declaration(kind, name.strip("<>"), self.place(cursor), facts)
        yield from self.members(cursor, name)

    def members(self, cursor, owner):
        for child in cursor.get_children():
            if child.kind not in (CursorKind.OBJC_INSTANCE_METHOD_DECL, CursorKind.OBJC_CLASS_METHOD_DECL):
                continue
            sign = "-" if child.kind == CursorKind.OBJC_INSTANCE_METHOD_DECL else "+"
            optional = bool(cindex.conf.lib.clang_Cursor_isObjCOptional(child))
            yield self.callable(child, "method", f"{sign}[{owner} {child.spelling}]", {"optional": optional})

    def callable(self, cursor, kind, name, more):
        types = [cursor.result_type, *(argument.type for argument in cursor.get_arguments())]
        blocks = {}
        for place, type_ in enumerate(types):
            canonical = type_.get_canonical()
            if kind_of(canonical) == TypeKind.BLOCKPOINTER:
                signature = canonical.get_pointee()
                blocks[str(place)] = [shape_of(signature.get_result()), *map(shape_of, signature.argument_types())]
        facts = {"shapes": [shape_of(type_) for type_ in types], "classes": [class_of(type_) for type_ in types],
                 "blocks": blocks, "since": _introduced(cursor), **more}
        return Declaration(kind, name, self.place(cursor), facts)

    def record(self, cursor):
        fields = _fields(cursor)
        name = cursor.type.spelling.removeprefix("struct ").removeprefix("union ")
        if fields and cursor.is_definition() and re.fullmatch(r"\w+", name):
            facts = {"shapes": [_record_shape(cursor)], "fields": [field.spelling for field in fields],
                     "alignment": cursor.type.get_align()}
            yield Declaration("struct", name, self.place(cursor), facts)

    def macro(self, cursor):
        tokens = [token.spelling for token in cursor.get_tokens()]
        if len(tokens) == 2 and re.fullmatch(r'"[^"\\]*"', tokens[1]):
            yield Declaration("macro", cursor.spelling, self.place(cursor), {"value": tokens[1][1:-1]})
