#include "polish/PolishOutcome.h"
#include "tests/fakes/CapturedLog.h"

#include <string>
#include <vector>

namespace vorli {
namespace {

MemorySnapshot snapshot(std::uint64_t totalBytes, std::uint64_t freeBytes) {
  MemorySnapshot result;
  result.totalBytes = totalBytes;
  result.freeBytes = freeBytes;
  return result;
}

MemorySnapshot using_(std::uint64_t usedBytes) {
  return snapshot(100'000'000, 100'000'000 - usedBytes);
}

TEST(LighterPercentageTest, isShownFromTwoOn) {
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(980'100)), std::nullopt);  // 1.99
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(980'000)), 2);
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(979'900)), 2);
}

TEST(LighterPercentageTest, isCutTowardsZero) {
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(900'001)), 9);
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(900'000)), 10);
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(1)), 99);
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(0)), 100);
}

TEST(LighterPercentageTest, isNotShownWhenUseHasNotFallen) {
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(1'000'000)), std::nullopt);
  EXPECT_EQ(lighterPercentage(using_(1'000'000), using_(1'500'000)), std::nullopt);
  EXPECT_EQ(lighterPercentage(using_(0), using_(0)), std::nullopt);
}

TEST(LighterPercentageTest, needsTwoSamples) {
  EXPECT_EQ(lighterPercentage(std::nullopt, using_(0)), std::nullopt);
  EXPECT_EQ(lighterPercentage(MemorySnapshot::empty, using_(1'000'000)), std::nullopt);
  EXPECT_EQ(lighterPercentage(using_(1'000'000), MemorySnapshot::empty), std::nullopt);
}

TEST(LighterPercentageTest, takesMoreFreeThanTotalAsNothingUsed) {
  EXPECT_EQ(lighterPercentage(snapshot(1000, 2000), using_(1)), std::nullopt);
  EXPECT_EQ(lighterPercentage(snapshot(1000, 0), snapshot(1000, 2000)), 100);
}

TEST(LogSettledRingTest, reportsTheEffectOfTheHold) {
  const fakes::CapturedLog log;
  logSettledRing(0.549, snapshot(1000, 100), snapshot(1000, 350));
  logSettledRing(0.8, snapshot(1000, 350), snapshot(1000, 100));
  logSettledRing(0.55, std::nullopt, snapshot(1000, 100));
  EXPECT_EQ(log.messages(),
            (std::vector<std::string>{
                "handleTap: after hold+refresh, ringProgress=0.55 ringState=healthy freedFreeDelta=250 "
                "usedDelta=250. Leaving cleared hold.",
                "handleTap: after hold+refresh, ringProgress=0.80 ringState=critical freedFreeDelta=-250 "
                "usedDelta=-250. Leaving cleared hold.",
                "handleTap: after hold+refresh, ringProgress=0.55 ringState=warming. No before-snapshot "
                "available. Leaving cleared hold."}));
}

}  // namespace
}  // namespace vorli
