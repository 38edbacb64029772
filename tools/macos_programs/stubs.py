"""Writes link stubs: text files that say which symbols a library of a Mac has.

A framework's stub has the names in the table of facts and no others. The stub of libSystem comes with the open C
headers. Those of Qt and of the C++ library have the names that the installed libraries export. So the linker refuses a
name that nothing confirms. The stubs do not prove in which library of the system a name is.
"""

import glob
import re
import shutil
import subprocess

TARGETS = "[ x86_64-macos, arm64-macos ]"
SYMBOL_LISTER = "llvm-nm-19"
CXX_LIBRARIES = ("/usr/lib/llvm-19/lib/libc++.so.1", "/usr/lib/llvm-19/lib/libc++abi.so.1")
QT_MODULES = ("Core", "Gui", "Widgets")
VERSION_LETTERS = {"AppKit": "C", "Foundation": "C"}  # version of the folder in a framework; A in the others
# Names that the compiler itself uses, besides those in the sources.
COMPILERS_OWN = {
    "CoreFoundation": {"symbols": ["___CFConstantStringClassReference", "___NSArray0__", "___NSDictionary0__"]},
    "libobjc": {
        "symbols": """
            __objc_empty_cache _objc_alloc _objc_alloc_init _objc_allocWithZone _objc_autorelease
            _objc_autoreleasePoolPop _objc_autoreleasePoolPush _objc_autoreleaseReturnValue _objc_claimAutoreleasedReturnValue
            _objc_copyWeak _objc_destroyWeak _objc_enumerationMutation _objc_getProperty _objc_initWeak _objc_loadWeak
            _objc_loadWeakRetained _objc_moveWeak _objc_msgSend _objc_msgSendSuper2 _objc_msgSend_stret _objc_opt_class
            _objc_opt_isKindOfClass _objc_opt_new _objc_opt_respondsToSelector _objc_opt_self _objc_release _objc_retain
            _objc_retainAutorelease _objc_retainAutoreleaseReturnValue _objc_retainAutoreleasedReturnValue _objc_retainBlock
            _objc_setProperty_atomic _objc_setProperty_atomic_copy _objc_setProperty_nonatomic_copy _objc_storeStrong
            _objc_storeWeak _objc_unsafeClaimAutoreleasedReturnValue ___objc_personality_v0
            """.split(),
        "objc-classes": ["NSObject"],
    },
}


def install_name(library):
    """The path by which a program refers to a library of the system or of Qt."""
    if library == "libobjc":
        return "/usr/lib/libobjc.A.dylib"
    if library == "libc++":
        return "/usr/lib/libc++.1.dylib"
    folder = "@rpath" if library.startswith("Qt") else "/System/Library/Frameworks"
    return f"{folder}/{library}.framework/Versions/{VERSION_LETTERS.get(library, 'A')}/{library}"


def write_stubs(folder, facts, system_stub):
    """Writes all stubs below `folder`; `facts` is the table, `system_stub` the file for libSystem."""
    libraries = {name: {key: list(names) for key, names in own.items()} for name, own in COMPILERS_OWN.items()}
    for (kind, name), known in facts.items():
        if known.get("library") and name != "NSObject":
            entry = libraries.setdefault(known["library"], {})
            entry.setdefault("objc-classes" if kind == "class" else "symbols", []).append(
                name if kind == "class" else f"_{name}")
    libraries["libc++"] = {"symbols": [f"_{name}" for path in CXX_LIBRARIES for name in exports(path)]}
    for module in QT_MODULES:
        path = glob.glob(f"/usr/lib/*/libQt6{module}.so.6") + glob.glob(f"/usr/lib/libQt6{module}.so.6")
        # Qt is built with GCC's library here, which marks functions that return its own kind of text.
        libraries[f"Qt{module}"] = {"symbols": [f"_{name.replace('B5cxx11', '')}" for name in exports(path[0])]}
    for name, exported in libraries.items():
        path = folder / f"{name}.tbd" if name.startswith("lib") else folder / f"{name}.framework/{name}.tbd"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(stub_text(install_name(name), exported))
    shutil.copy(system_stub, folder / "libSystem.tbd")


def stub_text(path, exported):
    lines = ["--- !tapi-tbd", "tbd-version: 4", f"targets: {TARGETS}", f"install-name: '{path}'", "exports:",
             f"  - targets: {TARGETS}"]
    lines += [f"    {key}: [ {', '.join(quoted(name) for name in sorted(set(names)))} ]"
              for key, names in sorted(exported.items())]
    return "\n".join([*lines, "...", ""])


def quoted(name):
    return name if re.fullmatch(r"\w+", name) else f"'{name}'"


def exports(path):
    """Names that a library of this system exports."""
    run = subprocess.run([SYMBOL_LISTER, "-D", "--defined-only", "--format=just-symbols", path], capture_output=True,
                         text=True, check=True)
    return {line.split("@")[0] for line in run.stdout.splitlines()}
