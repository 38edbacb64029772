#include "sampling/SystemMonitor.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/MemoryCounters.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ProcessTable.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/Workspace.h"

#include <memory>

namespace vorli {
namespace {

constexpr double idlePeriod = 15.001;  // just over, as sums of fractions are not exact

struct SystemMonitorBackgroundTest : testing::Test {
  SystemMonitorBackgroundTest() {
    processes.add(1).taskInfo->residentBytes = 100;
    makeMonitor();
  }

  void makeMonitor() {
    monitor.reset();
    monitor =
        std::make_unique<SystemMonitor>(SystemMonitorPorts{scheduler, calendar, memory, cpu, thermal, power,
                                                           processes, workspace, bundle, background},
                                        settings, idleTracker);
    ticks = monitor->lastUpdate.subscribeToChanges([this](Date) { ++tickCount; });
  }

  /// One tick on the main thread whose look at the processes takes so long, and the timer.
  void startWithALookOf(double seconds) {
    setLook(seconds);
    monitor->refresh();
    monitor->restartTimer();
    tickCount = 0;
  }

  void setLook(double seconds) {
    processes.whenListed = [this, seconds] { scheduler.advanceClockOnly(seconds); };
  }

  std::vector<std::int32_t> largestPIDs() const {
    std::vector<std::int32_t> result;
    for (const auto& row : monitor->topMemoryHogs.get()) result.push_back(row.id);
    return result;
  }

  fakes::ManualScheduler scheduler;
  fakes::CalendarClock calendar{scheduler};
  fakes::MemoryCounters memory;
  fakes::CPUCounters cpu;
  fakes::ThermalSensors thermal;
  fakes::PowerSources power;
  fakes::ProcessTable processes;
  fakes::BackgroundWork background{scheduler};
  fakes::Workspace workspace;
  fakes::KeyValueStore store;
  fakes::ApplicationBundle bundle;
  AppSettings settings{store};
  IdleAppTracker idleTracker{scheduler, calendar, store, workspace};
  std::unique_ptr<SystemMonitor> monitor;
  Subscription ticks;
  int tickCount = 0;
};

TEST_F(SystemMonitorBackgroundTest, aLookThatIsQuickEnoughStaysOnTheMainThread) {
  startWithALookOf(SystemMonitor::longestOnMainThread - 0.001);
  scheduler.advance(idlePeriod);
  EXPECT_EQ(background.started, 0);
  EXPECT_EQ(tickCount, 1);
}

TEST_F(SystemMonitorBackgroundTest, afterASlowLookTheTimersNextOneIsTakenInTheBackground) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  EXPECT_EQ(background.started, 1);
  EXPECT_EQ(tickCount, 0);
  EXPECT_TRUE(background.isUnderWay());

  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 1);
  EXPECT_FALSE(background.isUnderWay());
}

TEST_F(SystemMonitorBackgroundTest, nothingIsPublishedBeforeTheWholeTickIs) {
  startWithALookOf(0.009);
  processes.add(2).taskInfo->residentBytes = 200;
  cpu.ticks = ports::CPUTicks{.user = 100, .idle = 100};
  const auto memoryBefore = monitor->memory.get();
  std::vector<std::string> published;
  const auto memorySeen = monitor->memory.subscribeToChanges([&](auto&) { published.push_back("memory"); });
  const auto hogsSeen =
      monitor->topMemoryHogs.subscribeToChanges([&](auto&) { published.push_back("topMemoryHogs"); });
  const auto timeSeen =
      monitor->lastUpdate.subscribeToChanges([&](auto&) { published.push_back("lastUpdate"); });
  const auto ringSeen =
      monitor->ringProgress.subscribeToChanges([&](auto&) { published.push_back("ringProgress"); });

  scheduler.advance(idlePeriod + background.seconds - 0.002);
  EXPECT_EQ(monitor->memory.get(), memoryBefore);
  EXPECT_TRUE(published.empty());

  scheduler.advance(0.002);
  EXPECT_EQ(published, (std::vector<std::string>{"memory", "topMemoryHogs", "lastUpdate", "ringProgress"}));
  EXPECT_EQ(largestPIDs(), (std::vector<std::int32_t>{2, 1}));
}

TEST_F(SystemMonitorBackgroundTest, aLookThatIsQuickAgainBringsTheTimerBackToTheMainThread) {
  startWithALookOf(0.009);
  setLook(0.002);
  scheduler.advance(idlePeriod + background.seconds);
  EXPECT_EQ(background.started, 1);
  scheduler.advance(idlePeriod);
  EXPECT_EQ(background.started, 1);
  EXPECT_EQ(tickCount, 2);
}

TEST_F(SystemMonitorBackgroundTest, refreshOutOfTurnIsSynchronousHoweverSlow) {
  startWithALookOf(0.5);
  monitor->refresh();
  EXPECT_EQ(background.started, 0);
  EXPECT_EQ(tickCount, 1);
}

TEST_F(SystemMonitorBackgroundTest, refreshOutOfTurnFinishesTheTickUnderWayBeforeItsOwn) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(background.isUnderWay());
  std::vector<std::size_t> sizes;
  const auto seen =
      monitor->topMemoryHogs.subscribeToChanges([&](const auto& rows) { sizes.push_back(rows.size()); });
  const auto processAppears = monitor->lastUpdate.subscribeToChanges([&](Date) {
    if (tickCount == 1) processes.add(2);
  });

  monitor->refresh();
  EXPECT_EQ(tickCount, 2);
  EXPECT_EQ(sizes, (std::vector<std::size_t>{1, 2}));

  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 2);  // the tick that was under way does not come again
}

TEST_F(SystemMonitorBackgroundTest, eachOfTheTwoTicksMovesTheSmoothingByOneStep) {
  startWithALookOf(0.009);
  const double before = monitor->ringProgress;
  thermal.reading.systemState = 3;  // the target is 1.0
  scheduler.advance(idlePeriod);
  monitor->refresh();
  const double once = before * 0.45 + 0.55;
  EXPECT_NEAR(monitor->ringProgress, once * 0.45 + 0.55, 1e-12);
}

TEST_F(SystemMonitorBackgroundTest, aFiringDuringALookIsDroppedAndTheRhythmStays) {
  startWithALookOf(0.009);
  background.seconds = 20.0;
  scheduler.advance(31.0);  // two firings: the second one finds the first one's look under way
  EXPECT_EQ(background.started, 1);
  EXPECT_EQ(tickCount, 0);
  scheduler.advance(5.0);
  EXPECT_EQ(tickCount, 1);
  scheduler.advance(10.0);
  EXPECT_EQ(background.started, 2);
}

TEST_F(SystemMonitorBackgroundTest, aTickUnderWayOutlivesItsTimer) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  monitor->stopTimer();
  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 1);
}

TEST_F(SystemMonitorBackgroundTest, aMonitorThatGoesTakesItsTickWithIt) {
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  ASSERT_TRUE(background.isUnderWay());
  monitor.reset();
  EXPECT_FALSE(background.isUnderWay());
  scheduler.advance(background.seconds);
  EXPECT_EQ(tickCount, 0);
}

TEST_F(SystemMonitorBackgroundTest, applicationsThatEndDuringTheLookHaveTheirRowsOfItsStart) {
  workspace.applications = {{.processIdentifier = 1, .localizedName = SharedText("Editor")}};
  startWithALookOf(0.009);
  scheduler.advance(idlePeriod);
  workspace.applications.clear();
  scheduler.advance(background.seconds);
  ASSERT_EQ(monitor->topMemoryHogs->size(), 1u);
  EXPECT_EQ(monitor->topMemoryHogs->front().displayName, "Editor");
}

}  // namespace
}  // namespace vorli
