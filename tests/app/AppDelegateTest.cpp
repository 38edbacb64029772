#include "ambient/MenuBarTickDial.h"
#include "app/AppDelegate.h"
#include "app/Services.h"
#include "app/StatusMenu.h"
#include "app/StatusSentence.h"
#include "app/StatusTexts.h"
#include "base/HostSystem.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/FakeHost.h"
#include "tests/fakes/Publish.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli {
namespace {

using Button = ports::StatusClick::Button;
using Control = ports::StatusClick::Control;

struct AppDelegateTest : testing::Test, fakes::FakeHost {
  fakes::CapturedLog log;
  Services services{ports()};
  NotificationCenter& notifications = services.notifications;
  HelperManager& helperManager = services.helperManager;
  AppSettings& settings = services.settings;
  SystemMonitor& systemMonitor = services.systemMonitor;
  SuspendedAppsManager& suspendedAppsManager = services.suspendedAppsManager;
  ClearState& clearState = services.clearState;
  EdgeGlowController& edgeGlow = services.edgeGlow;
  const StatusTexts& texts = ofThisSystem<StatusTexts>();
  std::optional<AppDelegate> delegate;

  void launch() {
    delegate.emplace(services);
    delegate->applicationDidFinishLaunching();
  }
  void setPressure(std::int32_t level) { memory.pressure.kernelLevel = level; }
};

std::vector<std::string> rowTitles(const std::vector<ports::MenuRow>& rows) {
  std::vector<std::string> titles;
  for (const auto& row : rows) titles.push_back(row.title);
  return titles;
}

TEST_F(AppDelegateTest, theIconIsShownBeforeTheFirstSample) {
  setPressure(4);
  launch();
  ASSERT_EQ(statusItem.pictures.size(), 1u);
  EXPECT_EQ(statusItem.accessibilityValue, statusSentence(SetupState::finished, 0.0));
  scheduler.runReady();
  EXPECT_EQ(statusItem.accessibilityValue, statusSentence(SetupState::finished, 0.85));
}

TEST_F(AppDelegateTest, theGearOpensTheSettingsAndClosesThePopover) {
  launch();
  int closings = 0;
  const auto closing = notifications.observe<VorliClosePopover>([&closings](const auto&) { ++closings; });
  ASSERT_TRUE(shownSettings.empty());
  delegate->popoverView()->gearPressed();
  EXPECT_EQ(shownSettings, std::vector{&services.settingsView});
  EXPECT_EQ(closings, 1);
}

TEST_F(AppDelegateTest, settingsOpenOnTheTabThatWasShownLast) {
  launch();
  delegate->showSettings(VorliSettingsTab::about);
  EXPECT_EQ(services.settingsView.selectedTab.get(), VorliSettingsTab::about);
  delegate->showSettings(std::nullopt);
  EXPECT_EQ(services.settingsView.selectedTab.get(), VorliSettingsTab::about);
}

TEST_F(AppDelegateTest, theItemIsNamedOnce) {
  launch();
  EXPECT_EQ(statusItem.creations, 1);
  EXPECT_EQ(statusItem.toolTip, "Vorli");
  EXPECT_EQ(statusItem.accessibilityLabel, "Vorli");
}

TEST_F(AppDelegateTest, theFirstSampleIsTakenInsideTheLaunch) {
  launch();
  EXPECT_EQ(memory.statisticsReads, 1);
  EXPECT_TRUE(systemMonitor.hasTimer());
  scheduler.advance(14.9);
  EXPECT_EQ(memory.statisticsReads, 1);
  scheduler.advance(0.1);
  EXPECT_EQ(memory.statisticsReads, 2);
}

TEST_F(AppDelegateTest, anItemWithoutAButtonDoesNotStopTheLaunch) {
  statusItem.buttonAvailable = false;
  launch();
  scheduler.runReady();
  EXPECT_TRUE(statusItem.pictures.empty());
  EXPECT_TRUE(statusItem.toolTip.empty());
  EXPECT_EQ(memory.statisticsReads, 1);
  EXPECT_GT(helperTransport.version.requests, 0);
}

TEST_F(AppDelegateTest, aHealthyHelperOfTheSameBuildIsLeftAlone) {
  defaults.values["vorli.lastLaunchedBuild"] = std::string("7");
  launch();
  scheduler.advance(10.0);
  EXPECT_EQ(log.count("Helper healthy at v1.2.3; no reinstall needed"), 1);
  EXPECT_EQ(log.count("Forced helper reinstall requested"), 0);
}

TEST_F(AppDelegateTest, aFirstLaunchIsNoBuildChange) {
  launch();
  scheduler.advance(10.0);
  EXPECT_EQ(log.count("Forced helper reinstall requested"), 0);
  EXPECT_TRUE(defaults.values["vorli.lastLaunchedBuild"] == StoredValue(std::string("7")));
}

TEST_F(AppDelegateTest, anotherBuildRenewsTheHelper) {
  defaults.values["vorli.lastLaunchedBuild"] = std::string("6");
  launch();
  scheduler.advance(10.0);
  EXPECT_EQ(log.count("Forced helper reinstall requested"), 1);
}

TEST_F(AppDelegateTest, aHelperThatNeverAnswersDoesNotHoldUpTheLaunch) {
  helperTransport.setConduct(fakes::HelperTransport::Conduct::silent);
  launch();
  scheduler.runReady();
  EXPECT_EQ(memory.statisticsReads, 1);
  scheduler.advance(60.0);
  EXPECT_GE(log.count("Forced helper reinstall requested"), 1);
}

TEST_F(AppDelegateTest, becomingActiveReadsTheHelpersStatus) {
  launch();
  scheduler.advance(10.0);
  helperService.rawStatus = 2;
  notifications.post(ApplicationDidBecomeActive{});
  EXPECT_TRUE(helperManager.status.get() == InstallStatus::Case::requiresApproval);
}

TEST_F(AppDelegateTest, theHelpersStatusIsReadOnActivationUntilTheDelegateIsGone) {
  launch();
  scheduler.advance(10.0);
  delegate->applicationWillTerminate();
  helperService.rawStatus = 2;
  notifications.post(ApplicationDidBecomeActive{});
  EXPECT_TRUE(helperManager.status.get() == InstallStatus::Case::requiresApproval);
  delegate.reset();
  helperService.rawStatus = 0;
  notifications.post(ApplicationDidBecomeActive{});
  EXPECT_TRUE(helperManager.status.get() == InstallStatus::Case::requiresApproval);
}

TEST_F(AppDelegateTest, theLaunchTakesItsStepsInTheirOrder) {
  fakes::publish(helperManager.lastError, "of an earlier time");
  std::vector<std::string> order;
  const auto isBuildStored = [this] { return defaults.values.contains("vorli.lastLaunchedBuild"); };
  const auto sampling = systemMonitor.memory.subscribeToChanges([&](const MemorySnapshot&) {
    order.emplace_back("sample");
    EXPECT_EQ(statusItem.pictures.size(), 1u);
    EXPECT_FALSE(systemMonitor.hasTimer());
    EXPECT_TRUE(helperManager.lastError.get().has_value());
  });
  const auto reading = helperManager.status.subscribeToChanges([&](const InstallStatus&) {
    order.emplace_back("status");
    if (order.size() > 2) return;
    EXPECT_TRUE(systemMonitor.hasTimer());
    EXPECT_FALSE(helperManager.lastError.get().has_value());
    EXPECT_FALSE(isBuildStored());
  });
  launch();
  EXPECT_EQ(order, (std::vector<std::string>{"sample", "status"}));
  EXPECT_TRUE(isBuildStored());
  EXPECT_EQ(helperTransport.version.requests, 0);  // the helper's task waits for the loop
  scheduler.runReady();
  EXPECT_GT(helperTransport.version.requests, 0);
}

TEST_F(AppDelegateTest, aTickRedrawsTheIconAfterItIsWhole) {
  launch();
  scheduler.runReady();
  setPressure(2);
  systemMonitor.refresh();
  EXPECT_EQ(statusItem.accessibilityValue, statusSentence(SetupState::finished, 0.05));
  scheduler.runReady();
  // 0.05 x 0.45 + 0.55 x 0.55 = 0.325
  EXPECT_EQ(statusItem.accessibilityValue, statusSentence(SetupState::finished, 0.325));
}

TEST_F(AppDelegateTest, theCalmKeepsTheDialLow) {
  setPressure(4);
  launch();
  scheduler.runReady();
  const auto loaded = statusItem.pictures.back();
  fakes::publish(clearState.calmIntensity, 1.0);
  scheduler.runReady();
  MenuBarTickDial expected;
  expected.progress = 0.2;
  expected.calmOverlay = 1.0;
  EXPECT_TRUE(statusItem.pictures.back() == expected.picture(18.0, 1.0));
  EXPECT_FALSE(statusItem.pictures.back() == loaded);
  EXPECT_EQ(statusItem.accessibilityValue, statusSentence(SetupState::finished, 0.85));
}

TEST_F(AppDelegateTest, theRisingCalmIsShownFourTimesASecondAndAtItsPeak) {
  thermal.reading.systemState = 3;
  launch();
  scheduler.runReady();
  const auto before = statusItem.pictures.size();
  clearState.runCeremony(0.9, 300.0);
  scheduler.advance(0.9);
  ASSERT_EQ(statusItem.pictures.size(), before + 5);  // after 0, 0.25, 0.5, 0.75 and 0.9 s
  MenuBarTickDial atPeak;
  atPeak.progress = 0.2;
  atPeak.calmOverlay = 1.0;
  EXPECT_TRUE(statusItem.pictures.back() == atPeak.picture(18.0, 1.0));
}

TEST_F(AppDelegateTest, aMinuteOfTheDecayDrawsTheDialTwiceASecondAtMost) {
  launch();
  clearState.runCeremony(0.9, 300.0);
  scheduler.advance(120.9);
  const auto before = statusItem.pictures.size();
  scheduler.advance(60.0);  // where the calm falls fastest
  const auto drawn = statusItem.pictures.size() - before;
  EXPECT_LE(drawn, 120u);
  EXPECT_GE(drawn, 90u);
}

TEST_F(AppDelegateTest, anotherAppearanceRedrawsTheIcon) {
  launch();
  scheduler.runReady();
  statusItem.setDark(true);
  MenuBarTickDial expected;
  expected.progress = 0.05;
  expected.isDark = true;
  EXPECT_TRUE(statusItem.pictures.back() == expected.picture(18.0, 1.0));
}

TEST_F(AppDelegateTest, theUsersPanelColourComesBeforeThePanelsOwn) {
  launch();
  scheduler.runReady();
  const auto expected = [](bool isDark) {
    MenuBarTickDial dial;
    dial.progress = 0.05;
    dial.isDark = isDark;
    return dial.picture(18.0, 1.0);
  };
  settings.dialPanel.set("dark");
  scheduler.runReady();
  EXPECT_TRUE(statusItem.pictures.back() == expected(true));
  statusItem.setDark(true);
  settings.dialPanel.set("light");
  scheduler.runReady();
  EXPECT_TRUE(statusItem.pictures.back() == expected(false));
  settings.dialPanel.set("auto");
  scheduler.runReady();
  EXPECT_TRUE(statusItem.pictures.back() == expected(true));
}

TEST_F(AppDelegateTest, rightAndControlClicksOpenTheMenuAndPlainOnesDoNot) {
  launch();
  statusItem.click(Button::right);
  statusItem.click(Button::left, Control::held);
  statusItem.click(Button::right, Control::held);
  EXPECT_EQ(statusItem.shownMenus.size(), 3u);
  statusItem.click(Button::left);
  EXPECT_EQ(statusItem.shownMenus.size(), 3u);
  EXPECT_EQ(rowTitles(statusItem.shownMenus.back()), rowTitles(statusMenu({}, UpdatesState::unconfigured)));
}

TEST(AppDelegateWithUpdates, theMenuOffersToCheckForThem) {
  fakes::FakeHost host;
  host.updates.source = "a key";
  Services services{host.ports()};
  AppDelegate delegate{services};
  delegate.applicationDidFinishLaunching();
  host.statusItem.click(Button::right);
  host.updates.calls.clear();
  EXPECT_TRUE(host.statusItem.choose("Check for Updates…"));
  EXPECT_EQ(host.updates.calls, std::vector<std::string>{"check for the user"});
}

TEST_F(AppDelegateTest, reopeningShowsThePopoverAndNeverClosesIt) {
  launch();
  scheduler.runReady();
  EXPECT_FALSE(popover.shown);
  for (int start = 0; start < 3; ++start) {
    delegate->reopen();
    scheduler.advance(1.0);
    EXPECT_TRUE(popover.shown);
  }
}

TEST_F(AppDelegateTest, aPlainClickTakesAFreshSample) {
  launch();
  statusItem.click();
  EXPECT_EQ(memory.statisticsReads, 2);
}

TEST_F(AppDelegateTest, everyMenuRowDoesItsAction) {
  launch();
  statusItem.click(Button::right);
  EXPECT_TRUE(statusItem.choose(std::string(texts.restartDock)));
  EXPECT_TRUE(statusItem.choose(std::string(texts.restartFinder)));
  EXPECT_TRUE(statusItem.choose(std::string(texts.openLoginItems)));
  EXPECT_TRUE(statusItem.choose("About Vorli"));
  EXPECT_TRUE(statusItem.choose("Quit Vorli"));
  EXPECT_EQ(desktop.dockRestarts, 1);
  EXPECT_EQ(desktop.finderRestarts, 1);
  EXPECT_EQ(helperService.calls, std::vector<std::string>{"open login items"});
  EXPECT_EQ(application.activations, 1);
  EXPECT_EQ(application.aboutPanels, 1);
  EXPECT_EQ(application.terminations, 1);
}

TEST_F(AppDelegateTest, aFileManagerThatCannotBeAskedToQuitIsLeftToTheUser) {
  launch();
  statusItem.click(Button::right);
  EXPECT_TRUE(statusItem.choose(std::string(texts.restartFinder)));
  EXPECT_TRUE(application.alerts.empty());
  desktop.refuse("Dolphin");
  EXPECT_EQ(application.alerts, (std::vector<std::pair<std::string, std::string>>{
                                    {"Vorli", "Dolphin has to be closed by hand on this desktop."}}));
}

TEST_F(AppDelegateTest, theSystemsOwnMenuGetsFreshRows) {
  launch();
  EXPECT_EQ(rowTitles(statusItem.menuProvider()), rowTitles(statusMenu({}, UpdatesState::unconfigured)));
}

TEST_F(AppDelegateTest, polishNowFlushesThenPurgesThenSamples) {
  launch();
  scheduler.advance(10.0);
  helperTransport.requests.clear();
  const int before = memory.statisticsReads;
  helperTransport.purgeMemory.delaySeconds = 1.0;
  statusItem.click(Button::right);
  statusItem.choose("Polish Now");
  scheduler.runReady();
  EXPECT_EQ(helperTransport.requests, (std::vector<std::string>{"flushDNS", "purgeMemory"}));
  EXPECT_EQ(memory.statisticsReads, before);
  scheduler.advance(1.0);
  EXPECT_EQ(memory.statisticsReads, before + 1);
  EXPECT_TRUE(application.alerts.empty());
  EXPECT_FALSE(settings.lastAutoRefresh());
}

TEST_F(AppDelegateTest, polishNowWithoutAHelperSaysSo) {
  helperService.rawStatus = 0;
  helperTransport.leadsToDaemon = false;
  launch();
  delegate->polishNow();
  ASSERT_EQ(application.alerts.size(), 1u);
  EXPECT_EQ(application.alerts[0].first, "Vorli");
  EXPECT_EQ(application.alerts[0].second, "Helper not installed. Open Vorli to finish setup.");
  EXPECT_EQ(helperTransport.purgeMemory.requests, 0);
}

TEST_F(AppDelegateTest, memoryPressureStartsAPolishIfTheUserWantsIt) {
  settings.autoClear.set(true);
  launch();
  scheduler.advance(10.0);
  helperTransport.requests.clear();
  setPressure(2);
  systemMonitor.refresh();
  EXPECT_TRUE(helperTransport.requests.empty());
  scheduler.runReady();
  EXPECT_EQ(helperTransport.requests, (std::vector<std::string>{"flushDNS", "purgeMemory"}));
  EXPECT_TRUE(settings.lastAutoRefresh());
}

TEST_F(AppDelegateTest, memoryPressureAtLaunchIsSeenByTheFirstSample) {
  settings.autoRefreshOnPressure.set(true);
  setPressure(4);
  launch();
  scheduler.runReady();
  EXPECT_EQ(helperTransport.purgeMemory.requests, 1);
}

TEST_F(AppDelegateTest, quittingWaitsUntilEveryStoppedApplicationIsResumed) {
  launch();
  scheduler.advance(10.0);
  fakes::publish(suspendedAppsManager.suspendedPIDs, std::set<std::int32_t>{41, 42});
  helperTransport.killPID.delaySeconds = 1.0;
  helperTransport.requests.clear();
  EXPECT_EQ(delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::later);
  scheduler.advance(1.9);
  EXPECT_EQ(application.terminationReplies, 0);
  scheduler.advance(0.2);
  EXPECT_EQ(application.terminationReplies, 1);
  EXPECT_EQ(helperTransport.requests, (std::vector<std::string>{"killPID 41 19", "killPID 42 19"}));
  EXPECT_TRUE(suspendedAppsManager.suspendedPIDs->empty());
}

TEST_F(AppDelegateTest, quittingWaitsNoLongerThanTheHelpersLimit) {
  launch();
  scheduler.advance(10.0);
  fakes::publish(suspendedAppsManager.suspendedPIDs, std::set<std::int32_t>{41});
  helperTransport.killPID.conduct = fakes::HelperTransport::Conduct::silent;
  delegate->applicationShouldTerminate();
  scheduler.advance(9.9);
  EXPECT_EQ(application.terminationReplies, 0);
  scheduler.advance(0.1);
  EXPECT_EQ(application.terminationReplies, 1);
  EXPECT_EQ(suspendedAppsManager.suspendedPIDs->count(41), 1u);
}

TEST_F(AppDelegateTest, endingStopsTheTimerAndTheReactions) {
  launch();
  scheduler.advance(10.0);
  EXPECT_EQ(delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);
  delegate->applicationWillTerminate();
  EXPECT_FALSE(systemMonitor.hasTimer());
  const auto pictures = statusItem.pictures.size();
  systemMonitor.refresh();
  fakes::publish(clearState.calmIntensity, 0.5);
  scheduler.advance(60.0);
  EXPECT_EQ(statusItem.pictures.size(), pictures);
}

TEST_F(AppDelegateTest, theLaunchCreatesThePopoverWithItsContent) {
  launch();
  EXPECT_FALSE(popover.shown);
  EXPECT_EQ(popover.size, (ports::PopoverSize{270.0, 280.0}));
  ASSERT_NE(installedPopoverView, nullptr);
  EXPECT_EQ(installedPopoverView, delegate->popoverView());
  EXPECT_FALSE(defaults.values.contains("hasShownLaunchCeremony"));
}

TEST_F(AppDelegateTest, aPlainClickOpensThePopoverAndTheNextOneClosesIt) {
  launch();
  statusItem.click();
  EXPECT_TRUE(popover.shown);
  scheduler.advance(1.0);
  EXPECT_EQ(popover.size, (ports::PopoverSize{270.0, 240.0}));
  EXPECT_TRUE(defaults.values.contains("hasShownLaunchCeremony"));
  statusItem.click();
  scheduler.advance(0.25);
  EXPECT_FALSE(popover.shown);
  EXPECT_EQ(installedPopoverView, delegate->popoverView());
}

TEST_F(AppDelegateTest, menuClicksLeaveThePopoverClosed) {
  launch();
  statusItem.click(Button::right);
  statusItem.click(Button::left, Control::held);
  EXPECT_FALSE(popover.shown);
}

TEST_F(AppDelegateTest, withoutAButtonThePopoverDoesNotOpen) {
  statusItem.buttonAvailable = false;
  launch();
  delegate->togglePopover();
  EXPECT_FALSE(popover.shown);
  EXPECT_TRUE(systemMonitor.cadence() == MonitorCadence::idle);
}

TEST_F(AppDelegateTest, theEdgeGlowFollowsItsSetting) {
  launch();
  EXPECT_FALSE(edgeGlow.enabled());
  settings.edgeGlow.set(true);
  scheduler.runReady();
  EXPECT_TRUE(edgeGlow.enabled());
  settings.edgeGlow.set(true);
  scheduler.runReady();
  EXPECT_EQ(edgeOverlay.builds, std::vector{100.0});
  settings.edgeGlow.set(false);
  scheduler.runReady();
  EXPECT_FALSE(edgeGlow.enabled());
}

TEST_F(AppDelegateTest, anEnabledEdgeGlowStartsWithTheLaunch) {
  settings.edgeGlow.set(true);
  launch();
  EXPECT_TRUE(edgeGlow.enabled());
  scheduler.runReady();
  EXPECT_EQ(edgeOverlay.builds.size(), 1u);
}

}  // namespace
}  // namespace vorli
