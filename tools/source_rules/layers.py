"""Which folder may include which, no cycle of includes, and ports that line up with their back ends and fakes."""

import glob
import os
import re

CORE = ("app", "sampling", "helper", "polish", "insights", "startup", "nudges", "diagnostics", "ambient", "flows")
CONTRACT = ("helper/HelperProtocol.h", "helper/SystemStartupFolders.h", "helper/PauseMarks.h")

# What a folder may include from src: a folder stands for everything in it, a file for itself. The longest
# folder name that fits a file decides.
MAY_INCLUDE = {
    "base": ("base",),
    "ports": ("base", "ports", *CONTRACT),
    "sampling": ("base", "ports", "sampling", "insights", "app/AppSettings.h"),
    **{folder: ("base", "ports", *CORE) for folder in CORE if folder != "sampling"},
    "daemon": ("base", "daemon", *CONTRACT),
    "posix": ("base", "ports", "posix", *CONTRACT),
    "linux": ("base", "ports", "posix", "linux", *CONTRACT),
    "linux/daemon": ("base", "daemon", "posix", "linux/daemon", *CONTRACT),
    "macos": ("base", "ports", "posix", "macos", *CONTRACT),
    "macos/daemon": ("base", "daemon", "posix", "macos/daemon", *CONTRACT),
    "ui": ("base", "ports", *CORE, "ui"),
    "ui/linux": ("base", "ports", *CORE, "ui"),
    "ui/macos": ("base", "ports", *CORE, "ui"),
    "main": ("",),
}
HIDDEN_IN_UI = ("ui/linux", "ui/macos")  # only themselves and main include these
MAY_INCLUDE_OS = ("posix", "linux", "linux/daemon", "macos", "macos/daemon", "ui/linux", "ui/macos", "main")
MAY_INCLUDE_QT = {
    "linux": ("QtCore", "QtDBus"),
    "ui": ("QtCore", "QtDBus", "QtGui", "QtWidgets"),
    "ui/linux": ("QtCore", "QtDBus", "QtGui", "QtWidgets"),
    "ui/macos": ("QtCore", "QtGui", "QtWidgets"),
    "main": ("QtCore", "QtDBus", "QtGui", "QtWidgets"),
}
# Made by the build from packaging/linux/com.kv.vorli.helper.xml; both pull in the bus library.
GENERATED = ("helper_contract/HelperAdaptor.h", "helper_contract/HelperProxy.h")

# Ports whose back end or fake is still being written. The list only shrinks.
PORTS_UNDER_WAY = set()

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
    """The entry of the table that a path inside src belongs to, or None."""
    parts = path.split("/")[:-1]
    while parts:
        if "/".join(parts) in table:
            return "/".join(parts)
        parts.pop()
    return None


def _within(path, entry):
    return entry == "" or path == entry or path.startswith(entry + "/")


def _qt_module(header):
    """QtCore and so on, None when the header is not Qt's, "Qt" when the installed Qt does not know it."""
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
    """Each include against the table; `sources` are the files below src."""
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
    """Each cycle of includes between files, told once."""
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


def check_ports(sources, tests, under_way=frozenset(PORTS_UNDER_WAY)):
    """Each port has its back end and its fake under its own name; a fake of a port bears the port's name."""
    paths = {file.path for file in (*sources, *tests)}
    ports = {source.name for source in sources if source.path.startswith("src/ports/") and "virtual" in source.code}
    for name in sorted(ports):
        missing = []
        if not any(f"src/{folder}/{name}.h" in paths for folder in ("linux", "posix", "ui/linux", "ui")):
            missing.append(f"back end (linux/{name}.h, posix/{name}.h or ui/linux/{name}.h)")
        if f"tests/fakes/{name}.h" not in paths:
            missing.append(f"fake (tests/fakes/{name}.h)")
        if missing and name not in under_way:
            yield f"src/ports/{name}.h", 1, "has no " + " and no ".join(missing)
    for name in sorted(under_way - ports):
        yield f"src/ports/{name}.h", 1, "is listed as under way but is no port"
    for fake in tests:
        if fake.path.startswith("tests/fakes/") and fake.name not in ports:
            ported = [include.target for include in fake.includes if include.target.startswith("ports/")]
            if ported:
                yield fake.path, 1, f"fakes {ported[0]} under another name"


def settled_ports(sources, tests):
    """Ports of the list of those under way that have all they need: they can be taken off it."""
    waiting = {path for path, _, _ in check_ports(sources, tests, frozenset())}
    return sorted(name for name in PORTS_UNDER_WAY if f"src/ports/{name}.h" not in waiting)
