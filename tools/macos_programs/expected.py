"""Requirements for the two programs for a Mac: the libraries that they load, and the calls between them."""

from .stubs import install_name

SYSTEM = ("/usr/lib/libSystem.B.dylib", install_name("libc++"), install_name("libobjc"))
LIBRARIES = {
    "Vorli": {
        *SYSTEM,
        *map(install_name, ("AppKit", "Carbon", "CoreAudio", "CoreFoundation", "CoreGraphics", "Foundation", "IOKit",
                            "QtCore", "QtGui", "QtWidgets", "ServiceManagement", "UserNotifications")),
    },
    "vorli-helper": {*SYSTEM, *map(install_name, ("CoreFoundation", "Foundation", "Security"))},
}
# Selectors of the framework for updates, which is loaded by name if the bundle has it. The table has no facts of it.
UPDATE_FRAMEWORK = frozenset("""
    canCheckForUpdates checkForUpdates: checkForUpdatesInBackground setAutomaticallyChecksForUpdates:
    initWithStartingUpdater:updaterDelegate:userDriverDelegate: setUpdateCheckInterval: updater
    """.split())
# Methods of NSObject: its header is open, so the compiler has checked them there.
ROOT_CLASS = frozenset({"init"})
OTHER_SELECTORS = {"Vorli": ROOT_CLASS | UPDATE_FRAMEWORK, "vorli-helper": ROOT_CLASS}
# The contract of the daemon: names, order and full types of the methods.
PROTOCOL = "HelperProtocol"
WIRE_FORMAT = [
    ("pingWithReply:", 'v24@0:8@?<v@?@"NSString">16'),
    ("versionWithReply:", 'v24@0:8@?<v@?@"NSString">16'),
    ("purgeMemoryWithReply:", 'v24@0:8@?<v@?i@"NSString">16'),
    ("flushDNSWithReply:", 'v24@0:8@?<v@?i@"NSString">16'),
    ("killPID:signal:reply:", 'v32@0:8i16i20@?<v@?i@"NSString">24'),
    ("dumpBTMWithReply:", 'v24@0:8@?<v@?i@"NSString">16'),
    ("moveLaunchAgentPlistFrom:to:reply:", 'v40@0:8@"NSString"16@"NSString"24@?<v@?i@"NSString">32'),
]
# Calls for which the system asks the user, or which it refuses without an entitlement. Each has the key of Info.plist
# with the sentence for the user, and the entitlement; None where it needs none.
PERMISSIONS = {
    "_AudioHardwareCreateProcessTap": ("NSAudioCaptureUsageDescription", "com.apple.security.device.audio-input"),
}
