#include "macos/session/MotionPreference.h"

#include "macos/Observation.h"

#import <AppKit/AppKit.h>
#include <memory>
#include <utility>

namespace vorli::machost {

namespace {

bool isReducedNow() {
  return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
}

}  // namespace

bool MotionPreference::isReduced() const {
  return isReducedNow();
}

// The notification also comes for the other settings of the display.
Subscription MotionPreference::subscribe(std::function<void()> handler) {
  const auto wasReduced = std::make_shared<bool>(isReducedNow());
  return observe(NSWorkspace.sharedWorkspace.notificationCenter,
                 NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification,
                 [wasReduced, handler = std::move(handler)](NSNotification*) {
                   const bool isReduced = isReducedNow();
                   if (std::exchange(*wasReduced, isReduced) != isReduced) handler();
                 });
}

}  // namespace vorli::machost
