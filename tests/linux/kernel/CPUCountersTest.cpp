#include "linux/kernel/CPUCounters.h"
#include "sampling/CPUStats.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/linux/RecordedTree.h"

#include <array>
#include <gtest/gtest.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

std::array<double, 3> loadAverages(CPUCounters& counters) {
  std::array<double, 3> averages{};
  counters.readLoadAverages(averages);
  return averages;
}

TEST(CPUCountersTest, interruptsAreSystemTimeAndWaitingIsIdle) {
  const RecordedTree tree("laptop");
  EXPECT_EQ(
      CPUCounters(tree.root()).readTicks(),
      (ports::CPUTicks{.user = 120440, .system = 40210 + 900 + 3100, .idle = 9120330 + 8120, .nice = 1320}));
}

TEST(CPUCountersTest, ticksWrapAroundAt32Bits) {
  const RecordedTree tree("server");
  EXPECT_EQ(CPUCounters(tree.root()).readTicks(),
            (ports::CPUTicks{.user = 4294967290, .system = 2, .idle = 6, .nice = 0}));
}

TEST(CPUCountersTest, anIdleCounterThatRunsBackStopsAndThenContinues) {
  const RecordedTree tree;
  CPUCounters counters(tree.root());
  const auto idleAfter = [&](const char* line) {
    tree.write("proc/stat", line);
    return counters.readTicks().value_or(ports::CPUTicks{}).idle;
  };
  EXPECT_EQ(idleAfter("cpu  100 0 0 1000 200 0 0\n"), 1200U);
  EXPECT_EQ(idleAfter("cpu  100 0 0 1000 199 0 0\n"), 1200U);
  EXPECT_EQ(idleAfter("cpu  100 0 0 1010 199 0 0\n"), 1210U);
  EXPECT_EQ(idleAfter("cpu  100 0 0 400 100 0 0\n"), 1210U);
  EXPECT_EQ(idleAfter("cpu  100 0 0 401 101 0 0\n"), 1212U);
}

TEST(CPUCountersTest, aBusyTickDuringWhichTheIdleCounterRunsBackIsFullUsage) {
  const RecordedTree tree;
  CPUCounters counters(tree.root());
  const fakes::CalendarClock calendar;
  CPUStats stats;
  tree.write("proc/stat", "cpu  1000 0 0 5000 0 0 0\n");
  stats.sample(counters, calendar);
  tree.write("proc/stat", "cpu  2600 0 0 4999 0 0 0\n");
  EXPECT_EQ(stats.sample(counters, calendar).usage, 1.0);
}

TEST(CPUCountersTest, anOldKernelsFourFieldsAreEnough) {
  const RecordedTree tree("no-psi");
  EXPECT_EQ(CPUCounters(tree.root()).readTicks(),
            (ports::CPUTicks{.user = 100, .system = 50, .idle = 1000, .nice = 0}));
}

TEST(CPUCountersTest, readsTheLoadAndTheProcessors) {
  const RecordedTree tree("laptop");
  CPUCounters counters(tree.root());
  EXPECT_EQ(loadAverages(counters), (std::array{0.52, 0.61, 0.7}));
  EXPECT_EQ(counters.activeProcessorCount(), 5);
  EXPECT_EQ(counters.processorCount(), 8);
  tree.write("sys/devices/system/cpu/online", "0\n");
  EXPECT_EQ(counters.activeProcessorCount(), 1);
}

TEST(CPUCountersTest, hostileContentsGiveNothing) {
  const RecordedTree tree("hostile");
  CPUCounters counters(tree.root());
  EXPECT_FALSE(counters.readTicks());
  EXPECT_EQ(loadAverages(counters), (std::array{0.0, 0.0, 0.0}));
  EXPECT_EQ(counters.activeProcessorCount(), 0);
  EXPECT_EQ(counters.processorCount(), 0);
}

TEST(CPUCountersTest, missingFilesAreFoundWhenTheyAppear) {
  const RecordedTree tree;
  CPUCounters counters(tree.root());
  EXPECT_FALSE(counters.readTicks());
  EXPECT_EQ(counters.processorCount(), 0);
  tree.write("proc/stat", "cpu  1 2 3 4\n");
  tree.write("sys/devices/system/cpu/present", "0-1");
  EXPECT_TRUE(counters.readTicks());
  EXPECT_EQ(counters.processorCount(), 2);
}

TEST(CPUCountersTest, aHalfReadableLoadLeavesTheRestAlone) {
  const RecordedTree tree;
  tree.write("proc/loadavg", "0.25 x 3.0");
  CPUCounters counters(tree.root());
  EXPECT_EQ(loadAverages(counters), (std::array{0.25, 0.0, 0.0}));
}

TEST(CPUCountersTest, theRunningKernelAgreesWithTheLibrary) {
  CPUCounters counters;
  EXPECT_TRUE(counters.readTicks());
  EXPECT_EQ(counters.activeProcessorCount(), sysconf(_SC_NPROCESSORS_ONLN));
  EXPECT_GE(counters.processorCount(), counters.activeProcessorCount());
}

}  // namespace
}  // namespace vorli::linuxhost
