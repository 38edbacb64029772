#include "tests/macos/runtime/AppKit.h"

#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

namespace vorli::macfake {

static State<Desktop> desktopState;

Desktop& desktop() {
  return *desktopState;
}

NSRunningApplication* launch(pid_t pid, NSString* name) {
  NSRunningApplication* const application = [[NSRunningApplication alloc] init];
  application.processIdentifier = pid;
  application.localizedName = name;
  [desktop().applications addObject:application];
  return application;
}

}  // namespace vorli::macfake

using vorli::macfake::desktop;
using vorli::macfake::shared;

@implementation NSRunningApplication

- (BOOL)terminate {
  if (self.refusesToQuit) return NO;
  ++self.quitRequests;
  return YES;
}
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier {
  NSMutableArray<NSRunningApplication*>* const found = [[NSMutableArray alloc] init];
  for (NSRunningApplication* each in desktop().applications)
    if ([each.bundleIdentifier isEqual:bundleIdentifier]) [found addObject:each];
  return found;
}
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid {
  for (NSRunningApplication* each in desktop().applications)
    if (each.processIdentifier == pid) return each;
  return nil;
}
@end

NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";
const NSNotificationName NSWorkspaceDidActivateApplicationNotification = @"did activate";
const NSNotificationName NSWorkspaceDidLaunchApplicationNotification = @"did launch";
const NSNotificationName NSWorkspaceDidTerminateApplicationNotification = @"did terminate";
const NSNotificationName NSWorkspaceActiveSpaceDidChangeNotification = @"space did change";
const NSNotificationName NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification = @"options did change";

@implementation NSWorkspace

+ (NSWorkspace*)sharedWorkspace {
  static NSWorkspace* const workspace = shared([[NSWorkspace alloc] init]);
  return workspace;
}
- (NSNotificationCenter*)notificationCenter {
  static NSNotificationCenter* const center = shared([[NSNotificationCenter alloc] init]);
  return center;
}
- (NSArray<NSRunningApplication*>*)runningApplications {
  return [desktop().applications copy];
}
- (NSRunningApplication*)frontmostApplication {
  return desktop().frontmost;
}
- (BOOL)accessibilityDisplayShouldReduceMotion {
  return desktop().reducesMotion;
}
- (BOOL)openURL:(NSURL*)url {
  desktop().openedLinks.emplace_back(url.absoluteString.UTF8String);
  return desktop().canOpenLinks;
}
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)urls {
  for (NSURL* each in urls) desktop().revealedFiles.emplace_back(each.path.UTF8String);
}
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier {
  return desktop().applicationURLs[bundleIdentifier];
}
- (NSImage*)iconForFile:(NSString*)path {
  return [[NSImage alloc] init];
}
@end

const CFStringRef kCGWindowOwnerPID = (__bridge CFStringRef) @"kCGWindowOwnerPID";

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID) {
  desktop().windowOptions.push_back(option);
  return (__bridge_retained CFArrayRef)(NSArray*)desktop().windows;
}
