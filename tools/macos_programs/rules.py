"""Rules for a linked program and for its bundle. Each yields a sentence for every fault."""

import json
import pathlib
import plistlib
import re
import shlex

from macos_target import WARNINGS, is_for_mac

from .expected import LIBRARIES, OTHER_SELECTORS, PERMISSIONS, PROTOCOL, WIRE_FORMAT

# Keys that the system reads of a program without an icon in the Dock.
INFO_KEYS = {
    "CFBundleDevelopmentRegion", "CFBundleDisplayName", "CFBundleExecutable", "CFBundleIconFile", "CFBundleIdentifier",
    "CFBundleInfoDictionaryVersion", "CFBundleName", "CFBundlePackageType", "CFBundleShortVersionString",
    "CFBundleVersion", "LSApplicationCategoryType", "LSMinimumSystemVersion", "LSUIElement",
    "NSAudioCaptureUsageDescription", "NSHighResolutionCapable", "NSHumanReadableCopyright", "NSPrincipalClass",
    "SUFeedURL", "SUPublicEDKey",
}
MAIN_LIBRARIES = "@executable_path/../Frameworks"


def compilation(tree, root):
    """Each source that a Mac needs is compiled, with warnings as errors and automatic reference counting."""
    missing = {path for path in (root / "src").rglob("*") if path.suffix in (".cpp", ".mm")
               and is_for_mac(str(path.relative_to(root / "src")))}
    for command in json.loads((tree / "compile_commands.json").read_text()):
        compiled = pathlib.Path(command["file"])
        missing -= {compiled, *(pathlib.Path(name) for name in re.findall(r'#include "(.*)"', batch_text(compiled)))}
        wanted = {*WARNINGS, *(["-fobjc-arc"] if compiled.suffix == ".mm" else [])}
        for flag in sorted(wanted - set(shlex.split(command["command"]))):
            yield f"{compiled.name} is compiled without {flag}"
    for path in sorted(missing):
        yield f"{path.relative_to(root)} is not compiled"


def batch_text(path):
    """The text of a source that CMake generated to compile several at once, or ""."""
    return path.read_text() if "Unity" in path.parts else ""


def processor(program, wanted, system):
    if program.processor != wanted:
        yield f"is a program for {program.processor}"
    if program.oldest_system != system:
        yield f"runs on macOS {program.oldest_system} and newer, should be {system}"


def libraries(program, name):
    """The program loads exactly the expected libraries, and none of them is optional."""
    found = set(program.libraries)
    for library in sorted(found - LIBRARIES[name]):
        yield f"loads {library}"
    for library in sorted(LIBRARIES[name] - found):
        yield f"does not load {library}"
    for library in program.weak_libraries:
        yield f"starts without {library}"
    if any(library.startswith("@rpath/") for library in found) and program.run_paths != [MAIN_LIBRARIES]:
        yield f"looks for its libraries in {program.run_paths}, should be {MAIN_LIBRARIES}"


def imports(program, facts):
    """Each symbol has its library; exactly those that the oldest system lacks may be missing when the program starts."""
    newer = {("_OBJC_CLASS_$_" if kind == "class" else "_") + name
             for (kind, name), known in facts.items() if known.get("since")}
    for symbol in program.imports:
        if not symbol.library:
            yield f"imports {symbol.name} from no library"
        if symbol.weak and symbol.name not in newer:
            yield f"starts without {symbol.name}, which every supported system has"
        if not symbol.weak and symbol.name in newer:
            yield f"does not start without {symbol.name}, which the oldest system lacks"


def selectors(program, name, facts):
    known = {method[:-1].split(" ")[1] for kind, method in facts if kind == "method"}
    for selector in sorted(program.sent_selectors - known - program.own_selectors - OTHER_SELECTORS[name]):
        yield f"sends {selector}, which nothing is known of"


def wire_format(program):
    methods = program.protocol(PROTOCOL)
    if methods is None:
        yield f"has no {PROTOCOL}"
    elif [name for name, _ in methods] != [name for name, _ in WIRE_FORMAT]:
        yield f"{PROTOCOL} has {[name for name, _ in methods]}"
    else:
        for (method, type_), (_, wanted) in zip(methods, WIRE_FORMAT):
            if type_ != wanted:
                yield f"{PROTOCOL}: {method} is {type_}, should be {wanted}"


def permissions(program, info, entitlements):
    """Each call that needs consent has its sentence for the user or its entitlement; no entitlement is unused."""
    imported = {symbol.name for symbol in program.imports}
    needed = set()
    for symbol, (key, entitlement) in PERMISSIONS.items():
        if symbol in imported:
            needed.add(entitlement)
            if not info.get(key):
                yield f"calls {symbol} and Info.plist has no {key}"
            if entitlements.get(entitlement) is not True:
                yield f"calls {symbol} without the entitlement {entitlement}"
    for entitlement in sorted(set(entitlements) - needed):
        yield f"has the entitlement {entitlement}, which no call of it needs"


def bundle(contents, system):
    """The bundle has its files, and its property lists agree with them."""
    info = plistlib.loads((contents / "Info.plist").read_bytes())
    for key in sorted(INFO_KEYS ^ set(info)):
        yield f"Info.plist has {'the key' if key in info else 'no key'} {key}"
    for key, value in sorted(info.items()):
        if value == "" or isinstance(value, str) and ("@" in value or "${" in value):
            yield f"Info.plist: {key} is {value!r}"
    if info.get("LSMinimumSystemVersion") != system:
        yield f"Info.plist is for macOS {info.get('LSMinimumSystemVersion')} and newer, the program for {system}"
    lists = contents / "Library/LaunchDaemons"
    daemons = sorted(path.name for path in lists.glob("*")) if lists.is_dir() else []
    if daemons != ["com.kv.vorli.helper.plist"]:
        yield f"Library/LaunchDaemons has {daemons}"
    wanted = [contents / "MacOS" / str(info.get("CFBundleExecutable"))]
    for name in daemons:
        wanted.append(contents.parent / plistlib.loads((lists / name).read_bytes())["BundleProgram"])
    for path in wanted:
        if not path.is_file():
            yield f"{path.relative_to(contents.parent)} is missing"
