#include "ambient/MenuBarTickDial.h"
#include "app/AppDelegate.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/ApplicationHost.h"
#include "tests/fakes/AudioOutputTap.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/DesktopShell.h"
#include "tests/fakes/GlowOverlay.h"
#include "tests/fakes/Haptics.h"
#include "tests/fakes/HelperService.h"
#include "tests/fakes/HelperTransport.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/MemoryCounters.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/fakes/PopoverWindow.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ProcessTable.h"
#include "tests/fakes/StatusItem.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/Workspace.h"

namespace vorli {
namespace {

using Button = ports::StatusClick::Button;
using Control = ports::StatusClick::Control;

struct AppDelegateTest : testing::Test {
  fakes::CapturedLog log;
  fakes::ManualScheduler scheduler;
  NotificationCenter notifications;
  fakes::KeyValueStore defaults;
  fakes::ApplicationBundle bundle;
  fakes::StatusItem statusItem;
  fakes::ApplicationHost host;
  fakes::DesktopShell desktop;
  fakes::CalendarClock calendar{scheduler};
  fakes::MemoryCounters memory;
  fakes::CPUCounters cpu;
  fakes::ThermalSensors thermal;
  fakes::PowerSources power;
  fakes::ProcessTable processes;
  fakes::BackgroundWork background{scheduler};
  fakes::Workspace workspace;
  fakes::HelperService service{scheduler};
  fakes::HelperTransport transport{scheduler};

  HelperManager helperManager{scheduler, service, transport, bundle};
  AppSettings settings{defaults};
  IdleAppTracker idleTracker{scheduler, calendar, defaults, workspace};
  SystemMonitor systemMonitor{
      {scheduler, calendar, memory, cpu, thermal, power, processes, workspace, bundle, background},
      settings,
      idleTracker};
  SuspendedAppsManager suspendedAppsManager{scheduler, helperManager, workspace};
  ClearState clearState{scheduler};
  fakes::AudioOutputTap tap;
  AudioActivityProbe audio{tap};
  QuietPolish quietPolish{scheduler, calendar, helperManager, systemMonitor, settings, audio};
  fakes::MotionPreference motion;
  fakes::GlowOverlay celebrationOverlay, edgeOverlay;
  fakes::Haptics haptics;
  fakes::PopoverWindow popover;
  CelebrationGlowController celebrationGlow{scheduler, celebrationOverlay};
  EdgeGlowController edgeGlow{{scheduler, edgeOverlay, workspace, motion, systemMonitor, clearState}};
  CulpritFormatter culpritFormatter{workspace, ApplicationPaths("/home/anna")};
  PopoverServices popoverServices{
      .polish = {scheduler, notifications, systemMonitor, helperManager, settings, clearState,
                 celebrationGlow, audio, haptics, workspace, bundle, memory, calendar},
      .defaults = defaults,
      .culpritFormatter = culpritFormatter,
      .motion = motion};
  PopoverView* installed = nullptr;
  std::optional<AppDelegate> delegate;

  void launch() {
    delegate.emplace(AppDelegateNeeds{.scheduler = scheduler,
                                      .notifications = notifications,
                                      .defaults = defaults,
                                      .bundle = bundle,
                                      .statusItem = statusItem,
                                      .host = host,
                                      .desktop = desktop,
                                      .helperManager = helperManager,
                                      .systemMonitor = systemMonitor,
                                      .settings = settings,
                                      .suspendedAppsManager = suspendedAppsManager,
                                      .clearState = clearState,
                                      .quietPolish = quietPolish,
                                      .edgeGlow = edgeGlow,
                                      .popoverServices = popoverServices,
                                      .popover = popover,
                                      .installContent = [this](PopoverView& view) { installed = &view; }});
    delegate->applicationDidFinishLaunching();
  }
  void setPressure(std::int32_t level) { memory.pressure.kernelLevel = level; }
  std::vector<std::string> rowTitles() {
    std::vector<std::string> titles;
    for (const auto& row : statusItem.shownMenus.back()) titles.push_back(row.title);
    return titles;
  }
};

TEST_F(AppDelegateTest, theIconStandsBeforeTheFirstSample) {
  setPressure(4);
  launch();
  ASSERT_EQ(statusItem.pictures.size(), 1u);
  EXPECT_EQ(statusItem.accessibilityValue, "Your Mac is feeling great. 0 percent under pressure.");
  scheduler.runReady();
  EXPECT_EQ(statusItem.accessibilityValue, "Your Mac is under heavy pressure. 85 percent. Tap to polish.");
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
  EXPECT_GT(transport.version.requests, 0);
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
  EXPECT_TRUE(defaults.values["vorli.lastLaunchedBuild"] == ports::StoredValue(std::string("7")));
}

TEST_F(AppDelegateTest, anotherBuildRenewsTheHelper) {
  defaults.values["vorli.lastLaunchedBuild"] = std::string("6");
  launch();
  scheduler.advance(10.0);
  EXPECT_EQ(log.count("Forced helper reinstall requested"), 1);
}

TEST_F(AppDelegateTest, aHelperThatNeverAnswersDoesNotHoldUpTheLaunch) {
  transport.setConduct(fakes::HelperTransport::Conduct::silent);
  launch();
  scheduler.runReady();
  EXPECT_EQ(memory.statisticsReads, 1);
  scheduler.advance(60.0);
  EXPECT_GE(log.count("Forced helper reinstall requested"), 1);
}

TEST_F(AppDelegateTest, becomingActiveReadsTheHelpersStatus) {
  launch();
  scheduler.advance(10.0);
  service.rawStatus = 2;
  notifications.post(ApplicationDidBecomeActive{});
  EXPECT_TRUE(helperManager.status.get() == InstallStatus::Case::requiresApproval);
}

TEST_F(AppDelegateTest, theHelpersStatusIsReadOnActivationUntilTheDelegateIsGone) {
  launch();
  scheduler.advance(10.0);
  delegate->applicationWillTerminate();
  service.rawStatus = 2;
  notifications.post(ApplicationDidBecomeActive{});
  EXPECT_TRUE(helperManager.status.get() == InstallStatus::Case::requiresApproval);
  delegate.reset();
  service.rawStatus = 0;
  notifications.post(ApplicationDidBecomeActive{});
  EXPECT_TRUE(helperManager.status.get() == InstallStatus::Case::requiresApproval);
}

TEST_F(AppDelegateTest, theLaunchTakesItsStepsInTheirOrder) {
  helperManager.lastError = "of an earlier time";
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
  EXPECT_EQ(transport.version.requests, 0);  // the helper's task waits for the loop
  scheduler.runReady();
  EXPECT_GT(transport.version.requests, 0);
}

TEST_F(AppDelegateTest, aTickRedrawsTheIconAfterItIsWhole) {
  launch();
  scheduler.runReady();
  setPressure(2);
  systemMonitor.refresh();
  EXPECT_EQ(statusItem.accessibilityValue, "Your Mac is feeling great. 5 percent under pressure.");
  scheduler.runReady();
  // 0.05 x 0.45 + 0.55 x 0.55 = 0.325
  EXPECT_EQ(statusItem.accessibilityValue, "Your Mac is feeling great. 33 percent under pressure.");
}

TEST_F(AppDelegateTest, theCalmHoldsTheDialDown) {
  setPressure(4);
  launch();
  scheduler.runReady();
  const auto loaded = statusItem.pictures.back();
  clearState.calmIntensity = 1.0;
  scheduler.runReady();
  MenuBarTickDial expected;
  expected.progress = 0.2;
  expected.calmOverlay = 1.0;
  EXPECT_TRUE(statusItem.pictures.back() == expected.picture(18.0, 1.0));
  EXPECT_FALSE(statusItem.pictures.back() == loaded);
  EXPECT_EQ(statusItem.accessibilityValue, "Your Mac is under heavy pressure. 85 percent. Tap to polish.");
}

// How often the panel is sent one is the item's own business.
TEST_F(AppDelegateTest, eachStepOfTheCalmGivesADialOfItsOwn) {
  thermal.reading.systemState = 3;
  launch();
  scheduler.runReady();
  const auto before = statusItem.pictures.size();
  clearState.runCeremony(0.9, 300.0);
  scheduler.advance(0.9);
  ASSERT_EQ(statusItem.pictures.size(), before + 56);  // the decay begins with the value it starts from
  for (auto at = before + 1; at < statusItem.pictures.size() - 1; ++at)
    EXPECT_FALSE(statusItem.pictures[at] == statusItem.pictures[at - 1]) << at - before;
  MenuBarTickDial half;
  half.progress = 0.2 * 0.5 + 1.0 * 0.5;
  half.calmOverlay = 0.5;
  EXPECT_TRUE(statusItem.pictures[before + 27] == half.picture(18.0, 1.0));
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

TEST_F(AppDelegateTest, rightAndControlClicksOpenTheMenuAndPlainOnesDoNot) {
  launch();
  statusItem.click(Button::right);
  statusItem.click(Button::left, Control::held);
  statusItem.click(Button::right, Control::held);
  EXPECT_EQ(statusItem.shownMenus.size(), 3u);
  statusItem.click(Button::left);
  EXPECT_EQ(statusItem.shownMenus.size(), 3u);
  EXPECT_EQ(rowTitles(), (std::vector<std::string>{"Polish Now", "", "Restart Dock", "Restart Finder", "",
                                                   "Open Login Items", "", "About Vorli", "", "Quit Vorli"}));
}

TEST_F(AppDelegateTest, aPlainClickTakesAFreshSample) {
  launch();
  statusItem.click();
  EXPECT_EQ(memory.statisticsReads, 2);
}

TEST_F(AppDelegateTest, everyRowDoesItsWork) {
  launch();
  statusItem.click(Button::right);
  EXPECT_TRUE(statusItem.choose("Restart Dock"));
  EXPECT_TRUE(statusItem.choose("Restart Finder"));
  EXPECT_TRUE(statusItem.choose("Open Login Items"));
  EXPECT_TRUE(statusItem.choose("About Vorli"));
  EXPECT_TRUE(statusItem.choose("Quit Vorli"));
  EXPECT_EQ(desktop.dockRestarts, 1);
  EXPECT_EQ(desktop.finderRestarts, 1);
  EXPECT_EQ(service.calls, std::vector<std::string>{"open login items"});
  EXPECT_EQ(host.activations, 1);
  EXPECT_EQ(host.aboutPanels, 1);
  EXPECT_EQ(host.terminations, 1);
}

TEST_F(AppDelegateTest, theSystemsOwnMenuGetsFreshRows) {
  launch();
  EXPECT_EQ(statusItem.menuProvider().size(), 10u);
}

TEST_F(AppDelegateTest, polishNowFlushesThenPurgesThenSamples) {
  launch();
  scheduler.advance(10.0);
  transport.requests.clear();
  const int before = memory.statisticsReads;
  transport.purgeMemory.delaySeconds = 1.0;
  statusItem.click(Button::right);
  statusItem.choose("Polish Now");
  scheduler.runReady();
  EXPECT_EQ(transport.requests, (std::vector<std::string>{"flushDNS", "purgeMemory"}));
  EXPECT_EQ(memory.statisticsReads, before);
  scheduler.advance(1.0);
  EXPECT_EQ(memory.statisticsReads, before + 1);
  EXPECT_TRUE(host.alerts.empty());
  EXPECT_FALSE(settings.lastAutoRefresh());
}

TEST_F(AppDelegateTest, polishNowWithoutAHelperSaysSo) {
  service.rawStatus = 0;
  transport.leadsToDaemon = false;
  launch();
  delegate->polishNow();
  ASSERT_EQ(host.alerts.size(), 1u);
  EXPECT_EQ(host.alerts[0].first, "Vorli");
  EXPECT_EQ(host.alerts[0].second, "Helper not installed. Open Vorli to finish setup.");
  EXPECT_EQ(transport.purgeMemory.requests, 0);
}

TEST_F(AppDelegateTest, memoryPressurePolishesByItselfWhenTheUserWantsIt) {
  settings.setAutoClear(true);
  launch();
  scheduler.advance(10.0);
  transport.requests.clear();
  setPressure(2);
  systemMonitor.refresh();
  EXPECT_TRUE(transport.requests.empty());
  scheduler.runReady();
  EXPECT_EQ(transport.requests, (std::vector<std::string>{"flushDNS", "purgeMemory"}));
  EXPECT_TRUE(settings.lastAutoRefresh());
}

TEST_F(AppDelegateTest, memoryPressureAtLaunchIsSeenByTheFirstSample) {
  settings.setAutoRefreshOnPressure(true);
  setPressure(4);
  launch();
  scheduler.runReady();
  EXPECT_EQ(transport.purgeMemory.requests, 1);
}

TEST_F(AppDelegateTest, quittingWaitsUntilEveryStoppedApplicationGoesOn) {
  launch();
  scheduler.advance(10.0);
  suspendedAppsManager.suspendedPIDs = std::set<std::int32_t>{41, 42};
  transport.killPID.delaySeconds = 1.0;
  transport.requests.clear();
  EXPECT_EQ(delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::later);
  scheduler.advance(1.9);
  EXPECT_EQ(host.terminationReplies, 0);
  scheduler.advance(0.2);
  EXPECT_EQ(host.terminationReplies, 1);
  EXPECT_EQ(transport.requests, (std::vector<std::string>{"killPID 41 19", "killPID 42 19"}));
  EXPECT_TRUE(suspendedAppsManager.suspendedPIDs->empty());
}

TEST_F(AppDelegateTest, quittingWaitsNoLongerThanTheHelpersLimit) {
  launch();
  scheduler.advance(10.0);
  suspendedAppsManager.suspendedPIDs = std::set<std::int32_t>{41};
  transport.killPID.conduct = fakes::HelperTransport::Conduct::silent;
  delegate->applicationShouldTerminate();
  scheduler.advance(9.9);
  EXPECT_EQ(host.terminationReplies, 0);
  scheduler.advance(0.1);
  EXPECT_EQ(host.terminationReplies, 1);
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
  clearState.calmIntensity = 0.5;
  scheduler.advance(60.0);
  EXPECT_EQ(statusItem.pictures.size(), pictures);
}

TEST_F(AppDelegateTest, theLaunchMakesThePopoverAndPutsItsContentIn) {
  launch();
  EXPECT_FALSE(popover.shown);
  EXPECT_EQ(popover.size, (ports::PopoverSize{270.0, 280.0}));
  ASSERT_NE(installed, nullptr);
  EXPECT_EQ(installed, delegate->popoverView());
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
  EXPECT_EQ(installed, delegate->popoverView());
}

TEST_F(AppDelegateTest, menuClicksLeaveThePopoverShut) {
  launch();
  statusItem.click(Button::right);
  statusItem.click(Button::left, Control::held);
  EXPECT_FALSE(popover.shown);
}

TEST_F(AppDelegateTest, withoutAButtonThereIsNothingToHangThePopoverOn) {
  statusItem.buttonAvailable = false;
  launch();
  delegate->togglePopover();
  EXPECT_FALSE(popover.shown);
  EXPECT_TRUE(systemMonitor.cadence == MonitorCadence::idle);
}

TEST_F(AppDelegateTest, theEdgeGlowFollowsItsSetting) {
  launch();
  EXPECT_FALSE(edgeGlow.enabled());
  settings.setEdgeGlow(true);
  scheduler.runReady();
  EXPECT_TRUE(edgeGlow.enabled());
  settings.setEdgeGlow(true);
  scheduler.runReady();
  EXPECT_EQ(edgeOverlay.builds, std::vector{100.0});
  settings.setEdgeGlow(false);
  scheduler.runReady();
  EXPECT_FALSE(edgeGlow.enabled());
}

TEST_F(AppDelegateTest, anEdgeGlowThatIsSetIsThereFromTheLaunchOn) {
  settings.setEdgeGlow(true);
  launch();
  EXPECT_TRUE(edgeGlow.enabled());
  scheduler.runReady();
  EXPECT_EQ(edgeOverlay.builds.size(), 1u);
}

}  // namespace
}  // namespace vorli
