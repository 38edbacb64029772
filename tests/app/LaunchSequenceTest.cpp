#include "app/AppDelegate.h"
#include "app/LaunchSequence.h"
#include "app/Services.h"
#include "tests/app/LaunchSteps.h"
#include "tests/fakes/FakeHost.h"
#include "tests/fakes/Publish.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {
namespace {

void plantCrashReport(fakes::FakeHost& host) {
  host.files.createFolder("/home/test/crashes/pending");
  host.files.append(
      "/home/test/crashes/pending/2026-03-01T09-30-05.123Z.txt",
      "Vorli crash report\n==================\nTimestamp:   2026-03-01T09:30:05.123Z\n\nSummary\n-------\n"
      "Fatal signal SIGSEGV (11)\n\nStack trace\n-----------\nvorli 0x1\n");
}

struct LaunchSequenceTest : testing::Test, fakes::FakeHost {
  Services services{ports()};
  AppDelegate delegate{services};
};

TEST_F(LaunchSequenceTest, theStepsHaveAFixedOrder) {
  std::vector<std::string_view> names;
  for (const auto& step : delegate.launchSequence()) names.push_back(step.name);
  EXPECT_EQ(names, (std::vector<std::string_view>{"diagnostics",
                                                  "first steps or their preview",
                                                  "status item",
                                                  "first icon",
                                                  "popover",
                                                  "first sample",
                                                  "sampling timer",
                                                  "helper status",
                                                  "helper launch task",
                                                  "activation observer",
                                                  "permission for notices",
                                                  "reactions to samples and appearance",
                                                  "reactions to memory",
                                                  "reactions to settings",
                                                  "global hot key",
                                                  "edge glow",
                                                  "login item",
                                                  "step of the user",
                                                  "popover content",
                                                  "window of the first steps",
                                                  "crash report check"}));
}

TEST_F(LaunchSequenceTest, nothingHappensBeforeTheFirstStep) {
  EXPECT_EQ(statusItem.creations, 0);
  EXPECT_EQ(memory.statisticsReads, 0);
  EXPECT_TRUE(crashes.plans.empty());
  EXPECT_TRUE(hotkeys.calls.empty());
  EXPECT_TRUE(loginItem.calls.empty());
}

TEST_F(LaunchSequenceTest, crashesAreCaughtBeforeAnythingIsShown) {
  crashes.onInstall = [this] { EXPECT_EQ(statusItem.creations, 0); };
  delegate.applicationDidFinishLaunching();
  EXPECT_EQ(crashes.plans.size(), 1u);
  EXPECT_EQ(statusItem.creations, 1);
}

TEST_F(LaunchSequenceTest, theIconIsDrawnBeforeTheFirstSample) {
  takeStepsBefore(delegate, "first sample");
  EXPECT_EQ(statusItem.pictures.size(), 1u);
  EXPECT_EQ(memory.statisticsReads, 0);
  EXPECT_FALSE(services.systemMonitor.hasTimer());
}

TEST_F(LaunchSequenceTest, theHelpersStatusIsReadBeforeItsTaskStarts) {
  fakes::publish(services.helperManager.lastError, "of an earlier time");
  takeStepsBefore(delegate, "helper launch task");
  EXPECT_FALSE(services.helperManager.lastError.get().has_value());
  EXPECT_FALSE(defaults.values.contains("vorli.lastLaunchedBuild"));
  takeStep(delegate, "helper launch task");
  EXPECT_TRUE(defaults.values.contains("vorli.lastLaunchedBuild"));
}

TEST_F(LaunchSequenceTest, aNewUserIsNotAskedForNoticesAtLaunch) {
  makeUserNew();
  delegate.applicationDidFinishLaunching();
  EXPECT_TRUE(notices.authorizationOptions.empty());
}

TEST_F(LaunchSequenceTest, aUserWhoIsSetUpIsAskedForAlertsAndSound) {
  delegate.applicationDidFinishLaunching();
  EXPECT_EQ(notices.authorizationOptions, std::vector<std::uint32_t>{6});
}

TEST_F(LaunchSequenceTest, theHotKeyPolishesWithoutAudioCheckOrCooldown) {
  delegate.applicationDidFinishLaunching();
  scheduler.advance(10.0);
  helperTransport.requests.clear();
  ASSERT_TRUE(hotkeys.isRegistered);
  hotkeys.press();
  scheduler.runReady();
  EXPECT_EQ(helperTransport.requests, (std::vector<std::string>{"flushDNS", "purgeMemory"}));
  EXPECT_FALSE(services.settings.lastAutoRefresh());
}

TEST_F(LaunchSequenceTest, theLoginItemFollowsTheSettingAtLaunch) {
  services.settings.launchAtLogin.set(true);
  delegate.applicationDidFinishLaunching();
  EXPECT_EQ(loginItem.calls, std::vector<std::string>{"register"});
}

TEST_F(LaunchSequenceTest, aLoginItemThatAgreesIsLeftAlone) {
  delegate.applicationDidFinishLaunching();
  scheduler.runReady();
  EXPECT_TRUE(loginItem.calls.empty());
}

TEST_F(LaunchSequenceTest, aHelperThatNeverAnswersIsReportedOnce) {
  helperTransport.setConduct(fakes::HelperTransport::Conduct::silent);
  delegate.applicationDidFinishLaunching();
  scheduler.advance(60.0);
  ASSERT_EQ(notices.posted.size(), 1u);
  EXPECT_EQ(notices.posted[0].categoryIdentifier, "VorliHelperBrokenAction");
}

TEST_F(LaunchSequenceTest, aHelperThatAnswersIsNotReported) {
  delegate.applicationDidFinishLaunching();
  scheduler.advance(60.0);
  EXPECT_TRUE(notices.posted.empty());
}

TEST_F(LaunchSequenceTest, aReportOfAnEarlierCrashIsOfferedHalfASecondAfterTheLaunch) {
  plantCrashReport(*this);
  delegate.applicationDidFinishLaunching();
  scheduler.advance(0.49);
  EXPECT_EQ(installedCrashReport, nullptr);
  scheduler.advance(0.02);
  EXPECT_NE(installedCrashReport, nullptr);
}

TEST(LaunchWithoutAMailbox, keepsTheReportsOfEarlierCrashes) {
  fakes::FakeHost host;
  host.addresses.support = "REPLACE_WITH_SUPPORT_MAILBOX";
  plantCrashReport(host);
  Services services{host.ports()};
  AppDelegate delegate{services};
  delegate.applicationDidFinishLaunching();
  host.scheduler.advance(10.0);
  EXPECT_EQ(host.installedCrashReport, nullptr);
  EXPECT_EQ(host.files.contents.size(), 1u);
}

TEST(LaunchWithUpdates, putsAFailedCheckIntoTheLog) {
  fakes::FakeHost host;
  host.updates.source = "a key";
  Services services{host.ports()};
  host.updates.delegate->didAbortWithError(2001, "The network is down.");
  host.logQueue.runAll();
  EXPECT_TRUE(host.files.contents.at("/home/test/logs/diagnostics.log")
                  .ends_with(" [WARN] Update check failed: The network is down.\n"));
}

TEST_F(LaunchSequenceTest, withoutAReportNoWindowOpens) {
  delegate.applicationDidFinishLaunching();
  scheduler.advance(10.0);
  EXPECT_EQ(installedCrashReport, nullptr);
}

}  // namespace
}  // namespace vorli
