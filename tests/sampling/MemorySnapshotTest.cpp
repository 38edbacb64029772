#include "sampling/MemorySnapshot.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/MemoryCounters.h"

#include <limits>

namespace vorli {
namespace {

constexpr auto normal = MemoryPressureLevel::normal;
constexpr auto warning = MemoryPressureLevel::warning;
constexpr auto critical = MemoryPressureLevel::critical;

TEST(MemorySnapshotTest, theEmptySnapshotIsAllZeroInTheDistantPast) {
  const MemorySnapshot& empty = MemorySnapshot::empty;
  EXPECT_TRUE(empty.isEmpty());
  EXPECT_EQ(empty.totalBytes, 0u);
  EXPECT_EQ(empty.freeBytes, 0u);
  EXPECT_EQ(empty.usedBytes(), 0u);
  EXPECT_EQ(empty.pressureLevel, normal);
  EXPECT_EQ(empty.capturedAt, Date::distantPast());
  EXPECT_EQ(empty, MemorySnapshot());
}

TEST(MemorySnapshotTest, usedBytesAreTotalLessFreeButNotBelowZero) {
  MemorySnapshot snapshot;
  snapshot.totalBytes = 100;
  snapshot.freeBytes = 30;
  EXPECT_EQ(snapshot.usedBytes(), 70u);
  snapshot.freeBytes = 100;
  EXPECT_EQ(snapshot.usedBytes(), 0u);
  snapshot.freeBytes = 101;
  EXPECT_EQ(snapshot.usedBytes(), 0u);
}

TEST(MemorySnapshotTest, pageCountsAreMultipliedAndCountersAreNot) {
  fakes::MemoryCounters counters;
  counters.pageSize = 16384;
  counters.statistics = ports::VMStatistics{.freeCount = 1,
                                            .activeCount = 2,
                                            .inactiveCount = 3,
                                            .wireCount = 4,
                                            .compressorPageCount = 5,
                                            .speculativeCount = 6,
                                            .purgeableCount = 7,
                                            .pageins = 11,
                                            .pageouts = 12,
                                            .swapins = 13,
                                            .swapouts = 14,
                                            .decompressions = 15,
                                            .compressions = 16};
  counters.physicalMemory = 17179869184;
  counters.swapUsage = ports::SwapUsage{.usedBytes = 21, .totalBytes = 22};
  counters.pressure.kernelLevel = 2;
  const fakes::CalendarClock calendar(Date{500.0});

  const auto snapshot = sampleMemory(counters, calendar);
  EXPECT_EQ(snapshot.totalBytes, 17179869184u);
  EXPECT_EQ(snapshot.freeBytes, 16384u);
  EXPECT_EQ(snapshot.activeBytes, 32768u);
  EXPECT_EQ(snapshot.inactiveBytes, 49152u);
  EXPECT_EQ(snapshot.wiredBytes, 65536u);
  EXPECT_EQ(snapshot.compressedBytes, 81920u);
  EXPECT_EQ(snapshot.speculativeBytes, 98304u);
  EXPECT_EQ(snapshot.purgeableBytes, 114688u);
  EXPECT_EQ(snapshot.pressureLevel, warning);
  EXPECT_EQ(snapshot.swapUsedBytes, 21u);
  EXPECT_EQ(snapshot.swapTotalBytes, 22u);
  EXPECT_EQ(snapshot.capturedAt, Date{500.0});
  EXPECT_EQ(snapshot.pageinsCumulative, 11u);
  EXPECT_EQ(snapshot.pageoutsCumulative, 12u);
  EXPECT_EQ(snapshot.swapinsCumulative, 13u);
  EXPECT_EQ(snapshot.swapoutsCumulative, 14u);
  EXPECT_EQ(snapshot.decompressionsCumulative, 15u);
  EXPECT_EQ(snapshot.compressionsCumulative, 16u);
}

TEST(MemorySnapshotTest, pageCountsAreMultipliedIn64Bits) {
  fakes::MemoryCounters counters;
  counters.statistics->freeCount = 0xFFFFFFFF;
  EXPECT_EQ(sampleMemory(counters, fakes::CalendarClock()).freeBytes, 17592186040320u);
}

TEST(MemorySnapshotTest, unreadableCountersGiveTheEmptySnapshot) {
  fakes::MemoryCounters counters;
  counters.statistics.reset();
  EXPECT_EQ(sampleMemory(counters, fakes::CalendarClock()), MemorySnapshot::empty);
}

TEST(MemorySnapshotTest, unreadableSwapLeavesTheRestUnaffected) {
  fakes::MemoryCounters counters;
  counters.swapUsage.reset();
  counters.statistics->freeCount = 2;
  const auto snapshot = sampleMemory(counters, fakes::CalendarClock());
  EXPECT_EQ(snapshot.swapUsedBytes, 0u);
  EXPECT_EQ(snapshot.swapTotalBytes, 0u);
  EXPECT_EQ(snapshot.totalBytes, 8589934592u);
  EXPECT_EQ(snapshot.freeBytes, 8192u);
}

TEST(MemoryPressureLevelTest, isMadeFromItsThreeRawValuesOnly) {
  EXPECT_EQ(memoryPressureLevel(1), normal);
  EXPECT_EQ(memoryPressureLevel(2), warning);
  EXPECT_EQ(memoryPressureLevel(4), critical);
  for (const int raw : {-1, 0, 3, 5, 8, std::numeric_limits<int>::max()}) {
    EXPECT_FALSE(memoryPressureLevel(raw).has_value()) << raw;
  }
}

TEST(MemoryPressureLevelTest, theKernelsVerdictRulesAndUnknownOnesAreNormal) {
  ports::PressureReading reading;
  reading.fullStallPercent = 100.0;
  for (const auto& [raw, level] : {std::pair(0, normal),
                                   {1, normal},
                                   {2, warning},
                                   {3, normal},
                                   {4, critical},
                                   {5, normal},
                                   {-4, normal}}) {
    reading.kernelLevel = raw;
    EXPECT_EQ(pressureLevel(reading), level) << raw;
  }
}

TEST(MemoryPressureLevelTest, stallsAreJudgedFromTenPercent) {
  ports::PressureReading reading;
  EXPECT_EQ(pressureLevel(reading), normal);
  reading.someStallPercent = 9.99;
  EXPECT_EQ(pressureLevel(reading), normal);
  reading.someStallPercent = 10.0;
  EXPECT_EQ(pressureLevel(reading), warning);
  reading.fullStallPercent = 9.99;
  EXPECT_EQ(pressureLevel(reading), warning);
  reading.fullStallPercent = 10.0;
  EXPECT_EQ(pressureLevel(reading), critical);
}

TEST(MemoryPressureLevelTest, availableMemoryIsJudgedUnderTenAndUnderFivePercent) {
  ports::PressureReading reading;
  reading.totalBytes = 1000;
  for (const auto& [available, level] : {std::pair(1000u, normal),
                                         {100u, normal},
                                         {99u, warning},
                                         {50u, warning},
                                         {49u, critical},
                                         {0u, critical}}) {
    reading.availableBytes = available;
    EXPECT_EQ(pressureLevel(reading), level) << available;
  }
}

TEST(MemoryPressureLevelTest, anIncompleteReadingOfAvailableMemoryIsIgnored) {
  ports::PressureReading reading;
  reading.availableBytes = 0;
  EXPECT_EQ(pressureLevel(reading), normal);
  reading.totalBytes = 0;
  EXPECT_EQ(pressureLevel(reading), normal);
  reading.totalBytes = 1000;
  reading.availableBytes.reset();
  EXPECT_EQ(pressureLevel(reading), normal);
}

}  // namespace
}  // namespace vorli
