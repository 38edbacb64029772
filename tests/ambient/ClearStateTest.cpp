#include "ambient/ClearState.h"
#include "tests/ambient/CalmStep.h"
#include "tests/fakes/ManualScheduler.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace vorli {
namespace {

constexpr double rise = 0.9;
constexpr double decay = 300.0;
constexpr double wholeCeremony = 300.9;

struct ClearStateTest : testing::Test {
  fakes::ManualScheduler scheduler;
  ClearState state{scheduler};

  double calm() const { return state.calmIntensity.get(); }
};

TEST_F(ClearStateTest, isIdleAtZero) {
  scheduler.advance(1000.0);
  EXPECT_EQ(calm(), 0.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(ClearStateTest, risesAndDecaysOverFiveMinutes) {
  state.runCeremony(rise, decay);
  EXPECT_EQ(calm(), 0.0);
  scheduler.advance(0.45);
  EXPECT_EQ(calm(), 0.5);
  scheduler.advance(0.45);
  EXPECT_EQ(calm(), 1.0);
  scheduler.advance(150.0);
  EXPECT_EQ(calm(), 0.5);
  scheduler.advance(149.98);
  EXPECT_GT(calm(), 0.0);
  scheduler.advance(0.02);
  EXPECT_EQ(calm(), 0.0);
}

TEST_F(ClearStateTest, aBlockedMainThreadDoesNotProlongTheCeremony) {
  std::vector<double> values;
  const auto subscription = state.calmIntensity.subscribeToChanges(
      CalmPace::display, [&](double value) { values.push_back(value); });
  state.runCeremony(rise, decay);
  scheduler.advance(10.0);
  scheduler.advanceClockOnly(wholeCeremony - 20.0);
  scheduler.advance(9.98);
  EXPECT_GT(calm(), 0.0);
  EXPECT_NE(values.back(), 0.0);
  scheduler.advance(0.02);
  EXPECT_EQ(calm(), 0.0);
  EXPECT_EQ(values.back(), 0.0);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(ClearStateTest, aSecondCeremonyDuringTheDecayRisesFromTheValueThenReached) {
  state.runCeremony(rise, decay);
  scheduler.advance(100.9);
  const double reached = calm();
  ASSERT_NEAR(reached, 7.0 / 9.0, 1e-12);

  state.runCeremony(rise, decay);
  EXPECT_EQ(calm(), reached);
  scheduler.advance(0.45);
  EXPECT_NEAR(calm(), reached + 0.5 * (1.0 - reached), 1e-12);
  scheduler.advance(0.45);
  EXPECT_EQ(calm(), 1.0);
  scheduler.advance(150.0);
  EXPECT_EQ(calm(), 0.5);
}

TEST_F(ClearStateTest, aSecondCeremonyStopsTheFirstWithinAStep) {
  state.runCeremony(rise, decay);
  scheduler.advance(27.6 * calmStep);
  state.runCeremony(rise, decay);
  EXPECT_EQ(calm(), 0.5);
  scheduler.advance(0.6 * calmStep);
  EXPECT_EQ(calm(), 0.5);  // the first one's next step
  scheduler.advance(0.5 * calmStep);
  EXPECT_GT(calm(), 0.5);
}

TEST_F(ClearStateTest, theSecondOfTwoSimultaneousCeremoniesRuns) {
  state.runCeremony(rise, decay);
  state.runCeremony(0.0, decay);
  scheduler.advance(calmStep);
  EXPECT_EQ(calm(), 1.0);
}

TEST_F(ClearStateTest, aFinishedCeremonyIsHarmlessToReplace) {
  state.runCeremony(0.0, 0.0);
  scheduler.advance(1.0);
  ASSERT_EQ(calm(), 0.0);
  state.runCeremony(0.0, decay);
  scheduler.advance(calmStep);
  EXPECT_EQ(calm(), 1.0);
}

}  // namespace
}  // namespace vorli
