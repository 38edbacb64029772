#include "sampling/CPUStats.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"

namespace vorli {
namespace {

struct CPUStatsTest : testing::Test {
  double usageAt(std::uint32_t user, std::uint32_t system, std::uint32_t idle, std::uint32_t nice) {
    counters.ticks = ports::CPUTicks{.user = user, .system = system, .idle = idle, .nice = nice};
    return stats.sample(counters, calendar).usage;
  }

  fakes::CPUCounters counters;
  fakes::CalendarClock calendar{Date{50.0}};
  CPUStats stats;
};

TEST_F(CPUStatsTest, theEmptySnapshotIsIdleInTheDistantPast) {
  EXPECT_EQ(CPUSnapshot::empty.usage, 0.0);
  EXPECT_EQ(CPUSnapshot::empty.capturedAt, Date::distantPast());
}

TEST_F(CPUStatsTest, theFirstSampleOnlySetsTheBaseline) {
  EXPECT_EQ(usageAt(1000, 1000, 0, 0), 0.0);
  EXPECT_EQ(stats.sample(counters, calendar).capturedAt, Date{50.0});
}

TEST_F(CPUStatsTest, niceTimeCountsAsBusy) {
  usageAt(100, 200, 300, 400);
  EXPECT_EQ(usageAt(130, 210, 350, 410), 0.5);
}

TEST_F(CPUStatsTest, eachSampleMeasuresFromTheLastOne) {
  usageAt(0, 0, 0, 0);
  EXPECT_EQ(usageAt(100, 0, 0, 0), 1.0);
  EXPECT_EQ(usageAt(100, 0, 100, 0), 0.0);
  EXPECT_EQ(usageAt(125, 0, 175, 0), 0.25);
}

TEST_F(CPUStatsTest, noTickBetweenTwoSamplesIsNoUsage) {
  usageAt(100, 200, 300, 400);
  EXPECT_EQ(usageAt(100, 200, 300, 400), 0.0);
}

TEST_F(CPUStatsTest, aCounterThatWrapsAroundChangesByItsTrueDistance) {
  usageAt(4294967290, 0, 0, 0);
  EXPECT_EQ(usageAt(6, 0, 36, 0), 0.25);  // 12 of 48
  usageAt(0, 4294967290, 4294967290, 4294967290);
  EXPECT_EQ(usageAt(0, 6, 6, 6), 24.0 / 36.0);
}

TEST_F(CPUStatsTest, sumsOfLargeChangesDoNotWrap) {
  usageAt(0, 0, 0, 0);
  EXPECT_EQ(usageAt(0xFFFFFFFF, 0xFFFFFFFF, 0, 0xFFFFFFFF), 1.0);
  EXPECT_NEAR(usageAt(0xFFFFFFFE, 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFE), 0.75, 1e-9);
}

TEST_F(CPUStatsTest, aFailedReadIsEmptyAndKeepsTheBaseline) {
  usageAt(100, 0, 100, 0);
  counters.ticks.reset();
  EXPECT_EQ(stats.sample(counters, calendar), CPUSnapshot::empty);
  EXPECT_EQ(usageAt(130, 0, 170, 0), 0.3);
}

TEST_F(CPUStatsTest, aFailedFirstReadLeavesTheBaselineToTheNext) {
  counters.ticks.reset();
  EXPECT_EQ(stats.sample(counters, calendar), CPUSnapshot::empty);
  EXPECT_EQ(usageAt(100, 0, 0, 0), 0.0);
  EXPECT_EQ(usageAt(200, 0, 0, 0), 1.0);
}

}  // namespace
}  // namespace vorli
