#!/usr/bin/env python3
"""Plants faults of each kind in a copy of our framework headers, and checks that tools/check_frameworks reports all of
them and nothing else."""

import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))

# Planted faults with file, text and replacement; and the expected reports with declaration and end of the sentence.
FAULTS = {
    "another selector": (
        "Foundation/Foundation.h", "- (void)invalidate;", "- (void)invalidated;",
        {"method -[NSXPCConnection invalidated]": "nothing is known of it"},
    ),
    "a method of the instance for one of the class": (
        "ServiceManagement/ServiceManagement.h", "+ (void)openSystem", "- (void)openSystem",
        {"method -[SMAppService openSystemSettingsLoginItems]": "nothing is known of it"},
    ),
    "another result": (
        "Foundation/Foundation.h", "- (BOOL)synchronize;", "- (void)synchronize;",
        {"method -[NSUserDefaults synchronize]": "is (v), should be (Z)"},
    ),
    "a number for a truth value": (
        "AppKit/AppKit.h", "- (BOOL)openURL:", "- (int)openURL:",
        {"method -[NSWorkspace openURL:]": "is (i @), should be (Z @)"},
    ),
    "a text for a selector": (
        "AppKit/AppKit.h", "@property(nullable) SEL action;", "@property(nullable) const char* action;",
        {
            "method -[NSControl action]": "is (^c), should be (:)",
            "method -[NSControl setAction:]": "is (v ^c), should be (v :)",
        },
    ),
    "a wider argument": (
        "Foundation/Foundation.h", "numberWithInt:(int)", "numberWithInt:(long)",
        {"method +[NSNumber numberWithInt:]": "is (@ q), should be (@ i)"},
    ),
    "a wider property": (
        "Foundation/Foundation.h", "@property(readonly) int intValue;", "@property(readonly) long intValue;",
        {"method -[NSNumber intValue]": "is (q), should be (i)"},
    ),
    "an object of another class": (
        "AppKit/AppKit.h", "(nullable NSURL*)URLForApplication", "(nullable NSString*)URLForApplication",
        {"method -[NSWorkspace URLForApplicationWithBundleIdentifier:]": "has NSString at place 0, should have NSURL"},
    ),
    "another block": (
        "ServiceManagement/ServiceManagement.h", "(void (^)(NSError* _Nullable error))", "(void (^)(BOOL done))",
        {"method -[SMAppService unregisterWithCompletionHandler:]": "should be (v @)"},
    ),
    "another superclass": (
        "UserNotifications/UserNotifications.h", "UNMutableNotificationContent : UNNotificationContent",
        "UNMutableNotificationContent : NSObject",
        {"class UNMutableNotificationContent": "the superclass is NSObject, should be UNNotificationContent"},
    ),
    "a protocol that is not adopted": (
        "Foundation/Foundation.h", "@interface NSThread : NSObject", "@interface NSThread : NSObject <NSCopying>",
        {"class NSThread": "does not adopt NSCopying"},
    ),
    "a method that is optional": (
        "UserNotifications/UserNotifications.h", "@optional", "@required",
        {
            "method -[<UNUserNotificationCenterDelegate> userNotificationCenter:willPresentNotification:"
            "withCompletionHandler:]": "optional is False, should be True",
            "method -[<UNUserNotificationCenterDelegate> userNotificationCenter:didReceiveNotificationResponse:"
            "withCompletionHandler:]": "optional is False, should be True",
        },
    ),
    "another constant": (
        "Foundation/Foundation.h", "NSXPCConnectionPrivileged = 1 << 12", "NSXPCConnectionPrivileged = 1 << 11",
        {"constant NSXPCConnectionPrivileged": "is 2048, should be 4096"},
    ),
    "a constant without a sign": (
        "Foundation/Foundation.h", "NS_ENUM(NSInteger, NSTaskTerminationReason)",
        "NS_ENUM(NSUInteger, NSTaskTerminationReason)",
        {
            "constant NSTaskTerminationReasonExit": "its type is Q, should be q",
            "constant NSTaskTerminationReasonUncaughtSignal": "its type is Q, should be q",
            "method -[NSTask terminationReason]": "is (Q), should be (q)",
        },
    ),
    "another code of four characters": (
        "CoreAudio/CoreAudio.h", "'tuid'", "'tuit'",
        {"constant kAudioTapPropertyUID": f"is {int.from_bytes(b'tuit')}, should be {int.from_bytes(b'tuid')}"},
    ),
    "another key": (
        "CoreAudio/CoreAudio.h", '"tapautostart"', '"autostart"',
        {"macro kAudioAggregateDeviceTapAutoStartKey": "is 'autostart', should be 'tapautostart'"},
    ),
    "a wider argument of a function": (
        "Carbon/Carbon.h", "RegisterEventHotKey(UInt32 keyCode", "RegisterEventHotKey(UInt64 keyCode",
        {"function RegisterEventHotKey": "should be (i I I {EventHotKeyID=II} ^{OpaqueEventTargetRef} I ^^{OpaqueEventHotKeyRef})"},
    ),
    "more arguments": (
        "CoreFoundation/CoreFoundation.h", "CFRelease(CFTypeRef cf)", "CFRelease(CFTypeRef cf, ...)",
        {"function CFRelease": "variadic is True, should be False"},
    ),
    "a variable of another type": (
        "CoreGraphics/CoreGraphics.h", "const CFStringRef kCGWindowOwnerPID", "const int kCGWindowOwnerPID",
        {"extern kCGWindowOwnerPID": "is (i), should be (^{__CFString})"},
    ),
    "a variable of another class": (
        "UserNotifications/UserNotifications.h", "NSString* const UNNotificationDefault",
        "NSURL* const UNNotificationDefault",
        {"extern UNNotificationDefaultActionIdentifier": "has NSURL at place 0, should have NSString"},
    ),
    "a wider field": (
        "CoreAudio/CoreAudio.h", "Float64 mRateScalar;", "float mRateScalar;",
        {"struct AudioTimeStamp": "is ({AudioTimeStamp=dQfQ{SMPTETime=ssIIIssss}II}), "
                                  "should be ({AudioTimeStamp=dQdQ{SMPTETime=ssIIIssss}II})"},
    ),
    "fields of one type that changed places": (
        "Foundation/Foundation.h", "NSInteger minorVersion;\n  NSInteger patchVersion;",
        "NSInteger patchVersion;\n  NSInteger minorVersion;",
        {"struct NSOperatingSystemVersion": "should be ['majorVersion', 'minorVersion', 'patchVersion']"},
    ),
    "a struct that is not packed": (
        "Carbon/Carbon.h", "#pragma pack(push, 2)", "#pragma pack(push, 4)",
        {
            "struct EventHotKeyID": "is aligned to 4 bytes, should be packed to 2",
            "struct EventTypeSpec": "is aligned to 4 bytes, should be packed to 2",
        },
    ),
    "a later version": (
        "CoreAudio/AudioHardwareTapping.h", "AudioHardwareDestroyProcessTap(AudioObjectID tap) API_AVAILABLE(macos(14.2))",
        "AudioHardwareDestroyProcessTap(AudioObjectID tap) API_AVAILABLE(macos(14.4))",
        {"function AudioHardwareDestroyProcessTap": "the first version of macOS is 14.4, should be 14.2"},
    ),
    "a version that is left out": (
        "CoreAudio/AudioHardwareTapping.h", "AudioObjectID* tap)\n    API_AVAILABLE(macos(14.2))", "AudioObjectID* tap)",
        {"function AudioHardwareCreateProcessTap": "the first version of macOS is None, should be 14.2"},
    ),
    "a version that nothing confirms": (
        "Foundation/Foundation.h", "- (NSString*)displayNameAtPath:(NSString*)path;",
        "- (NSString*)displayNameAtPath:(NSString*)path API_AVAILABLE(macos(14.3));",
        {"method -[NSFileManager displayNameAtPath:]": "the first version of macOS is 14.3, should be None"},
    ),
    "a function that does not exist": (
        "IOKit/ps/IOPowerSources.h", "#include <CoreFoundation/CoreFoundation.h>",
        "#include <CoreFoundation/CoreFoundation.h>\nCF_EXPORT int IOPSGetNothing(void);",
        {"function IOPSGetNothing": "nothing is known of it"},
    ),
}


class CheckFrameworksTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vorli-check-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.headers = os.path.join(self.folder, "frameworks")
        shutil.copytree(os.path.join(ROOT, "tools/macos/frameworks"), self.headers)

    def plant(self, path, text, replacement):
        with open(os.path.join(self.headers, path), encoding="utf-8") as file:
            content = file.read()
        self.assertEqual(content.count(text), 1, f"{path} has {text!r} {content.count(text)} times")
        with open(os.path.join(self.headers, path), "w", encoding="utf-8") as file:
            file.write(content.replace(text, replacement))

    def check(self, *more):
        run = subprocess.run([os.path.join(ROOT, "tools/check_frameworks"), self.headers, *more],
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout, [line for line in run.stdout.splitlines() if line.startswith("FAILED ")]

    def testHeadersAgreeWithTheFactsAndAreCounted(self):
        status, output, failed = self.check()
        self.assertEqual((status, failed), (0, []), output)
        self.assertRegex(output, r"arm64: class \d+, constant \d+, extern \d+, function \d+, macro \d+, method \d+")
        self.assertRegex(output.splitlines()[-1], r"^[1-9]\d* passed, 0 failed$")

    def testEachPlantedFaultIsReportedForBothProcessors(self):
        for path, text, replacement, _ in FAULTS.values():
            self.plant(path, text, replacement)
        status, output, failed = self.check()
        self.assertEqual(status, 1)
        for processor in ("arm64", "x86_64"):
            told = [line for line in failed if f" for {processor}: " in line]
            for fault, (path, _, _, expected) in FAULTS.items():
                for declaration, sentence in expected.items():
                    with self.subTest(fault, processor=processor, declaration=declaration):
                        lines = [line for line in told if f": {declaration}: " in line]
                        self.assertEqual(len(lines), 1, output)
                        self.assertTrue(lines[0].startswith(f"FAILED {path}:") and lines[0].endswith(sentence), lines)
                        told.remove(lines[0])
            self.assertEqual(told, [], "reported besides the planted faults")

    def testHeadersThatDoNotCompileFail(self):
        self.plant("Foundation/Foundation.h", "@class NSData;", "@class NSData")
        status, output, failed = self.check()
        self.assertEqual((status, failed), (1, [
            "FAILED for arm64: the headers do not compile", "FAILED for x86_64: the headers do not compile",
        ]), output)

    def testADeclarationThatTheTableLacksFails(self):
        table = os.path.join(self.folder, "table.jsonl")
        with open(os.path.join(ROOT, "tools/macos/framework_facts.jsonl"), encoding="utf-8") as file:
            lines = [line for line in file if '"CFGetTypeID"' not in line]
        with open(table, "w", encoding="utf-8") as file:
            file.writelines(lines)
        status, output, failed = self.check(table)
        self.assertEqual((status, len(failed)), (1, 2), output)
        self.assertIn("function CFGetTypeID: nothing is known of it", failed[0])

    def testNoHeadersFail(self):
        shutil.rmtree(self.headers)
        os.makedirs(self.headers)
        status, output, _ = self.check()
        self.assertEqual((status, output.splitlines()[-1]), (1, "0 passed, 1 failed"))


if __name__ == "__main__":
    unittest.main(verbosity=1)
