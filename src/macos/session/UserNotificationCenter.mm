#include "macos/session/UserNotificationCenter.h"

#include "macos/Text.h"

#import <UserNotifications/UserNotifications.h>
#include <functional>
#include <utility>

using Present = std::function<void(void (^)(UNNotificationPresentationOptions))>;
using Respond = std::function<void(vorli::ports::NotificationResponse, void (^)(void))>;

/// Receives the system's calls, which may come on any thread.
@interface VorliNotificationReceiver : NSObject <UNUserNotificationCenterDelegate>
- (instancetype)initWithPresent:(Present)present respond:(Respond)respond;
@end

@implementation VorliNotificationReceiver {
  Present _present;
  Respond _respond;
}

- (instancetype)initWithPresent:(Present)present respond:(Respond)respond {
  if ((self = [super init])) {
    _present = std::move(present);
    _respond = std::move(respond);
  }
  return self;
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))completionHandler {
  _present(completionHandler);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
  using vorli::machost::textOf;
  _respond(
      {textOf(response.actionIdentifier), textOf(response.notification.request.content.categoryIdentifier)},
      completionHandler);
}

@end

namespace vorli::machost {

namespace {

UNNotificationCategory* categoryOf(const ports::NotificationCategory& category) {
  NSMutableArray<UNNotificationAction*>* const actions = [[NSMutableArray alloc] init];
  for (const auto& action : category.actions) {
    [actions addObject:[UNNotificationAction actionWithIdentifier:stringOf(action.identifier)
                                                            title:stringOf(action.title)
                                                          options:action.options]];
  }
  return [UNNotificationCategory categoryWithIdentifier:stringOf(category.identifier)
                                                actions:actions
                                      intentIdentifiers:@[]
                                                options:0];
}

UNNotificationRequest* requestOf(const ports::NotificationRequest& request) {
  UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
  content.title = stringOf(request.title);
  content.body = stringOf(request.body);
  content.interruptionLevel = static_cast<UNNotificationInterruptionLevel>(request.interruptionLevel);
  content.categoryIdentifier = stringOf(request.categoryIdentifier);
  return [UNNotificationRequest requestWithIdentifier:stringOf(request.identifier)
                                              content:content
                                              trigger:nil];
}

}  // namespace

// Calls of the system are posted to the main loop. A call without a delegate is completed as well.
UserNotificationCenter::UserNotificationCenter(Scheduler& scheduler)
    : scheduler_(scheduler),
      receiver_([[VorliNotificationReceiver alloc]
          initWithPresent:[&scheduler, life = std::weak_ptr(life_)](
                              void (^completion)(UNNotificationPresentationOptions)) {
            scheduler.post([life, completion] {
              const auto alive = life.lock();
              completion(alive && alive->delegate ? alive->delegate->presentationOptions() : 0);
            });
          }
          respond:[&scheduler, life = std::weak_ptr(life_)](ports::NotificationResponse response,
                                                            void (^completion)(void)) {
            scheduler.post([life, response = std::move(response), completion]() mutable {
              const auto alive = life.lock();
              if (!alive || !alive->delegate) return completion();
              alive->delegate->didReceive(std::move(response), [completion] { completion(); });
            });
          }]) {}

UserNotificationCenter::~UserNotificationCenter() {
  if (life_->delegate) setDelegate(nullptr);
}

void UserNotificationCenter::setDelegate(ports::NotificationDelegate* delegate) {
  life_->delegate = delegate;
  UNUserNotificationCenter.currentNotificationCenter.delegate = delegate ? receiver_ : nil;
}

void UserNotificationCenter::setNotificationCategories(std::vector<ports::NotificationCategory> categories) {
  NSMutableArray<UNNotificationCategory*>* const list = [[NSMutableArray alloc] init];
  for (const auto& category : categories) [list addObject:categoryOf(category)];
  [UNUserNotificationCenter.currentNotificationCenter setNotificationCategories:[NSSet setWithArray:list]];
}

void UserNotificationCenter::requestAuthorization(std::uint32_t options,
                                                  OnceReply<ports::NotificationAuthorization> reply) {
  const auto once = std::make_shared<OnceReply<ports::NotificationAuthorization>>(std::move(reply));
  const std::weak_ptr<Life> life = life_;
  Scheduler* const scheduler = &scheduler_;
  [UNUserNotificationCenter.currentNotificationCenter
      requestAuthorizationWithOptions:options
                    completionHandler:^(BOOL granted, NSError* error) {
                      ports::NotificationAuthorization answer{.granted = granted == YES, .error = {}};
                      if (error) answer.error = textOf(error);
                      scheduler->post([once, life, answer] {
                        if (!life.expired()) std::move (*once)(answer);
                      });
                    }];
}

void UserNotificationCenter::add(ports::NotificationRequest request,
                                 OnceReply<std::expected<void, std::string>> reply) {
  using Result = std::expected<void, std::string>;
  const auto once = std::make_shared<OnceReply<Result>>(std::move(reply));
  const std::weak_ptr<Life> life = life_;
  Scheduler* const scheduler = &scheduler_;
  [UNUserNotificationCenter.currentNotificationCenter
      addNotificationRequest:requestOf(request)
       withCompletionHandler:^(NSError* error) {
         const Result result = error ? Result(std::unexpected(textOf(error))) : Result();
         scheduler->post([once, life, result] {
           if (!life.expired()) std::move (*once)(result);
         });
       }];
}

}  // namespace vorli::machost
