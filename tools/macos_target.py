"""Versions of macOS that the sources are checked for, and the compiler and libraries used in place of a Mac's."""

import pathlib
import shutil

TOOLS = pathlib.Path(__file__).resolve().parent
VERSION = "macos14.0"
FETCHED = TOOLS.parent / "build/macos"  # fetched by tools/setup
HEADERS = FETCHED / "include"
SYSTEM_STUB = FETCHED / "libSystem.tbd"
HEADERS_OF = {"arm64": "aarch64-macos.13-none", "x86_64": "x86_64-macos.13-none"}  # the folder of each processor
PROCESSORS = tuple(HEADERS_OF)
COMPILER = "clang++-19"
CXX_LIBRARY = pathlib.Path("/usr/lib/llvm-19/include/c++/v1")
FRAMEWORKS = TOOLS / "macos/frameworks"
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wno-sign-conversion", "-Wunguarded-availability", "-Werror"]


def is_for_mac(path):
    """Whether a Mac needs this file below src."""
    folders = path.split("/")[:-1]
    return "macos" in path if folders[:1] == ["main"] else "linux" not in folders


def header_folders(processor):
    """Folders with the C headers, in the order in which the compiler searches them."""
    return [HEADERS / name for name in (HEADERS_OF[processor], "any-macos.13-any", "any-macos-any")]


def missing_headers():
    return not all(folder.is_dir() for processor in PROCESSORS for folder in header_folders(processor))


def missing_compiler():
    return not shutil.which(COMPILER) or not CXX_LIBRARY.is_dir()


def target(processor):
    return f"{processor}-apple-{VERSION}"


def write_library_configuration(folder):
    """Makes `folder`, which the compiler must search before the C++ library's own.

    Debian's libc++ assumes that the library is as new as its headers. With one line of its configuration removed, it
    refuses what the library of the target does not have yet.
    """
    folder.mkdir(parents=True, exist_ok=True)
    lines = (CXX_LIBRARY / "__config_site").read_text().splitlines(True)
    text = "".join(line for line in lines if "_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS" not in line)
    configuration = folder / "__config_site"
    if not configuration.exists() or configuration.read_text() != text:  # rewriting it would recompile everything
        configuration.write_text(text)
