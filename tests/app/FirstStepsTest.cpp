#include "ambient/MenuBarTickDial.h"
#include "app/AppDelegate.h"
#include "app/Services.h"
#include "app/StatusSentence.h"
#include "tests/app/LaunchSteps.h"
#include "tests/fakes/FakeHost.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {
namespace {

using Button = ports::StatusClick::Button;
using Control = ports::StatusClick::Control;

constexpr const char* previewVariable = "VORLI_PREVIEW_ONBOARDING";
constexpr const char* unfinishedSentence = "Setup not finished. Tap to return to onboarding.";

/// The whole core of an installed program, from the launch on.
struct ProgramRun : fakes::FakeHost {
  ProgramRun() { bundle.path = bundle.home + "/Applications/Vorli"; }

  void launch() {
    delegate.applicationDidFinishLaunching();
    scheduler.runReady();
  }
  void finishFirstSteps() {
    helperStep->primaryPressed();
    scheduler.runReady();
    doneStep->buttonPressed();
    scheduler.runReady();
  }
  void plantCrashReport() {
    files.createFolder("/home/test/crashes/pending");
    files.append("/home/test/crashes/pending/2026-03-01T09-30-05.123Z.txt",
                 "Summary\n-------\nFatal signal SIGSEGV (11)\n\nStack trace\n-----------\nvorli 0x1\n");
  }
  bool isStored(const std::string& key) const {
    return defaults.object(key) == std::optional(StoredValue(true));
  }

  Services services{ports()};
  AppDelegate delegate{services};
};

/// A run for a user who has never started the program. The helper is enabled unless a test changes that.
struct FirstStepsTest : testing::Test, ProgramRun {
  FirstStepsTest() {
    unsetenv(previewVariable);
    makeUserNew();
  }
  ~FirstStepsTest() override { unsetenv(previewVariable); }
};

TEST_F(FirstStepsTest, aNewUserGetsTheirWindowAfterThePopoverHasItsContent) {
  takeStepsBefore(delegate, "window of the first steps");
  EXPECT_NE(installedPopoverView, nullptr);
  EXPECT_EQ(onboardingWindow.openings, 0);
  takeStep(delegate, "window of the first steps");
  EXPECT_TRUE(onboardingWindow.isOpen);
  EXPECT_NE(helperStep, nullptr);
  EXPECT_EQ(previewBar, nullptr);
  EXPECT_EQ(application.activations, 1);
}

TEST(FinishedFirstSteps, openNoWindow) {
  ProgramRun run;
  run.launch();
  run.scheduler.advance(10.0);
  EXPECT_EQ(run.onboardingWindow.openings, 0);
  EXPECT_EQ(run.application.activations, 0);
}

TEST_F(FirstStepsTest, aUserWhoHasNotSeenTheDoneStepComesBackToIt) {
  defaults.values["hasCompletedOnboarding"] = true;
  launch();
  EXPECT_EQ(helperStep, nullptr);
  EXPECT_NE(doneStep, nullptr);
}

TEST_F(FirstStepsTest, aUserOfAnEarlierBuildSkipsThem) {
  defaults.values["vorli.lastLaunchedBuild"] = std::string("6");
  launch();
  EXPECT_EQ(onboardingWindow.openings, 0);
  EXPECT_EQ(notices.authorizationOptions, std::vector<std::uint32_t>{6});
}

TEST_F(FirstStepsTest, unfinishedOnesAreShownAgainAtTheNextLaunch) {
  launch();
  onboardingWindow.close();
  ProgramRun next;
  next.defaults.values = defaults.values;
  next.launch();
  EXPECT_TRUE(next.onboardingWindow.isOpen);
}

TEST_F(FirstStepsTest, theStepIsReadAgainBeforeThePopoversContent) {
  takeStepsBefore(delegate, "step of the user");
  defaults.values["hasCompletedOnboarding"] = true;
  EXPECT_EQ(services.onboardingFlowState.step.get(), OnboardingFlowState::Step::helper);
  takeStep(delegate, "step of the user");
  EXPECT_EQ(services.onboardingFlowState.step.get(), OnboardingFlowState::Step::done);
}

TEST_F(FirstStepsTest, thePreviewIsShownOnlyIfItsVariableIsOne) {
  for (const char* value : {"", "0", "true", "11", " 1"}) {
    setenv(previewVariable, value, 1);
    ProgramRun run;
    run.launch();
    EXPECT_EQ(run.onboardingWindow.openings, 0) << value;
  }
  setenv(previewVariable, "1", 1);
  ProgramRun run;
  run.launch();
  EXPECT_TRUE(run.onboardingWindow.isOpen);
  EXPECT_NE(run.previewBar, nullptr);
}

TEST_F(FirstStepsTest, thePreviewStoresNothing) {
  setenv(previewVariable, "1", 1);
  launch();
  finishFirstSteps();
  EXPECT_FALSE(onboardingWindow.isOpen);
  EXPECT_FALSE(defaults.values.contains("hasCompletedOnboarding"));
  EXPECT_FALSE(defaults.values.contains("hasSeenDoneScreen"));
}

TEST_F(FirstStepsTest, thePreviewKeepsItsPickedStepWhenItComesToTheFront) {
  setenv(previewVariable, "1", 1);
  launch();
  helperStep->primaryPressed();
  scheduler.runReady();
  statusItem.click();
  scheduler.runReady();
  EXPECT_EQ(services.onboardingFlowState.step.get(), OnboardingFlowState::Step::done);
}

TEST_F(FirstStepsTest, theDialIsDimmedAndSaysSoFromTheFirstIconOn) {
  takeStepsBefore(delegate, "popover");
  EXPECT_EQ(statusItem.accessibilityValue, unfinishedSentence);
  MenuBarTickDial dimmed;
  dimmed.dimmed = true;
  ASSERT_EQ(statusItem.pictures.size(), 1u);
  EXPECT_TRUE(statusItem.pictures.back() == dimmed.picture(18.0, 1.0));
}

TEST(FinishedFirstSteps, leaveTheFirstIconLit) {
  ProgramRun run;
  takeStepsBefore(run.delegate, "popover");
  EXPECT_EQ(run.statusItem.accessibilityValue, statusSentence(SetupState::finished, 0.0));
  ASSERT_EQ(run.statusItem.pictures.size(), 1u);
  EXPECT_TRUE(run.statusItem.pictures.back() == MenuBarTickDial{}.picture(18.0, 1.0));
}

TEST_F(FirstStepsTest, theDialStaysDimmedThroughTheDoneStepAndLightsUpAtItsEnd) {
  launch();
  helperStep->primaryPressed();
  scheduler.runReady();
  EXPECT_EQ(statusItem.accessibilityValue, unfinishedSentence);
  doneStep->buttonPressed();
  scheduler.runReady();
  EXPECT_EQ(statusItem.accessibilityValue,
            statusSentence(SetupState::finished, services.systemMonitor.ringProgress));
  EXPECT_EQ(memory.statisticsReads, 1);  // does not wait for the next tick
}

TEST_F(FirstStepsTest, aClickBringsTheOpenWindowToTheFrontAndOpensNoPopover) {
  launch();
  statusItem.click();
  EXPECT_EQ(onboardingWindow.broughtToFront, 1);
  EXPECT_EQ(onboardingWindow.openings, 1);
  EXPECT_EQ(application.activations, 2);
  EXPECT_FALSE(popover.shown);
  EXPECT_TRUE(statusItem.shownMenus.empty());
}

TEST_F(FirstStepsTest, aClickOpensAClosedWindowAgain) {
  launch();
  onboardingWindow.close();
  statusItem.click();
  EXPECT_EQ(onboardingWindow.openings, 2);
  EXPECT_FALSE(popover.shown);
}

TEST_F(FirstStepsTest, theMenuOpensDuringThem) {
  launch();
  statusItem.click(Button::right);
  statusItem.click(Button::left, Control::held);
  EXPECT_EQ(statusItem.shownMenus.size(), 2u);
  EXPECT_EQ(onboardingWindow.broughtToFront, 0);
}

TEST_F(FirstStepsTest, aClickReadsTheStepAgain) {
  launch();
  onboardingWindow.close();
  defaults.values["hasCompletedOnboarding"] = true;
  defaults.values["hasSeenDoneScreen"] = true;
  statusItem.click();
  EXPECT_EQ(onboardingWindow.openings, 1);
  EXPECT_TRUE(popover.shown);
}

TEST_F(FirstStepsTest, aSecondStartShowsThemInPlaceOfThePopover) {
  launch();
  delegate.reopen();
  EXPECT_EQ(onboardingWindow.broughtToFront, 1);
  onboardingWindow.close();
  delegate.reopen();
  EXPECT_EQ(onboardingWindow.openings, 2);
  EXPECT_FALSE(popover.shown);
}

TEST_F(FirstStepsTest, aSecondStartShowsThemWithoutATrayToo) {
  statusItem.buttonAvailable = false;
  launch();
  onboardingWindow.close();
  delegate.reopen();
  EXPECT_TRUE(onboardingWindow.isOpen);
}

TEST_F(FirstStepsTest, theirEndIsStoredAndTheNextClickOpensThePopover) {
  launch();
  EXPECT_FALSE(isStored("hasCompletedOnboarding"));
  helperStep->primaryPressed();
  scheduler.runReady();
  EXPECT_TRUE(isStored("hasCompletedOnboarding"));
  EXPECT_FALSE(isStored("hasSeenDoneScreen"));
  doneStep->buttonPressed();
  scheduler.runReady();
  EXPECT_TRUE(isStored("hasSeenDoneScreen"));
  EXPECT_FALSE(onboardingWindow.isOpen);
  statusItem.click();
  EXPECT_TRUE(popover.shown);
  EXPECT_EQ(onboardingWindow.openings, 1);
}

TEST_F(FirstStepsTest, continuingAsksForNoticesOnce) {
  launch();
  EXPECT_TRUE(notices.authorizationOptions.empty());
  finishFirstSteps();
  EXPECT_EQ(notices.authorizationOptions, std::vector<std::uint32_t>{6});
}

TEST_F(FirstStepsTest, aRefusedPermissionSwitchesTheNudgesOff) {
  services.settings.gentleNudges.set(true);
  notices.authorization = {.granted = false, .error = std::nullopt};
  launch();
  finishFirstSteps();
  EXPECT_FALSE(services.settings.gentleNudges());
}

TEST_F(FirstStepsTest, aBrokenHelperIsReportedOnlyAfterTheHelperStep) {
  launch();
  services.nudgeNotifier.notifyHelperBroken();
  EXPECT_TRUE(notices.posted.empty());
  helperStep->primaryPressed();
  services.nudgeNotifier.notifyHelperBroken();
  ASSERT_EQ(notices.posted.size(), 1u);
  EXPECT_EQ(notices.posted[0].categoryIdentifier, "VorliHelperBrokenAction");
}

TEST_F(FirstStepsTest, aReportOfAnEarlierCrashWaitsForALaunchAfterThem) {
  plantCrashReport();
  launch();
  finishFirstSteps();
  scheduler.advance(10.0);
  EXPECT_EQ(installedCrashReport, nullptr);
  ProgramRun next;
  next.defaults.values = defaults.values;
  next.plantCrashReport();
  next.launch();
  next.scheduler.advance(0.5);
  EXPECT_NE(next.installedCrashReport, nullptr);
}

TEST_F(FirstStepsTest, askingAboutTheHelperOpensThem) {
  launch();
  onboardingWindow.close();
  delegate.showHelperPage();
  EXPECT_EQ(onboardingWindow.openings, 2);
  EXPECT_TRUE(application.alerts.empty());
}

TEST_F(FirstStepsTest, anObstacleThatTheyDoNotMentionIsShownInAnAlert) {
  helperService.rawStatus = 2;
  launch();
  helperService.failRegistration("The rules of this system do not allow it.");
  scheduler.runReady();
  delegate.showHelperPage();
  ASSERT_EQ(application.alerts.size(), 1u);
  EXPECT_NE(application.alerts[0].second.find("The rules of this system do not allow it."),
            std::string::npos);
}

TEST_F(FirstStepsTest, aMissingPasswordWindowIsShownInThemAndNotInAnAlert) {
  helperService.rawStatus = 2;
  launch();
  helperService.failRegistration("No password window could be opened.");
  helperService.missPrompt();
  scheduler.runReady();
  delegate.showHelperPage();
  EXPECT_TRUE(application.alerts.empty());
  EXPECT_EQ(onboardingWindow.broughtToFront, 1);
}

TEST(FinishedFirstSteps, leaveTheHelpersStateToTheSettings) {
  ProgramRun run;
  run.launch();
  run.delegate.showHelperPage();
  EXPECT_EQ(run.shownSettings.size(), 1u);
  EXPECT_EQ(run.services.settingsView.selectedTab.get(), VorliSettingsTab::about);
  EXPECT_TRUE(run.application.alerts.empty());
  EXPECT_EQ(run.onboardingWindow.openings, 0);
}

TEST(FinishedFirstSteps, alsoShowAnObstacleToTheHelperInAnAlert) {
  ProgramRun run;
  run.helperService.rawStatus = 2;
  run.launch();
  run.helperService.failRegistration("The rules of this system do not allow it.");
  run.scheduler.runReady();
  run.delegate.showHelperPage();
  EXPECT_EQ(run.shownSettings.size(), 1u);
  ASSERT_EQ(run.application.alerts.size(), 1u);
  EXPECT_EQ(run.application.alerts[0].first, "Vorli");
  EXPECT_EQ(run.application.alerts[0].second, run.services.helperManager.stateText());
}

bool hasCheckedForUpdates(const fakes::FakeHost& host) {
  return std::ranges::find(host.updates.calls, "check in the background") != host.updates.calls.end();
}

/// A first run on a host that can update the program.
struct FirstStepsWithUpdatesTest : testing::Test {
  FirstStepsWithUpdatesTest() {
    host.makeUserNew();
    host.updates.source = "a key";
    host.bundle.path = host.bundle.home + "/Applications/Vorli";
  }
  fakes::FakeHost host;
};

TEST_F(FirstStepsWithUpdatesTest, noCheckRunsBeforeTheHelperStepIsPassed) {
  Services services{host.ports()};
  AppDelegate delegate{services};
  delegate.applicationDidFinishLaunching();
  host.scheduler.advance(3600.0);
  EXPECT_FALSE(hasCheckedForUpdates(host));
}

TEST_F(FirstStepsWithUpdatesTest, theCheckRunsInTheSameLaunchIfTheUserIsQuick) {
  Services services{host.ports()};
  AppDelegate delegate{services};
  delegate.applicationDidFinishLaunching();
  host.scheduler.advance(9.9);
  EXPECT_FALSE(hasCheckedForUpdates(host));
  host.helperStep->primaryPressed();
  host.scheduler.advance(0.2);
  EXPECT_TRUE(hasCheckedForUpdates(host));
}

}  // namespace
}  // namespace vorli
