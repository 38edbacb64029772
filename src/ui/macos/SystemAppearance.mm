#include "ui/macos/SystemAppearance.h"

#include "macos/Observation.h"

#import <AppKit/AppKit.h>
#include <utility>

namespace vorli::ui {

bool isSystemDark() {
  NSArray<NSAppearanceName>* const names = @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ];
  NSString* const best = [NSApp.effectiveAppearance bestMatchFromAppearancesWithNames:names];
  return [best isEqual:NSAppearanceNameDarkAqua];
}

Subscription subscribeToSystemAppearance(std::function<void()> handler) {
  return machost::observe(NSDistributedNotificationCenter.defaultCenter,
                          @"AppleInterfaceThemeChangedNotification",
                          [handler = std::move(handler)](NSNotification*) { handler(); });
}

}  // namespace vorli::ui
