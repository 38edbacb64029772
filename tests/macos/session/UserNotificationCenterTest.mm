#include "macos/session/UserNotificationCenter.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Notifications.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::notifications;
using Posting = std::expected<void, std::string>;

struct RecordingDelegate final : ports::NotificationDelegate {
  std::uint32_t presentationOptions() override { return 16; }
  void didReceive(ports::NotificationResponse response, UniqueFunction<void()> completion) override {
    responses.push_back(response.actionIdentifier + " of " + response.categoryIdentifier);
    completions.push_back(std::move(completion));
  }

  std::vector<std::string> responses;
  std::vector<UniqueFunction<void()>> completions;
};

struct UserNotificationCenterTest : testing::Test {
  UNUserNotificationCenter* platform() { return UNUserNotificationCenter.currentNotificationCenter; }

  UNNotificationResponse* response() {
    UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
    content.categoryIdentifier = @"memory";
    UNNotification* const notification = [[UNNotification alloc] init];
    notification.request = [UNNotificationRequest requestWithIdentifier:@"one" content:content trigger:nil];
    UNNotificationResponse* const response = [[UNNotificationResponse alloc] init];
    response.notification = notification;
    response.actionIdentifier = @"polish";
    return response;
  }
  // Calls the delegate as the system does, which holds it weakly.
  void present() {
    [platform().delegate userNotificationCenter:platform()
                        willPresentNotification:[[UNNotification alloc] init]
                          withCompletionHandler:^(UNNotificationPresentationOptions options) {
                            presented.push_back(options);
                          }];
  }
  void respond() {
    [platform().delegate userNotificationCenter:platform()
                 didReceiveNotificationResponse:response()
                          withCompletionHandler:^{
                            ++completed;
                          }];
  }
  OnceReply<Posting> posting() {
    return OnceReply<Posting>(
        [this](Posting result) { postings.push_back(result ? "posted" : result.error()); });
  }

  fakes::ManualScheduler scheduler;
  std::unique_ptr<UserNotificationCenter> center = std::make_unique<UserNotificationCenter>(scheduler);
  RecordingDelegate delegate;
  std::vector<NSUInteger> presented;
  int completed = 0;
  std::vector<std::string> postings;
};

TEST_F(UserNotificationCenterTest, categoriesHaveTheirButtonsInOrder) {
  center->setNotificationCategories(
      {{.identifier = "memory", .actions = {{"polish", "Polish Now", 4}, {"later", "Later", 0}}}});
  ASSERT_EQ(notifications().categories.count, 1U);
  for (UNNotificationCategory* category in notifications().categories) {
    EXPECT_STREQ(category.identifier.UTF8String, "memory");
    ASSERT_EQ(category.actions.count, 2U);
    EXPECT_STREQ(category.actions[0].identifier.UTF8String, "polish");
    EXPECT_STREQ(category.actions[0].title.UTF8String, "Polish Now");
    EXPECT_EQ(category.actions[0].options, 4U);
    EXPECT_STREQ(category.actions[1].identifier.UTF8String, "later");
    EXPECT_EQ(category.actions[1].options, 0U);
    EXPECT_EQ(category.options, 0U);
  }
}

TEST_F(UserNotificationCenterTest, permissionIsAskedForAndTheAnswerComesFromTheMainLoop) {
  std::optional<ports::NotificationAuthorization> answer;
  const auto reply = [&answer](ports::NotificationAuthorization is) { answer = std::move(is); };
  center->requestAuthorization(6, OnceReply<ports::NotificationAuthorization>(reply));
  EXPECT_EQ(notifications().options, 6U);
  notifications().authorizations[0](YES, nil);
  EXPECT_FALSE(answer);
  scheduler.runReady();
  ASSERT_TRUE(answer);
  EXPECT_TRUE(answer->granted);
  EXPECT_FALSE(answer->error);
}

TEST_F(UserNotificationCenterTest, aRefusalHasTheSystemsText) {
  std::optional<ports::NotificationAuthorization> answer;
  const auto reply = [&answer](ports::NotificationAuthorization is) { answer = std::move(is); };
  center->requestAuthorization(6, OnceReply<ports::NotificationAuthorization>(reply));
  notifications().authorizations[0](NO, [NSError errorWithCode:1 text:@"not allowed"]);
  scheduler.runReady();
  ASSERT_TRUE(answer);
  EXPECT_FALSE(answer->granted);
  EXPECT_EQ(answer->error, "not allowed");
}

TEST_F(UserNotificationCenterTest, aNotificationIsPostedAtOnceWithItsTextsAndLevel) {
  center->add({.identifier = "one",
               .title = "Memory is tight",
               .body = "A polish helps.",
               .interruptionLevel = ports::NotificationRequest::InterruptionLevel::active,
               .categoryIdentifier = "memory"},
              posting());
  UNNotificationRequest* const request = notifications().requests.firstObject;
  UNMutableNotificationContent* const content = static_cast<UNMutableNotificationContent*>(request.content);
  EXPECT_STREQ(request.identifier.UTF8String, "one");
  EXPECT_EQ(request.trigger, nil);
  EXPECT_STREQ(content.title.UTF8String, "Memory is tight");
  EXPECT_STREQ(content.body.UTF8String, "A polish helps.");
  EXPECT_STREQ(content.categoryIdentifier.UTF8String, "memory");
  EXPECT_EQ(content.interruptionLevel, UNNotificationInterruptionLevelActive);
  notifications().additions[0](nil);
  EXPECT_EQ(postings, std::vector<std::string>{});
  scheduler.runReady();
  EXPECT_EQ(postings, std::vector<std::string>{"posted"});
}

TEST_F(UserNotificationCenterTest, aNotificationThatIsNotPostedHasTheSystemsText) {
  center->add({.identifier = "one"}, posting());
  notifications().additions[0]([NSError errorWithCode:1 text:@"not allowed"]);
  scheduler.runReady();
  EXPECT_EQ(postings, std::vector<std::string>{"not allowed"});
}

TEST_F(UserNotificationCenterTest, answersThatComeAfterTheCentreAreDropped) {
  center->add({.identifier = "one"}, posting());
  center->requestAuthorization(6, OnceReply<ports::NotificationAuthorization>(
                                      [](ports::NotificationAuthorization) { ADD_FAILURE(); }));
  center.reset();
  notifications().additions[0](nil);
  notifications().authorizations[0](YES, nil);
  scheduler.runReady();
  EXPECT_EQ(postings, std::vector<std::string>{});
}

TEST_F(UserNotificationCenterTest, theDelegateChoosesHowANotificationIsShown) {
  center->setDelegate(&delegate);
  present();
  EXPECT_EQ(presented, std::vector<NSUInteger>{});
  scheduler.runReady();
  EXPECT_EQ(presented, std::vector<NSUInteger>{16});
}

TEST_F(UserNotificationCenterTest, aResponseReachesTheDelegateAndIsCompletedByIt) {
  center->setDelegate(&delegate);
  respond();
  EXPECT_EQ(delegate.responses, std::vector<std::string>{});
  scheduler.runReady();
  EXPECT_EQ(delegate.responses, std::vector<std::string>{"polish of memory"});
  EXPECT_EQ(completed, 0);
  delegate.completions[0]();
  EXPECT_EQ(completed, 1);
}

TEST_F(UserNotificationCenterTest, callsThatFindNoDelegateAreStillCompleted) {
  center->setDelegate(&delegate);
  present();
  respond();
  center->setDelegate(nullptr);
  EXPECT_EQ(platform().delegate, nil);
  scheduler.runReady();
  EXPECT_EQ(presented, std::vector<NSUInteger>{0});
  EXPECT_EQ(completed, 1);
  EXPECT_EQ(delegate.responses, std::vector<std::string>{});
}

TEST_F(UserNotificationCenterTest, theEndOfTheCentreRemovesItsDelegateAndCompletesWhatWaits) {
  center->setDelegate(&delegate);
  present();
  respond();
  center.reset();
  EXPECT_EQ(platform().delegate, nil);
  scheduler.runReady();
  EXPECT_EQ(presented, std::vector<NSUInteger>{0});
  EXPECT_EQ(completed, 1);
}

}  // namespace
}  // namespace vorli::machost
