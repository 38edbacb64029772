#!/usr/bin/env python3
"""Plants code that a Mac's compiler or library refuses and expects tools/check_macos to report it."""

import os
import shutil
import subprocess
import unittest

from planted_tree import PlantedTree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))


class CheckMacOSTest(PlantedTree):
    def setUp(self):
        super().setUp()
        self.plant("src/base/Date.h", "#pragma once\nstruct Date { double seconds = 0.0; };\n")
        self.plant("src/base/Date.cpp", '#include "base/Date.h"\ndouble seconds(Date d) { return d.seconds; }\n')

    def check(self):
        run = subprocess.run(
            [os.path.join(ROOT, "tools/check_macos"), self.root], capture_output=True, text=True, check=False
        )
        failed = [line for line in run.stdout.splitlines() if line.startswith("FAILED ")]
        self.assertEqual(run.returncode, 1 if failed else 0, run.stdout + run.stderr)
        return run.stdout, failed

    def refused(self, path, text, expected):
        """Plants one file and expects that it fails and nothing else does."""
        self.plant(path, text)
        output, failed = self.check()
        self.assertEqual(failed, [f"FAILED {path} for arm64"], output)
        self.assertIn(expected, output)
        os.remove(os.path.join(self.root, path))

    def testCleanTreePassesAndIsCounted(self):
        output, failed = self.check()
        self.assertEqual(failed, [])
        self.assertIn("core for arm64: 2 checked, 0 failed", output)
        self.assertTrue(output.endswith("\n2 passed, 0 failed\n"), output)

    def testTypeErrorInANewFolderIsReported(self):
        self.refused("src/newcomer/Bad.cpp", 'int number() { return "text"; }\n', "cannot initialize return object")

    def testErrorInATemplateThatNoSourceUsesIsReported(self):
        self.plant("src/base/Bad.h", "template <typename T> struct Bad { Missing member; };\n")
        output, failed = self.check()
        self.assertEqual(failed, ["FAILED 2 headers of core for arm64"], output)
        self.assertIn("src/base/Bad.h:1:36: error: unknown type name 'Missing'", output)

    def testWarningIsAnError(self):
        self.refused("src/base/Bad.cpp", "int half(double d) { return d / 2; }\n", "-Wfloat-conversion")

    def testWhatTheLibraryLacksIsReported(self):
        self.refused("src/base/Bad.cpp", "#include <thread>\nusing Thread = std::jthread;\n", "jthread")
        text = "#include <charconv>\nvoid f(double& d, const char* c) { std::from_chars(c, c, d); }\n"
        self.refused("src/base/Bad.cpp", text, "from_chars")

    def testAnotherWidthOfATypeIsReported(self):
        text = "#include <algorithm>\n#include <cstdint>\nauto larger(std::int64_t a) { return std::max(a, 1L); }\n"
        self.refused("src/base/Bad.cpp", text, "no matching function")

    def testIncludeThatOnlyAnotherLibraryBringsAlongIsReported(self):
        self.plant("src/base/Good.cpp", "#include <algorithm>\nint one(int a) { return std::min(a, 1); }\n")
        text = "#include <string>\nstd::map<std::string, int> names;\n"
        self.refused("src/base/Bad.cpp", text, "no template named 'map'")
        text = "#include <vector>\nvoid f(std::vector<int>& v) { std::ranges::sort(v); }\n"
        self.refused("src/base/Bad.cpp", text, "sort")

    def testLinuxHeaderInPosixIsReported(self):
        self.plant("src/posix/Good.cpp", "#include <csignal>\n#include <unistd.h>\nint own() { return ::getpid(); }\n")
        self.refused("src/posix/Bad.cpp", "#include <sys/epoll.h>\n", "'sys/epoll.h' file not found")

    def testHeaderOfAWidgetIsCheckedBesideQt(self):
        text = "#pragma once\n#include <QWidget>\ninline void f(QWidget& w) {{ w.{}; }}\n"
        self.plant("src/ui/Good.h", text.format("resize(2, 2)"))
        self.assertEqual(self.check()[1], [])
        self.plant("src/ui/Bad.h", text.replace(" f(", " g(").format("grow()"))
        output, failed = self.check()
        self.assertEqual(failed, ["FAILED 2 headers of ui for arm64"], output)
        self.assertIn("no member named 'grow'", output)

    def testHeaderOfABackEndIsCheckedBesideTheFrameworks(self):
        text = "#pragma once\n#import <Foundation/Foundation.h>\ninline double f(NSDate* date) {{ return date.{}; }}\n"
        self.plant("src/macos/Good.h", text.format("timeIntervalSince1970"))
        self.plant("src/ui/macos/Good.h", text.format("timeIntervalSince1970"))
        self.assertEqual(self.check()[1], [])
        self.plant("src/macos/kernel/Bad.h", text.replace(" f(", " g(").format("timeIntervalSince1971"))
        output, failed = self.check()
        self.assertEqual(failed, ["FAILED 2 headers of macos for arm64"], output)
        self.assertIn("'timeIntervalSince1971' not found", output)

    def testFrameworkInPosixIsReported(self):
        self.refused("src/posix/Bad.cpp", "#import <Foundation/Foundation.h>\n", "'Foundation/Foundation.h' file not found")

    def testLeakOnOnePathIsReported(self):
        text = ("#import <Foundation/Foundation.h>\n#include <IOKit/ps/IOPowerSources.h>\n"
                "bool hasPower() {{ CFTypeRef all = IOPSCopyPowerSourcesInfo();\n"
                "if (!all) return false;\n{} return true; }}\n")
        for folder in ("src/macos", "src/ui/macos"):
            self.plant(f"{folder}/Good.mm", text.format("CFRelease(all);"))
            self.refused(f"{folder}/Bad.mm", text.format(""), "Potential leak of an object stored into 'all'")

    def testFoldersAndProgramsOfLinuxAreLeftOut(self):
        for folder in ("linux", "linux/kernel", "ui/linux", "main"):
            self.plant(f"src/{folder}/Elsewhere.cpp", "#include <sys/epoll.h>\n")
        self.assertEqual(self.check()[1], [])

    def testEmptyTreeFails(self):
        shutil.rmtree(os.path.join(self.root, "src"))
        run = subprocess.run([os.path.join(ROOT, "tools/check_macos"), self.root], capture_output=True, text=True, check=False)
        self.assertEqual((run.returncode, run.stdout.splitlines()[-1]), (1, "0 passed, 1 failed"))


if __name__ == "__main__":
    unittest.main(verbosity=1)
