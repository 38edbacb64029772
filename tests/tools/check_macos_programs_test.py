#!/usr/bin/env python3
"""Links small programs for a Mac with one fault each, and checks that tools/check_macos_programs reports that fault and
nothing else."""

import json
import pathlib
import plistlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))

from framework_facts.table import read_table  # noqa: E402
from macos_programs import linking, rules  # noqa: E402
from macos_programs.expected import LIBRARIES  # noqa: E402
from macos_programs.mach_o import MachO  # noqa: E402
from macos_target import COMPILER, PROCESSORS, VERSION, WARNINGS, target  # noqa: E402

SYSTEM = VERSION.removeprefix("macos")
CONTRACT = ROOT / "src/macos/helper/HelperContract.h"
CLEAN = f"""
#import "{CONTRACT}"
#include <Security/Security.h>
#include <string>
int main() {{
  std::string text = [NSBundle mainBundle].bundlePath.UTF8String;
  SecCodeRef code = nullptr;
  SecCodeCopySelf(kSecCSDefaultFlags, &code);
  CFRelease(code);
  return @protocol(HelperProtocol) && text.empty();
}}
"""
LIBRARIES_OF_CLEAN = ("-framework", "CoreFoundation", "-framework", "Foundation", "-framework", "Security")


class CheckMacosProgramsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        missing = linking.missing_tool()
        if missing:
            raise AssertionError(f"{missing}: tools/setup build macos fetches them")
        temporary = tempfile.TemporaryDirectory(prefix="vorli-link-")
        cls.addClassCleanup(temporary.cleanup)
        cls.folder = pathlib.Path(temporary.name)
        cls.facts = read_table(ROOT / "tools/macos/framework_facts.jsonl")
        linking.prepare(cls.folder, cls.facts)

    def link(self, source, *libraries, processor="arm64", more=()):
        """Compiles and links a source; returns the program, or the linker's message."""
        (self.folder / "program.mm").write_text(source, encoding="utf-8")
        command = [COMPILER, "-target", target(processor), "-std=c++23", "-fobjc-arc",
                   *linking.compile_flags(self.folder, processor), self.folder / "program.mm", *more,
                   "-o", self.folder / "program", *linking.link_flags(self.folder, processor),
                   *(libraries or LIBRARIES_OF_CLEAN)]
        run = subprocess.run(command, capture_output=True, text=True, check=False)
        return MachO((self.folder / "program").read_bytes()) if run.returncode == 0 else run.stderr

    def linked(self, *arguments, **options):
        program = self.link(*arguments, **options)
        self.assertIsInstance(program, MachO, program)
        return program

    def wrong(self, program, processor="arm64", entitlements=None, info=None):
        """All reports about a program that should be a daemon."""
        return [
            *rules.processor(program, processor, SYSTEM), *rules.libraries(program, "vorli-helper"),
            *rules.imports(program, self.facts), *rules.selectors(program, "vorli-helper", self.facts),
            *rules.wire_format(program), *rules.permissions(program, info or {}, entitlements or {}),
        ]

    def testCleanProgramIsRightOnBothProcessors(self):
        for processor in PROCESSORS:
            with self.subTest(processor):
                program = self.linked(CLEAN, processor=processor)
                self.assertEqual(self.wrong(program, processor), [])
                self.assertIn("bundlePath", program.sent_selectors)
                self.assertEqual(set(program.libraries), LIBRARIES["vorli-helper"])

    def refused(self, source, expected):
        """Compiles a source as the build does, and expects an error for both processors."""
        for processor in PROCESSORS:
            with self.subTest(processor):
                said = self.link(source, processor=processor, more=WARNINGS)
                self.assertIsInstance(said, str)
                self.assertIn(expected, said)

    def testMisspeltSelectorIsNotCompiled(self):
        self.refused(CLEAN.replace(".bundlePath", ".bundlePaht"), "'bundlePaht' not found")

    def testUnguardedCallOfANewerSystemIsNotCompiled(self):
        source = CLEAN.replace("#include <Sec", "#import <CoreAudio/AudioHardwareTapping.h>\n#include <Sec")
        self.refused(source.replace("  return", "  AudioHardwareDestroyProcessTap(0);\n  return"),
                     "'AudioHardwareDestroyProcessTap' is only available on macOS 14.2 or newer")

    def testMissingBridgeCastIsNotCompiled(self):
        self.refused(CLEAN.replace("  return", "  CFStringRef name = [NSBundle mainBundle].bundlePath;\n  return"),
                     "cannot initialize a variable of type 'CFStringRef'")

    def testWarningIsAnError(self):
        self.refused(CLEAN.replace("  return", "  int half = 0.5 * text.size();\n  return half +"), "-Wfloat-conversion")

    def testUnknownFunctionIsNotLinked(self):
        source = CLEAN.replace("int main", 'extern "C" int SecCodeForget(SecCodeRef);\nint main')
        said = self.link(source.replace("CFRelease(code)", "SecCodeForget(code)"))
        self.assertIn("undefined symbol: SecCodeForget", said)

    def testClassThatNothingIsKnownOfIsNotLinked(self):
        source = CLEAN.replace("int main", "@interface NSNowhere : NSObject\n@end\nint main")
        said = self.link(source.replace("  return", "  [NSNowhere new];\n  return"))
        self.assertIn("undefined symbol: OBJC_CLASS_$_NSNowhere", said)

    def testNameOfTheSystemLibraryThatDoesNotExistIsNotLinked(self):
        source = CLEAN.replace("int main", 'extern "C" int getpidfd();\nint main')
        self.assertIn("undefined symbol: getpidfd", self.link(source.replace("  return", "  getpidfd();\n  return")))

    def testAnotherLibraryIsReported(self):
        program = self.linked(CLEAN, *LIBRARIES_OF_CLEAN, "-framework", "AppKit")
        name = "/System/Library/Frameworks/AppKit.framework/Versions/C/AppKit"
        self.assertEqual(self.wrong(program), [f"loads {name}"])

    def testMissingLibraryIsReported(self):
        source = "\n".join(line for line in CLEAN.splitlines() if "Sec" not in line and "CFRelease" not in line)
        program = self.linked(source, "-framework", "CoreFoundation", "-framework", "Foundation")
        name = "/System/Library/Frameworks/Security.framework/Versions/A/Security"
        self.assertEqual(self.wrong(program), [f"does not load {name}"])

    def testOptionalLibraryIsReported(self):
        program = self.linked(CLEAN, "-framework", "CoreFoundation", "-framework", "Foundation", "-weak_framework", "Security")
        name = "/System/Library/Frameworks/Security.framework/Versions/A/Security"
        self.assertIn(f"starts without {name}", self.wrong(program))

    def testLibrariesOfTheBundleAreLookedForInTheBundleOnly(self):
        program = self.linked(CLEAN, *LIBRARIES_OF_CLEAN, "-framework", "QtCore", "-Wl,-rpath,/usr/local/lib")
        self.assertIn("looks for its libraries in ['/usr/local/lib'], should be @executable_path/../Frameworks",
                      self.wrong(program))

    def testCallOfANewerSystemMustNotBeNeededToStart(self):
        declaration = 'extern "C" int AudioHardwareDestroyProcessTap(unsigned){};\nint main'
        source = CLEAN.replace("  return", "  AudioHardwareDestroyProcessTap(0);\n  return")
        libraries = (*LIBRARIES_OF_CLEAN, "-framework", "CoreAudio")
        strong = self.linked(source.replace("int main", declaration.format("")), *libraries)
        self.assertIn("does not start without _AudioHardwareDestroyProcessTap, which the oldest system lacks", self.wrong(strong))
        weak = self.linked(source.replace("int main", declaration.format(" __attribute__((weak_import))")), *libraries)
        self.assertEqual([text for text in self.wrong(weak) if "_Audio" in text], [])

    def testCallOfEverySystemMustBeThereAtTheStart(self):
        program = self.linked(CLEAN.replace("int main", "extern \"C\" OSStatus SecCodeCopySelf(SecCSFlags, SecCodeRef*) "
                                            "__attribute__((weak_import));\nint main"))
        self.assertIn("starts without _SecCodeCopySelf, which every supported system has", self.wrong(program))

    def testSymbolOfNoLibraryIsReported(self):
        source = CLEAN.replace("int main", 'extern "C" int somewhere();\nint main')
        program = self.linked(source.replace("  return", "  somewhere();\n  return"), *LIBRARIES_OF_CLEAN,
                              "-Wl,-U,_somewhere")
        self.assertEqual(self.wrong(program), ["imports _somewhere from no library"])

    def testUnknownSelectorIsReported(self):
        source = CLEAN.replace("int main", "@interface NSProcessInfo (More)\n- (void)becomeRoot:(int)n;\n@end\nint main")
        program = self.linked(source.replace("  return", "  [[NSProcessInfo processInfo] becomeRoot:1];\n  return"))
        self.assertEqual(self.wrong(program), ["sends becomeRoot:, which nothing is known of"])

    def testSelectorOfAClassOfTheProgramIsItsOwn(self):
        source = CLEAN.replace("int main", "@interface VorliThing : NSObject\n@end\n@implementation VorliThing\n"
                               "- (void)one {}\n+ (void)two {}\n@end\nint main")
        program = self.linked(source.replace("  return", "  [VorliThing two];\n  [[[VorliThing alloc] init] one];\n  return"))
        self.assertEqual(self.wrong(program), [])
        self.assertLessEqual({"one", "two"}, program.own_selectors)

    def testAnotherWidthOnTheConnectionIsReported(self):
        text = CONTRACT.read_text(encoding="utf-8")
        self.assertIn("(int)signal", text)
        changed = self.folder / "HelperContract.h"
        changed.write_text(text.replace("(int)signal", "(long)signal"), encoding="utf-8")
        for processor in PROCESSORS:
            with self.subTest(processor):
                program = self.linked(CLEAN.replace(str(CONTRACT), str(changed)), processor=processor)
                self.assertEqual(self.wrong(program, processor), [
                    'HelperProtocol: killPID:signal:reply: is v36@0:8i16q20@?<v@?i@"NSString">28, '
                    'should be v32@0:8i16i20@?<v@?i@"NSString">24'
                ])

    def testMethodsInAnotherOrderAreReported(self):
        lines = CONTRACT.read_text(encoding="utf-8").splitlines(True)
        first = next(number for number, line in enumerate(lines) if line.startswith("- "))
        lines[first : first + 2] = reversed(lines[first : first + 2])
        changed = self.folder / "HelperContract.h"
        changed.write_text("".join(lines), encoding="utf-8")
        wrong = self.wrong(self.linked(CLEAN.replace(str(CONTRACT), str(changed))))
        self.assertEqual(len(wrong), 1)
        self.assertIn("HelperProtocol has ['versionWithReply:', 'pingWithReply:'", wrong[0])

    def testProgramWithoutTheContractIsReported(self):
        program = self.linked(CLEAN.replace("@protocol(HelperProtocol) && ", ""))
        self.assertEqual(self.wrong(program), ["has no HelperProtocol"])

    def testAnotherProcessorIsReported(self):
        self.assertEqual(self.wrong(self.linked(CLEAN, processor="x86_64")), ["is a program for x86_64"])

    def testCallThatNeedsConsentNeedsItsTextAndItsEntitlement(self):
        source = CLEAN.replace("int main", 'extern "C" int AudioHardwareCreateProcessTap(id, unsigned*) '
                               "__attribute__((weak_import));\nint main")
        program = self.linked(source.replace("  return", "  AudioHardwareCreateProcessTap(nil, nullptr);\n  return"),
                              *LIBRARIES_OF_CLEAN, "-framework", "CoreAudio")
        name, key = "com.apple.security.device.audio-input", "NSAudioCaptureUsageDescription"
        self.assertEqual(list(rules.permissions(program, {}, {})), [
            f"calls _AudioHardwareCreateProcessTap and Info.plist has no {key}",
            f"calls _AudioHardwareCreateProcessTap without the entitlement {name}",
        ])
        self.assertEqual(list(rules.permissions(program, {key: "why"}, {name: True})), [])

    def testEntitlementWithoutNeedIsReported(self):
        name = "com.apple.security.cs.disable-library-validation"
        self.assertEqual(self.wrong(self.linked(CLEAN), entitlements={name: True}),
                         [f"has the entitlement {name}, which no call of it needs"])


class MissingToolTest(unittest.TestCase):
    def testSystemWithoutTheLinkerFails(self):
        run = subprocess.run([ROOT / "tools/check_macos_programs"], env={"PATH": "/nonexistent"}, capture_output=True,
                             text=True, check=False)
        self.assertEqual((run.returncode, run.stdout.splitlines()[-1]), (1, "0 passed, 1 failed"), run.stdout)


class CompilationTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="vorli-compile-")
        self.addCleanup(temporary.cleanup)
        self.root = pathlib.Path(temporary.name)
        self.commands = []

    def plant(self, name, text=""):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path

    def compiled(self, path, *without):
        flags = [flag for flag in (*WARNINGS, "-fobjc-arc") if flag not in without]
        self.commands.append({"file": str(path), "command": " ".join([COMPILER, *flags, "-c", str(path)])})

    def wrong(self):
        self.plant("tree/compile_commands.json", json.dumps(self.commands))
        return list(rules.compilation(self.root / "tree", self.root))

    def testSourcesAloneAndInABatchAreCompiled(self):
        self.compiled(self.plant("src/macos/A.mm"))
        batched = self.plant("src/base/B.cpp")
        self.compiled(self.plant("tree/Unity/unity_0_cxx.cxx", f'#include "{batched}"\n'))
        self.plant("src/linux/kernel/C.cpp")
        self.plant("src/main/vorli_linux.cpp")
        self.assertEqual(self.wrong(), [])

    def testSourceThatTheBuildLeavesOutIsReported(self):
        self.plant("src/macos/session/A.mm")
        self.plant("src/main/vorli_macos.mm")
        self.assertEqual(self.wrong(), ["src/macos/session/A.mm is not compiled", "src/main/vorli_macos.mm is not compiled"])

    def testMissingWarningIsReported(self):
        self.compiled(self.plant("src/macos/A.mm"), "-Wunguarded-availability", "-fobjc-arc")
        self.compiled(self.plant("src/base/B.cpp"), "-Werror", "-fobjc-arc")
        self.assertEqual(self.wrong(), [
            "A.mm is compiled without -Wunguarded-availability", "A.mm is compiled without -fobjc-arc",
            "B.cpp is compiled without -Werror",
        ])


class BundleTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="vorli-bundle-")
        self.addCleanup(temporary.cleanup)
        self.contents = pathlib.Path(temporary.name) / "Vorli.app/Contents"
        for name in ("Vorli", "vorli-helper"):
            self.write(f"MacOS/{name}", b"")
        name = "com.kv.vorli.helper.plist"
        self.write(f"Library/LaunchDaemons/{name}", (ROOT / "packaging/macos" / name).read_bytes())
        self.info = {key: "text" for key in rules.INFO_KEYS} | {"CFBundleExecutable": "Vorli", "LSMinimumSystemVersion": SYSTEM}

    def write(self, name, data):
        path = self.contents / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)

    def wrong(self):
        self.write("Info.plist", plistlib.dumps(self.info))
        return list(rules.bundle(self.contents, SYSTEM))

    def testCompleteBundleIsRight(self):
        self.assertEqual(self.wrong(), [])

    def testMissingAndSuperfluousKeysAreReported(self):
        del self.info["LSUIElement"]
        self.info["LSBackgroundOnly"] = True
        self.assertEqual(self.wrong(), ["Info.plist has the key LSBackgroundOnly", "Info.plist has no key LSUIElement"])

    def testValueThatTheBuildDidNotFillInIsReported(self):
        self.info["CFBundleVersion"] = "@VORLI_BUILD_NUMBER@"
        self.info["CFBundleName"] = ""
        self.assertEqual(self.wrong(), ["Info.plist: CFBundleName is ''", "Info.plist: CFBundleVersion is '@VORLI_BUILD_NUMBER@'"])

    def testAnotherOldestSystemIsReported(self):
        self.info["LSMinimumSystemVersion"] = "13.0"
        self.assertEqual(self.wrong(), [f"Info.plist is for macOS 13.0 and newer, the program for {SYSTEM}"])

    def testMissingFilesAreReported(self):
        for name in ("Vorli", "vorli-helper"):
            (self.contents / "MacOS" / name).unlink()
        self.assertEqual(self.wrong(), ["Contents/MacOS/Vorli is missing", "Contents/MacOS/vorli-helper is missing"])
        (self.contents / "Library/LaunchDaemons/com.kv.vorli.helper.plist").unlink()
        self.assertIn("Library/LaunchDaemons has []", self.wrong())


if __name__ == "__main__":
    unittest.main(verbosity=1)
