#include "sampling/RingProgress.h"

namespace vorli {
namespace {

struct RingProgressTest : testing::Test {
  RingProgressTest() {
    memory.totalBytes = 8ULL << 30;
    memory.capturedAt = Date{1001.0};
  }

  /// Makes the memory sample of one second earlier.
  MemorySnapshot& base() {
    previous = memory;
    previous->capturedAt = memory.capturedAt + -1.0;
    return *previous;
  }

  double target() const {
    return ringProgressTarget({.memory = memory,
                               .previous = previous,
                               .load = load,
                               .activeProcessorCount = processors,
                               .cpuUsage = usage,
                               .thermalState = thermal});
  }
  double targetAtUsage(double value) {
    usage = value;
    return target();
  }

  MemorySnapshot memory;
  std::optional<MemorySnapshot> previous;
  double load = 0.0;
  int processors = 8;
  double usage = 0.0;
  ThermalState thermal = ThermalState::nominal;
};

TEST_F(RingProgressTest, anEmptySnapshotGivesZeroWhateverElseIsWrong) {
  memory.totalBytes = 0;
  memory.pressureLevel = MemoryPressureLevel::critical;
  thermal = ThermalState::critical;
  EXPECT_EQ(target(), 0.0);
}

TEST_F(RingProgressTest, theKernelsLevelGivesTheBase) {
  EXPECT_EQ(target(), 0.05);
  memory.pressureLevel = MemoryPressureLevel::warning;
  EXPECT_EQ(target(), 0.55);
  memory.pressureLevel = MemoryPressureLevel::critical;
  EXPECT_EQ(target(), 0.85);
}

TEST_F(RingProgressTest, fullMemoryAloneIsNotDistress) {
  memory.freeBytes = 0;
  EXPECT_EQ(target(), 0.05);
}

TEST_F(RingProgressTest, decompressionsCountByTheirRate) {
  base();
  memory.decompressionsCumulative = 10000;
  EXPECT_EQ(target(), 1.0);
  memory.decompressionsCumulative = 5000;
  previous->capturedAt = memory.capturedAt + -2.0;
  EXPECT_EQ(target(), 0.25);
}

TEST_F(RingProgressTest, swapinsCountByTheirRate) {
  base();
  memory.swapinsCumulative = 500;
  EXPECT_EQ(target(), 1.0);
  memory.swapinsCumulative = 125;
  EXPECT_EQ(target(), 0.25);
}

TEST_F(RingProgressTest, pageoutsCountByTheirRate) {
  base();
  memory.pageoutsCumulative = 2000;
  EXPECT_EQ(target(), 1.0);
  memory.pageoutsCumulative = 500;
  EXPECT_EQ(target(), 0.25);
}

TEST_F(RingProgressTest, otherCountersDoNotCount) {
  base();
  memory.pageinsCumulative = 1'000'000;
  memory.swapoutsCumulative = 1'000'000;
  memory.compressionsCumulative = 1'000'000;
  EXPECT_EQ(target(), 0.05);
}

TEST_F(RingProgressTest, withoutAnEarlierSampleThereAreNoRates) {
  memory.decompressionsCumulative = 1'000'000;
  memory.swapinsCumulative = 1'000'000;
  memory.pageoutsCumulative = 1'000'000;
  EXPECT_EQ(target(), 0.05);
}

TEST_F(RingProgressTest, aClockThatStopsOrIsSetBackGivesNoRates) {
  base();
  memory.decompressionsCumulative = 1'000'000;
  previous->capturedAt = memory.capturedAt;
  EXPECT_EQ(target(), 0.05);
  previous->capturedAt = memory.capturedAt + 10.0;
  EXPECT_EQ(target(), 0.05);
}

TEST_F(RingProgressTest, aCounterThatRanBackwardsIsAtItsWorst) {
  base().swapinsCumulative = 10;
  memory.swapinsCumulative = 9;
  EXPECT_EQ(target(), 1.0);
}

TEST_F(RingProgressTest, loadCountsAboveTheNumberOfProcessors) {
  load = 8.0;
  EXPECT_EQ(target(), 0.05);
  load = 12.0;
  EXPECT_EQ(target(), 0.5);
  load = 16.0;
  EXPECT_EQ(target(), 1.0);
  load = 20.0;
  EXPECT_EQ(target(), 1.0);
}

TEST_F(RingProgressTest, anUnknownNumberOfProcessorsCountsAsOne) {
  for (const int count : {0, -3}) {
    processors = count;
    load = 1.5;
    EXPECT_EQ(target(), 0.5);
  }
}

TEST_F(RingProgressTest, cpuUsageFollowsItsCurve) {
  EXPECT_EQ(targetAtUsage(-0.5), 0.05);
  EXPECT_EQ(targetAtUsage(0.49), 0.05);  // its own score is 0.049, under the base
  EXPECT_DOUBLE_EQ(targetAtUsage(0.5), 0.05);
  EXPECT_DOUBLE_EQ(targetAtUsage(0.6), 0.15);
  EXPECT_DOUBLE_EQ(targetAtUsage(0.75), 0.3);
  EXPECT_DOUBLE_EQ(targetAtUsage(0.8), 0.425);
  EXPECT_DOUBLE_EQ(targetAtUsage(0.9), 0.675);
  EXPECT_DOUBLE_EQ(targetAtUsage(0.95), 0.8375);
  EXPECT_DOUBLE_EQ(targetAtUsage(1.0), 1.0);
  EXPECT_DOUBLE_EQ(targetAtUsage(1.2), 1.0);
}

TEST_F(RingProgressTest, theCurveOfCpuUsageIsContinuous) {
  for (const double knot : {0.5, 0.75, 0.9, 1.0}) {
    EXPECT_NEAR(targetAtUsage(knot - 1e-9), targetAtUsage(knot), 1e-8) << knot;
  }
}

TEST_F(RingProgressTest, heatCountsByItsState) {
  const std::pair<ThermalState, double> cases[] = {{ThermalState::nominal, 0.05},
                                                   {ThermalState::fair, 0.3},
                                                   {ThermalState::serious, 0.7},
                                                   {ThermalState::critical, 1.0},
                                                   {static_cast<ThermalState>(9), 0.05}};
  for (const auto& [state, score] : cases) {
    thermal = state;
    EXPECT_EQ(target(), score);
  }
}

TEST_F(RingProgressTest, theWorstSignalCountsAlone) {
  memory.pressureLevel = MemoryPressureLevel::warning;
  thermal = ThermalState::serious;
  load = 12.0;
  usage = 0.75;
  EXPECT_EQ(target(), 0.7);
  thermal = ThermalState::fair;
  EXPECT_EQ(target(), 0.55);
}

TEST_F(RingProgressTest, risesQuicklyAndFallsSlowly) {
  EXPECT_DOUBLE_EQ(smoothedRingProgress(0.1, 0.9), 0.54);
  EXPECT_DOUBLE_EQ(smoothedRingProgress(0.9, 0.05), 0.7725);
  EXPECT_DOUBLE_EQ(smoothedRingProgress(0.4, 0.4), 0.4);
}

}  // namespace
}  // namespace vorli
