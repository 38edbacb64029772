#include "ambient/CalmCeremony.h"
#include "tests/ambient/CalmStep.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

constexpr double begin = 1000.0;
constexpr int riseSteps = 54;
constexpr int decaySteps = 18000;

CalmCeremony polish(double from = 0.0) {
  return {begin, from, 0.9, 300.0};
}
double afterSteps(const CalmCeremony& ceremony, double steps) {
  return ceremony.valueAt(begin + steps * calmStep);
}

// Compares with the values of a loop that sleeps for a frame between them.
TEST(CalmCeremonyTest, givesAtEachMomentTheValueOfTheCurrentStep) {
  const auto ease = [](double t) { return t < 0.5 ? 2.0 * t * t : 1.0 - 2.0 * (1.0 - t) * (1.0 - t); };
  for (const double from : {0.0, 0.3}) {
    const auto ceremony = polish(from);
    double lastRise = from;
    for (int i = 0; i < riseSteps; ++i) {
      lastRise = from + ease(i / 54.0) * (1.0 - from);
      EXPECT_NEAR(afterSteps(ceremony, i), lastRise, 1e-12) << i;
      EXPECT_NEAR(afterSteps(ceremony, i + 0.999), lastRise, 1e-12) << i;
    }
    for (int i = 0; i <= decaySteps; ++i) {
      const double expected = 1.0 - ease(i / 18000.0);
      ASSERT_NEAR(afterSteps(ceremony, riseSteps + i), expected, 1e-12) << i;
      ASSERT_NEAR(afterSteps(ceremony, riseSteps + i + 0.999), expected, 1e-12) << i;
    }
  }
}

TEST(CalmCeremonyTest, passesItsQuartersHalvesAndEnds) {
  const auto ceremony = polish();
  EXPECT_EQ(ceremony.valueAt(begin), 0.0);
  EXPECT_NEAR(afterSteps(ceremony, 9), 2.0 / 36.0, 1e-12);
  EXPECT_EQ(afterSteps(ceremony, 27), 0.5);
  EXPECT_LT(afterSteps(ceremony, 53), 1.0);
  EXPECT_EQ(afterSteps(ceremony, 54), 1.0);
  EXPECT_NEAR(afterSteps(ceremony, 54 + 4500), 0.875, 1e-12);
  EXPECT_EQ(afterSteps(ceremony, 54 + 9000), 0.5);
  EXPECT_NEAR(afterSteps(ceremony, 54 + 13500), 0.125, 1e-12);
  EXPECT_GT(afterSteps(ceremony, 54 + 17999), 0.0);
  EXPECT_EQ(afterSteps(ceremony, 54 + 18000), 0.0);
}

TEST(CalmCeremonyTest, isOverAfterThreeHundredPointNineSeconds) {
  const auto ceremony = polish();
  EXPECT_FALSE(ceremony.isOverAt(begin + 300.88));
  EXPECT_TRUE(ceremony.isOverAt(begin + 300.9));
  EXPECT_EQ(ceremony.valueAt(begin + 300.9), 0.0);
  EXPECT_EQ(ceremony.valueAt(begin + 1e12), 0.0);
}

TEST(CalmCeremonyTest, turnsAtItsPeakAndAtItsEnd) {
  const auto ceremony = polish();
  EXPECT_NEAR(ceremony.turnsAfter(begin), begin + 54 * calmStep, 1e-9);
  EXPECT_NEAR(ceremony.turnsAfter(begin + 53.9 * calmStep), begin + 54 * calmStep, 1e-9);
  EXPECT_NEAR(ceremony.turnsAfter(begin + 54 * calmStep), begin + 18054 * calmStep, 1e-9);
}

TEST(CalmCeremonyTest, aRiseOfNoLengthOrLessThanAStepTakesOneStep) {
  for (const double rise : {0.0, 0.01}) {
    const CalmCeremony ceremony(begin, 0.25, rise, 300.0);
    EXPECT_EQ(afterSteps(ceremony, 0.0), 0.25);
    EXPECT_EQ(afterSteps(ceremony, 0.99), 0.25);
    EXPECT_EQ(afterSteps(ceremony, 1.0), 1.0);
  }
}

TEST(CalmCeremonyTest, partOfAStepDoesNotCount) {
  const CalmCeremony ceremony(begin, 0.0, 2.9 / 60.0, 300.0);
  EXPECT_EQ(afterSteps(ceremony, 1.0), 0.5);
  EXPECT_EQ(afterSteps(ceremony, 2.0), 1.0);
}

TEST(CalmCeremonyTest, aRiseFromHalfEndsAtOne) {
  const auto ceremony = polish(0.5);
  EXPECT_EQ(ceremony.valueAt(begin), 0.5);
  EXPECT_EQ(afterSteps(ceremony, 27), 0.75);
  EXPECT_EQ(afterSteps(ceremony, 54), 1.0);
}

}  // namespace
}  // namespace vorli
