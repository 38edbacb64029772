#include "linux/kernel/CPUCounters.h"
#include "linux/kernel/MemoryCounters.h"
#include "linux/kernel/ProcessTable.h"
#include "posix/BackgroundWork.h"
#include "posix/CalendarClock.h"
#include "sampling/SystemMonitor.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/Workspace.h"
#include "tests/linux/kernel/ChangedProcessTable.h"
#include "tests/posix/HoldsInTime.h"

#include <gtest/gtest.h>
#include <thread>

namespace vorli {
namespace {

/// The real table, on a machine with so many processes that listing them takes 9 ms.
class CrowdedTable final : public ChangedProcessTable {
 public:
  CrowdedTable(fakes::ManualScheduler& scheduler, ports::ProcessTable& real)
      : ChangedProcessTable(real), scheduler_(scheduler) {}

  int listAllPIDs(std::span<std::int32_t> buffer) override {
    if (buffer.empty()) scheduler_.advanceClockOnly(0.009);
    return ChangedProcessTable::listAllPIDs(buffer);
  }

 private:
  fakes::ManualScheduler& scheduler_;
};

struct SystemMonitorLiveTest : testing::Test {
  fakes::ManualScheduler scheduler;
  posix::CalendarClock calendar;
  linuxhost::MemoryCounters memory;
  linuxhost::CPUCounters cpu;
  fakes::ThermalSensors thermal;
  fakes::PowerSources power;
  linuxhost::ProcessTable realProcesses{calendar};
  CrowdedTable processes{scheduler, realProcesses};
  posix::BackgroundWork background{scheduler};
  fakes::Workspace workspace;
  fakes::KeyValueStore store;
  fakes::ApplicationBundle bundle;
  AppSettings settings{store};
  IdleAppTracker idleTracker{scheduler, calendar, store, workspace};
  SystemMonitor monitor{
      {scheduler, calendar, memory, cpu, thermal, power, processes, workspace, bundle, background},
      settings,
      idleTracker};
};

TEST_F(SystemMonitorLiveTest, realProcessesAreReadInTheBackgroundAndPublishedOnTheMainThread) {
  const auto here = std::this_thread::get_id();
  int ticks = 0;
  const auto seen = monitor.lastUpdate.subscribeToChanges([&](Date) {
    EXPECT_EQ(std::this_thread::get_id(), here);
    // A container may have fewer processes than the list has places.
    EXPECT_GE(monitor.topMemoryHogs->size(), 1u);
    EXPECT_LE(monitor.topMemoryHogs->size(), 5u);
    ++ticks;
  });
  monitor.refresh();
  monitor.restartTimer();
  for (int tick = 2; tick <= 20; ++tick) {
    scheduler.advanceTo(scheduler.earliestDeadline());
    ASSERT_TRUE(holdsInTime(scheduler, [&] { return ticks == tick; }));
  }
}

TEST_F(SystemMonitorLiveTest, refreshesBetweenTheTimersTicksLoseNoTick) {
  int ticks = 0;
  const auto seen = monitor.lastUpdate.subscribeToChanges([&](Date) { ++ticks; });
  monitor.refresh();
  monitor.restartTimer();
  for (int round = 1; round <= 20; ++round) {
    scheduler.advanceTo(scheduler.earliestDeadline());  // starts a sample
    monitor.refresh();
    EXPECT_EQ(ticks, 1 + 2 * round);
  }
}

}  // namespace
}  // namespace vorli
