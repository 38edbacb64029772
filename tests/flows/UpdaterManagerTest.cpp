#include "flows/UpdaterManager.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/UpdateFramework.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;

struct UpdaterManagerTest : testing::Test {
  fakes::ManualScheduler scheduler;
  fakes::CalendarClock calendar{scheduler};
  fakes::KeyValueStore defaults;
  fakes::UpdateFramework framework;
  Strings warnings;
  std::optional<UpdaterManager> manager;

  UpdaterManagerTest() { defaults.values["hasCompletedOnboarding"] = true; }

  void launch() {
    manager.emplace(UpdaterManagerNeeds{scheduler, calendar, defaults, framework,
                                        [this](const std::string& line) { warnings.push_back(line); }});
  }
  int backgroundChecks() const {
    return static_cast<int>(std::ranges::count(framework.calls, "check in the background"));
  }
};

TEST_F(UpdaterManagerTest, startsAConfiguredUpdaterWithHourlyChecks) {
  launch();
  EXPECT_TRUE(manager->isConfigured);
  EXPECT_EQ(framework.calls, (Strings{"start", "automatic checks on", "every 3600 s"}));
  EXPECT_EQ(manager->lastUpdateCheck.get(), std::nullopt);
  EXPECT_EQ(manager->lastUpdateError.get(), std::nullopt);
}

TEST_F(UpdaterManagerTest, runsWithoutUpdatesWhenTheyHaveNoSource) {
  for (const std::optional<std::string>& source :
       {std::optional<std::string>(), std::optional<std::string>(""),
        std::optional<std::string>("REPLACE_WITH_KEY"), std::optional<std::string>("<<REPLACE_WITH>>")}) {
    framework.source = source;
    launch();
    EXPECT_FALSE(manager->isConfigured);
    EXPECT_FALSE(manager->canCheckForUpdates());
    manager->checkForUpdates();
    scheduler.advance(100.0);
    EXPECT_EQ(framework.calls, Strings{});
  }
}

TEST_F(UpdaterManagerTest, waitsUntilTheSystemKnowsItsUpdateSource) {
  framework.answersAtOnce = false;
  launch();
  scheduler.advance(60.0);
  EXPECT_FALSE(manager->isConfigured);
  EXPECT_EQ(framework.calls, Strings{});
  framework.answer();
  EXPECT_TRUE(manager->isConfigured);
  scheduler.advance(10.0);
  EXPECT_EQ(backgroundChecks(), 1);
}

TEST_F(UpdaterManagerTest, anAnswerAfterItsEndIsDropped) {
  framework.answersAtOnce = false;
  launch();
  manager.reset();
  framework.answer();
  EXPECT_EQ(framework.calls, Strings{});
}

TEST_F(UpdaterManagerTest, checksTenSecondsAfterTheStart) {
  launch();
  scheduler.advance(9.9);
  EXPECT_EQ(backgroundChecks(), 0);
  scheduler.advance(0.1);
  EXPECT_EQ(backgroundChecks(), 1);
  scheduler.advance(100'000.0);
  EXPECT_EQ(backgroundChecks(), 1);  // the rest is the framework's own schedule
}

TEST_F(UpdaterManagerTest, makesNoFirstCheckDuringSetup) {
  defaults.values.erase("hasCompletedOnboarding");
  launch();
  scheduler.advance(10.0);
  EXPECT_EQ(backgroundChecks(), 0);
}

TEST_F(UpdaterManagerTest, makesNoFirstCheckWhileTheUpdaterIsBusy) {
  framework.canCheck = false;
  launch();
  EXPECT_FALSE(manager->canCheckForUpdates());
  scheduler.advance(10.0);
  EXPECT_EQ(backgroundChecks(), 0);
}

TEST_F(UpdaterManagerTest, theUsersCheckIsPassedOn) {
  launch();
  EXPECT_TRUE(manager->canCheckForUpdates());
  manager->checkForUpdates();
  EXPECT_EQ(framework.calls.back(), "check for the user");
}

TEST_F(UpdaterManagerTest, aFailureIsPublishedAndLogged) {
  launch();
  scheduler.advance(60.0);
  framework.delegate->didAbortWithError(2001, "The network is down.");
  EXPECT_EQ(manager->lastUpdateError.get(), "The network is down.");
  EXPECT_EQ(manager->lastUpdateCheck.get(), calendar.now());
  EXPECT_EQ(warnings, Strings{"Update check failed: The network is down."});
}

TEST_F(UpdaterManagerTest, aLoadedListClearsAnEarlierFailure) {
  launch();
  framework.delegate->didAbortWithError(1, "x");
  scheduler.advance(60.0);
  framework.delegate->didFinishLoadingAppcast();
  EXPECT_EQ(manager->lastUpdateError.get(), std::nullopt);
  EXPECT_EQ(manager->lastUpdateCheck.get(), calendar.now());
}

TEST_F(UpdaterManagerTest, noUpdateIsACleanCheck) {
  launch();
  framework.delegate->didAbortWithError(1000, "x");
  warnings.clear();
  scheduler.advance(60.0);
  framework.delegate->didAbortWithError(1001, "You're up to date!");
  EXPECT_EQ(manager->lastUpdateError.get(), std::nullopt);
  EXPECT_EQ(manager->lastUpdateCheck.get(), calendar.now());
  EXPECT_EQ(warnings, Strings{});
  framework.delegate->didAbortWithError(1002, "x");
  EXPECT_EQ(warnings.size(), 1u);
}

TEST_F(UpdaterManagerTest, itsDestructorEndsTheUpdaterAndTheFirstCheck) {
  launch();
  manager.reset();
  EXPECT_FALSE(framework.hasUpdater);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

}  // namespace
}  // namespace vorli
