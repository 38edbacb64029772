#include "base/HostSystem.h"
#include "tests/fakes/Publish.h"
#include "tests/sampling/SystemMonitorFixture.h"

namespace vorli {
namespace {

struct SystemMonitorTest : SystemMonitorFixture {
  /// Makes the heat alone give this target, one of 0.05, 0.3, 0.7 and 1.0.
  void setHeat(int state) { thermal.reading.systemState = state; }

  void addProcess(std::int32_t pid, std::uint64_t resident, std::uint64_t cpuTime = 0) {
    processes.add(pid).taskInfo = ports::ProcessTaskInfo{resident, cpuTime, 0};
  }
};

TEST_F(SystemMonitorTest, startsWithEmptyValuesAndReadsNothing) {
  EXPECT_EQ(monitor->memory.get(), MemorySnapshot::empty);
  EXPECT_EQ(monitor->cpu.get(), CPUSnapshot::empty);
  EXPECT_EQ(monitor->thermal.get(), ThermalSnapshot::empty);
  EXPECT_TRUE(monitor->topMemoryHogs->empty());
  EXPECT_TRUE(monitor->topCPUHogs->empty());
  EXPECT_TRUE(monitor->idleApps->empty());
  EXPECT_TRUE(monitor->orphanHelpers->empty());
  EXPECT_TRUE(monitor->leakyApps->empty());
  EXPECT_EQ(monitor->lastUpdate.get(), Date::distantPast());
  EXPECT_EQ(monitor->ringProgress.get(), 0.0);
  EXPECT_EQ(monitor->cadence(), MonitorCadence::idle);
  EXPECT_FALSE(monitor->hasTimer());
  EXPECT_FALSE(monitor->previousMemorySnapshot().has_value());
  EXPECT_EQ(memory.statisticsReads + processes.listings, 0);
}

TEST_F(SystemMonitorTest, theFirstTickShowsTheRealValueWithoutSmoothing) {
  memory.statistics->decompressions = 1'000'000;
  setHeat(2);
  monitor->refresh();
  EXPECT_EQ(monitor->ringProgress.get(), 0.7);
  EXPECT_FALSE(monitor->previousMemorySnapshot().has_value());
}

TEST_F(SystemMonitorTest, theRingRisesAndFallsByItsTwoRules) {
  setHeat(0);
  monitor->refresh();
  EXPECT_EQ(monitor->ringProgress.get(), 0.05);
  setHeat(2);
  monitor->refresh();
  EXPECT_DOUBLE_EQ(monitor->ringProgress.get(), 0.4075);  // 0.05 x 0.45 + 0.7 x 0.55
  setHeat(1);
  monitor->refresh();
  EXPECT_DOUBLE_EQ(monitor->ringProgress.get(), 0.391375);  // 0.4075 x 0.85 + 0.3 x 0.15
}

TEST_F(SystemMonitorTest, aRingAtItsTargetStays) {
  setHeat(1);
  monitor->refresh();
  monitor->refresh();
  EXPECT_DOUBLE_EQ(monitor->ringProgress.get(), 0.3);
}

TEST_F(SystemMonitorTest, everyRefreshIsAWholeStepHoweverSoon) {
  monitor->refresh();
  setHeat(3);
  monitor->refresh();
  monitor->refresh();
  EXPECT_DOUBLE_EQ(monitor->ringProgress.get(), 0.807625);  // 0.05 -> 0.5725 -> 0.807625
}

TEST_F(SystemMonitorTest, thePreviousSampleIsTheBaseOfTheRates) {
  monitor->refresh();
  const auto first = monitor->memory.get();
  memory.statistics->decompressions = 5000;
  scheduler.advance(2.0);
  monitor->refresh();
  EXPECT_EQ(monitor->previousMemorySnapshot(), first);
  EXPECT_DOUBLE_EQ(monitor->targetRingProgress(), 0.25);
}

TEST_F(SystemMonitorTest, aFailedReadLetsTheRingFallAndIsNoBaseForRates) {
  setHeat(3);
  monitor->refresh();
  memory.statistics.reset();
  monitor->refresh();
  EXPECT_EQ(monitor->memory.get(), MemorySnapshot::empty);
  EXPECT_EQ(monitor->targetRingProgress(), 0.0);
  EXPECT_DOUBLE_EQ(monitor->ringProgress.get(), 0.85);
  EXPECT_TRUE(monitor->previousMemorySnapshot().has_value());

  memory.statistics = ports::VMStatistics{.decompressions = 1'000'000};
  setHeat(0);
  scheduler.advance(1.0);
  monitor->refresh();
  EXPECT_FALSE(monitor->previousMemorySnapshot().has_value());
  EXPECT_EQ(monitor->targetRingProgress(), 0.05);
}

TEST_F(SystemMonitorTest, aFailedFirstReadStillCountsAsTheFirstTick) {
  memory.statistics.reset();
  monitor->refresh();
  EXPECT_EQ(monitor->ringProgress.get(), 0.0);
  memory.statistics = ports::VMStatistics{};
  setHeat(3);
  monitor->refresh();
  EXPECT_DOUBLE_EQ(monitor->ringProgress.get(), 0.55);
}

TEST_F(SystemMonitorTest, loadAndProcessorUsageReachTheRing) {
  cpu.loadAverages = {6.0, 0.0, 0.0};
  EXPECT_EQ(monitor->targetRingProgress(), 0.0);  // nothing sampled yet
  monitor->refresh();
  EXPECT_DOUBLE_EQ(monitor->targetRingProgress(), 0.5);
  cpu.loadAverages.clear();  // an unreadable load counts as none
  EXPECT_DOUBLE_EQ(monitor->targetRingProgress(), 0.05);
  cpu.ticks = ports::CPUTicks{.user = 75, .idle = 25};
  monitor->refresh();
  EXPECT_DOUBLE_EQ(monitor->cpu->usage, 0.75);
  EXPECT_DOUBLE_EQ(monitor->targetRingProgress(), 0.3);
}

TEST_F(SystemMonitorTest, aFailedProcessorReadDoesNotStopTheTick) {
  cpu.ticks.reset();
  addProcess(1, 100);
  monitor->refresh();
  EXPECT_EQ(monitor->cpu.get(), CPUSnapshot::empty);
  EXPECT_EQ(monitor->topMemoryHogs->size(), 1u);
  EXPECT_EQ(monitor->lastUpdate.get(), calendar.now());
  EXPECT_EQ(monitor->ringProgress.get(), 0.05);
}

TEST_F(SystemMonitorTest, theThermalSnapshotHoldsStatePowerModeSourceAndTime) {
  setHeat(2);
  thermal.lowPowerMode = true;
  power.supplies = {{ports::PowerSupply::Kind::battery, ports::PowerSupply::State::supplying}};
  calendar.set(Date{77.0});
  monitor->refresh();
  EXPECT_EQ(monitor->thermal.get(),
            (ThermalSnapshot{ThermalState::serious, true, PowerSource::battery, Date{77.0}}));
}

TEST_F(SystemMonitorTest, topListsHoldTheFiveLargest) {
  const std::uint64_t resident[] = {50, 10, 70, 30, 60, 20, 40};
  for (int i = 0; i < 7; ++i) addProcess(i + 1, resident[i]);
  monitor->refresh();
  EXPECT_EQ(pids(monitor->topMemoryHogs), (std::vector<std::int32_t>{3, 5, 1, 7, 4}));

  // Over one second of nanoseconds: 0.7, 0.6 ... 0.1 cores.
  for (int i = 0; i < 7; ++i) addProcess(i + 1, 1, static_cast<std::uint64_t>(7 - i) * 100'000'000);
  scheduler.advance(1.0);
  monitor->refresh();
  EXPECT_EQ(pids(monitor->topCPUHogs), (std::vector<std::int32_t>{1, 2, 3, 4, 5}));
  EXPECT_DOUBLE_EQ(monitor->topCPUHogs->front().cpuFraction, 0.7);
}

TEST_F(SystemMonitorTest, fewerThanFiveProcessesAreAllListed) {
  addProcess(1, 10);
  addProcess(2, 30);
  addProcess(3, 20);
  monitor->refresh();
  EXPECT_EQ(pids(monitor->topMemoryHogs), (std::vector<std::int32_t>{2, 3, 1}));
  EXPECT_EQ(monitor->topCPUHogs->size(), 3u);
}

TEST_F(SystemMonitorTest, aFailedListingEmptiesTheTopLists) {
  addProcess(1, 10);
  monitor->refresh();
  processes.slotCount = 0;
  monitor->refresh();
  EXPECT_TRUE(monitor->topMemoryHogs->empty());
  EXPECT_TRUE(monitor->topCPUHogs->empty());
}

TEST_F(SystemMonitorTest, idleApplicationsFollowTheSettingsThreshold) {
  workspace.add(1, SharedText("Mail"), SharedText("org.example.mail"));
  fakes::publish(idleTracker.activationMap, {{"org.example.mail", calendar.now()}});
  scheduler.advance(25 * 60.0);
  settings.idleThresholdMinutes.set(25);
  monitor->refresh();
  EXPECT_TRUE(monitor->idleApps->empty());
  settings.idleThresholdMinutes.set(24);
  monitor->refresh();
  ASSERT_EQ(monitor->idleApps->size(), 1u);
  EXPECT_EQ(monitor->idleApps->front().idleFor, 1500.0);
}

TEST_F(SystemMonitorTest, theDetectorsSeeTheRowsOfTheTick) {
  workspace.installed["/opt/Foo"] = {SharedText("org.example.foo"), SharedText("Foo")};
  workspace.installed["/Applications/Foo.app"] = {SharedText("org.example.foo"), SharedText("Foo")};
  const bool hasBundles = ofThisSystem<ApplicationPathRules>().kind == ApplicationPathRules::Kind::bundles;
  for (std::int32_t pid = 2; pid < 40; ++pid) addProcess(pid, 4'294'967'295);
  addProcess(40, 4'294'967'296);
  workspace.add(40, SharedText("Big"), SharedText("org.example.big"));
  processes.add(41, "foo-agent").executablePath =
      SharedText(hasBundles ? "/Applications/Foo.app/Contents/foo-agent" : "/opt/Foo/foo-agent");
  for (auto& process : processes.processes) process.bsdInfo->parentPID = process.pid == 41 ? 1 : 2;
  monitor->refresh();
  ASSERT_EQ(monitor->leakyApps->size(), 1u);
  EXPECT_EQ(monitor->leakyApps->front().pid, 40);
  EXPECT_EQ(monitor->leakyApps->front().displayName, "Big");
  ASSERT_EQ(monitor->orphanHelpers->size(), 1u);
  EXPECT_EQ(monitor->orphanHelpers->front().pid, 41);
  EXPECT_EQ(monitor->orphanHelpers->front().parentAppName, "Foo");

  processes.remove(40);
  workspace.add(7, SharedText("Foo"), SharedText("org.example.foo"));
  monitor->refresh();
  EXPECT_TRUE(monitor->leakyApps->empty());
  EXPECT_TRUE(monitor->orphanHelpers->empty());
}

TEST_F(SystemMonitorTest, publishesInTheOrderOfTheTick) {
  std::vector<std::string> order;
  std::vector<Subscription> tokens;
  const auto watch = [&](const auto& property, const char* name) {
    tokens.push_back(property.subscribeToChanges([&order, name](const auto&) { order.push_back(name); }));
  };
  watch(monitor->ringProgress, "ringProgress");
  watch(monitor->lastUpdate, "lastUpdate");
  watch(monitor->leakyApps, "leakyApps");
  watch(monitor->orphanHelpers, "orphanHelpers");
  watch(monitor->idleApps, "idleApps");
  watch(monitor->topCPUHogs, "topCPUHogs");
  watch(monitor->topMemoryHogs, "topMemoryHogs");
  watch(monitor->thermal, "thermal");
  watch(monitor->cpu, "cpu");
  watch(monitor->memory, "memory");
  monitor->refresh();
  EXPECT_EQ(order,
            (std::vector<std::string>{"memory", "cpu", "thermal", "topMemoryHogs", "topCPUHogs", "idleApps",
                                      "orphanHelpers", "leakyApps", "lastUpdate", "ringProgress"}));
}

TEST_F(SystemMonitorTest, aDeferredSubscriberSeesTheFinishedTick) {
  double ringSeen = -1.0;
  const auto token = monitor->memory.subscribeOnMainLoop(scheduler, [&](const MemorySnapshot& value) {
    if (!value.isEmpty()) ringSeen = monitor->ringProgress;
  });
  setHeat(2);
  monitor->refresh();
  EXPECT_EQ(ringSeen, -1.0);
  scheduler.runReady();
  EXPECT_EQ(ringSeen, 0.7);
}

TEST_F(SystemMonitorTest, theTimerFiresFirstAfterOneWholePeriod) {
  monitor->restartTimer();
  EXPECT_TRUE(monitor->hasTimer());
  scheduler.advance(14.999);
  EXPECT_EQ(memory.statisticsReads, 0);
  scheduler.advance(0.001);
  EXPECT_EQ(memory.statisticsReads, 1);
  scheduler.advance(15.0);
  EXPECT_EQ(memory.statisticsReads, 2);
}

TEST_F(SystemMonitorTest, theActiveCadenceTicksEveryTwoSeconds) {
  EXPECT_EQ(periodSeconds(MonitorCadence::active), 2.0);
  EXPECT_EQ(periodSeconds(MonitorCadence::idle), 15.0);
  monitor->setCadence(MonitorCadence::active);
  scheduler.advance(1.999);
  EXPECT_EQ(memory.statisticsReads, 0);
  scheduler.advance(0.001);
  EXPECT_EQ(memory.statisticsReads, 1);
  scheduler.advance(20.0);
  EXPECT_EQ(memory.statisticsReads, 11);
}

TEST_F(SystemMonitorTest, aRestartCountsItsPeriodAnewAndTheOldTimerIsGone) {
  monitor->restartTimer();
  scheduler.advance(14.0);
  monitor->setCadence(MonitorCadence::active);
  EXPECT_EQ(scheduler.pendingTimers(), 1u);
  scheduler.advance(1.999);
  EXPECT_EQ(memory.statisticsReads, 0);
  scheduler.advance(0.001);
  EXPECT_EQ(memory.statisticsReads, 1);
}

TEST_F(SystemMonitorTest, settingThePresentCadenceLeavesTheTimerAlone) {
  monitor->setCadence(MonitorCadence::active);
  scheduler.advance(1.5);
  monitor->setCadence(MonitorCadence::active);
  scheduler.advance(0.499);
  EXPECT_EQ(memory.statisticsReads, 0);
  scheduler.advance(0.001);
  EXPECT_EQ(memory.statisticsReads, 1);
}

TEST_F(SystemMonitorTest, aStoppedTimerNoLongerFires) {
  monitor->restartTimer();
  monitor->stopTimer();
  EXPECT_FALSE(monitor->hasTimer());
  scheduler.advance(60.0);
  EXPECT_EQ(memory.statisticsReads, 0);
}

TEST_F(SystemMonitorTest, aDestroyedMonitorNoLongerTicks) {
  monitor->restartTimer();
  scheduler.advance(14.0);
  monitor.reset();
  scheduler.advance(60.0);
  EXPECT_EQ(memory.statisticsReads, 0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(SystemMonitorTest, twoRefreshesInARowBothSample) {
  monitor->refresh();
  monitor->refresh();
  EXPECT_EQ(memory.statisticsReads, 2);
}

}  // namespace
}  // namespace vorli
