#include "macos/session/Announcements.h"

#include "macos/Text.h"

#import <AppKit/AppKit.h>

namespace vorli::machost {

void Announcements::post(std::string_view text) {
  NSDictionary* const announcement = @{
    NSAccessibilityAnnouncementKey : stringOf(text),
    NSAccessibilityPriorityKey : @(NSAccessibilityPriorityMedium),
  };
  NSAccessibilityPostNotificationWithUserInfo(NSApp, NSAccessibilityAnnouncementRequestedNotification,
                                              announcement);
}

}  // namespace vorli::machost
