"""Checks which folder includes which, that no includes form a cycle, and that ports have their back ends and fakes."""

import glob
import os
import re

# The core, lowest folder first: data flows one way because a folder includes only those that its row names.
CORE_FOLDERS = {
    "settings": (),
    "helper": ("settings",),
    "insights": ("helper",),
    "sampling": ("settings", "insights"),
    "diagnostics": ("settings",),
    "startup": ("settings", "helper", "insights"),
    "ambient": ("sampling",),
    "polish": ("settings", "helper", "insights", "sampling", "ambient"),
    "nudges": ("settings", "helper", "polish"),
    "popover": ("settings", "helper", "insights", "sampling", "ambient", "polish"),
    "flows": ("settings", "helper", "diagnostics", "nudges"),
}
CORE = (*CORE_FOLDERS, "app")
# Single headers that cross the order, each with its reason.
CROSSING = {
    "insights": ("sampling/RingState.h",),  # the only place that says where the ring's states begin; includes nothing
}
BELOW_THE_CORE = ("base", "formats", "contract", "ports")

# Folders and files that a folder may include from src; a folder means everything in it. The longest folder
# name that fits a file decides.
MAY_INCLUDE = {
    "base": ("base",),
    "formats": ("base", "formats"),
    "contract": ("base", "contract"),
    "ports": ("base", "contract", "ports"),
    **{
        folder: (*BELOW_THE_CORE, folder, *lower, *CROSSING.get(folder, ()))
        for folder, lower in CORE_FOLDERS.items()
    },
    "app": (*BELOW_THE_CORE, *CORE),
    "daemon": ("base", "formats", "contract", "daemon"),
    "posix": ("base", "formats", "contract", "ports", "posix"),
    "posix/daemon": ("base", "formats", "contract", "daemon", "posix"),
    "linux": ("base", "formats", "contract", "ports", "posix", "linux"),
    "linux/bus": ("linux/bus",),
    "linux/daemon": ("base", "formats", "contract", "daemon", "posix", "linux/bus", "linux/daemon"),
    "macos": ("base", "formats", "contract", "ports", "posix", "macos"),
    "macos/daemon": ("base", "formats", "contract", "daemon", "posix", "macos/daemon", "macos/Text.h",
                     "macos/helper/HelperContract.h"),
    "ui/loop": ("base", "ui/loop"),
    "ui/kit": ("base", "ports", "ambient/Palette.h", "ui/kit"),
    "ui/windows": ("base", "ports", "settings", "diagnostics", "startup", "flows", "ui/kit", "ui/windows"),
    "ui/status": ("base", "ports", "ui/kit", "ui/status"),
    "ui/glow": ("base", "ports", "ui/glow"),
    "ui/light": ("base", "ambient", "ui/light"),
    "ui/popover": ("base", "ports", "ambient", "popover", "ui/kit", "ui/status", "ui/light", "ui/popover"),
    "ui/linux": (*BELOW_THE_CORE, *CORE, "ui", "linux/BusDriverCall.h", "linux/X11Reply.h"),
    "ui/macos": (*BELOW_THE_CORE, *CORE, "ui", "macos/Observation.h", "macos/Text.h"),
    "main": ("",),
}
HIDDEN_IN_UI = ("ui/linux", "ui/macos")  # only themselves and main include these
MAY_INCLUDE_OS = ("posix", "posix/daemon", "linux", "linux/bus", "linux/daemon", "macos", "macos/daemon", "ui/linux",
                  "ui/macos", "main")
MAY_INCLUDE_QT = {
    "linux": ("QtCore", "QtDBus"),
    "ui/loop": ("QtCore",),
    "ui/kit": ("QtCore", "QtGui", "QtWidgets"),
    "ui/windows": ("QtCore", "QtGui", "QtWidgets"),
    "ui/status": ("QtCore", "QtGui", "QtWidgets"),
    "ui/glow": ("QtCore", "QtGui"),
    "ui/light": ("QtCore", "QtGui"),
    "ui/popover": ("QtCore", "QtGui", "QtWidgets"),
    "ui/linux": ("QtCore", "QtDBus", "QtGui", "QtWidgets"),
    "ui/macos": ("QtCore", "QtGui", "QtWidgets"),
    "main": ("QtCore", "QtDBus", "QtGui", "QtWidgets"),
}
# Generated from src/contract/com.kv.vorli.helper.xml; both include the bus library.
GENERATED = ("helper_contract/HelperAdaptor.h", "helper_contract/HelperProxy.h")

# Ports whose back end for a system is still being written; its composition root passes a stand-in until then.
PORTS_UNDER_WAY = {
    "linux": frozenset(),
    "macos": frozenset(),
}

# Gets text from another reader, not from outside.
NOT_READERS = {"PropertyListBuilder"}

STANDARD = frozenset(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg
    cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution expected
    filesystem forward_list fstream functional future initializer_list iomanip ios iosfwd iostream istream
    iterator latch limits list locale map memory memory_resource mutex new numbers numeric optional ostream queue
    random ranges ratio regex scoped_allocator semaphore set shared_mutex source_location span sstream stack
    stacktrace stdexcept stop_token streambuf string string_view syncstream system_error thread tuple
    type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector version""".split()
)


def folder_of(path, table=MAY_INCLUDE):
    """The table's entry for a path inside src, or None."""
    parts = path.split("/")[:-1]
    while parts:
        if "/".join(parts) in table:
            return "/".join(parts)
        parts.pop()
    return None


def _within(path, entry):
    return entry == "" or path == entry or path.startswith(entry + "/")


def _qt_module(header):
    """The Qt library of a header, such as QtCore; None if it is not Qt's, "Qt" if the installed Qt does not have it."""
    if "/" in header and header.startswith("Qt"):
        return header.split("/")[0]
    if not re.match(r"Q[A-Za-z]+$|q[a-z_]+\.h$", header):
        return None
    for root in sorted(glob.glob("/usr/include/*/qt6") + glob.glob("/usr/include/qt6")):
        for module in ("QtCore", "QtDBus", "QtGui", "QtWidgets", "QtTest"):
            if os.path.exists(f"{root}/{module}/{header}"):
                return module
    return "Qt"


def _refusal(folder, include, files):
    if include.target in GENERATED:
        return None if folder in ("linux", "linux/daemon", "main") else "the generated contract"
    if include.quoted:
        if include.target not in files:
            return "a file that is not in src"
        if not any(_within(include.target, entry) for entry in MAY_INCLUDE[folder]):
            return "that folder"
        hidden = next((entry for entry in HIDDEN_IN_UI if _within(include.target, entry)), None)
        return "that folder" if hidden and folder not in (hidden, "main") else None
    if include.target in STANDARD:
        return None
    module = _qt_module(include.target)
    if module:
        return None if module in MAY_INCLUDE_QT.get(folder, ()) else module
    return None if folder in MAY_INCLUDE_OS else "headers of the operating system"


def check_includes(sources):
    """Checks each include against the table; `sources` are the files below src."""
    files = {source.path[len("src/") :] for source in sources}
    for source in sources:
        folder = folder_of(source.path[len("src/") :])
        if folder is None:
            yield source.path, 1, "lies in a folder that the include table does not know"
            continue
        for include in source.includes:
            refused = _refusal(folder, include, files)
            if refused:
                yield source.path, include.line, f"{folder} may not include {refused}: {include.target}"


def check_cycles(sources):
    """Yields each cycle of includes between files once."""
    graph = {
        source.path[len("src/") :]: [include.target for include in source.includes if include.quoted]
        for source in sources
    }
    state, stack, cycles = {}, [], []

    def visit(path):
        state[path] = "open"
        stack.append(path)
        for target in graph[path]:
            if state.get(target) == "open":
                cycles.append(stack[stack.index(target) :] + [target])
            elif target in graph and target not in state:
                visit(target)
        stack.pop()
        state[path] = "done"

    for path in graph:
        if path not in state:
            visit(path)
    for cycle in cycles:
        yield "src/" + cycle[0], 1, "includes itself in a circle: " + " -> ".join(cycle)


# Folders with the back ends of a system, with the folders inside them, except those that belong to another system or to
# the daemon.
SYSTEMS = {
    "linux": ("linux", "posix", "ui"),
    "macos": ("macos", "posix", "ui"),
}


def _is_back_end_of(system, path):
    """Whether a path inside src belongs to a system's back ends."""
    parts = path.split("/")[:-1]
    if "daemon" in parts or any(other in parts for other in SYSTEMS if other != system):
        return False
    return bool(parts) and parts[0] in SYSTEMS[system]


def _ports(sources):
    return {source.name for source in sources if source.path.startswith("src/ports/") and "virtual" in source.code}


def _has_back_end(name, system, tree):
    return any(path.endswith(f"/{name}.h") and _is_back_end_of(system, path) for path in tree)


def check_ports(sources, tests, under_way=None):
    """Each port has a back end in each system that has a folder, and a fake, all of the port's name; a fake of a
    port has the port's name. `under_way` names the ports of each system that may still lack their back end."""
    under_way = PORTS_UNDER_WAY if under_way is None else under_way
    tree = [source.path[len("src/") :] for source in sources]
    fakes = {test.path for test in tests}
    systems = [system for system in SYSTEMS if any(path.startswith(system + "/") for path in tree)] or ["linux"]
    ports = _ports(sources)
    for name in sorted(ports):
        missing = [
            f"back end for {system} ({system}/.../{name}.h)"
            for system in systems
            if name not in under_way.get(system, ()) and not _has_back_end(name, system, tree)
        ]
        if f"tests/fakes/{name}.h" not in fakes:
            missing.append(f"fake (tests/fakes/{name}.h)")
        if missing:
            yield f"src/ports/{name}.h", 1, "has no " + " and no ".join(missing)
    for name in sorted(frozenset().union(*under_way.values()) - ports):
        yield f"src/ports/{name}.h", 1, "is listed as under way but is no port"
    for fake in tests:
        if fake.path.startswith("tests/fakes/") and fake.name not in ports:
            ported = [include.target for include in fake.includes if include.target.startswith("ports/")]
            if ported:
                yield fake.path, 1, f"fakes {ported[0]} under another name"


def check_fuzzers(sources, tests):
    """Each format has a fuzzer of its name."""
    paths = {test.path for test in tests}
    for source in sources:
        if not source.path.startswith("src/formats/") or not source.path.endswith(".h"):
            continue
        if source.name not in NOT_READERS and f"tests/fuzz/{source.name}Fuzzer.cpp" not in paths:
            yield source.path, 1, f"has no fuzzer (tests/fuzz/{source.name}Fuzzer.cpp)"


def settled_ports(sources):
    """Ports in PORTS_UNDER_WAY that have a back end, each with its system."""
    tree = [source.path[len("src/") :] for source in sources]
    return sorted(
        (name, system) for system, names in PORTS_UNDER_WAY.items() for name in names if _has_back_end(name, system, tree)
    )
