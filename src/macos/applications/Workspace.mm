#include "macos/applications/Workspace.h"

#include "macos/Observation.h"
#include "macos/Text.h"

#import <AppKit/AppKit.h>
#include <string>
#include <utility>

namespace vorli::machost {

namespace {

using ports::QuitAnswer;

ports::ActivationPolicy policyOf(NSApplicationActivationPolicy policy) {
  switch (policy) {
    case NSApplicationActivationPolicyRegular:
      return ports::ActivationPolicy::regular;
    case NSApplicationActivationPolicyAccessory:
      return ports::ActivationPolicy::accessory;
    case NSApplicationActivationPolicyProhibited:
      return ports::ActivationPolicy::prohibited;
  }
  return ports::ActivationPolicy::prohibited;
}

std::optional<SharedText> sharedText(NSString* string) {
  if (!string) return std::nullopt;
  return SharedText(textOf(string));
}

// The system keeps the icon with the bundle.
ports::RunningApplication recordOf(NSRunningApplication* application) {
  ports::RunningApplication record{
      .processIdentifier = application.processIdentifier,
      .localizedName = sharedText(application.localizedName),
      .bundleIdentifier = sharedText(application.bundleIdentifier),
      .bundleURL = sharedText(application.bundleURL.path),
      .activationPolicy = policyOf(application.activationPolicy),
  };
  if (NSDate* const launch = application.launchDate) record.launchDate = Date{launch.timeIntervalSince1970};
  if (record.bundleURL) record.icon = {*record.bundleURL};
  return record;
}

NSNotificationName nameOf(ports::ApplicationEvent event) {
  switch (event) {
    case ports::ApplicationEvent::activated:
      return NSWorkspaceDidActivateApplicationNotification;
    case ports::ApplicationEvent::launched:
      return NSWorkspaceDidLaunchApplicationNotification;
    case ports::ApplicationEvent::terminated:
      return NSWorkspaceDidTerminateApplicationNotification;
  }
  return NSWorkspaceDidTerminateApplicationNotification;
}

}  // namespace

const std::vector<ports::RunningApplication>& Workspace::runningApplications() {
  if (std::exchange(*isCurrent_, true)) return applications_;
  applications_.clear();
  @autoreleasepool {
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications)
      applications_.push_back(recordOf(application));
  }
  scheduler_.post([isCurrent = std::weak_ptr(isCurrent_)] {
    if (const auto alive = isCurrent.lock()) *alive = false;
  });
  return applications_;
}

std::optional<ports::RunningApplication> Workspace::frontmostApplication() {
  NSRunningApplication* const front = NSWorkspace.sharedWorkspace.frontmostApplication;
  if (!front) return std::nullopt;
  return recordOf(front);
}

std::optional<std::vector<std::int32_t>> Workspace::onScreenWindowOwnerPIDs() {
  constexpr auto options = kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements;
  std::vector<std::int32_t> owners;
  @autoreleasepool {
    const id windows = (__bridge_transfer id)CGWindowListCopyWindowInfo(options, kCGNullWindowID);
    if (![windows isKindOfClass:NSArray.class]) return owners;
    for (id window in static_cast<NSArray*>(windows)) {
      if (![window isKindOfClass:NSDictionary.class]) return std::vector<std::int32_t>();
      const id owner = static_cast<NSDictionary*>(window)[(__bridge NSString*)kCGWindowOwnerPID];
      if ([owner isKindOfClass:NSNumber.class]) owners.push_back(static_cast<NSNumber*>(owner).intValue);
    }
  }
  return owners;
}

QuitAnswer Workspace::terminate(std::int32_t processIdentifier) {
  NSRunningApplication* const application =
      [NSRunningApplication runningApplicationWithProcessIdentifier:processIdentifier];
  if (!application || application.isTerminated) return QuitAnswer::gone;
  return [application terminate] ? QuitAnswer::asked : QuitAnswer::cannotBeAsked;
}

QuitAnswer Workspace::answerToTerminate(std::int32_t processIdentifier) {
  NSRunningApplication* const application =
      [NSRunningApplication runningApplicationWithProcessIdentifier:processIdentifier];
  return application && !application.isTerminated ? QuitAnswer::asked : QuitAnswer::gone;
}

std::optional<std::int32_t> Workspace::applicationHelpedBy(std::int32_t) {
  return std::nullopt;
}

std::optional<ports::InstalledApplication> Workspace::applicationAt(std::string_view path) {
  @autoreleasepool {
    NSBundle* const bundle = [NSBundle bundleWithPath:stringOf(path)];
    if (!bundle) return std::nullopt;
    return ports::InstalledApplication{
        .bundleIdentifier = sharedText(bundle.bundleIdentifier),
        .displayName = textOf([NSFileManager.defaultManager displayNameAtPath:bundle.bundlePath]),
    };
  }
}

Subscription Workspace::subscribe(ports::ApplicationEvent event, ApplicationHandler handler) {
  return observe(
      NSWorkspace.sharedWorkspace.notificationCenter, nameOf(event),
      [this, life = std::weak_ptr(isCurrent_), handler = std::move(handler)](NSNotification* notification) {
        const id application = notification.userInfo[NSWorkspaceApplicationKey];
        if (!life.expired() && [application isKindOfClass:NSRunningApplication.class])
          handler(listedRecord(static_cast<NSRunningApplication*>(application)));
      });
}

Subscription Workspace::subscribeToSpaceChanges(std::function<void()> handler) {
  return observe(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceActiveSpaceDidChangeNotification,
                 [handler = std::move(handler)](NSNotification*) { handler(); });
}

// Returns the record in the list, which may still contain an application that has ended.
ports::RunningApplication Workspace::listedRecord(NSRunningApplication* application) {
  for (const auto& listed : applications_) {
    if (listed.processIdentifier == application.processIdentifier) return listed;
  }
  return recordOf(application);
}

}  // namespace vorli::machost
