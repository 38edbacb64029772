#include "base/Animated.h"
#include "tests/fakes/ManualScheduler.h"

namespace vorli {
namespace {

struct AnimatedTest : testing::Test {
  /// The shown value that many seconds after the start of the test.
  double at(double seconds) const { return value.shown(start + seconds); }

  void animate(const Animation& animation, double target) {
    withAnimation(animation, [&] { value = target; });
  }

  fakes::ManualScheduler scheduler;
  const double start = scheduler.now();
  Animated<double> value{scheduler, 0.0};
};

TEST_F(AnimatedTest, aValueSetOutsideJumps) {
  value = 5.0;
  EXPECT_EQ(value.model(), 5.0);
  EXPECT_EQ(value.shown(), 5.0);
  EXPECT_FALSE(value.isMoving(start));
}

TEST_F(AnimatedTest, aValueSetInsideMovesAndItsModelIsThereAtOnce) {
  animate(Animation::linear(2.0), 10.0);
  EXPECT_EQ(value.model(), 10.0);
  EXPECT_EQ(value, 10.0);
  EXPECT_EQ(at(0.0), 0.0);
  EXPECT_NEAR(at(0.5), 2.5, 1e-8);
  EXPECT_EQ(at(2.0), 10.0);
  EXPECT_EQ(at(50.0), 10.0);
}

TEST_F(AnimatedTest, shownFollowsTheClock) {
  animate(Animation::linear(2.0), 10.0);
  scheduler.advance(1.0);
  EXPECT_NEAR(value.shown(), 5.0, 1e-8);
  scheduler.advance(1.0);
  EXPECT_EQ(value.shown(), 10.0);
}

TEST_F(AnimatedTest, knowsWhenItsMotionEnds) {
  EXPECT_LT(value.restsAt(), start);
  animate(Animation::linear(2.0).delayed(1.0), 10.0);
  EXPECT_EQ(value.restsAt(), start + 3.0);
  EXPECT_TRUE(value.isMoving(start));
  EXPECT_TRUE(value.isMoving(start + 2.999));
  EXPECT_FALSE(value.isMoving(start + 3.0));
}

TEST_F(AnimatedTest, aDelayedMotionWaitsAtTheCurrentValue) {
  animate(Animation::linear(2.0).delayed(1.0), 10.0);
  EXPECT_EQ(at(0.999), 0.0);
  EXPECT_NEAR(at(2.0), 5.0, 1e-8);
  EXPECT_EQ(at(3.0), 10.0);
}

TEST_F(AnimatedTest, severalMotionsMayWaitOneBehindAnother) {
  animate(Animation::linear(1.0), 10.0);
  animate(Animation::linear(2.0).delayed(3.0), 20.0);
  animate(Animation::linear(1.0).delayed(6.0), 0.0);
  EXPECT_NEAR(at(0.5), 5.0, 1e-8);
  EXPECT_EQ(at(2.0), 10.0);
  EXPECT_NEAR(at(4.0), 15.0, 1e-8);
  EXPECT_EQ(at(5.5), 20.0);
  EXPECT_NEAR(at(6.5), 10.0, 1e-8);
  EXPECT_EQ(at(7.0), 0.0);
  EXPECT_EQ(value.restsAt(), start + 7.0);
}

TEST_F(AnimatedTest, aWaitingMotionTakesOverFromOneThatStillRuns) {
  animate(Animation::linear(4.0), 40.0);
  animate(Animation::linear(2.0).delayed(2.0), 0.0);
  EXPECT_NEAR(at(1.999999), 20.0, 1e-4);
  EXPECT_NEAR(at(2.0), 20.0, 1e-8);
  EXPECT_NEAR(at(3.0), 10.0, 1e-8);
  EXPECT_EQ(at(4.0), 0.0);
}

TEST_F(AnimatedTest, aNewTargetInFlightStartsFromWhatIsShown) {
  animate(Animation::linear(2.0), 10.0);
  scheduler.advance(1.0);
  animate(Animation::linear(1.0), 0.0);
  EXPECT_NEAR(at(1.0), 5.0, 1e-8);
  EXPECT_NEAR(at(1.5), 2.5, 1e-8);
  EXPECT_EQ(at(2.0), 0.0);
  EXPECT_EQ(value.restsAt(), start + 2.0);
}

TEST_F(AnimatedTest, manyNewTargetsInFlightStayContinuous) {
  double expected = 0.0;
  for (int i = 0; i < 200; ++i) {
    const double target = i % 2 == 0 ? 1.0 : -1.0;
    animate(Animation::linear(1.0), target);
    EXPECT_NEAR(value.shown(), expected, 1e-6);
    scheduler.advance(0.25);
    expected += (target - expected) / 4.0;
  }
  scheduler.advance(1.0);
  EXPECT_EQ(value.shown(), -1.0);
}

TEST_F(AnimatedTest, aMotionThatWaitsLongerThanANewerOneIsDropped) {
  animate(Animation::linear(1.0).delayed(2.0), 10.0);
  scheduler.advance(1.0);
  animate(Animation::linear(1.0), 4.0);
  EXPECT_NEAR(at(1.5), 2.0, 1e-8);
  EXPECT_EQ(at(2.0), 4.0);
  EXPECT_EQ(at(10.0), 4.0);
  EXPECT_EQ(value.restsAt(), start + 2.0);
}

TEST_F(AnimatedTest, aWaitingMotionSurvivesANewerOneThatWaitsLonger) {
  animate(Animation::linear(1.0).delayed(1.0), 10.0);
  scheduler.advance(0.5);
  animate(Animation::linear(1.0).delayed(2.0), 0.0);  // from 2.5 on
  EXPECT_NEAR(at(1.5), 5.0, 1e-8);
  EXPECT_EQ(at(2.2), 10.0);
  EXPECT_NEAR(at(3.0), 5.0, 1e-8);
  EXPECT_EQ(at(3.5), 0.0);
}

TEST_F(AnimatedTest, aJumpClearsRunningAndWaitingMotions) {
  animate(Animation::linear(2.0), 10.0);
  animate(Animation::linear(2.0).delayed(5.0), 20.0);
  scheduler.advance(1.0);
  value = 3.0;
  EXPECT_EQ(at(1.0), 3.0);
  EXPECT_EQ(at(6.0), 3.0);
  EXPECT_FALSE(value.isMoving(scheduler.now()));
}

TEST_F(AnimatedTest, aJumpInsideAnAnimationClearsToo) {
  withAnimation(Animation::linear(2.0), [&] {
    value = 10.0;
    withoutAnimation([&] { value = 4.0; });
  });
  EXPECT_EQ(at(1.0), 4.0);
}

TEST_F(AnimatedTest, aRestingValueStartsItsNextMotionWhereItIs) {
  animate(Animation::linear(1.0), 10.0);
  scheduler.advance(5.0);
  animate(Animation::linear(1.0), 20.0);
  EXPECT_EQ(at(5.0), 10.0);
  EXPECT_NEAR(at(5.5), 15.0, 1e-8);
}

TEST_F(AnimatedTest, theNextMotionEndsAnEndlessOne) {
  animate(Animation::linear(1.0).repeatedForever(Animation::Reversal::autoreverse), 10.0);
  EXPECT_EQ(value.restsAt(), INFINITY);
  EXPECT_NEAR(at(3.25), 7.5, 1e-8);
  scheduler.advance(3.25);
  animate(Animation::linear(1.0), 0.0);
  EXPECT_NEAR(at(3.25), 7.5, 1e-8);
  EXPECT_NEAR(at(3.75), 3.75, 1e-8);
  EXPECT_EQ(value.restsAt(), start + 4.25);
}

TEST_F(AnimatedTest, aSpringContinuesAtTheSpeedOfTheValue) {
  animate(Animation::linear(1.0), 10.0);
  scheduler.advance(0.5);
  animate(Animation::spring(0.5, 0.8), 5.0 + 1.0);
  const double speed = (at(0.5 + 1e-5) - at(0.5)) / 1e-5;
  EXPECT_NEAR(at(0.5), 5.0, 1e-8);
  EXPECT_NEAR(speed, 10.0, 0.05);
}

TEST_F(AnimatedTest, aSpringFromRestStartsFromRest) {
  animate(Animation::linear(1.0), 10.0);
  scheduler.advance(2.0);
  animate(Animation::spring(0.5, 0.8), 20.0);
  EXPECT_NEAR((at(2.0 + 1e-5) - at(2.0)) / 1e-5, 0.0, 0.05);
}

TEST_F(AnimatedTest, aSpringRightBehindANewTargetHasNoWildSpeed) {
  animate(Animation::linear(1.0), 10.0);
  scheduler.advance(5.0);
  animate(Animation::linear(1.0), 20.0);
  scheduler.advance(0.00001);
  animate(Animation::spring(0.5, 1.0), 0.0);
  for (double t = 5.0; t < 7.0; t += 0.01) EXPECT_LE(at(t), 10.5) << t;
}

TEST_F(AnimatedTest, manySpringsInFlightCostNoMoreThanOne) {
  for (int i = 0; i < 2000; ++i) {
    animate(Animation::spring(0.5, 0.7), i % 2);
    scheduler.advance(0.01);
  }
  EXPECT_GT(value.shown(), -1.0);
  EXPECT_LT(value.shown(), 2.0);
}

TEST_F(AnimatedTest, coloursMoveByTheirComponents) {
  Animated<Colour> colour(scheduler, {0.0, 0.2, 1.0, 1.0});
  withAnimation(Animation::linear(2.0), [&] { colour = Colour{1.0, 0.6, 0.0, 0.5}; });
  const auto middle = colour.shown(start + 1.0);
  EXPECT_NEAR(middle.red, 0.5, 1e-9);
  EXPECT_NEAR(middle.green, 0.4, 1e-9);
  EXPECT_NEAR(middle.blue, 0.5, 1e-9);
  EXPECT_NEAR(middle.alpha, 0.75, 1e-9);
  EXPECT_EQ(colour.shown(start + 2.0), (Colour{1.0, 0.6, 0.0, 0.5}));
}

TEST_F(AnimatedTest, subscribersHearOfEachAssignment) {
  std::vector<double> heard;
  const auto token = value.subscribe([&](const double& model) { heard.push_back(model); });
  value = 1.0;
  animate(Animation::linear(2.0), 2.0);
  scheduler.advance(1.0);
  EXPECT_EQ(heard, (std::vector<double>{1.0, 2.0}));
}

}  // namespace
}  // namespace vorli
