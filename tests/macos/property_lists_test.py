#!/usr/bin/env python3
"""Compares the property lists of the bundle for macOS with the sources that have the same names and values."""

import json
import pathlib
import plistlib
import re
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))

from macos_target import VERSION  # noqa: E402


def property_list(name):
    return plistlib.loads((ROOT / "packaging/macos" / name).read_bytes())


def constant(path, name):
    """The text of the constant with this name in a header."""
    text = (ROOT / "src" / path).read_text(encoding="utf-8")
    return re.search(rf'\bstd::string_view {name} = "([^"]+)"', text)[1]


class PropertyListsTest(unittest.TestCase):
    def testBundleHasTheProgramsIdentifierAndNoPlaceInTheDock(self):
        info = property_list("Info.plist.in")
        self.assertEqual(info["CFBundleIdentifier"], constant("base/Logger.h", "logSubsystem"))
        self.assertIs(info["LSUIElement"], True)
        self.assertEqual(info["CFBundlePackageType"], "APPL")

    def testBundleRunsOnTheOldestSystemThatTheSourcesAreCheckedFor(self):
        self.assertEqual("macos" + property_list("Info.plist.in")["LSMinimumSystemVersion"], VERSION)

    def testBuildIsForTheSameOldestSystem(self):
        presets = json.loads((ROOT / "CMakePresets.json").read_text(encoding="utf-8"))["configurePresets"]
        build = next(preset for preset in presets if preset["name"] == "mac")
        self.assertEqual("macos" + build["cacheVariables"]["CMAKE_OSX_DEPLOYMENT_TARGET"], VERSION)

    def testVersionAndBuildNumberComeFromTheBuild(self):
        info = property_list("Info.plist.in")
        self.assertEqual(info["CFBundleShortVersionString"], "@PROJECT_VERSION@")
        self.assertEqual(info["CFBundleVersion"], "@VORLI_BUILD_NUMBER@")

    def testUserCanReadWhyVorliListens(self):
        self.assertIn("sound", property_list("Info.plist.in")["NSAudioCaptureUsageDescription"])

    def testUpdatesAreOffUntilABuildHasAKeyOfItsOwn(self):
        self.assertIn("REPLACE_WITH", property_list("Info.plist.in")["SUPublicEDKey"])

    def testDaemonHasTheServiceOfTheContract(self):
        service = constant("contract/HelperProtocol.h", "serviceName")
        name = constant("contract/HelperProtocol.h", "daemonPropertyList")
        daemon = property_list(name)
        self.assertEqual(daemon["Label"], service)
        self.assertEqual(daemon["MachServices"], {service: True})

    def testSystemWaitsForTheDaemonLongerThanTheDaemonWaitsForItsWork(self):
        lifecycle = (ROOT / "src/daemon/Lifecycle.h").read_text(encoding="utf-8")
        longest = float(re.search(r"\bdrainSeconds = ([0-9.]+);", lifecycle)[1])
        daemon = property_list(constant("contract/HelperProtocol.h", "daemonPropertyList"))
        self.assertGreater(daemon["ExitTimeOut"], longest)

    def testDaemonIsStartedOnDemandOutOfTheBundle(self):
        daemon = property_list(constant("contract/HelperProtocol.h", "daemonPropertyList"))
        self.assertEqual(daemon["BundleProgram"], "Contents/MacOS/vorli-helper")
        self.assertEqual(daemon["AssociatedBundleIdentifiers"], [property_list("Info.plist.in")["CFBundleIdentifier"]])
        for key in ("KeepAlive", "RunAtLoad", "Program", "ProgramArguments"):
            self.assertNotIn(key, daemon)


if __name__ == "__main__":
    unittest.main(verbosity=1)
