#include "macos/session/DesktopShell.h"

#import <AppKit/AppKit.h>

namespace vorli::machost {

namespace {

void quitFirst(NSString* bundleIdentifier) {
  [[NSRunningApplication runningApplicationsWithBundleIdentifier:bundleIdentifier].firstObject terminate];
}

}  // namespace

void DesktopShell::restartDock() {
  quitFirst(@"com.apple.dock");
}

void DesktopShell::restartFinder(OnceReply<std::string>) {
  quitFirst(@"com.apple.finder");
}

}  // namespace vorli::machost
