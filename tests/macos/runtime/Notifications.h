#pragma once

#import <UserNotifications/UserNotifications.h>
#include <vector>

namespace vorli::macfake {

/// The system's notifications: what the program has passed to it, and what it has not answered yet.
struct Notifications {
  NSSet<UNNotificationCategory*>* categories = nil;
  UNAuthorizationOptions options = 0;
  std::vector<void (^)(BOOL, NSError*)> authorizations;
  NSMutableArray<UNNotificationRequest*>* requests = [[NSMutableArray alloc] init];
  std::vector<void (^)(NSError*)> additions;
};

Notifications& notifications();

}  // namespace vorli::macfake

@interface UNNotificationContent ()
@property(copy) NSString* categoryIdentifier;
@end
@interface UNNotificationRequest ()
@property(copy) NSString* identifier;
@property(copy) UNNotificationContent* content;
@property(strong) UNNotificationTrigger* trigger;
@end
@interface UNNotification ()
@property(copy) UNNotificationRequest* request;
@end
@interface UNNotificationResponse ()
@property(copy) UNNotification* notification;
@property(copy) NSString* actionIdentifier;
@end
@interface UNNotificationAction ()
@property(copy) NSString* identifier;
@property(copy) NSString* title;
@property UNNotificationActionOptions options;
@end
@interface UNNotificationCategory ()
@property(copy) NSString* identifier;
@property(copy) NSArray<UNNotificationAction*>* actions;
@property UNNotificationCategoryOptions options;
@end
