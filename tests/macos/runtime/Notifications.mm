#include "tests/macos/runtime/Notifications.h"

#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

namespace vorli::macfake {

static State<Notifications> notificationsState;

Notifications& notifications() {
  return *notificationsState;
}

}  // namespace vorli::macfake

using vorli::macfake::notifications;

@implementation UNNotificationContent
@end

@implementation UNMutableNotificationContent
@synthesize title, body, interruptionLevel;
@dynamic categoryIdentifier;
@end

@implementation UNNotificationRequest

+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(nullable UNNotificationTrigger*)trigger {
  UNNotificationRequest* const request = [[self alloc] init];
  request.identifier = identifier;
  request.content = content;
  request.trigger = trigger;
  return request;
}
@end

@implementation UNNotification
@end

@implementation UNNotificationResponse
@end

@implementation UNNotificationAction

+ (instancetype)actionWithIdentifier:(NSString*)identifier
                               title:(NSString*)title
                             options:(UNNotificationActionOptions)options {
  UNNotificationAction* const action = [[self alloc] init];
  action.identifier = identifier;
  action.title = title;
  action.options = options;
  return action;
}
@end

@implementation UNNotificationCategory

+ (instancetype)categoryWithIdentifier:(NSString*)identifier
                               actions:(NSArray<UNNotificationAction*>*)actions
                     intentIdentifiers:(NSArray<NSString*>*)intentIdentifiers
                               options:(UNNotificationCategoryOptions)options {
  UNNotificationCategory* const category = [[self alloc] init];
  category.identifier = identifier;
  category.actions = actions;
  category.options = options;
  return category;
}
@end

@implementation UNUserNotificationCenter

+ (UNUserNotificationCenter*)currentNotificationCenter {
  static UNUserNotificationCenter* const center =
      vorli::macfake::shared([[UNUserNotificationCenter alloc] init]);
  return center;
}
- (void)setNotificationCategories:(NSSet<UNNotificationCategory*>*)categories {
  notifications().categories = categories;
}
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL, NSError* _Nullable))completionHandler {
  notifications().options = options;
  notifications().authorizations.push_back(completionHandler);
}
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(nullable void (^)(NSError* _Nullable))completionHandler {
  [notifications().requests addObject:request];
  notifications().additions.push_back(completionHandler);
}
@end
