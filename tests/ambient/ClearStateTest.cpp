#include "ambient/ClearState.h"
#include "tests/fakes/ManualScheduler.h"

#include <vector>

namespace vorli {
namespace {

constexpr double frame = 0.016666666;
constexpr double rise = 0.9;
constexpr int riseFrames = 54;
constexpr double decay = 300.0;
constexpr int decayFrames = 18000;

struct ClearStateTest : testing::Test {
  fakes::ManualScheduler scheduler;
  ClearState state{scheduler};
  std::vector<double> values;
  Subscription subscription =
      state.calmIntensity.subscribeToChanges([this](double value) { values.push_back(value); });

  double calm() const { return state.calmIntensity.get(); }
  // To just after the step that follows `frames` sleeps.
  void passFrames(int frames) { scheduler.advance(frames * frame + frame / 1000.0); }
};

TEST_F(ClearStateTest, isIdleAtZero) {
  scheduler.advance(1000.0);
  EXPECT_EQ(calm(), 0.0);
  EXPECT_TRUE(values.empty());
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(ClearStateTest, startsAtTheNextTurnOfTheLoop) {
  state.runCeremony(rise, decay);
  EXPECT_TRUE(values.empty());
  scheduler.runReady();
  EXPECT_EQ(values, std::vector<double>{0.0});
}

TEST_F(ClearStateTest, risesByAQuadraticEaseInAndOut) {
  state.runCeremony(rise, decay);
  passFrames(27);
  EXPECT_NEAR(calm(), 0.5, 1e-9);
  ASSERT_EQ(values.size(), 28u);
  EXPECT_NEAR(values[1], 2.0 / (54.0 * 54.0), 1e-12);
  EXPECT_NEAR(values[9], 2.0 / 36.0, 1e-12);
  passFrames(18);
  EXPECT_NEAR(calm(), 1.0 - 2.0 / 36.0, 1e-9);
  scheduler.advanceTo(1000.0 + riseFrames * frame + frame / 2.0);
  EXPECT_EQ(values[riseFrames], 1.0);
}

TEST_F(ClearStateTest, decaysOverFiveMinutesInEighteenThousandSteps) {
  state.runCeremony(rise, decay);
  passFrames(riseFrames);
  ASSERT_EQ(values.size(), riseFrames + 2u);  // the decay begins with the value it starts from
  EXPECT_EQ(values.back(), 1.0);
  passFrames(6000);
  EXPECT_NEAR(calm(), 7.0 / 9.0, 1e-9);
  passFrames(3000);
  EXPECT_NEAR(calm(), 0.5, 1e-9);
  passFrames(8999);
  EXPECT_GT(calm(), 0.0);
  EXPECT_LT(calm(), 1e-8);
  passFrames(1);
  EXPECT_EQ(calm(), 0.0);
  EXPECT_EQ(values.size(), riseFrames + 1u + decayFrames + 1u);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(ClearStateTest, aRiseOfNoLengthJumpsInTwoSteps) {
  state.runCeremony(0.0, decay);
  scheduler.runReady();
  EXPECT_EQ(values, std::vector<double>{0.0});
  scheduler.advance(frame);
  EXPECT_EQ(values, (std::vector<double>{0.0, 1.0, 1.0}));
}

TEST_F(ClearStateTest, aRiseShorterThanAFrameTakesOne) {
  state.runCeremony(0.01, decay);
  scheduler.advance(frame);
  EXPECT_EQ(values, (std::vector<double>{0.0, 1.0, 1.0}));
}

TEST_F(ClearStateTest, partOfAFrameDoesNotCount) {
  state.runCeremony(2.9 / 60.0, decay);
  scheduler.runReady();
  scheduler.advance(frame);
  EXPECT_NEAR(calm(), 0.5, 1e-12);
  scheduler.advance(frame);
  EXPECT_EQ(calm(), 1.0);
}

TEST_F(ClearStateTest, aRiseFromHalfGoesFromHalfToOne) {
  state.calmIntensity = 0.5;
  values.clear();
  state.runCeremony(rise, decay);
  scheduler.runReady();
  EXPECT_EQ(values, std::vector<double>{0.5});
  passFrames(27);
  EXPECT_NEAR(calm(), 0.75, 1e-9);
  for (std::size_t i = 1; i < values.size(); ++i) EXPECT_GE(values[i], values[i - 1]);
  passFrames(27);
  EXPECT_EQ(calm(), 1.0);
}

TEST_F(ClearStateTest, aSecondCeremonyDuringTheDecayRisesFromTheValueThenReached) {
  state.runCeremony(rise, decay);
  passFrames(riseFrames + 6000);  // 100 s into the decay
  const double reached = calm();
  ASSERT_NEAR(reached, 7.0 / 9.0, 1e-9);
  values.clear();

  state.runCeremony(rise, decay);
  scheduler.runReady();
  EXPECT_EQ(values, std::vector<double>{reached});
  scheduler.advance(27 * frame + frame / 1000.0);
  EXPECT_NEAR(calm(), reached + 0.5 * (1.0 - reached), 1e-9);
  EXPECT_EQ(values.size(), 28u);  // the first ceremony adds nothing
  passFrames(27 + decayFrames);
  EXPECT_EQ(calm(), 0.0);
}

TEST_F(ClearStateTest, aSecondCeremonyBeforeTheFirstHasBegunReplacesIt) {
  state.runCeremony(rise, decay);
  state.runCeremony(0.0, decay);
  scheduler.runReady();
  EXPECT_EQ(values, std::vector<double>{0.0});
  scheduler.advance(frame);
  EXPECT_EQ(calm(), 1.0);
}

TEST_F(ClearStateTest, aCeremonyMayBeStartedByAnObserverOfIt) {
  bool restarted = false;
  const auto restart = state.calmIntensity.subscribeToChanges([&](double value) {
    if (value < 0.5 || restarted) return;
    restarted = true;
    state.runCeremony(0.0, decay);
  });
  state.runCeremony(rise, decay);
  passFrames(27);
  EXPECT_TRUE(restarted);
  EXPECT_NEAR(calm(), 0.5, 1e-9);
  scheduler.advance(frame);
  EXPECT_EQ(calm(), 1.0);
}

TEST_F(ClearStateTest, aFinishedCeremonyIsHarmlessToReplace) {
  state.runCeremony(0.0, 0.0);
  scheduler.advance(1.0);
  ASSERT_EQ(calm(), 0.0);
  state.runCeremony(0.0, decay);
  scheduler.advance(frame);
  EXPECT_EQ(calm(), 1.0);
}

}  // namespace
}  // namespace vorli
