#include "linux/CPUCounters.h"
#include "linux/MemoryCounters.h"
#include "linux/ProcessTable.h"
#include "posix/BackgroundWork.h"
#include "posix/CalendarClock.h"
#include "sampling/SystemMonitor.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/Workspace.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace vorli {
namespace {

/// The real table, on a machine with so many processes that listing them takes 9 ms.
class CrowdedTable final : public ports::ProcessTable {
 public:
  CrowdedTable(fakes::ManualScheduler& scheduler, const ports::CalendarClock& calendar)
      : scheduler_(scheduler), table_(calendar) {}

  ports::Timebase timebase() override { return table_.timebase(); }
  int listAllPIDs(std::span<std::int32_t> buffer) override {
    if (buffer.empty()) scheduler_.advanceClockOnly(0.009);
    return table_.listAllPIDs(buffer);
  }
  bool readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) override {
    return table_.readTaskInfo(pid, info);
  }
  bool readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) override {
    return table_.readBSDInfo(pid, info);
  }
  const std::optional<SharedText>& executablePath(std::int32_t pid) override {
    return table_.executablePath(pid);
  }
  std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) override {
    return table_.exactResidentBytes(pid);
  }

 private:
  fakes::ManualScheduler& scheduler_;
  linuxhost::ProcessTable table_;
};

struct SystemMonitorLiveTest : testing::Test {
  template <typename Condition>
  bool holdsInTime(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      scheduler.runReady();
      std::this_thread::yield();
    }
    return true;
  }

  fakes::ManualScheduler scheduler;
  posix::CalendarClock calendar;
  linuxhost::MemoryCounters memory;
  linuxhost::CPUCounters cpu;
  fakes::ThermalSensors thermal;
  fakes::PowerSources power;
  CrowdedTable processes{scheduler, calendar};
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
    EXPECT_EQ(monitor.topMemoryHogs->size(), 5u);
    ++ticks;
  });
  monitor.refresh();
  monitor.restartTimer();
  for (int tick = 2; tick <= 20; ++tick) {
    scheduler.advanceTo(scheduler.earliestDeadline());
    ASSERT_TRUE(holdsInTime([&] { return ticks == tick; }));
  }
}

TEST_F(SystemMonitorLiveTest, refreshesBetweenTheTimersTicksLoseNone) {
  int ticks = 0;
  const auto seen = monitor.lastUpdate.subscribeToChanges([&](Date) { ++ticks; });
  monitor.refresh();
  monitor.restartTimer();
  for (int round = 1; round <= 20; ++round) {
    scheduler.advanceTo(scheduler.earliestDeadline());  // starts a look
    monitor.refresh();
    EXPECT_EQ(ticks, 1 + 2 * round);
  }
}

}  // namespace
}  // namespace vorli
