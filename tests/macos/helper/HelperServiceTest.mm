#include "macos/helper/HelperService.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Services.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::services;
using Calls = std::vector<std::string>;
using Removal = std::expected<void, std::string>;

struct HelperServiceTest : testing::Test {
  OnceReply<Removal> removal() {
    return OnceReply<Removal>(
        [this](Removal result) { removals.push_back(result ? "removed" : result.error()); });
  }

  fakes::ManualScheduler scheduler;
  std::unique_ptr<HelperService> service = std::make_unique<HelperService>(scheduler);
  Calls removals;
};

TEST_F(HelperServiceTest, everyStatusIsTheSystemsOwnNumber) {
  const std::pair<SMAppServiceStatus, int> all[] = {{SMAppServiceStatusNotRegistered, 0},
                                                    {SMAppServiceStatusEnabled, 1},
                                                    {SMAppServiceStatusRequiresApproval, 2},
                                                    {SMAppServiceStatusNotFound, 3}};
  for (const auto& [status, number] : all) {
    services().status = status;
    EXPECT_EQ(service->status(), number);
  }
}

TEST_F(HelperServiceTest, aStatusIsReadAgainFromTheMainLoop) {
  std::optional<int> status;
  service->readStatus(OnceReply<int>([&status](int number) { status = number; }));
  services().status = SMAppServiceStatusEnabled;
  EXPECT_FALSE(status);
  scheduler.runReady();
  EXPECT_EQ(status, 1);
}

TEST_F(HelperServiceTest, theDaemonIsRegisteredByItsPropertyList) {
  EXPECT_TRUE(service->registerDaemon(ports::AskedBy::user));
  EXPECT_EQ(services().calls, Calls{"register com.kv.vorli.helper.plist"});
}

TEST_F(HelperServiceTest, aRefusedRegistrationHasTheSystemsText) {
  services().refuses = true;
  const auto result = service->registerDaemon(ports::AskedBy::program);
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error(), "Operation not permitted");
}

TEST_F(HelperServiceTest, aRemovalIsAnsweredFromTheMainLoop) {
  service->unregisterDaemon(removal());
  EXPECT_EQ(services().calls, Calls{"unregister later com.kv.vorli.helper.plist"});
  macfake::answerRemoval(nil);
  EXPECT_EQ(removals, Calls{});
  scheduler.runReady();
  EXPECT_EQ(removals, Calls{"removed"});
}

TEST_F(HelperServiceTest, aFailedRemovalHasTheSystemsText) {
  service->unregisterDaemon(removal());
  macfake::answerRemoval([NSError errorWithCode:5 text:@"not registered"]);
  scheduler.runReady();
  EXPECT_EQ(removals, Calls{"not registered"});
}

TEST_F(HelperServiceTest, anAnswerThatComesAfterTheServiceIsDropped) {
  service->unregisterDaemon(removal());
  service->readStatus(OnceReply<int>([](int) { ADD_FAILURE(); }));
  service->askForStartupItemConsent(OnceReply<Removal>([](Removal) { ADD_FAILURE(); }));
  service.reset();
  macfake::answerRemoval(nil);
  scheduler.runReady();
  EXPECT_EQ(removals, Calls{});
}

TEST_F(HelperServiceTest, theSystemsPageIsWhereTheUserApproves) {
  service->openSystemSettingsLoginItems(ports::AskedBy::user);
  EXPECT_EQ(services().calls, Calls{"open settings"});
}

TEST_F(HelperServiceTest, anApprovedDaemonNeedsNoOtherConsent) {
  std::optional<ports::Consent> consent;
  service->startupItemConsent(OnceReply<ports::Consent>([&consent](ports::Consent is) { consent = is; }));
  EXPECT_EQ(consent, ports::Consent::granted);
  service->askForStartupItemConsent(removal());
  EXPECT_EQ(removals, Calls{});
  scheduler.runReady();
  EXPECT_EQ(removals, Calls{"removed"});
}

TEST_F(HelperServiceTest, handlersThatTheSystemNeverCallsAreAccepted) {
  service->setChangeHandler([] { ADD_FAILURE(); });
  service->setFailureHandler([](const std::string&) { ADD_FAILURE(); });
  service->setNoPromptHandler([] { ADD_FAILURE(); });
  scheduler.runReady();
}

}  // namespace
}  // namespace vorli::machost
