"""Reads a program for a Mac: its libraries, what it imports from them, and its Objective-C metadata.

The program is linked without chained fixups, so a pointer in the file is the address that it points to.
"""

import struct
from dataclasses import dataclass
from functools import cached_property

MAGIC = 0xFEEDFACF
PROCESSORS = {0x0100000C: "arm64", 0x01000007: "x86_64"}
SYMBOL_TABLE, SEGMENT, BUILD_VERSION, RUN_PATH = 0x02, 0x19, 0x32, 0x8000001C
LIBRARY, WEAK_LIBRARY = 0x0C, 0x80000018
EXTERNAL, TYPE, WEAK_REFERENCE = 0x01, 0x0E, 0x40  # of a symbol
ANY_LIBRARY = 0xFE  # the symbol is searched in every library when the program starts
RELATIVE_METHODS = 0x80000000


@dataclass(frozen=True)
class Import:
    """A symbol that the program uses from another library."""

    name: str
    library: str  # path of the library, or "" if the program does not say
    weak: bool


class MachO:
    """One program for one processor."""

    def __init__(self, data):
        self.data = data
        magic, processor, _, _, count, _, _, _ = struct.unpack_from("<8I", data)
        if magic != MAGIC:
            raise ValueError("is no 64-bit program for a Mac")
        self.processor = PROCESSORS.get(processor, hex(processor))
        self.libraries, self.weak_libraries, self.run_paths = [], [], []
        self.oldest_system = None
        self._segments, self._sections, self._symbols = [], {}, None
        at = 32
        for _ in range(count):
            command, size = struct.unpack_from("<2I", data, at)
            self._read_command(command, at)
            at += size

    def _read_command(self, command, at):
        if command in (LIBRARY, WEAK_LIBRARY):
            self.libraries.append(self._text(at + struct.unpack_from("<I", self.data, at + 8)[0]))
            if command == WEAK_LIBRARY:
                self.weak_libraries.append(self.libraries[-1])
        elif command == RUN_PATH:
            self.run_paths.append(self._text(at + struct.unpack_from("<I", self.data, at + 8)[0]))
        elif command == BUILD_VERSION:
            version = struct.unpack_from("<I", self.data, at + 12)[0]
            self.oldest_system = f"{version >> 16}.{version >> 8 & 0xFF}"
        elif command == SYMBOL_TABLE:
            self._symbols = struct.unpack_from("<4I", self.data, at + 8)
        elif command == SEGMENT:
            address, _, offset, size = struct.unpack_from("<4Q", self.data, at + 24)
            self._segments.append((address, offset, size))
            for number in range(struct.unpack_from("<I", self.data, at + 64)[0]):
                name, _, start, length = struct.unpack_from("<16s16s2Q", self.data, at + 72 + 80 * number)
                self._sections[name.rstrip(b"\0").decode()] = (start, length)

    def _text(self, offset):
        return self.data[offset : self.data.index(b"\0", offset)].decode()

    def _offset(self, address):
        for start, offset, size in self._segments:
            if start <= address < start + size:
                return address - start + offset
        raise ValueError(f"points outside the file: {address:#x}")

    def _unpack(self, layout, address):
        return struct.unpack_from("<" + layout, self.data, self._offset(address))

    def _text_at(self, address):
        return self._text(self._offset(address))

    def _pointers(self, section):
        start, length = self._sections.get(section, (0, 0))
        return self._unpack(f"{length // 8}Q", start) if length else ()

    @cached_property
    def imports(self):
        table, count, names, _ = self._symbols
        found = []
        for number in range(count):
            name, kind, _, description, _ = struct.unpack_from("<IBBHQ", self.data, table + 16 * number)
            if kind & EXTERNAL and not kind & TYPE:
                place = description >> 8
                library = self.libraries[place - 1] if 0 < place <= len(self.libraries) else ""
                found.append(Import(self._text(names + name), library, bool(description & WEAK_REFERENCE)))
        return found

    @cached_property
    def sent_selectors(self):
        """Selectors that the program sends or names."""
        return {self._text_at(pointer) for pointer in self._pointers("__objc_selrefs")}

    @cached_property
    def own_selectors(self):
        """Selectors of the methods in the program's own classes, categories and protocols."""
        lists = []
        for address in self._pointers("__objc_classlist"):
            for class_ in (address, self._unpack("Q", address)[0]):  # the second is its class: methods of the class
                facts = self._unpack("Q", class_ + 32)[0] & ~7
                lists.append(self._unpack("Q", facts + 32)[0])
        for address in self._pointers("__objc_catlist"):
            lists.extend(self._unpack("2Q", address + 16))
        for address in self._pointers("__objc_protolist"):
            lists.extend(self._unpack("4Q", address + 24))
        return {name for methods in lists if methods for name in self._method_names(methods)}

    def protocol(self, name):
        """Name and full type of each method that a protocol requires, in order; None if there is no such protocol."""
        for address in self._pointers("__objc_protolist"):
            if self._text_at(self._unpack("Q", address + 8)[0]) == name:
                methods = self._unpack("Q", address + 24)[0]
                names = list(self._method_names(methods)) if methods else []
                types = self._unpack("Q", address + 72)[0]
                return [(text, self._text_at(self._unpack("Q", types + 8 * number)[0])) for number, text in enumerate(names)]
        return None

    def _method_names(self, methods):
        flags, count = self._unpack("2I", methods)
        for number in range(count):
            if flags & RELATIVE_METHODS:  # the offset of a pointer to the name
                entry = methods + 8 + 12 * number
                yield self._text_at(self._unpack("Q", entry + self._unpack("i", entry)[0])[0])
            else:
                yield self._text_at(self._unpack("Q", methods + 8 + 24 * number)[0])
