"""Compiles and links for a Mac on this system; see tools/macos/cross.cmake."""

import glob
import shutil
import subprocess

from macos_target import (COMPILER, CXX_LIBRARY, FRAMEWORKS, PROCESSORS, SYSTEM_STUB, TOOLS, header_folders,
                          missing_compiler, missing_headers, target, write_library_configuration)

from .stubs import SYMBOL_LISTER, write_stubs

PROGRAMS = ("cmake", "ninja", "ld64.lld-19", "llvm-ar-19", SYMBOL_LISTER)


def missing_tool():
    """Names what the build lacks, or returns None."""
    if missing_compiler() or not all(map(shutil.which, PROGRAMS)):
        return "clang 19, its libc++ and linker, or CMake are missing"
    if missing_headers() or not SYSTEM_STUB.is_file():
        return "the C headers of macOS are missing"
    if not glob.glob("/usr/lib/*/libQt6Widgets.so.6") + glob.glob("/usr/lib/libQt6Widgets.so.6"):
        return "Qt is missing"
    return None


def prepare(folder, facts):
    """Writes to `folder` what the compiler and the linker need and is neither installed nor fetched."""
    write_library_configuration(folder / "library")
    write_stubs(folder / "stubs", facts, SYSTEM_STUB)
    for processor in PROCESSORS:
        subprocess.run([COMPILER, "-target", target(processor), "-x", "c", "-c", TOOLS / "macos/version_check.c",
                        "-o", version_check(folder, processor)], check=True)


def version_check(folder, processor):
    return folder / f"version_check.{processor}.o"


def compile_flags(folder, processor):
    headers = [FRAMEWORKS, folder / "library", CXX_LIBRARY, *header_folders(processor)]
    return ["-nostdlibinc", *(f"-isystem{header}" for header in headers)]


def link_flags(folder, processor):
    # Leaves out chained fixups, so that mach_o.py can follow pointers.
    return ["-fuse-ld=lld", f"-L{folder}/stubs", f"-F{folder}/stubs", str(version_check(folder, processor)), "-lobjc",
            "-Wl,-no_fixup_chains"]


def variables(folder, processor):
    """The variables that tools/macos/cross.cmake needs."""
    return {
        "VORLI_CROSS_PROCESSOR": processor,
        "VORLI_CROSS_TARGET": target(processor),
        "VORLI_CROSS_COMPILE_FLAGS": " ".join(compile_flags(folder, processor)),
        "VORLI_CROSS_LINK_FLAGS": " ".join(link_flags(folder, processor)),
    }
