#!/usr/bin/env python3
"""Plants each offence in its own tree and expects tools/check_includes to report only that one."""

import os
import shutil
import subprocess
import sys
import unittest

from planted_tree import PlantedTree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
CONTRACT = "src/contract/com.kv.vorli.helper.xml"


class CheckIncludesTest(PlantedTree):
    def setUp(self):
        super().setUp()
        with open(os.path.join(ROOT, CONTRACT), encoding="utf-8") as file:
            self.contract = file.read()
        self.plant(CONTRACT, self.contract)
        # A name in PORTS_UNDER_WAY without a port would be reported: each gets a header.
        sys.path.insert(0, os.path.join(ROOT, "tools"))
        from source_rules.layers import PORTS_UNDER_WAY

        for name in frozenset().union(*PORTS_UNDER_WAY.values()):
            self.plant(f"src/ports/{name}.h", f"class {name} {{ virtual void call() = 0; }};")
            self.plant(f"src/linux/{name}.h", "")
            self.plant(f"tests/fakes/{name}.h", "")
        self.plant("src/base/Date.h", "#include <chrono>\nstruct Date {};\n")
        self.plant("src/ports/Clock.h", '#include "base/Date.h"\nstruct Clock { virtual Date now() = 0; };\n')
        self.plant("src/linux/Clock.h", '#include "ports/Clock.h"\n#include <unistd.h>\n#include <QDBusMessage>\n')
        self.plant("tests/fakes/Clock.h", '#include "ports/Clock.h"\n')

    def check(self):
        run = subprocess.run(
            [os.path.join(ROOT, "tools/check_includes"), self.root], capture_output=True, text=True, check=False
        )
        self.assertEqual(run.returncode, 1 if run.stdout else 0, run.stderr)
        return run.stdout.splitlines()

    def refused(self, path, text, *expected, line=1):
        """Plants one file and expects exactly one reported line for it, which contains the texts."""
        self.plant(path, text)
        told = self.check()
        self.assertEqual(len(told), 1, told)
        self.assertTrue(told[0].startswith(f"{path}:{line}: "), told)
        for part in expected:
            self.assertIn(part, told[0])

    def accepted(self, path, text):
        self.plant(path, text)
        self.assertEqual(self.check(), [])

    def testCleanTreePasses(self):
        self.assertEqual(self.check(), [])

    # --- the include table

    def testBaseIncludesTheStandardLibraryOnly(self):
        self.accepted("src/base/Good.h", "#include <map>\n#include <csignal>\n")
        self.refused("src/base/Bad.h", "#include <unistd.h>\n", "operating system")

    def testBaseIncludesNoPort(self):
        self.refused("src/base/Bad.h", '#include "ports/Clock.h"\n', "base may not include", "ports/Clock.h")

    def testPortsIncludeBaseAndTheContractOnly(self):
        self.plant("src/helper/HelperManager.h", "")
        self.accepted("src/contract/HelperProtocol.h", "")
        self.accepted("src/ports/Good.h", '#include "contract/HelperProtocol.h"\n')
        self.refused("src/ports/Bad.h", '#include "helper/HelperManager.h"\n', "ports may not include")

    def testCoreIncludesNoQt(self):
        self.refused("src/polish/Bad.cpp", "#include <QString>\n", "polish may not include QtCore")

    def testCoreIncludesNoUi(self):
        self.plant("src/ui/kit/Widget.h", "")
        self.refused("src/polish/Bad.cpp", '#include "ui/kit/Widget.h"\n', "polish may not include")

    def testACoreFolderIncludesOnlyTheOnesBelowIt(self):
        self.plant("src/settings/AppSettings.h", "")
        self.plant("src/polish/PolishFlow.h", "")
        self.plant("src/app/AppDelegate.h", "")
        self.accepted("src/polish/Good.cpp", '#include "settings/AppSettings.h"\n')
        for path, target in (
            ("src/insights/Bad.cpp", "polish/PolishFlow.h"),
            ("src/helper/Bad.cpp", "app/AppDelegate.h"),
            ("src/settings/Bad.cpp", "polish/PolishFlow.h"),
        ):
            with self.subTest(path):
                self.refused(path, f'#include "{target}"\n', "may not include that folder", target)
                os.remove(os.path.join(self.root, path))

    def testOnlyNamedHeadersCrossTheOrder(self):
        self.plant("src/sampling/RingState.h", "")
        self.plant("src/sampling/SystemMonitor.h", "")
        self.accepted("src/insights/Good.h", '#include "sampling/RingState.h"\n')
        self.refused("src/insights/Bad.h", '#include "sampling/SystemMonitor.h"\n', "insights may not include")

    def testFormatsIncludeBaseOnly(self):
        self.refused("src/formats/Bad.cpp", '#include "ports/Clock.h"\n', "formats may not include")

    def testDaemonIncludesTheContractAndNoPort(self):
        self.plant("src/contract/HelperProtocol.h", "")
        self.accepted("src/daemon/Good.cpp", '#include "contract/HelperProtocol.h"\n')
        self.refused("src/daemon/Bad.cpp", '#include "ports/Clock.h"\n', "daemon may not include")

    def testPlatformIncludesNoCore(self):
        self.plant("src/sampling/RingState.h", "")
        self.refused("src/linux/Bad.cpp", '#include "sampling/RingState.h"\n', "linux may not include")

    def testPlatformDrawsNothing(self):
        self.refused("src/linux/Bad.cpp", "#include <QPainter>\n", "linux may not include QtGui")

    def testPosixKnowsNoLinux(self):
        self.refused("src/posix/Bad.cpp", '#include "linux/Clock.h"\n', "posix may not include")

    def testUiIncludesSystemHeadersInItsPlatformFolderOnly(self):
        self.accepted("src/ui/linux/Good.cpp", "#include <xcb/xcb.h>\n#include <QWidget>\n")
        self.refused("src/ui/kit/Bad.cpp", "#include <xcb/xcb.h>\n", "operating system")

    def testUiIncludesNeitherLinuxNorItsOwnPlatformFolder(self):
        self.plant("src/ui/linux/StatusItem.h", "")
        self.accepted("src/main/main.cpp", '#include "ui/linux/StatusItem.h"\n#include "linux/Clock.h"\n')
        self.refused("src/ui/kit/Bad.cpp", '#include "ui/linux/StatusItem.h"\n', "ui/kit may not include")
        os.remove(os.path.join(self.root, "src/ui/kit/Bad.cpp"))
        self.refused("src/ui/linux/Bad.cpp", '#include "linux/Clock.h"\n', "ui/linux may not include")

    def testAFolderOfUiIncludesOnlyTheOnesBelowIt(self):
        self.plant("src/ui/light/RadialProfile.h", "")
        self.plant("src/ui/popover/PopoverPicture.h", "")
        self.accepted("src/ui/popover/Good.h", '#include "ui/light/RadialProfile.h"\n')
        self.refused("src/ui/light/Bad.h", '#include "ui/popover/PopoverPicture.h"\n', "ui/light may not include")

    def testUiIncludesTheBusInItsPlatformFolderOnly(self):
        self.accepted("src/ui/linux/Good.cpp", "#include <QDBusMessage>\n")
        self.refused("src/ui/status/Bad.cpp", "#include <QDBusMessage>\n", "ui/status may not include QtDBus")

    def testGeneratedContractStaysInThePlatformFolder(self):
        self.accepted("src/linux/Good.cpp", '#include "helper_contract/HelperProxy.h"\n')
        self.refused("src/helper/Bad.cpp", '#include "helper_contract/HelperProxy.h"\n', "generated contract")

    def testUnknownFolderAndUnknownFileAreReported(self):
        self.refused("src/misc/Bad.cpp", "", "does not know")
        shutil.rmtree(os.path.join(self.root, "src/misc"))
        self.refused("src/app/Bad.cpp", '\n#include "Neighbour.h"\n', "not in src", line=2)

    def testIncludeInACommentIsNone(self):
        self.accepted("src/base/Good.h", '// #include "ports/Clock.h"\n/*\n#include <unistd.h>\n*/\n')

    def testCycleIsReportedOnce(self):
        self.plant("src/app/One.h", '#include "app/Two.h"\n')
        self.plant("src/app/Two.h", '#include "app/Three.h"\n')
        self.plant("src/app/Three.h", '#include "app/One.h"\n')
        told = self.check()
        self.assertEqual(len(told), 1, told)
        self.assertIn("in a circle", told[0])
        for name in ("One", "Two", "Three"):
            self.assertIn(f"app/{name}.h", told[0])

    # --- ports

    def testPortWithoutFakeIsReported(self):
        self.plant("src/posix/Disk.h", "")
        self.refused("src/ports/Disk.h", "struct Disk { virtual int free() = 0; };", "has no fake")

    def testPortWithoutBackEndIsReported(self):
        self.plant("tests/fakes/Disk.h", '#include "ports/Disk.h"\n')
        self.refused("src/ports/Disk.h", "struct Disk { virtual int free() = 0; };", "has no back end for linux")

    def testBackEndInASubjectFolderCounts(self):
        self.plant("tests/fakes/Disk.h", '#include "ports/Disk.h"\n')
        self.plant("src/linux/kernel/Disk.h", "")
        self.accepted("src/ports/Disk.h", "struct Disk { virtual int free() = 0; };")

    def testASecondSystemNeedsABackEndForEachPort(self):
        self.plant("src/macos/Disk.mm", "")
        self.assertEqual(
            self.check(), ["src/ports/Clock.h:1: has no back end for macos (macos/.../Clock.h)"]
        )
        self.accepted("src/macos/Clock.h", "")

    def testImportsOfObjectiveCAreIncludes(self):
        self.plant("src/macos/Clock.h", "")
        self.accepted("src/macos/Good.mm", "#import <AppKit/AppKit.h>\n")
        self.refused("src/polish/Bad.mm", "#import <AppKit/AppKit.h>\n", "polish may not include", "operating system")

    def testAPortUnderWayForOneSystemIsNoneForAnother(self):
        sys.path.insert(0, os.path.join(ROOT, "tools"))
        from source_rules.layers import PORTS_UNDER_WAY, check_ports
        from source_rules.tree import read_tree

        self.plant("src/macos/Disk.mm", "")
        self.plant("src/linux/Disk.cpp", "")  # a system without files is not checked
        sources, tests = read_tree(self.root, "src"), read_tree(self.root, "tests")
        lists = {**PORTS_UNDER_WAY, "macos": PORTS_UNDER_WAY["macos"] | {"Clock"}}
        self.assertEqual(list(check_ports(sources, tests, lists)), [])
        os.remove(os.path.join(self.root, "src/linux/Clock.h"))
        told = list(check_ports(read_tree(self.root, "src"), tests, lists))
        self.assertEqual(told, [("src/ports/Clock.h", 1, "has no back end for linux (linux/.../Clock.h)")])

    def testABackEndOfAnotherSystemDoesNotCount(self):
        self.plant("tests/fakes/Disk.h", '#include "ports/Disk.h"\n')
        self.plant("src/ui/macos/Disk.h", "")
        self.refused("src/ports/Disk.h", "struct Disk { virtual int free() = 0; };", "has no back end for linux")

    def testPlainRecordNeedsNeither(self):
        self.accepted("src/ports/Row.h", "struct Row { int pid; };")

    def testFakeHasItsPortsName(self):
        self.accepted("tests/fakes/ManualScheduler.h", '#include "base/Scheduler.h"\n')
        self.refused("tests/fakes/SteppedClock.h", '#include "ports/Clock.h"\n', "under another name")

    # --- fuzzers

    def testReaderWithoutFuzzerIsReported(self):
        self.refused("src/formats/Table.h", "int rows(Texts texts);\n", "has no fuzzer", "tests/fuzz/TableFuzzer.cpp")
        self.accepted("tests/fuzz/TableFuzzer.cpp", '#include "formats/Table.h"\n')

    def testFuzzerOfAnotherNameIsNone(self):
        self.plant("tests/fuzz/TablesFuzzer.cpp", "")
        self.refused("src/formats/Table.h", "int rows(std::string_view text);\n", "has no fuzzer")

    def testWhatReadsNothingForeignNeedsNoFuzzer(self):
        self.accepted("src/formats/PropertyListBuilder.h", "struct PropertyListBuilder { int cells; };\n")

    # --- lines

    def testBracketInACoAwaitExpressionIsReported(self):
        self.accepted("src/app/Good.cpp", 'co_await sleep("[");  // [\nint a[2];\n')
        self.refused("src/app/Bad.cpp", "co_await run([x] { return x; });\n", "co_await")
        self.refused("src/app/Bad.cpp", "co_await run(\n    [x] { return x; });\n", "co_await")

    def testCoroutineLambdaIsReported(self):
        self.refused("tests/app/Bad.cpp", "auto f = [x]() -> Task<int> { co_return x; };\n", "lambda")

    def testClockSleepAndTimerAreReported(self):
        for text in (
            "auto t = std::chrono::steady_clock::now();",
            "std::this_thread::sleep_for(limit);",
            "::usleep(10);",
            "auto t = time(nullptr);",
            "clock_gettime(CLOCK_MONOTONIC, &t);",
            "int fd = timerfd_create(CLOCK_MONOTONIC, 0);",
            "QTimer timer;",
            "auto t = QDateTime::currentDateTime();",
        ):
            with self.subTest(text):
                self.refused("src/linux/Bad.cpp", text + "\n", "clock, sleep or timer")

    def testSchedulerAndCalendarClockAreTheClocks(self):
        self.accepted("src/ui/loop/QtScheduler.cpp", "auto t = std::chrono::steady_clock::now();\n")
        self.accepted("src/ui/linux/WakeTimer.cpp", "int fd = timerfd_create(CLOCK_MONOTONIC, 0);\n")
        self.accepted("src/posix/CalendarClock.cpp", "auto t = std::chrono::system_clock::now();\n")

    def testPlatformConditionIsReported(self):
        self.accepted("src/linux/Good.cpp", "#ifdef __GLIBC__\n#endif\n")
        self.accepted("src/base/HostSystem.h", "#if defined(__APPLE__)\n#endif\n")
        self.refused("src/startup/Bad.cpp", "#if defined(__APPLE__)\n#endif\n", "condition on the platform")

    def testAnErrorThatCanBeDroppedIsReported(self):
        for text in ("std::expected<void, std::string> move();", "  virtual std::expected<int, int> read() = 0;",
                     "  static posix::Attempt<Folder> open(const std::string& path);",
                     "template <typename T> std::expected<T, int> read();"):
            with self.subTest(text):
                self.refused("src/base/Bad.h", text + "\n", "without [[nodiscard]]")
        os.unlink(os.path.join(self.root, "src/base/Bad.h"))
        self.accepted("src/base/Good.h", "[[nodiscard]] std::expected<void, int> move();\n"
                      "using Result = std::expected<void, int>;\nstd::expected<void, int> last;\n")

    def testJudgingACallerByPidIsReported(self):
        for text in ("message.getCredsUid();", 'subject("unix-process");', "message.getCredsPid();"):
            with self.subTest(text):
                self.refused("src/linux/daemon/Bad.cpp", text + "\n", "by its pid")

    def testWhatTheRootDaemonMustNotDoIsReported(self):
        for text in ('callMethod("GetConnectionUnixProcessID");', "getsockopt(file, SOL_SOCKET, SO_PEERCRED);", "::fork();",
                     '::system("x");', "::execve(path, list, none);", "::setresuid(1, 1, 1);", 'std::getenv("VORLI_X");'):
            with self.subTest(text=text):
                self.refused("src/linux/daemon/Planted.cpp", text + "\n")
        os.unlink(os.path.join(self.root, "src/linux/daemon/Planted.cpp"))
        self.refused("src/posix/daemon/Planted.cpp", "::fork();\n", "starts a program as root")
        os.unlink(os.path.join(self.root, "src/posix/daemon/Planted.cpp"))
        self.plant("src/macos/Clock.h", '#include "ports/Clock.h"\n')
        self.refused("src/macos/daemon/Planted.cpp", "::fork();\n", "starts a program as root")
        os.unlink(os.path.join(self.root, "src/macos/daemon/Planted.cpp"))
        self.refused("src/daemon/Planted.cpp", '::popen("x", "r");\n', "as root")
        os.unlink(os.path.join(self.root, "src/daemon/Planted.cpp"))
        self.accepted("src/linux/Planted.cpp", '::fork();\nstd::getenv("HOME");\n')
        self.accepted("src/linux/daemon/StartContext.cpp", '::secure_getenv("JOURNAL_STREAM");\n')

    def testLongFilesAreReported(self):
        self.accepted("src/app/Long.cpp", "\n" * 400)
        self.refused("src/app/Long.cpp", "\n" * 401, "401 lines", line=401)
        os.remove(os.path.join(self.root, "src/app/Long.cpp"))
        self.accepted("tests/app/LongTest.cpp", "\n" * 600)
        self.refused("tests/app/LongTest.cpp", "\n" * 601, "601 lines", line=601)

    def testSleepInATestIsReported(self):
        self.accepted("tests/desktop/good.py", 'wait_for(is_there, "it")\nPopen(["/bin/sleep", "1000"])  # time.sleep(1)\n')
        self.accepted("tests/daemon/tools/Gaps.cpp", "::ppoll(nullptr, 0, &span, nullptr);\n")
        for path, text in (
            ("tests/app/BadTest.cpp", "std::this_thread::sleep_for(limit);"),
            ("tests/app/BadTest.cpp", "::ppoll(nullptr, 0, &span, nullptr);"),
            ("tests/app/BadTest.cpp", "::select(0, nullptr, nullptr, nullptr, &span);"),
            ("tests/ui/BadTest.cpp", "QTest::qWait(10);"),
            ("tests/ui/Waiting.cpp", "QTest::qWait(10);"),
            ("tests/desktop/bad.py", "time.sleep(1)"),
            ("tests/desktop/waiting.py", "time.sleep(1)"),
            ("tests/desktop/bad.py", "pause = time.sleep"),
            ("tests/desktop/bad.py", "from time import monotonic, sleep"),
            ("tests/desktop/bad.py", "import time as clock"),
            ("tests/desktop/bad.py", "asyncio.sleep(1)"),
            ("tests/desktop/bad.py", "select.select([], [], [], 1)"),
            ("tests/desktop/bad.py", "threading.Event().wait(1)"),
            ("tests/desktop/bad.py", 'subprocess.run(["/bin/sleep", "1"])'),
            ("tests/desktop/bad.sh", "sleep 1"),
            ("tests/desktop/bad.sh", "read -t 1 line"),
        ):
            with self.subTest(path=path, text=text):
                self.refused(path, text + "\n", "a sleep in a test")
                os.remove(os.path.join(self.root, path))

    def testContractWithABlockingMethodIsReported(self):
        self.refused(CONTRACT, self.contract.replace('value="clientserver"', 'value="client-server"', 1), "PurgeMemory", "Async")

    def testMissingContractIsReported(self):
        os.remove(os.path.join(self.root, CONTRACT))
        self.assertEqual(self.check(), [f"{CONTRACT}:1: is missing"])


if __name__ == "__main__":
    unittest.main(verbosity=1)
